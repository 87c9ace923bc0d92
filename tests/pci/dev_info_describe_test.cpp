// SPDX-License-Identifier: Apache-2.0
#include <filesystem>
#include <stdexcept>

#include "framework/exception.h"
#include "tests/pci/failing_allocation.h"
#include "tests/pci/pci_fixture.h"

using NQZMVTQ20::TVTQException;

namespace {

using Spawned = std::vector<std::pair<std::string, int>>;

constexpr const char* kListing =
    "00:00.0 Host bridge: Example bridge\n"
    "00:1f.2 SATA controller: Example device\n";

constexpr const char* kProcPci =
    "PCI devices found:\n"
    "  Bus  0, device   0, function  0:\n"
    "    Host bridge: Example bridge (rev 1).\n"
    "  Bus  0, device  31, function  2:\n"
    "    IDE interface: Example controller (rev 2).\n"
    "      IRQ 11.\n";

const std::string kIdeKey = " Bus  0, device  31, function  2";

const std::string kEnteringListing = Entering("GetLspciDeviceDescription");
const std::string kExitingListing = Exiting("GetLspciDeviceDescription");
const std::string kEnteringFile = Entering("GetDeviceDescription");
const std::string kExitingFile = Exiting("GetDeviceDescription");

}  // namespace

class DescribeTest : public PciTest {
 protected:
  void Lspci(const std::string& output) {
    Fake().commands["lspci"] = [output] { return output; };
  }
  std::string InListing(const std::string& key) {
    return Collector().GetLspciDeviceDescription(key);
  }
  std::string InFile(const std::string& key) { return Collector().GetDeviceDescription(key); }
  std::string InFile(const std::string& content, const std::string& key) {
    MachineTree::Write("/proc/pci", content);
    return InFile(key);
  }
};

TEST_F(DescribeTest, TokenizerKeepsNonEmptyPiecesOnly) {
  TPciDevInfo collector = Collector();
  const auto split = [&](std::string text, const char* delimiters) {
    return collector.MultiStringTok(text, delimiters);
  };
  EXPECT_EQ(split("a\t\tb\t", "\t"), (Lines{"a", "b"}));
  EXPECT_EQ(split("", "\t"), Lines{});
  EXPECT_EQ(split("abc", " "), Lines{"abc"});
  EXPECT_EQ(split(", a, b", " ,"), (Lines{"a", "b"}));
}

