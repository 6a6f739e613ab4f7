#include "app/platform/linux/device_identity.h"

#include <gtest/gtest.h>

#include <cstring>

namespace platform {
namespace {

DeviceIds Ids(const char* unique, const char* physical) {
  DeviceIds ids;
  ids.name = "Pad";
  ids.bus = 3;
  ids.vendor = 0x1234;
  ids.product = 0x5678;
  ids.version = 0x0111;
  ids.unique = unique;
  ids.physical = physical;
  return ids;
}

TEST(DeviceIdentity, StartsWithTheNumbersOfTheMake) {
  const GUID identity = DeviceIdentity(Ids("", ""), 0);
  EXPECT_EQ(identity.Data1, 0x00031234u);
  EXPECT_EQ(identity.Data2, 0x5678);
  EXPECT_EQ(identity.Data3, 0x0111);
}

// Profiles keep these bytes: a change here makes every profile forget its device.
TEST(DeviceIdentity, HashIsTheOneThatProfilesKeep) {
  // FNV-1a, 64 bits, of "no" and "pad", by a separate calculation that gives the published
  // 0x85944171f73967e8 for "foobar".
  DeviceIds ids = Ids("", "");
  ids.name = "o";
  const std::uint8_t expected[8] = {0x08, 0xb3, 0x59, 0x07, 0xb5, 0x58, 0x9a, 0xfa};
  EXPECT_EQ(std::memcmp(DeviceIdentity(ids, 0).Data4, expected, 8), 0);
  const std::uint8_t ofPort[8] = {0x77, 0xca, 0x60, 0x19, 0x56, 0x76, 0xad, 0xaa};
  EXPECT_EQ(std::memcmp(DeviceIdentity(Ids("", "ad"), 0).Data4, ofPort, 8), 0);
}

TEST(DeviceIdentity, SerialNumberDecidesAndThePortDoesNot) {
  EXPECT_EQ(DeviceIdentity(Ids("1", "port a"), 0), DeviceIdentity(Ids("1", "port b"), 0));
  EXPECT_NE(DeviceIdentity(Ids("1", "port a"), 0), DeviceIdentity(Ids("2", "port a"), 0));
}

TEST(DeviceIdentity, PortDecidesWhereThereIsNoSerialNumber) {
  EXPECT_EQ(DeviceIdentity(Ids("", "port a"), 0), DeviceIdentity(Ids("", "port a"), 0));
  EXPECT_NE(DeviceIdentity(Ids("", "port a"), 0), DeviceIdentity(Ids("", "port b"), 0));
}

TEST(DeviceIdentity, SerialNumberAndPortOfTheSameTextDiffer) {
  EXPECT_NE(DeviceIdentity(Ids("x", ""), 0), DeviceIdentity(Ids("", "x"), 0));
}

TEST(DeviceIdentity, NameDecidesWhereThereIsNeither) {
  DeviceIds one = Ids("", "");
  DeviceIds other = one;
  other.name = "Other";
  EXPECT_NE(DeviceIdentity(one, 0), DeviceIdentity(other, 0));
  one.unique = other.unique = "1";
  EXPECT_EQ(DeviceIdentity(one, 0), DeviceIdentity(other, 0));
}

TEST(DeviceIdentity, OrdinalsDiffer) {
  const DeviceIds ids = Ids("1", "");
  EXPECT_NE(DeviceIdentity(ids, 0), DeviceIdentity(ids, 1));
  EXPECT_NE(DeviceIdentity(ids, 1), DeviceIdentity(ids, 2));
}

TEST(ProductIdentity, IsThePublishedForm) {
  const GUID identity = ProductIdentity(Ids("1", ""));
  EXPECT_EQ(identity.Data1, 0x56781234u);
  EXPECT_EQ(identity.Data2, 0);
  EXPECT_EQ(identity.Data3, 0);
  EXPECT_EQ(std::memcmp(identity.Data4, "\0\0PIDVID", 8), 0);
}

TEST(IdentityTable, EqualDevicesGetIdentitiesOfTheirOwn) {
  IdentityTable table;
  const DeviceIds ids = Ids("1", "");
  const GUID first = table.Assign("input1", ids);
  const GUID second = table.Assign("input2", ids);
  EXPECT_EQ(first, DeviceIdentity(ids, 0));
  EXPECT_EQ(second, DeviceIdentity(ids, 1));
}

TEST(IdentityTable, ADeviceKeepsItsIdentityWhenAnEqualOneGoes) {
  IdentityTable table;
  const DeviceIds ids = Ids("1", "");
  table.Assign("input1", ids);
  const GUID second = table.Assign("input2", ids);
  table.KeepOnly({"input2"});
  EXPECT_EQ(table.Assign("input2", ids), second);
}

TEST(IdentityTable, OneThatComesBackGetsTheIdentityThatIsFree) {
  IdentityTable table;
  const DeviceIds ids = Ids("1", "");
  const GUID first = table.Assign("input1", ids);
  table.Assign("input2", ids);
  table.KeepOnly({"input2"});
  EXPECT_EQ(table.Assign("input3", ids), first);
}

TEST(IdentityTable, OtherMakesDoNotCount) {
  IdentityTable table;
  table.Assign("input1", Ids("1", ""));
  EXPECT_EQ(table.Assign("input2", Ids("2", "")), DeviceIdentity(Ids("2", ""), 0));
}

}  // namespace
}  // namespace platform
