// SPDX-License-Identifier: Apache-2.0
#include "topology/resizable_regions.h"

#include <gtest/gtest.h>

#include "tests/topology/config_bytes.h"

namespace topology {
namespace {

constexpr std::uint64_t kMiB = std::uint64_t{1} << 20;

TEST(ResizableRegions, HaveASizeAndOthersThatTheyCanHave) {
  const auto regions = DecodeResizableRegions(Bytes(0x200)
                                                  .Put(0x104, 0x00000700 << 4, 4)
                                                  .Put(0x108, 0x00000A42, 4)
                                                  .Put(0x10C, 0x00000010, 4)
                                                  .Put(0x110, 0x00010001, 4)
                                                  .Get(),
                                              0x100);
  ASSERT_EQ(regions.size(), 2U);
  EXPECT_EQ(regions[0].number, 2);
  EXPECT_EQ(regions[0].size, 1024 * kMiB);
  EXPECT_EQ(regions[0].sizes, (std::vector<std::uint64_t>{256 * kMiB, 512 * kMiB, 1024 * kMiB}));
  EXPECT_EQ(regions[1].number, 1);
  EXPECT_EQ(regions[1].size, kMiB);
  EXPECT_EQ(regions[1].sizes, (std::vector<std::uint64_t>{kMiB, kMiB << 28}))
      << "the largest sizes stand in the control register";
}

TEST(ResizableRegions, AreSixAtMost) {
  EXPECT_EQ(DecodeResizableRegions(Bytes(0x200).Put(0x108, 0xE0, 4).Get(), 0x100).size(), 6U);
}

TEST(ResizableRegions, EndWithTheBytes) {
  EXPECT_TRUE(DecodeResizableRegions(Bytes(0x10B).Put(0x108, 0x40, 3).Get(), 0x100).empty());
  EXPECT_EQ(DecodeResizableRegions(Bytes(0x113).Put(0x108, 0x40, 4).Get(), 0x100).size(), 1U);
}

TEST(ResizableRegions, OfAReservedSizeHaveNone) {
  const auto regions = DecodeResizableRegions(Bytes(0x200).Put(0x108, 0x3F20, 4).Get(), 0x100);
  ASSERT_EQ(regions.size(), 1U);
  EXPECT_EQ(regions[0].size, 0U);
  EXPECT_TRUE(regions[0].sizes.empty());
}

TEST(ResizableRegions, SizesHaveWords) {
  EXPECT_EQ(SizeText(kMiB), "1 MiB");
  EXPECT_EQ(SizeText(512 * kMiB), "512 MiB");
  EXPECT_EQ(SizeText(kMiB << 14), "16 GiB");
  EXPECT_EQ(SizeText(kMiB << 43), "8 EiB");
}

}  // namespace
}  // namespace topology
