#include "foundation/registry_key.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/platform/simulation/simulation.h"
#include "tests/foundation/allocations.h"
#include "tests/foundation/texts.h"

namespace kelvaro {
namespace {

using platform::HKEY_CURRENT_USER;
using platform::HKEY_LOCAL_MACHINE;
using platform::REG_BINARY;
using platform::REG_EXPAND_SZ;
using platform::REG_SZ;
using platform::simulation::Simulation;
using platform::simulation::VirtualRegistry;
using Lines = std::vector<std::string>;

// "name=text" and "name#number".
Lines Shown(const RegistryValueList& values) {
  Lines lines;
  for (const RegistryValue& value : values) {
    lines.push_back(Bytes(value.name) + (value.type == REG_SZ
                                             ? "=" + Bytes(value.text)
                                             : "#" + std::to_string(value.number)));
  }
  return lines;
}

class RegistryKeyTest : public ::testing::Test {
 protected:
  Lines Values(const char* subkey = nullptr) {
    RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", false);
    RegistryValueList values;
    EXPECT_TRUE(key.EnumValues(subkey, &values));
    return Shown(values);
  }

  Simulation sim;
  VirtualRegistry& registry = sim.Registry();
  const std::string game = "HKCU\\Software\\Game";
  const std::string old = "HKCU\\Software\\Old";
};

TEST_F(RegistryKeyTest, AMissingKeyOpenedWithoutCreateFailsEverything) {
  registry.PutDword("HKCU\\Other", "n", 1);
  {
    RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", false);
    RegistryKey other(HKEY_CURRENT_USER, "Other", false);
    EXPECT_FALSE(key.isOpen);
    ASSERT_TRUE(other.isOpen);
    std::uint32_t number = 7;
    ByteString text("kept");
    RegistryValueList values;
    LinkedList<ByteString> names;
    EXPECT_FALSE(key.GetDword(nullptr, "n", &number));
    EXPECT_FALSE(key.GetString("sub", "s", &text));
    EXPECT_FALSE(key.SetDword(nullptr, "n", 1));
    EXPECT_FALSE(key.SetString("sub", "s", "text"));
    EXPECT_FALSE(key.DeleteValue(nullptr, "n"));
    EXPECT_FALSE(key.EnumValues(nullptr, &values));
    EXPECT_FALSE(key.EnumSubkeys(other.handle, &names));
    EXPECT_FALSE(key.CopyValues(&other));
    EXPECT_FALSE(key.CopyTree(&other));
    EXPECT_FALSE(other.CopyValues(&key));
    EXPECT_FALSE(other.CopyTree(&key));
    EXPECT_EQ(number, 7u);
    EXPECT_STREQ(text.Text(), "kept");
  }
  EXPECT_FALSE(registry.HasKey(game));
  EXPECT_EQ(registry.OpenHandles(), 0u);
}

TEST_F(RegistryKeyTest, CreateMakesTheWholePath) {
  RegistryKey key(HKEY_LOCAL_MACHINE, "Software\\Game", true);
  EXPECT_TRUE(key.isOpen);
  EXPECT_TRUE(key.createMode);
  EXPECT_EQ(key.root, HKEY_LOCAL_MACHINE);
  EXPECT_STREQ(key.path.Text(), "Software\\Game");
  EXPECT_TRUE(registry.HasKey("HKLM\\Software\\Game"));
}

TEST_F(RegistryKeyTest, AFailedCreateIsNotOpen) {
  sim.FailNext("RegCreateKeyA", 5);
  RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", true);
  EXPECT_FALSE(key.isOpen);
  EXPECT_FALSE(key.SetDword(nullptr, "n", 1));
}

TEST_F(RegistryKeyTest, WhatIsWrittenIsRead) {
  RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", true);
  for (const std::uint32_t number : {0u, 1u, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_TRUE(key.SetDword(nullptr, "n", number));
    std::uint32_t read = 17;
    EXPECT_TRUE(key.GetDword(nullptr, "n", &read));
    EXPECT_EQ(read, number);
  }
  for (const char* text : {"", "a", "\xE9t\xE9 \\ \"x\""}) {
    EXPECT_TRUE(key.SetString(nullptr, "s", text));
    ByteString read("before");
    EXPECT_TRUE(key.GetString(nullptr, "s", &read));
    EXPECT_STREQ(read.Text(), text);
  }
}

TEST_F(RegistryKeyTest, AStringIsStoredWithItsTerminator) {
  RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", true);
  EXPECT_TRUE(key.SetString(nullptr, "s", "ab"));
  EXPECT_TRUE(key.SetDword(nullptr, "n", 3));
  EXPECT_EQ(registry.Value(game, "s")->type, 1u);
  EXPECT_EQ(registry.Value(game, "s")->data, std::string("ab\0", 3));
  EXPECT_EQ(registry.Value(game, "n")->type, 4u);
  EXPECT_EQ(registry.Value(game, "n")->data.size(), 4u);
}

TEST_F(RegistryKeyTest, AnotherTypeReadsAsMissing) {
  registry.PutString(game, "s", "text");
  registry.PutDword(game, "n", 1);
  registry.PutValue(game, "b", REG_BINARY, "1234");
  registry.PutValue(game, "e", REG_EXPAND_SZ, std::string("%PATH%\0", 7));
  RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", false);
  std::uint32_t number = 7;
  ByteString text("kept");
  for (const char* name : {"s", "b", "e", "missing"}) {
    EXPECT_FALSE(key.GetDword(nullptr, name, &number)) << name;
  }
  for (const char* name : {"n", "b", "e", "missing"}) {
    EXPECT_FALSE(key.GetString(nullptr, name, &text)) << name;
  }
  EXPECT_EQ(number, 7u);
  EXPECT_STREQ(text.Text(), "kept");
}

TEST_F(RegistryKeyTest, AStringOf16384BytesCanNotBeRead) {
  RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", true);
  ByteString text;
  registry.PutString(game, "fits", std::string(16383, 'x'));
  registry.PutString(game, "long", std::string(16384, 'x'));
  EXPECT_TRUE(key.GetString(nullptr, "fits", &text));
  EXPECT_EQ(text.Length(), 16383u);
  EXPECT_FALSE(key.GetString(nullptr, "long", &text));
  EXPECT_EQ(text.Length(), 16383u);
  // Writing one is no failure.
  EXPECT_TRUE(key.SetString(nullptr, "own", std::string(16384, 'y').c_str()));
  EXPECT_FALSE(key.GetString(nullptr, "own", &text));
}

TEST_F(RegistryKeyTest, AStringWithoutItsTerminatorEndsWithItsBytes) {
  registry.PutValue(game, "bare", REG_SZ, "abc");
  registry.PutValue(game, "full", REG_SZ, std::string(16384, 'x'));
  registry.PutValue(game, "none", REG_SZ, "");
  RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", false);
  ByteString text;
  EXPECT_TRUE(key.GetString(nullptr, "bare", &text));
  EXPECT_STREQ(text.Text(), "abc");
  EXPECT_TRUE(key.GetString(nullptr, "full", &text));
  EXPECT_EQ(text.Length(), 16384u);
  EXPECT_TRUE(key.GetString(nullptr, "none", &text));
  EXPECT_TRUE(text.IsEmpty());
}

TEST_F(RegistryKeyTest, AnEnumeratedStringWithoutItsTerminatorEndsWithItsBytes) {
  registry.PutString(game, "long", "a longer text");
  registry.PutValue(game, "s", REG_SZ, "ab");
  EXPECT_EQ(Values(), (Lines{"long=a longer text", "s=ab"}));
}

TEST_F(RegistryKeyTest, ANumberOfFewerBytesIsASmallerOne) {
  registry.PutValue(game, "none", platform::REG_DWORD, "");
  registry.PutValue(game, "one", platform::REG_DWORD, "\x02");
  EXPECT_EQ(Values(), (Lines{"none#0", "one#2"}));
}

TEST_F(RegistryKeyTest, AnEmptySubkeyIsTheKeyItself) {
  RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", true);
  sim.LogCalls(true);
  EXPECT_TRUE(key.SetDword("", "n", 4));
  std::uint32_t number = 0;
  EXPECT_TRUE(key.GetDword(nullptr, "n", &number));
  EXPECT_EQ(number, 4u);
  EXPECT_TRUE(key.SetString(nullptr, "s", "x"));
  ByteString text;
  EXPECT_TRUE(key.GetString("", "s", &text));
  EXPECT_STREQ(text.Text(), "x");
  RegistryValueList values;
  EXPECT_TRUE(key.EnumValues("", &values));
  EXPECT_EQ(Shown(values), (Lines{"n#4", "s=x"}));
  EXPECT_TRUE(key.DeleteValue("", "n"));
  EXPECT_EQ(registry.ValueNames(game), Lines{"s"});
  for (const std::string& call : sim.Calls()) {
    EXPECT_EQ(call.find("OpenKey"), std::string::npos) << call;
    EXPECT_EQ(call.find("CreateKey"), std::string::npos) << call;
    EXPECT_EQ(call.find("CloseKey"), std::string::npos) << call;
  }
}

TEST_F(RegistryKeyTest, AReadOpensItsSubkeyForThatCall) {
  registry.PutDword(game + "\\sub", "n", 9);
  RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", true);
  sim.LogCalls(true);
  std::uint32_t number = 0;
  EXPECT_TRUE(key.GetDword("sub", "n", &number));
  EXPECT_EQ(number, 9u);
  EXPECT_EQ(sim.Calls(),
            (Lines{"RegOpenKeyA " + game + "\\sub", "RegQueryValueExA " + game + "\\sub n",
                   "RegCloseKey " + game + "\\sub"}));
}

TEST_F(RegistryKeyTest, AReadNeverMakesASubkey) {
  RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", true);
  std::uint32_t number = 0;
  ByteString text;
  RegistryValueList values;
  EXPECT_FALSE(key.GetDword("sub", "n", &number));
  EXPECT_FALSE(key.GetString("sub", "n", &text));
  EXPECT_FALSE(key.EnumValues("sub", &values));
  EXPECT_FALSE(registry.HasKey(game + "\\sub"));
}

TEST_F(RegistryKeyTest, AWriteMakesItsSubkeyInCreateModeOnly) {
  {
    RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", true);
    sim.LogCalls(true);
    EXPECT_TRUE(key.SetDword("a\\b", "n", 9));
    EXPECT_EQ(sim.Calls(),
              (Lines{"RegCreateKeyA " + game + "\\a\\b", "RegSetValueExA " + game + "\\a\\b n",
                     "RegCloseKey " + game + "\\a\\b"}));
  }
  RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", false);
  EXPECT_TRUE(key.SetString("a\\b", "s", "x"));
  EXPECT_FALSE(key.SetDword("new", "n", 1));
  EXPECT_FALSE(key.SetString("new", "s", "x"));
  EXPECT_EQ(registry.SubkeyNames(game), Lines{"a"});
  EXPECT_EQ(registry.ValueNames(game + "\\a\\b"), (Lines{"n", "s"}));
}

TEST_F(RegistryKeyTest, DeleteNeverMakesASubkey) {
  registry.PutDword(game + "\\sub", "n", 1);
  RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", true);
  EXPECT_TRUE(key.DeleteValue("sub", "n"));
  EXPECT_FALSE(key.DeleteValue("sub", "n"));
  EXPECT_FALSE(key.DeleteValue("other", "n"));
  EXPECT_EQ(registry.SubkeyNames(game), Lines{"sub"});
  EXPECT_EQ(registry.OpenHandles(), 1u);
}

TEST_F(RegistryKeyTest, FailedOperationsAreFalse) {
  registry.PutDword(game, "n", 1);
  registry.PutString(game, "s", "x");
  RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", true);
  std::uint32_t number = 7;
  ByteString text("kept");
  sim.FailNext("RegQueryValueExA", 5, 2);
  EXPECT_FALSE(key.GetDword(nullptr, "n", &number));
  EXPECT_FALSE(key.GetString(nullptr, "s", &text));
  EXPECT_EQ(number, 7u);
  EXPECT_STREQ(text.Text(), "kept");
  sim.FailNext("RegSetValueExA", 5, 2);
  EXPECT_FALSE(key.SetDword(nullptr, "n", 2));
  EXPECT_FALSE(key.SetString(nullptr, "s", "y"));
  sim.FailNext("RegDeleteValueA", 5);
  EXPECT_FALSE(key.DeleteValue(nullptr, "n"));
  EXPECT_EQ(Values(), (Lines{"n#1", "s=x"}));
}

TEST_F(RegistryKeyTest, CloseClosesOnce) {
  registry.PutKey(game);
  {
    RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", false);
    EXPECT_EQ(registry.OpenHandles(), 1u);
    sim.LogCalls(true);
    key.Close();
    EXPECT_FALSE(key.isOpen);
    EXPECT_FALSE(key.SetDword(nullptr, "n", 1));
    key.Close();
  }
  EXPECT_EQ(sim.Calls(), Lines{"RegCloseKey " + game});
  EXPECT_EQ(registry.OpenHandles(), 0u);
}

TEST_F(RegistryKeyTest, EnumerationGivesValuesInTheirOrder) {
  registry.PutString(game, "z", "last letter");
  registry.PutDword(game, "a", 12);
  registry.PutString(game, "", "without a name");
  EXPECT_EQ(Values(), (Lines{"z=last letter", "a#12", "=without a name"}));
}

TEST_F(RegistryKeyTest, AnEntryHoldsOneKindAlone) {
  registry.PutString(game, "s", "x");
  registry.PutDword(game, "n", 12);
  RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", false);
  RegistryValueList values;
  ASSERT_TRUE(key.EnumValues(nullptr, &values));
  ASSERT_EQ(values.count, 2);
  EXPECT_EQ(values.head->value->type, 1u);
  EXPECT_EQ(values.head->value->number, 0u);
  EXPECT_EQ(values.tail->value->type, 4u);
  EXPECT_TRUE(values.tail->value->text.IsEmpty());
}

TEST_F(RegistryKeyTest, EnumerationReplacesWhatTheListHeld) {
  registry.PutString(game, "s", "x");
  RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", false);
  RegistryValueList values;
  EXPECT_TRUE(key.EnumValues(nullptr, &values));
  EXPECT_TRUE(key.EnumValues(nullptr, &values));
  EXPECT_EQ(Shown(values), Lines{"s=x"});
  registry.PutKey(game + "\\sub");
  LinkedList<ByteString> names;
  EXPECT_TRUE(key.EnumSubkeys(key.handle, &names));
  EXPECT_TRUE(key.EnumSubkeys(key.handle, &names));
  EXPECT_EQ(Texts(names), Lines{"sub"});
}

TEST_F(RegistryKeyTest, AnEmptyKeyEnumeratesAsNothing) {
  registry.PutKey(game);
  sim.LogCalls(true);
  EXPECT_EQ(Values(), Lines{});
  EXPECT_EQ(sim.Calls(),
            (Lines{"RegOpenKeyA " + game, "RegEnumValueA " + game + " 0", "RegCloseKey " + game}));
}

TEST_F(RegistryKeyTest, AValueThatFailsIsSkipped) {
  registry.PutString(game, "a", "1");
  registry.PutString(game, "b", "2");
  registry.PutString(game, "c", "3");
  sim.FailNext("RegEnumValueA", 5, 2);
  EXPECT_EQ(Values(), Lines{"c=3"});
}

TEST_F(RegistryKeyTest, AValueLongerThanTheBuffersIsSkipped) {
  registry.PutString(game, "long", std::string(16384, 'x'));
  registry.PutDword(game, std::string(16384, 'n'), 1);
  registry.PutDword(game, "next", 2);
  EXPECT_EQ(Values(), Lines{"next#2"});
}

TEST_F(RegistryKeyTest, SizesLeftByADroppedValueLoseALongerOne) {
  struct Case {
    const char* what;
    const char* droppedName;
    std::size_t droppedSize;
    Lines listed;
  };
  // Of the value "abc" the name takes 4 bytes with its terminator, the data 3.
  const Case cases[] = {
      {"both fit exactly", "four", 3, {"abc=xy", "long name#1"}},
      {"the name is a byte too long", "bin", 3, {"long name#1"}},
      {"the data is a byte too long", "four", 2, {"long name#1"}},
      {"nothing fits behind no name", "", 100, {"long name#1"}},
      {"nothing fits behind no data", "binary", 0, {"long name#1"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    registry.RemoveKey(game);
    registry.PutValue(game, c.droppedName, REG_BINARY, std::string(c.droppedSize, 'b'));
    registry.PutString(game, "abc", "xy");
    registry.PutDword(game, "long name", 1);
    EXPECT_EQ(Values(), c.listed);
  }
}

TEST_F(RegistryKeyTest, ADroppedValueIsHeldToTheSizesBeforeItToo) {
  // The second fails on the sizes of the first, and the failure resets them for the third.
  registry.PutValue(game, "a", REG_BINARY, "1");
  registry.PutValue(game, "second", REG_BINARY, "22");
  registry.PutString(game, "third", "text");
  EXPECT_EQ(Values(), Lines{"third=text"});
}

TEST_F(RegistryKeyTest, SubkeysComeInTheirOrder) {
  registry.PutKey(game + "\\z");
  registry.PutKey(game + "\\a\\deep");
  RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", false);
  RegistryKey below(HKEY_CURRENT_USER, "Software\\Game\\a", false);
  LinkedList<ByteString> names;
  EXPECT_TRUE(key.EnumSubkeys(key.handle, &names));
  EXPECT_EQ(Texts(names), (Lines{"z", "a"}));
  EXPECT_TRUE(key.EnumSubkeys(below.handle, &names));
  EXPECT_EQ(Texts(names), Lines{"deep"});
}

TEST_F(RegistryKeyTest, ASubkeyThatFailsIsSkipped) {
  registry.PutKey(game + "\\a");
  registry.PutKey(game + "\\" + std::string(16384, 'x'));
  registry.PutKey(game + "\\b");
  RegistryKey key(HKEY_CURRENT_USER, "Software\\Game", false);
  LinkedList<ByteString> names;
  sim.FailNext("RegEnumKeyA", 5);
  EXPECT_TRUE(key.EnumSubkeys(key.handle, &names));
  EXPECT_EQ(Texts(names), Lines{"b"});
}

class RegistryCopyTest : public RegistryKeyTest {
 protected:
  bool CopyTree() {
    RegistryKey from(HKEY_CURRENT_USER, "Software\\Old", false);
    RegistryKey to(HKEY_CURRENT_USER, "Software\\Game", true);
    return to.CopyTree(&from);
  }
  bool CopyValues() {
    RegistryKey from(HKEY_CURRENT_USER, "Software\\Old", false);
    RegistryKey to(HKEY_CURRENT_USER, "Software\\Game", true);
    return to.CopyValues(&from);
  }
};

TEST_F(RegistryCopyTest, ValuesArriveOverThoseOfTheSameName) {
  registry.PutString(old, "s", "new text");
  registry.PutDword(old, "n", 8);
  registry.PutDword(game, "S", 1);
  registry.PutString(game, "stays", "here");
  EXPECT_TRUE(CopyValues());
  EXPECT_EQ(Values(), (Lines{"S=new text", "stays=here", "n#8"}));
  EXPECT_EQ(registry.Value(game, "s")->data, std::string("new text\0", 9));
  EXPECT_EQ(registry.ValueNames(old), (Lines{"s", "n"}));
}

TEST_F(RegistryCopyTest, ValuesThatFailAreToldAndTheRestArrives) {
  registry.PutString(old, "a", "1");
  registry.PutString(old, "b", "2");
  registry.PutDword(old, "c", 3);
  sim.FailNext("RegSetValueExA", 5);
  EXPECT_FALSE(CopyValues());
  EXPECT_EQ(Values(), (Lines{"b=2", "c#3"}));
}

TEST_F(RegistryCopyTest, NothingIsCopiedToAKeyThatIsNotOpen) {
  registry.PutKey(old);
  RegistryKey from(HKEY_CURRENT_USER, "Software\\Old", false);
  RegistryKey to(HKEY_CURRENT_USER, "Software\\Game", false);
  EXPECT_FALSE(to.CopyValues(&from));
  EXPECT_FALSE(to.CopyTree(&from));
}

TEST_F(RegistryCopyTest, CopyOfValuesLeavesSubkeysAlone) {
  registry.PutString(old + "\\sub", "a", "1");
  EXPECT_TRUE(CopyValues());
  EXPECT_EQ(registry.SubkeyNames(game), Lines{});
}

TEST_F(RegistryCopyTest, TheWholeTreeArrives) {
  registry.PutDword(old, "top", 1);
  registry.PutString(old + "\\Devices\\Pad", "name", "Pad");
  registry.PutKey(old + "\\Devices\\Empty");
  registry.PutDword(old + "\\Window", "left", 10);
  registry.PutDword(game + "\\Window", "right", 20);
  EXPECT_TRUE(CopyTree());
  EXPECT_EQ(registry.Number(game, "top"), 1u);
  EXPECT_EQ(registry.SubkeyNames(game), (Lines{"Window", "Devices"}));
  EXPECT_EQ(registry.SubkeyNames(game + "\\Devices"), (Lines{"Pad", "Empty"}));
  EXPECT_EQ(registry.Text(game + "\\Devices\\Pad", "name"), "Pad");
  EXPECT_EQ(registry.ValueNames(game + "\\Window"), (Lines{"right", "left"}));
  EXPECT_EQ(registry.OpenHandles(), 0u);
}

TEST_F(RegistryCopyTest, ValuesOfOtherKindsDoNotArriveAndAreNoFailure) {
  registry.PutString(old, "s", "x");
  registry.PutValue(old, "binary", REG_BINARY, "123");
  registry.PutValue(old + "\\sub", "expand", REG_EXPAND_SZ, std::string("x\0", 2));
  registry.PutValue(old + "\\sub", "wide", platform::REG_QWORD, "12345678");
  EXPECT_TRUE(CopyTree());
  EXPECT_EQ(registry.ValueNames(game), Lines{"s"});
  EXPECT_EQ(registry.ValueNames(game + "\\sub"), Lines{});
  EXPECT_TRUE(registry.HasKey(game + "\\sub"));
}

TEST_F(RegistryCopyTest, AValueLostBehindADroppedOneIsNoFailure) {
  registry.PutValue(old, "b", REG_BINARY, "1");
  registry.PutString(old, "lost", "text");
  registry.PutString(old, "found", "text");
  EXPECT_TRUE(CopyTree());
  EXPECT_EQ(registry.ValueNames(game), Lines{"found"});
}

TEST_F(RegistryCopyTest, FailedValuesEndTheCopyBeforeTheSubkeys) {
  registry.PutDword(old, "a", 1);
  registry.PutDword(old, "b", 2);
  registry.PutDword(old + "\\sub", "c", 3);
  sim.FailNext("RegSetValueExA", 5);
  EXPECT_FALSE(CopyTree());
  EXPECT_EQ(registry.ValueNames(game), Lines{"b"});
  EXPECT_EQ(registry.SubkeyNames(game), Lines{});
}

TEST_F(RegistryCopyTest, AFailedSubkeyIsRememberedAndTheRestArrives) {
  registry.PutDword(old + "\\one", "a", 1);
  registry.PutDword(old + "\\one\\below", "b", 2);
  registry.PutDword(old + "\\two", "c", 3);
  sim.FailNext("RegSetValueExA", 5);
  EXPECT_FALSE(CopyTree());
  EXPECT_EQ(registry.SubkeyNames(game), (Lines{"one", "two"}));
  EXPECT_EQ(registry.SubkeyNames(game + "\\one"), Lines{});
  EXPECT_EQ(registry.Number(game + "\\two", "c"), 3u);
  EXPECT_EQ(registry.OpenHandles(), 0u);
}

TEST_F(RegistryCopyTest, ASubkeyThatCanNotBeOpenedOrMadeIsAFailure) {
  registry.PutDword(old + "\\one", "a", 1);
  registry.PutDword(old + "\\two", "b", 2);
  RegistryKey from(HKEY_CURRENT_USER, "Software\\Old", false);
  RegistryKey to(HKEY_CURRENT_USER, "Software\\Game", true);
  sim.FailNext("RegOpenKeyA", 5);
  EXPECT_FALSE(to.CopyTree(&from));
  EXPECT_EQ(registry.ValueNames(game + "\\one"), Lines{});
  EXPECT_EQ(registry.Number(game + "\\two", "b"), 2u);
  registry.RemoveKey(game + "\\two");
  sim.FailNext("RegCreateKeyA", 5);
  EXPECT_FALSE(to.CopyTree(&from));
  EXPECT_EQ(registry.Number(game + "\\two", "b"), 2u);
}

// A list takes two elements for each entry: its node and the copy.
TEST_F(RegistryCopyTest, WithoutMemoryForTheListsOfAKeyTheCopyFailsAndNothingOldIsLost) {
  registry.PutDword(old, "a", 1);
  registry.PutDword(old, "b", 2);
  registry.PutDword(old + "\\sub", "c", 3);
  for (const std::uint32_t nth : {1u, 2u, 4u, 5u, 6u}) {
    SCOPED_TRACE(nth);
    registry.RemoveKey(game);
    registry.PutDword(game, "kept", 7);
    {
      const FailingAllocation failing(nth, true);
      EXPECT_FALSE(CopyTree());
      EXPECT_GT(failing.Failed(), 0u);
    }
    EXPECT_EQ(registry.Number(game, "kept"), 7u);
    // The values go before the subkeys, and only once all of them are known.
    EXPECT_EQ(registry.ValueNames(game).size(), nth <= 4 ? 1u : 3u);
    EXPECT_EQ(registry.ValueNames(game + "\\sub"), Lines{});
  }
  EXPECT_TRUE(CopyTree());
  EXPECT_EQ(registry.Number(game + "\\sub", "c"), 3u);
}

TEST_F(RegistryCopyTest, TheOrderOfACopy) {
  registry.PutDword(old, "a", 1);
  registry.PutKey(old + "\\sub");
  RegistryKey from(HKEY_CURRENT_USER, "Software\\Old", false);
  RegistryKey to(HKEY_CURRENT_USER, "Software\\Game", true);
  sim.LogCalls(true);
  EXPECT_TRUE(to.CopyTree(&from));
  EXPECT_EQ(sim.Calls(),
            (Lines{"RegEnumValueA " + old + " 0", "RegEnumValueA " + old + " 1",
                   "RegSetValueExA " + game + " a", "RegEnumKeyA " + old + " 0",
                   "RegEnumKeyA " + old + " 1", "RegOpenKeyA " + old + "\\sub",
                   "RegCreateKeyA " + game + "\\sub", "RegEnumValueA " + old + "\\sub 0",
                   "RegEnumKeyA " + old + "\\sub 0", "RegCloseKey " + game + "\\sub",
                   "RegCloseKey " + old + "\\sub"}));
}

}  // namespace
}  // namespace kelvaro
