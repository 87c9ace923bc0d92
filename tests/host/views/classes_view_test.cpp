// SPDX-License-Identifier: Apache-2.0
#include "host/views/classes_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/collect/session.h"
#include "tests/fakes/pci_schema.h"
#include "tests/host/fixed_repository.h"
#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// Returns what `classes` prints when the plug-in "fixed" and another one are loaded, which serve
/// the given classes of all.
std::string Written(const std::vector<std::string>& fixed, const std::vector<std::string>& other) {
  TroubleReport report(Circumstances{});
  Session session(report, {}, PciSchema());
  const PluginSet plugins{{{FakePluginFile("fixed"), fixed}, {FakePluginFile("untidy"), other}},
                          {PciSchema(), {}}};
  for (const PluginFile& plugin : plugins.plugins) session.Load(plugin);
  OutputToText output;
  WriteClasses(output.Get(), session.GetPlugins(), plugins);
  return output.Text();
}

TEST(ClassesView, ShowsThePluginsWithTheClassesThatTheyServe) {
  const std::string text = Written({"QZMSG_SystemSlot", "QZMSG_SystemBoard"}, {"QZMSG_PCIRawData"});
  EXPECT_THAT(text, StartsWith("Plug-in:           " + FakePluginFile("fixed") +
                               "\n"
                               "Name:              Fake Collector\n"
                               "Version:           4.2\n"
                               "Interface version: 1.0\n"
                               "\n"
                               "Classes:\n"
                               "QZMSG_SystemSlot : CIM_Slot\n"
                               "  A system slot from the firmware's SMBIOS tables.\n"
                               "  Keys: CreationClassName, Tag\n"
                               "QZMSG_SystemBoard : CIM_LogicalDevice\n"));
  EXPECT_THAT(text, HasSubstr("\n\nPlug-in:           " + FakePluginFile("untidy") + "\n"));
  EXPECT_THAT(text, HasSubstr("Interface version: 1.0\n\nClasses:\nQZMSG_PCIRawData\n"));
  EXPECT_THAT(text, HasSubstr("\n\nClasses that every plug-in is asked for (--class-file):\n"
                              "QZMSG_PCIDevice : CIM_PCIDevice\n"));
}

TEST(ClassesView, SaysWhichPluginDeclaresNoClass) {
  EXPECT_THAT(Written({}, {"QZMSG_SystemSlot"}), HasSubstr("\n\nClasses: none of its own\n\n"));
}

}  // namespace
}  // namespace pciinfo
