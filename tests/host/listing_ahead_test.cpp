#include "host/listing_ahead.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <variant>

#include "host/options.h"
#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

using Words = std::vector<std::string_view>;

class Asking : public testing::TestWithParam<Words> {};

TEST_P(Asking, IsSeen) { EXPECT_TRUE(AsksForFunctions(GetParam())); }

INSTANTIATE_TEST_SUITE_P(
    ListingAhead, Asking,
    testing::Values(Words{}, Words{"--no-pager"}, Words{"--filter=class=02"}, Words{"devices"},
                    Words{"--timeout", "5", "devices"}, Words{"slots", "--format", "json"},
                    Words{"tree", "--all"}, Words{"check"}, Words{"show", "00:1f.2"},
                    Words{"instances"}, Words{"instances", "--format", "jsonl"},
                    Words{"instances", "QZMSG_PCIBridge"}, Words{"instances", "QZMSG_DeviceInSlot"},
                    Words{"instances", "QZMSG_SystemBoard", "QZMSG_PCIDevice"}));

class NotAsking : public testing::TestWithParam<Words> {};

TEST_P(NotAsking, IsSeen) { EXPECT_FALSE(AsksForFunctions(GetParam())); }

INSTANTIATE_TEST_SUITE_P(
    ListingAhead, NotAsking,
    testing::Values(Words{"--help"}, Words{"-h"}, Words{"devices", "--help"}, Words{"--version"},
                    Words{"classes"}, Words{"schema"}, Words{"capture", "devices"},
                    Words{"diff", "live", "devices"}, Words{"devices", "--root", "x"},
                    Words{"devices", "--root=x"}, Words{"--plugin", "x", "devices"},
                    Words{"--memory-limit=300", "devices"}, Words{"instances", "QZMSG_SystemSlot"},
                    Words{"instances", "QZMSG_SystemBoard", "QZMSG_PCIRawData"}, Words{"bogus"}));

/// A command that shows functions and the words that it needs.
TEST(ListingAhead, EveryCommandIsKnown) {
  const std::vector<Words> needed = {{"capture", "x"}, {"diff", "a", "b"}, {"show", "x"}};
  for (const char* const name : {"capture", "check", "classes", "devices", "diff", "instances",
                                 "schema", "show", "slots", "tree"}) {
    const auto found = std::find_if(needed.begin(), needed.end(),
                                    [name](const Words& words) { return words.front() == name; });
    const Words words = found == needed.end() ? Words{name} : *found;
    std::vector<const char*> arguments = {"pciinfo"};
    for (const std::string_view word : words) arguments.push_back(word.data());
    const auto parsed = ParseOptions(static_cast<int>(arguments.size()), arguments.data());
    ASSERT_TRUE(std::holds_alternative<Options>(parsed)) << name;
    const Command command = std::get<Options>(parsed).command;
    const bool showsNone = command == Command::kCapture || command == Command::kClasses ||
                           command == Command::kDiff || command == Command::kSchema;
    EXPECT_EQ(AsksForFunctions(words), !showsNone) << name;
  }
}

}  // namespace
}  // namespace pciinfo
