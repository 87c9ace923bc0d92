// SPDX-License-Identifier: Apache-2.0
#include "runtime/byte_reader.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "tests/runtime/failure_of.h"

namespace vtq {
namespace {

const std::vector<std::uint8_t> kBytes = {0x01, 0x82, 0x03, 0x84, '_', 'S'};
const ByteReader kReader(kBytes);
constexpr std::size_t kHuge = std::numeric_limits<std::size_t>::max();

TEST(ByteReaderTest, ReadsLittleEndianNumbersAtAnyOffset) {
  EXPECT_EQ(kReader.U8(1), 0x82U);
  EXPECT_EQ(kReader.U16(0), 0x8201U);
  EXPECT_EQ(kReader.U16(1), 0x0382U);
  EXPECT_EQ(kReader.U32(0), 0x84038201U);
}

TEST(ByteReaderTest, KnowsWhatItHolds) {
  EXPECT_EQ(kReader.GetSize(), 6U);
  EXPECT_TRUE(kReader.Holds(0, 6));
  EXPECT_TRUE(kReader.Holds(6, 0));
  EXPECT_FALSE(kReader.Holds(0, 7));
  EXPECT_FALSE(kReader.Holds(7, 0));
  EXPECT_FALSE(kReader.Holds(1, kHuge));
  EXPECT_FALSE(kReader.Holds(kHuge, 1));
}

TEST(ByteReaderTest, RecognisesText) {
  EXPECT_TRUE(kReader.HasText(4, "_S"));
  EXPECT_FALSE(kReader.HasText(4, "_SM_"));
  EXPECT_FALSE(kReader.HasText(3, "_S"));
}

TEST(ByteReaderTest, ReachingPastTheEndThrows) {
  EXPECT_EQ(FailureOf([] { (void)kReader.U8(6); }).code, NQZMVTQ20::TVTQStatusCode::kCorruptData);
  EXPECT_THROW((void)kReader.U16(5), NQZMVTQ20::TVTQException);
  EXPECT_THROW((void)kReader.U32(3), NQZMVTQ20::TVTQException);
  EXPECT_THROW((void)kReader.Slice(kHuge, 2), NQZMVTQ20::TVTQException);
}

}  // namespace
}  // namespace vtq
