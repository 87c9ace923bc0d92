#include "host/views/classes_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/collect/session.h"
#include "tests/host/fixed_repository.h"
#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST(ClassesView, NamesThePluginsAndTheirClasses) {
  TroubleReport report(true, true);
  Session session(report, {});
  session.Load(FakePluginFile("fixed"));
  OutputToText output;
  WriteClasses(output.Get(), session.GetPlugins(), session.GetRepository());
  const std::string text = output.Text();
  EXPECT_THAT(text, StartsWith("Plug-in:           " + FakePluginFile("fixed") +
                               "\n"
                               "Name:              Fake Collector\n"
                               "Version:           4.2\n"
                               "Interface version: 1.0\n"));
  EXPECT_THAT(text, HasSubstr("QZMSG_SystemSlot : CIM_Slot\n"
                              "  A system slot from the firmware's SMBIOS tables.\n"
                              "  Keys: CreationClassName, Tag\n"));
  EXPECT_THAT(text, HasSubstr("QZMSG_PCIRawData\n"));
}

}  // namespace
}  // namespace pciinfo
