#include "app/platform/windows/windows_registry.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "app/platform/machine/this_machine.h"
#include "app/platform/windows/win32.h"
#include "foundation/registry_key.h"

namespace platform {
namespace {

using Names = std::vector<std::string>;

constexpr char kPlace[] = "Software\\Kelvaro Test";

// A key of the test's own, gone at the end.
class WindowsRegistryTest : public ::testing::Test {
 protected:
  WindowsRegistryTest() {
    RegDeleteTreeA(reinterpret_cast<::HKEY>(0xFFFFFFFF80000001u), kPlace);
    EXPECT_EQ(registry.RegCreateKeyA(HKEY_CURRENT_USER, kPlace, &key), ERROR_SUCCESS);
  }
  ~WindowsRegistryTest() override {
    registry.RegCloseKey(key);
    RegDeleteTreeA(reinterpret_cast<::HKEY>(0xFFFFFFFF80000001u), kPlace);
  }

  std::uint32_t Put(const std::string& name, std::uint32_t type, const std::string& data) {
    return registry.RegSetValueExA(key, name, type, data.data(),
                                   static_cast<std::uint32_t>(data.size()));
  }
  // "!CODE" for a failure, else the bytes.
  std::string Get(const std::string& name, std::uint32_t* type = nullptr) {
    char data[100];
    std::uint32_t size = sizeof data;
    const std::uint32_t result = registry.RegQueryValueExA(key, name, type, data, &size);
    if (result != ERROR_SUCCESS) return "!" + std::to_string(result);
    return std::string(data, size);
  }
  std::uint32_t NextValue(std::uint32_t index, std::string* name) {
    char buffer[100];
    std::uint32_t size = sizeof buffer;
    const std::uint32_t result =
        registry.RegEnumValueA(key, index, buffer, &size, nullptr, nullptr, nullptr);
    if (result == ERROR_SUCCESS) name->assign(buffer, size);
    return result;
  }

