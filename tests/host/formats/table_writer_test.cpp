// SPDX-License-Identifier: Apache-2.0
#include "host/formats/table_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

using testing::HasSubstr;
using testing::Not;

std::string WrittenTable(const std::vector<std::string>& classes,
                         const vtq::Namespace& repository) {
  OutputToText output;
  TableWriter writer(output.Get());
  WriteInstances(repository, classes, writer);
  return output.Text();
}

TEST(TableWriter, WritesAHeadingAndOneBlockPerInstance) {
  EXPECT_EQ(WrittenTable({"QZMSG_SystemBoard"}, *MakeFixedRepository()),
            "QZMSG_SystemBoard: 1 instance\n"
            "\n"
            "  CreationClassName       = QZMSG_SystemBoard\n"
            "  DeviceID                = SystemBoard1\n"
            "  ElementName             = SystemBoard1\n"
            "  SystemCreationClassName = CIM_ComputerSystem\n"
            "  SystemName              = box\n");
}

TEST(TableWriter, ClassesWithoutInstancesHaveAHeading) {
  EXPECT_EQ(WrittenTable({"QZMSG_PCIDevice", "QZMSG_PCIBridge"}, *MakeEmptyRepository()),
            "QZMSG_PCIDevice: 0 instances\n\nQZMSG_PCIBridge: 0 instances\n");
}

TEST(TableWriter, NumberArraysAreOnOneLine) {
  EXPECT_THAT(WrittenTable({"QZMSG_PCIDevice"}, *MakeFixedRepository()),
              HasSubstr("  MEMAddress              = 4143972352, 3758096384\n"));
}

TEST(TableWriter, TextArraysHaveOneElementPerLine) {
  EXPECT_THAT(WrittenTable({"QZMSG_PCIRawData"}, *MakeFixedRepository()),
              HasSubstr("  RawResult = 00:00.0 \"quoted\" \\ and tabbed\n"
                        "              \n"
                        "              caf\xc3\xa9\n"));
}

TEST(TableWriter, ReplacesUnprintableBytes) {
  const std::string text = WrittenTable({"QZMSG_SystemSlot"}, *MakeFixedRepository());
  EXPECT_THAT(text, HasSubstr("J? a designation"));
  EXPECT_THAT(text, Not(HasSubstr("\x01")));
}

}  // namespace
}  // namespace pciinfo
