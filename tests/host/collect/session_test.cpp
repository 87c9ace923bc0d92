// SPDX-License-Identifier: Apache-2.0
#include "host/collect/session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "framework/exception.h"
#include "framework/root_object.h"
#include "tests/fakes/pci_schema.h"
#include "tests/host/run_program.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class SessionTest : public testing::Test {
 protected:
  std::size_t Count(const Session& session, const std::string& className) {
    return session.GetRepository().Find(className)->GetInstances().size();
  }

  TroubleReport report_{Circumstances{}};
};

TEST_F(SessionTest, CollectsOnlyTheRequestedClasses) {
  Session session(report_, {}, PciSchema());
  session.Load({FakePluginFile("fixed"), {}});
  session.Collect({"QZMSG_PCIDevice", "QZMSG_SystemSlot"});
  EXPECT_EQ(Count(session, "QZMSG_PCIDevice"), 3U);
  EXPECT_EQ(Count(session, "QZMSG_SystemSlot"), 3U);
  EXPECT_EQ(Count(session, "QZMSG_PCIBridge"), 0U);
  EXPECT_THAT(session.EndPlugins(), IsEmpty());
  EXPECT_FALSE(report_.HasTroubles());
}

TEST_F(SessionTest, TheRepositoryOutlivesThePlugins) {
  Session session(report_, {}, PciSchema());
  session.Load({FakePluginFile("fixed"), {}});
  session.Collect({"QZMSG_PCIRawData"});
  session.EndPlugins();
  EXPECT_THAT(session.GetPlugins().GetPlugins(), IsEmpty());
  const auto& listing = *session.GetRepository().Find("QZMSG_PCIRawData")->GetInstances()[0];
  EXPECT_EQ(listing.GetProperty("RawResult", {}).value.GetArray().size(), 3U);
}

TEST_F(SessionTest, InitComesOnceAndDeInitBeforeUnloading) {
  const vtq::TemporaryDirectory directory;
  {
    Session session(report_, {vtq::MakeFileSink(directory / "log"), {}}, PciSchema());
    session.Load({FakePluginFile("fixed"), {}});
    session.Collect({"QZMSG_SystemBoard", "QZMSG_PCIBridge"});
  }
  EXPECT_THAT(
      LinesOf(directory.Read("log")),
      ElementsAre("3 fake: Init", "3 fake: GetData QZMSG_SystemBoard",
                  "3 fake: GetData QZMSG_PCIBridge", "3 fake: DeInit", "3 fake: PrepareForUnload"));
}

TEST_F(SessionTest, OnlyThePluginThatDeclaresAClassIsAskedForIt) {
  Session session(report_, {}, PciSchema());
  session.Load({FakePluginFile("throwing"), {"QZMSG_SystemSlot"}});
  session.Load({FakePluginFile("fixed"), {"QZMSG_PCIBridge"}});
  session.Collect({"QZMSG_PCIBridge"});
  EXPECT_EQ(Count(session, "QZMSG_PCIBridge"), 2U);
  EXPECT_FALSE(report_.HasTroubles());
}

TEST_F(SessionTest, EveryLoadedPluginIsAskedForAClassThatNoneDeclares) {
  Session session(report_, {}, PciSchema());
  session.Load({FakePluginFile("throwing"), {}});
  session.Load({FakePluginFile("fixed"), {}});
  session.Collect({"QZMSG_PCIBridge"});
  EXPECT_EQ(Count(session, "QZMSG_PCIBridge"), 2U);
  EXPECT_TRUE(report_.HasTroubles());
}

TEST_F(SessionTest, APluginThatCannotBeInitialisedIsAnErrorAndUnloaded) {
  Session session(report_, {}, PciSchema());
  try {
    session.Load({FakePluginFile("uninitialisable"), {}});
    FAIL() << "no error";
  } catch (const NQZMVTQ20::TVTQException& error) {
    EXPECT_THAT(error.what(), HasSubstr("no fuel"));
  }
  EXPECT_THAT(session.GetPlugins().GetPlugins(), SizeIs(0));
}

TEST_F(SessionTest, LeavesNoSingletonBehind) {
  { Session session(report_, {}, PciSchema()); }
  EXPECT_EQ(NQZMVTQ20::TRootObject::GetPluginManager(), nullptr);
}

}  // namespace
}  // namespace pciinfo