  WindowsRegistry registry;
  HKEY key = 0;
};

TEST_F(WindowsRegistryTest, AnyKindOfValueIsKeptWithItsBytes) {
  const struct {
    std::uint32_t type;
    std::string data;
  } values[] = {{REG_SZ, std::string("text\0", 5)},
                {REG_SZ, std::string("Gr\xC3\xBC\xC3\x9F\xE2\x82\xAC\0", 10)},
                {REG_EXPAND_SZ, std::string("%X%\0", 4)},
                {REG_BINARY, std::string("\0\xFF\x80\0", 4)},
                {REG_DWORD, "\x01\x02\x03\x04"},
                {REG_QWORD, "12345678"},
                {REG_NONE, ""}};
  int n = 0;
  for (const auto& value : values) {
    const std::string name = "value " + std::to_string(n++);
    EXPECT_EQ(Put(name, value.type, value.data), ERROR_SUCCESS);
    std::uint32_t type = 77;
    EXPECT_EQ(Get(name, &type), value.data);
    EXPECT_EQ(type, value.type);
  }
}

TEST_F(WindowsRegistryTest, NamesAreFoundInEitherCase) {
  HKEY same = 0;
  EXPECT_EQ(Put("Last Device", REG_BINARY, "1"), ERROR_SUCCESS);
  ASSERT_EQ(registry.RegOpenKeyA(HKEY_CURRENT_USER, "SOFTWARE\\kelvaro TEST", &same),
            ERROR_SUCCESS);
  EXPECT_EQ(registry.RegSetValueExA(same, "LAST device", REG_BINARY, "22", 2), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegCloseKey(same), ERROR_SUCCESS);
  EXPECT_EQ(Get("last device"), "22");
}

TEST_F(WindowsRegistryTest, EmptyPartsOfAPathDoNotCount) {
  HKEY made = 0;
  HKEY again = 0;
  ASSERT_EQ(registry.RegCreateKeyA(key, "\\a\\\\b\\", &made), ERROR_SUCCESS);
  ASSERT_EQ(registry.RegOpenKeyA(key, "a\\b", &again), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegCloseKey(again), ERROR_SUCCESS);
  ASSERT_EQ(registry.RegOpenKeyA(made, "", &again), ERROR_SUCCESS);
  EXPECT_NE(again, made);
  EXPECT_EQ(registry.RegCloseKey(again), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegSetValueExA(made, "n", REG_BINARY, "", 0), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegCloseKey(made), ERROR_SUCCESS);
}

TEST_F(WindowsRegistryTest, WhatIsNotThereIsNotFound) {
  HKEY none = 77;
  EXPECT_EQ(registry.RegOpenKeyA(HKEY_LOCAL_MACHINE, "Software\\None", &none),
            ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(none, 77u);
  EXPECT_EQ(Get("none"), "!2");
  EXPECT_EQ(registry.RegDeleteValueA(key, "none"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(Put("gone", REG_BINARY, "1"), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegDeleteValueA(key, "gone"), ERROR_SUCCESS);
  EXPECT_EQ(Get("gone"), "!2");
}

TEST_F(WindowsRegistryTest, ThoseThatAreAlwaysOpenStayOpen) {
  for (const HKEY root :
       {platform::HKEY{0x80000000u}, platform::HKEY{0x80000001u}, platform::HKEY{0x80000002u}}) {
    EXPECT_EQ(registry.RegCloseKey(root), ERROR_SUCCESS);
    HKEY opened = 0;
    EXPECT_EQ(registry.RegOpenKeyA(root, "", &opened), ERROR_SUCCESS);
    EXPECT_EQ(registry.RegCloseKey(opened), ERROR_SUCCESS);
  }
}

TEST_F(WindowsRegistryTest, AnEnumerationOfAKeyThatIsNotOpenEnds) {
  const HKEY closed = 0x7FFFFFF0;
  char name[10];
  std::uint32_t size = sizeof name;
  HKEY other = 0;
  EXPECT_EQ(registry.RegEnumValueA(closed, 0, name, &size, nullptr, nullptr, nullptr),
            ERROR_NO_MORE_ITEMS);
  EXPECT_EQ(registry.RegEnumKeyA(closed, 0, name, sizeof name), ERROR_NO_MORE_ITEMS);
  EXPECT_EQ(registry.RegOpenKeyA(closed, "a", &other), ERROR_INVALID_HANDLE);
  EXPECT_EQ(registry.RegSetValueExA(closed, "v", REG_SZ, "", 1), ERROR_INVALID_HANDLE);
}

TEST_F(WindowsRegistryTest, ABufferWithoutRoomIsMoreData) {
  ASSERT_EQ(Put("name", REG_BINARY, "12345"), ERROR_SUCCESS);
  char data[5];
  std::uint32_t size = 4;
  EXPECT_EQ(registry.RegQueryValueExA(key, "name", nullptr, data, &size), ERROR_MORE_DATA);
  EXPECT_EQ(size, 5u);
  EXPECT_EQ(registry.RegQueryValueExA(key, "name", nullptr, data, &size), ERROR_SUCCESS);
  EXPECT_EQ(std::string(data, 5), "12345");
  char name[8];
  std::uint32_t nameSize = 4;
  EXPECT_EQ(registry.RegEnumValueA(key, 0, name, &nameSize, nullptr, nullptr, nullptr),
            ERROR_MORE_DATA);
  nameSize = 5;
  EXPECT_EQ(registry.RegEnumValueA(key, 0, name, &nameSize, nullptr, nullptr, nullptr),
            ERROR_SUCCESS);
  EXPECT_EQ(nameSize, 4u);
  EXPECT_EQ(registry.RegEnumValueA(key, 1, name, &nameSize, nullptr, nullptr, nullptr),
            ERROR_NO_MORE_ITEMS);
  HKEY subkey = 0;
  ASSERT_EQ(registry.RegCreateKeyA(key, "subkey", &subkey), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegCloseKey(subkey), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegEnumKeyA(key, 0, name, 6), ERROR_MORE_DATA);
  EXPECT_EQ(registry.RegEnumKeyA(key, 0, name, 7), ERROR_SUCCESS);
  EXPECT_STREQ(name, "subkey");
  EXPECT_EQ(registry.RegEnumKeyA(key, 1, name, 7), ERROR_NO_MORE_ITEMS);
}

TEST_F(WindowsRegistryTest, ANameWithAZeroByteNamesNothing) {
  const std::string name("a\0b", 3);
  HKEY opened = 77;
  EXPECT_EQ(registry.RegCreateKeyA(key, name, &opened), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(opened, 77u);
  EXPECT_EQ(Put(name, REG_BINARY, "1"), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(Get(name), "!2");
  std::string found;
  EXPECT_EQ(NextValue(0, &found), ERROR_NO_MORE_ITEMS);
}

// What the program does with its settings, a whole tree copied included.
TEST_F(WindowsRegistryTest, ATreeOfSettingsIsCopied) {
  const ThisMachine machine;
  const InstalledPlatform installed(machine.Groups());
  const std::string from = std::string(kPlace) + "\\from";
  const std::string to = std::string(kPlace) + "\\to";
  {
    kelvaro::RegistryKey source(HKEY_CURRENT_USER, from.c_str(), true);
    ASSERT_TRUE(source.isOpen);
    EXPECT_TRUE(source.SetString(nullptr, "text", "Gr\xC3\xBC\xC3\x9F"));
    EXPECT_TRUE(source.SetDword("Devices", "number", 7));
    kelvaro::RegistryKey target(HKEY_CURRENT_USER, to.c_str(), true);
    EXPECT_TRUE(target.CopyTree(&source));
  }
  kelvaro::RegistryKey copied(HKEY_CURRENT_USER, to.c_str(), false);
  kelvaro::ByteString text;
  std::uint32_t number = 0;
  EXPECT_TRUE(copied.GetString("", "text", &text));
  EXPECT_EQ(kelvaro::Bytes(text), "Gr\xC3\xBC\xC3\x9F");
  EXPECT_TRUE(copied.GetDword("Devices", "number", &number));
  EXPECT_EQ(number, 7u);
}

}  // namespace
}  // namespace platform
