#include "storage/packed_field.h"

#include <gtest/gtest.h>

#include "tests/storage/chunks.h"

namespace kelvaro {
namespace {

TEST(PackedReader, TakesNumbersFromTheFrontMostSignificantByteFirst) {
  PackedReader reader(Bytes(FromHex("01 0203 04050607 08090A0B0C0D0E0F 00 02")));
  EXPECT_EQ(reader.U8(), 0x01);
  EXPECT_EQ(reader.U16(), 0x0203);
  EXPECT_EQ(reader.U32(), 0x04050607u);
  EXPECT_EQ(reader.U64(), 0x08090A0B0C0D0E0Fu);
  EXPECT_FALSE(reader.Flag());
  EXPECT_FALSE(reader.AtEnd());
  EXPECT_TRUE(reader.Flag());
  EXPECT_TRUE(reader.AtEnd());
}

TEST(PackedReader, ANumberCutShortIsASmallerOneAndTheFieldThenExhausted) {
  EXPECT_EQ(PackedReader(Bytes(FromHex("FE"))).U16(), 0xFEu);
  EXPECT_EQ(PackedReader(Bytes(FromHex("010203"))).U32(), 0x010203u);
  PackedReader reader(Bytes(FromHex("F1F2F3F4F5F6F7")));
  EXPECT_EQ(reader.U64(), 0xF1F2F3F4F5F6F7u);
  EXPECT_TRUE(reader.AtEnd());
  EXPECT_EQ(reader.U8(), 0);
  EXPECT_EQ(reader.U16(), 0);
  EXPECT_EQ(reader.U32(), 0u);
  EXPECT_EQ(reader.U64(), 0u);
  EXPECT_FALSE(reader.Flag());
}

TEST(PackedReader, LeavesTheFieldItselfAlone) {
  const ByteString field = Bytes(FromHex("0102"));
  PackedReader(field).U16();
  EXPECT_EQ(field.Length(), 2u);
}

TEST(PackedWriter, PutsNumbersInTheirExactWidthMostSignificantByteFirst) {
  PackedWriter writer;
  writer.U8(0x01).U16(0x0203).U32(0x04050607).U64(0x08090A0B0C0D0E0F).Flag(true).Flag(false);
  EXPECT_EQ(ToHexText(Str(writer.Field())),
            ToHexText(FromHex("0102030405060708090A0B0C0D0E0F 0100")));
  EXPECT_EQ(Str(PackedWriter(4).U32(0xFFFFFFFF).Field()), "\xFF\xFF\xFF\xFF");
  EXPECT_TRUE(PackedWriter(9).Field().IsEmpty());
}

}  // namespace
}  // namespace kelvaro
