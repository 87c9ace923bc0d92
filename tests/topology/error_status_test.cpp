// SPDX-License-Identifier: Apache-2.0
#include "topology/error_status.h"

#include <gtest/gtest.h>

#include "tests/topology/config_bytes.h"

namespace topology {
namespace {

using Texts = std::vector<std::string>;

TEST(ErrorStatus, IsInTwoRegisters) {
  const auto status =
      DecodeErrorStatus(Bytes(0x200).Put(0x104, 0x00144000, 4).Put(0x110, 0x2041, 4).Get(), 0x100);
  ASSERT_TRUE(status);
  EXPECT_EQ(UncorrectableNames(status->uncorrectable), (Texts{"CmpltTO", "MalfTLP", "UnsupReq"}));
  EXPECT_EQ(CorrectableNames(status->correctable), (Texts{"RxErr", "BadTLP", "NonFatalErr"}));
}

TEST(ErrorStatus, NamesReservedBitsByTheirNumber) {
  EXPECT_EQ(UncorrectableNames(0x80000012), (Texts{"bit 1", "DLP", "bit 31"}));
  EXPECT_EQ(CorrectableNames(2), (Texts{"bit 1"}));
  EXPECT_TRUE(CorrectableNames(0).empty());
}

TEST(ErrorStatus, OfACapabilityThatIsCutOffIsNotKnown) {
  EXPECT_FALSE(DecodeErrorStatus(Bytes(0x113).Get(), 0x100));
  EXPECT_TRUE(DecodeErrorStatus(Bytes(0x114).Get(), 0x100));
}

}  // namespace
}  // namespace topology
