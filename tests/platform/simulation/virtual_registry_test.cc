#include "app/platform/simulation/virtual_registry.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace platform::simulation {
namespace {

using Names = std::vector<std::string>;

TEST(VirtualRegistry, NamesAreFoundInEitherCaseAndStayAsTheyWereMade) {
  VirtualRegistry registry;
  HKEY key = 0;
  HKEY same = 0;
  ASSERT_EQ(registry.RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Game", &key), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegCreateKeyA(HKEY_CURRENT_USER, "SOFTWARE\\game", &same), ERROR_SUCCESS);
  EXPECT_NE(key, same);
  EXPECT_EQ(registry.RegSetValueExA(key, "Last Device", REG_BINARY, "1", 1), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegSetValueExA(same, "LAST device", REG_BINARY, "22", 2), ERROR_SUCCESS);
  EXPECT_EQ(registry.SubkeyNames("HKCU\\Software"), Names{"Game"});
  EXPECT_EQ(registry.ValueNames("hkcu\\software\\game"), Names{"Last Device"});
  EXPECT_EQ(registry.Value("HKCU\\Software\\Game", "last device")->data, "22");
}

TEST(VirtualRegistry, ClassesAreAHiveOfTheirOwn) {
  VirtualRegistry registry;
  registry.PutString("HKCR\\CLSID\\{1}\\InprocServer32", "", "a.ocx");
  HKEY key = 0;
  ASSERT_EQ(registry.RegOpenKeyA(HKEY_CLASSES_ROOT, "CLSID\\{1}\\InprocServer32", &key),
            ERROR_SUCCESS);
  char data[6] = {};
  std::uint32_t size = sizeof data;
  EXPECT_EQ(registry.RegQueryValueExA(key, "", nullptr, data, &size), ERROR_SUCCESS);
  EXPECT_STREQ(data, "a.ocx");
  EXPECT_EQ(registry.RegOpenKeyA(HKEY_CURRENT_USER, "CLSID", &key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(registry.RegCloseKey(HKEY_CLASSES_ROOT), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegOpenKeyA(HKEY_CLASSES_ROOT, "CLSID", &key), ERROR_SUCCESS);
}

TEST(VirtualRegistry, EmptyPartsOfAPathDoNotCount) {
  VirtualRegistry registry;
  HKEY key = 0;
  HKEY again = 0;
  ASSERT_EQ(registry.RegCreateKeyA(HKEY_CURRENT_USER, "\\a\\\\b\\", &key), ERROR_SUCCESS);
  EXPECT_TRUE(registry.HasKey("HKCU\\a\\b"));
  EXPECT_EQ(registry.RegOpenKeyA(key, "", &again), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegCloseKey(again), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegSetValueExA(key, "n", REG_BINARY, "", 0), ERROR_SUCCESS);
}

TEST(VirtualRegistry, WhatIsNotThereIsNotFound) {
  VirtualRegistry registry;
  HKEY key = 77;
  EXPECT_EQ(registry.RegOpenKeyA(HKEY_LOCAL_MACHINE, "missing", &key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(key, 77u);
  EXPECT_EQ(registry.RegQueryValueExA(HKEY_LOCAL_MACHINE, "v", nullptr, nullptr, nullptr),
            ERROR_FILE_NOT_FOUND);
}

TEST(VirtualRegistry, AHandleThatIsNotOpenIsInvalid) {
  VirtualRegistry registry;
  HKEY key = 0;
  ASSERT_EQ(registry.RegCreateKeyA(HKEY_CURRENT_USER, "a", &key), ERROR_SUCCESS);
  ASSERT_EQ(registry.RegCloseKey(key), ERROR_SUCCESS);
  HKEY other = 0;
  char name[8];
  std::uint32_t nameSize = sizeof name;
  EXPECT_EQ(registry.RegCloseKey(key), ERROR_INVALID_HANDLE);
  EXPECT_EQ(registry.RegOpenKeyA(key, "", &other), ERROR_INVALID_HANDLE);
  EXPECT_EQ(registry.RegCreateKeyA(key, "b", &other), ERROR_INVALID_HANDLE);
  EXPECT_EQ(registry.RegSetValueExA(key, "v", REG_SZ, "", 1), ERROR_INVALID_HANDLE);
  EXPECT_EQ(registry.RegDeleteValueA(key, "v"), ERROR_INVALID_HANDLE);
  EXPECT_EQ(registry.RegEnumValueA(key, 0, name, &nameSize, nullptr, nullptr, nullptr),
            ERROR_NO_MORE_ITEMS);
  EXPECT_EQ(registry.RegEnumKeyA(key, 0, name, sizeof name), ERROR_NO_MORE_ITEMS);
}

TEST(VirtualRegistry, ABufferWithoutRoomIsMoreData) {
  VirtualRegistry registry;
  registry.PutValue("HKCU", "name", REG_BINARY, "12345");
  char name[8];
  char data[5] = {'x', 'x', 'x', 'x', 'x'};
  std::uint32_t size = 4;
  EXPECT_EQ(registry.RegQueryValueExA(HKEY_CURRENT_USER, "name", nullptr, data, &size),
            ERROR_MORE_DATA);
  EXPECT_EQ(size, 5u);
  EXPECT_EQ(std::string(data, 5), "xxxxx");
  EXPECT_EQ(registry.RegQueryValueExA(HKEY_CURRENT_USER, "name", nullptr, data, &size),
            ERROR_SUCCESS);
  EXPECT_EQ(std::string(data, 5), "12345");

  std::uint32_t nameSize = 4;
  EXPECT_EQ(
      registry.RegEnumValueA(HKEY_CURRENT_USER, 0, name, &nameSize, nullptr, nullptr, nullptr),
      ERROR_MORE_DATA);
  nameSize = 5;
  EXPECT_EQ(
      registry.RegEnumValueA(HKEY_CURRENT_USER, 0, name, &nameSize, nullptr, nullptr, nullptr),
      ERROR_SUCCESS);
  EXPECT_EQ(nameSize, 4u);
  EXPECT_EQ(
      registry.RegEnumValueA(HKEY_CURRENT_USER, 1, name, &nameSize, nullptr, nullptr, nullptr),
      ERROR_NO_MORE_ITEMS);

  registry.PutKey("HKCU\\subkey");
  EXPECT_EQ(registry.RegEnumKeyA(HKEY_CURRENT_USER, 0, name, 6), ERROR_MORE_DATA);
  EXPECT_EQ(registry.RegEnumKeyA(HKEY_CURRENT_USER, 0, name, 7), ERROR_SUCCESS);
  EXPECT_STREQ(name, "subkey");
  EXPECT_EQ(registry.RegEnumKeyA(HKEY_CURRENT_USER, 1, name, 7), ERROR_NO_MORE_ITEMS);
}

TEST(VirtualRegistry, ANewValueComesLastAndARewrittenOneStays) {
  VirtualRegistry registry;
  registry.PutDword("HKCU", "a", 1);
  registry.PutDword("HKCU", "b", 2);
  registry.PutDword("HKCU", "a", 3);
  EXPECT_EQ(registry.ValueNames("HKCU"), (Names{"a", "b"}));
  EXPECT_EQ(registry.RegDeleteValueA(HKEY_CURRENT_USER, "a"), ERROR_SUCCESS);
  registry.PutDword("HKCU", "a", 4);
  EXPECT_EQ(registry.ValueNames("HKCU"), (Names{"b", "a"}));
  EXPECT_EQ(registry.Number("HKCU", "a"), 4u);
  EXPECT_EQ(registry.Text("HKCU", "a"), std::nullopt);
}

TEST(VirtualRegistry, AProtectedHiveCanBeReadOnly) {
  VirtualRegistry registry;
  registry.PutDword("HKLM\\Software", "n", 1);
  registry.Protect("HKLM");
  HKEY key = 0;
  EXPECT_EQ(registry.RegCreateKeyA(HKEY_LOCAL_MACHINE, "Software\\new", &key), ERROR_ACCESS_DENIED);
  ASSERT_EQ(registry.RegCreateKeyA(HKEY_LOCAL_MACHINE, "Software", &key), ERROR_SUCCESS);
  EXPECT_EQ(registry.RegSetValueExA(key, "n", REG_SZ, "", 1), ERROR_ACCESS_DENIED);
  EXPECT_EQ(registry.RegDeleteValueA(key, "n"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(registry.Number("HKLM\\Software", "n"), 1u);
  EXPECT_EQ(registry.RegCreateKeyA(HKEY_CURRENT_USER, "Software", &key), ERROR_SUCCESS);
}

TEST(VirtualRegistry, ARemovedKeyIsGoneForItsHandlesToo) {
  VirtualRegistry registry;
  HKEY key = 0;
  ASSERT_EQ(registry.RegCreateKeyA(HKEY_CURRENT_USER, "a\\b", &key), ERROR_SUCCESS);
  registry.RemoveKey("HKCU\\a");
  EXPECT_EQ(registry.RegSetValueExA(key, "n", REG_SZ, "", 1), ERROR_FILE_NOT_FOUND);
  EXPECT_FALSE(registry.HasKey("HKCU\\a"));
}

}  // namespace
}  // namespace platform::simulation
