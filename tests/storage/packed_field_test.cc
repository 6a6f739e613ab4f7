#include "storage/packed_field.h"

#include <gtest/gtest.h>

#include "tests/storage/chunks.h"

namespace kelvaro {
namespace {

struct Members {
  bool truth = true;
  std::uint8_t flag = 7;
  std::uint16_t word = 0x0203;
  std::uint32_t number = 0x04050607;
  std::int32_t negative = -2;
  std::uint64_t mask = 0x08090A0B0C0D0E0F;
  std::uint8_t bytes[3] = {0x11, 0x12, 0x13};
  Relaxed<std::uint16_t> relaxed{0x2122};
  Relaxed<TriggerItem> input{TriggerItem{8, 2, 0xAAAA}};
};

constexpr char kBytes[] = "01 01 0203 04050607 FFFFFFFE 08090A0B0C0D0E0F 111213 2122 0008 0002";

std::string Written(const Members& m) {
  return Bytes(PackedWriter(m.truth, m.flag, m.word, m.number, m.negative, m.mask, m.bytes,
                            m.relaxed, m.input)
                   .Field());
}

Members ReadFrom(const std::string& bytes) {
  Members m;
  const ByteString field = TextOf(bytes);
  PackedReader(field).Read(m.truth, m.flag, m.word, m.number, m.negative, m.mask, m.bytes,
                           m.relaxed, m.input);
  return m;
}

TEST(PackedWriter, PutsMembersInTheWidthOfTheirTypeMostSignificantByteFirst) {
  EXPECT_EQ(ToHexText(Written({})), ToHexText(FromHex(kBytes)));
}

TEST(PackedReader, TakesWhatAWriterPut) {
  const Members m = ReadFrom(FromHex(kBytes));
  EXPECT_EQ(m.flag, 1) << "a flag is 0 or 1";
  EXPECT_EQ(static_cast<TriggerItem>(m.input).value, offsetof(platform::DIJOYSTATE2, rgdwPOV) + 8);
  EXPECT_EQ(ToHexText(Written(m)), ToHexText(FromHex(kBytes)));
}

TEST(PackedReader, ANumberCutShortIsASmallerOneAndTheRestIsZero) {
  const Members m = ReadFrom(FromHex("02 00 0203 0405"));
  EXPECT_TRUE(m.truth) << "anything but 0";
  EXPECT_EQ(m.flag, 0);
  EXPECT_EQ(m.word, 0x0203);
  EXPECT_EQ(m.number, 0x0405u);
  EXPECT_EQ(m.negative, 0);
  EXPECT_EQ(m.mask, 0u);
  EXPECT_EQ(m.bytes[0], 0);
  EXPECT_EQ(m.relaxed, 0);
  EXPECT_EQ(static_cast<TriggerItem>(m.input).kind, 0);
}

TEST(PackedReader, AMemberThatNeedNotBeThereKeepsItsValue) {
  std::uint8_t first = 1;
  std::uint8_t last = 1;
  PackedReader(TextOf(FromHex("00"))).Read(first, IfThere(last));
  EXPECT_EQ(first, 0);
  EXPECT_EQ(last, 1);
  PackedReader(TextOf(FromHex("0000"))).Read(first, IfThere(last));
  EXPECT_EQ(last, 0);
}

TEST(PackedSize, IsThatOfTheFieldThatIsWritten) {
  const Members m;
  EXPECT_EQ(PackedSize(m.truth, m.flag, m.word, m.number, m.negative, m.mask, m.bytes, m.relaxed,
                       m.input, IfThere(m.flag)),
            FromHex(kBytes).size() + 1);
}

}  // namespace
}  // namespace kelvaro
