// SPDX-License-Identifier: Apache-2.0
#include "host/model/link_status.h"

#include <gtest/gtest.h>

#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

std::map<PciAddress, LinkStatus> Links(const std::vector<std::string>& lines,
                                       const char* command = "lspci -vvv") {
  const auto repository = MakeEmptyRepository();
  const auto listing = std::make_shared<vtq::Instance>(repository->Find("QZMSG_PCIRawData"));
  TCIMValue::TArray elements(lines.begin(), lines.end());
  elements.emplace_back();
  const auto count = static_cast<std::uint32_t>(elements.size());
  listing->SetProperty("Command", TCIMValue(command), {});
  listing->SetProperty(
      "RawResult",
      TCIMValue(TCIMValue::TCIMType(TCIMValue::TCIMType::kString), count, std::move(elements)), {});
  listing->Commit({});
  return ReadLinks(*repository);
}

TEST(LinkStatus, IsReadForItsFunction) {
  const auto links = Links({"00:1f.3 Audio", "\tno link", "", "0000:03:00.0 Card",
                            "\t\tLnkCap:\tPort #0, Speed 16GT/s, Width x16", "",
                            "\t\tLnkSta:\tSpeed 8GT/s (downgraded), Width x4 (downgraded)"});
  ASSERT_EQ(links.size(), 1U);
  EXPECT_EQ(links.at({3, 0, 0}).width, 4);
  EXPECT_EQ(links.at({3, 0, 0}).speed, "8GT/s");
}

TEST(LinkStatus, IgnoresOtherDomains) {
  EXPECT_TRUE(Links({"0001:03:00.0 Card", "\tLnkSta: Speed 8GT/s, Width x4"}).empty());
  EXPECT_TRUE(Links({"\tLnkSta: Speed 8GT/s, Width x4"}).empty());
}

TEST(LinkStatus, IgnoresMalformedLines) {
  for (const char* line :
       {"\tLnkSta:", "\tLnkSta: Width xx", "\tLnkSta: Width x99999999999", "\tLnkSta: Width x-4"}) {
    EXPECT_TRUE(Links({"03:00.0 Card", line}).empty()) << line;
  }
  EXPECT_TRUE(Links({"03:00.0 Card", "\tLnkSta: Speed 8GT/s, Width x4"}, "lspci").empty());
}

TEST(LinkStatus, ALinkThatIsDownHasNoLanes) {
  EXPECT_EQ(Links({"03:00.0 Card", "\tLnkSta: Speed unknown, Width x0"}).at({3, 0, 0}).width, 0);
}

TEST(LinkStatus, SpeedsAreNumbers) {
  EXPECT_LT(SpeedNumber("2.5GT/s"), SpeedNumber("16GT/s"));
  EXPECT_EQ(SpeedNumber("unknown"), 0);
}

}  // namespace
}  // namespace pciinfo
