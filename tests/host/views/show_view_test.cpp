// SPDX-License-Identifier: Apache-2.0
#include "host/views/show_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/fixed_repository.h"
#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

std::vector<std::string> View(const std::string& name) {
  const auto repository = MakeFixedRepository();
  OutputToText output;
  WriteShown(output.Get(), FindNamed(*repository, name), {});
  return LinesOf(output.Text());
}

TEST(ShowView, DescribesAFunctionInWords) {
  EXPECT_THAT(
      View("01:00.0"),
      AllOf(Contains("VGA compatible controller: NVIDIA Corporation GP104"),
            Contains("  Address     01:00.0"), Contains("  Class       Display controller (03)"),
            Contains("  Vendor ID   10de"), Contains("  Revision    a1"),
            Contains("  Slot        PCIEX16_1, Tag 1, slot ID 7"),
            Contains("  Memory      f7000000, e0000000")));
}

TEST(ShowView, SaysThatAFunctionIsOnTheBoard) {
  EXPECT_THAT(View("00:1f.3"), Contains("  Slot        none (on the board)"));
}

TEST(ShowView, DescribesASlotInWords) {
  EXPECT_THAT(View("Tag 1"),
              AllOf(Contains("System slot PCIEX16_1"), Contains("  Type        PCI Express 3 x16"),
                    Contains("  Usage       In use"), Contains("  Width       x16"),
                    Contains("  Hot-plug    no"), Contains("Functions in this slot"),
                    Contains("  01:00.0  VGA compatible controller: NVIDIA Corporation GP104")));
}

TEST(ShowView, SaysThatASlotIsEmpty) {
  EXPECT_THAT(View("Tag 2"), Contains("No functions in this slot"));
}

TEST(ShowView, ListsEveryPropertyThatIsSet) {
  const std::vector<std::string> lines = View("01:00.0");
  EXPECT_THAT(lines, AllOf(Contains("QZMSG_PCIDevice"), Contains(HasSubstr("PciDeviceID")),
                           Contains(HasSubstr("VendorID")), Not(Contains(HasSubstr("IRQ")))));
}

TEST(ShowView, ListsThePropertiesOfOtherInstances) {
  EXPECT_THAT(View("/root/cimv2:QZMSG_PCIRawData.Command=\"lspci -xxxx\""),
              AllOf(Contains("The output of a PCI listing command."), Contains(HasSubstr("caf"))));
}

}  // namespace
}  // namespace pciinfo