TEST_F(DescribeTest, TokenizerLeavesItsTextAlone) {
  std::string text = "a\tb";
  Collector().MultiStringTok(text, "\t");
  EXPECT_EQ(text, "a\tb");
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(DescribeTest, ListingTellsTheRestOfTheLineBehindTheKey) {
  Lspci(kListing);
  EXPECT_EQ(InListing("00:1f.2"), "SATA controller: Example device");
  EXPECT_EQ(Fake().log, (Lines{kEnteringListing, kExitingListing}));
  EXPECT_EQ(Fake().spawned, (Spawned{{"lspci", 60}}));
}

TEST_F(DescribeTest, UnknownKeyIsNotInTheListing) {
  Lspci(kListing);
  EXPECT_EQ(InListing("00:1f.3"), "");
  EXPECT_EQ(Fake().log, (Lines{kEnteringListing, kExitingListing}));
}

TEST_F(DescribeTest, LineWithOneCharacterBehindTheKeyIsPassedOver) {
  Lspci("00:1f.2 \n00:1f.2 SATA\n");
  EXPECT_EQ(InListing("00:1f.2"), "SATA");
}

TEST_F(DescribeTest, LineThatEndsWithTheKeyIsPassedOver) {
  Lspci("00:1f.2\n00:1f.2 SATA");
  EXPECT_EQ(InListing("00:1f.2"), "SATA");
}

TEST_F(DescribeTest, ListingRunsOnceForAllCollectors) {
  Lspci(kListing);
  InListing("00:00.0");
  Lspci("00:1f.2 changed\n");
  EXPECT_EQ(InListing("00:1f.2"), "SATA controller: Example device");
  EXPECT_EQ(Fake().spawned.size(), 1U);
}

TEST_F(DescribeTest, FailingListingIsLoggedOnceAndNeverTriedAgain) {
  Fake().commands["lspci"] = []() -> std::string { throw TVTQException("not installed"); };
  EXPECT_EQ(InListing("00:00.0"), "");
  EXPECT_EQ(Fake().log,
            (Lines{kEnteringListing,
                   "2 PCI description spawn encountered an error in lspci: not installed"}));
  Fake().log.clear();
  Lspci(kListing);
  EXPECT_EQ(InListing("00:00.0"), "");
  EXPECT_EQ(Fake().log, Lines{kEnteringListing});
  EXPECT_EQ(Fake().spawned.size(), 1U);
}

TEST_F(DescribeTest, EmptyListingIsLoggedOnceAndNeverTriedAgain) {
  Lspci("");
  EXPECT_EQ(InListing("00:00.0"), "");
  EXPECT_EQ(Fake().log, (Lines{kEnteringListing, "2 PCI description buffer is empty"}));
  Fake().log.clear();
  Lspci(kListing);
  EXPECT_EQ(InListing("00:00.0"), "");
  EXPECT_EQ(Fake().log, Lines{kEnteringListing});
  EXPECT_EQ(Fake().spawned.size(), 1U);
}

TEST_F(DescribeTest, ListingThatFailedInAnyOtherWayCountsAsEmptyNextTime) {
  Fake().commands["lspci"] = []() -> std::string { throw std::runtime_error("broken"); };
  EXPECT_THROW(InListing("00:00.0"), std::runtime_error);
  EXPECT_EQ(Fake().log, Lines{kEnteringListing});
  Fake().log.clear();
  Lspci(kListing);
  EXPECT_EQ(InListing("00:00.0"), "");
  EXPECT_EQ(Fake().log, (Lines{kEnteringListing, "2 PCI description buffer is empty"}));
  EXPECT_EQ(Fake().spawned.size(), 1U);
}

TEST_F(DescribeTest, FileTellsTheLineBehindTheHeaderWithoutLeadingBlanks) {
  EXPECT_EQ(InFile(kProcPci, kIdeKey), "IDE interface: Example controller (rev 2).");
  EXPECT_EQ(Fake().log, (Lines{kEnteringFile, kExitingFile}));
}

TEST_F(DescribeTest, BlanksInsideAndBehindTheDescriptionStay) {
  EXPECT_EQ(InFile(" key:\n   a  b \n", "key"), "a  b ");
}

TEST_F(DescribeTest, OnlyBlanksAreDroppedInFront) {
  EXPECT_EQ(InFile("key:\n \t a\n", "key"), "\t a");
}

TEST_F(DescribeTest, BlankLineBehindTheHeaderIsAnEmptyDescription) {
  EXPECT_EQ(InFile("key:\n    \nkey:\nlater\n", "key"), "");
  EXPECT_EQ(InFile("key:\n\nnot this\n", "key"), "");
  EXPECT_EQ(Fake().log, (Lines{kEnteringFile, kExitingFile, kEnteringFile, kExitingFile}));
}

TEST_F(DescribeTest, HeaderNeedsTheColonRightBehindTheKey) {
  EXPECT_EQ(InFile("key\nno\nkey :\nno\nkey1:\nno\nmy key: x\nyes\n", "key"), "yes");
}

TEST_F(DescribeTest, FirstHeaderWins) {
  EXPECT_EQ(InFile("key:\nfirst\nkey:\nsecond\n", "key"), "first");
}

TEST_F(DescribeTest, UnknownKeyIsNotInTheFile) {
  EXPECT_EQ(InFile(kProcPci, " Bus  1, device  31, function  2"), "");
  EXPECT_EQ(Fake().log, (Lines{kEnteringFile, kExitingFile}));
}

TEST_F(DescribeTest, EmptyFileKnowsNothing) {
  EXPECT_EQ(InFile("", "key"), "");
  EXPECT_EQ(Fake().log, (Lines{kEnteringFile, kExitingFile}));
}

TEST_F(DescribeTest, HeaderInTheLastLineHasNoDescription) {
  EXPECT_EQ(InFile("key:\n", "key"), "");
  EXPECT_EQ(InFile("key:", "key"), "");
}

TEST_F(DescribeTest, LastLineNeedsNoLineEnd) { EXPECT_EQ(InFile("key:\n last", "key"), "last"); }

TEST_F(DescribeTest, DescriptionIsCutAtTheLineBuffersSize) {
  EXPECT_EQ(InFile("key:\n" + std::string(1023, 'a') + "\n", "key"), std::string(1023, 'a'));
  EXPECT_EQ(InFile("key:\n" + std::string(1024, 'a') + "\n", "key"), std::string(1023, 'a'));
}

TEST_F(DescribeTest, LongLineBeforeTheHeaderDoesNotEndTheSearch) {
  EXPECT_EQ(InFile(std::string(5000, 'x') + "\nkey:\nfound\n", "key"), "found");
}

TEST_F(DescribeTest, MissingFileIsLoggedOnceAndNeverTriedAgain) {
  EXPECT_EQ(InFile(kIdeKey), "");
  EXPECT_EQ(Fake().log, (Lines{kEnteringFile, "2 Could not open PCI description file."}));
  Fake().log.clear();
  EXPECT_EQ(InFile(kProcPci, kIdeKey), "");
  EXPECT_EQ(Fake().log, Lines{kEnteringFile});
}

TEST_F(DescribeTest, DirectoryInPlaceOfTheFileKnowsNothing) {
  std::filesystem::create_directories(MachineTree::Real("/proc/pci"));
  EXPECT_EQ(InFile("key"), "");
  EXPECT_EQ(Fake().log, (Lines{kEnteringFile, kExitingFile}));
}

TEST_F(DescribeTest, FileIsReadAgainByEachLookup) {
  EXPECT_EQ(InFile("key:\nfirst\n", "key"), "first");
  EXPECT_EQ(InFile("key:\nsecond\n", "key"), "second");
}

TEST_F(DescribeTest, LackOfMemoryIsAnErrorAndIsForgotten) {
  MachineTree::Write("/proc/pci", kProcPci);
  TPciDevInfo collector = Collector();
  std::string description = "x";
  {
    const FailingAllocation noMemory;
    description = collector.GetDeviceDescription(kIdeKey);
  }
  EXPECT_EQ(description, "");
  EXPECT_EQ(Fake().log, (Lines{kEnteringFile, "0 Could not allocate memory."}));
  EXPECT_EQ(InFile(kIdeKey), "IDE interface: Example controller (rev 2).");
}
