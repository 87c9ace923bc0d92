// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include "tests/runtime/failure_of.h"
#include "tests/runtime/plugin_fixture.h"

namespace vtq {
namespace {

using Texts = std::vector<std::string>;

class PluginTest : public PluginFixture {
 protected:
  // The violations, without the name of the plug-in at the beginning of each.
  Texts Violations() const {
    Texts violations;
    for (const std::string& violation : manager_->GetViolations()) {
      const std::size_t end = violation.find(": ");
      EXPECT_TRUE(violation.substr(0, end).ends_with(".pi.so")) << violation;
      violations.push_back(violation.substr(end + 2));
    }
    return violations;
  }

  // The violations after a query of the misbehaving plug-in.
  Texts ViolationsOfQuery(const std::string& misdeed) {
    AskFor(misdeed);
    Plugin& plugin = manager_->Load(FileOf("misbehaving"));
    plugin.Init();
    Query(plugin);
    plugin.DeInit();
    manager_->Unload(plugin);
    return Violations();
  }
};

TEST_F(PluginTest, AQueryBeforeInitIsNoted) {
  AskFor("nothing");
  Query(manager_->Load(FileOf("misbehaving")));
  EXPECT_EQ(Violations(), Texts{"a query came before Init"});
}

TEST_F(PluginTest, AQueryAfterDeInitIsNoted) {
  Plugin& plugin = manager_->Load(FileOf("misbehaving"));
  plugin.Init();
  plugin.DeInit();
  Query(plugin);
  EXPECT_EQ(Violations(), Texts{"a query came after DeInit"});
}

TEST_F(PluginTest, ASecondInitIsNoted) {
  Plugin& plugin = manager_->Load(FileOf("misbehaving"));
  plugin.Init();
  plugin.Init();
  EXPECT_EQ(Violations(), Texts{"Init was called a second time"});
}

TEST_F(PluginTest, ADeInitWithoutInitIsNoted) {
  manager_->Load(FileOf("misbehaving")).DeInit();
  EXPECT_EQ(Violations(), Texts{"DeInit was called without Init"});
}

TEST_F(PluginTest, UnloadingWithoutDeInitIsNotedAndMadeGood) {
  Plugin& plugin = manager_->Load(FileOf("fans"));
  plugin.Init();
  log_.clear();
  manager_->Unload(plugin);
  EXPECT_EQ(Violations(), Texts{"the plug-in was unloaded without DeInit"});
  EXPECT_EQ(log_, (Texts{"DeInit", "PrepareForUnload"}));
}

TEST_F(PluginTest, APluginThatWasNeverInitialisedIsUnloadedWithoutDeInit) {
  Plugin& plugin = manager_->Load(FileOf("fans"));
  log_.clear();
  manager_->Unload(plugin);
  EXPECT_EQ(log_, Texts{"PrepareForUnload"});
  EXPECT_EQ(Violations(), Texts{});
}

TEST_F(PluginTest, AnInitThatThrowsPassesThroughAndIsNotUndone) {
  AskFor("throw in Init");
  Plugin& plugin = manager_->Load(FileOf("misbehaving"));
  EXPECT_THROW(plugin.Init(), std::runtime_error);
  manager_->Unload(plugin);
  EXPECT_EQ(Violations(), Texts{});
}

TEST_F(PluginTest, ADeInitThatThrowsWhileUnloadingIsNotedAndTheLibraryGoes) {
  AskFor("throw in DeInit");
  Plugin& plugin = manager_->Load(FileOf("misbehaving"));
  plugin.Init();
  manager_->Unload(plugin);
  EXPECT_EQ(Violations(), (Texts{"the plug-in was unloaded without DeInit",
                                 "DeInit failed while unloading: cannot stop"}));
  EXPECT_FALSE(IsMapped("misbehaving"));
}

TEST_F(PluginTest, APrepareForUnloadThatThrowsIsNotedAndTheLibraryGoes) {
  AskFor("throw in PrepareForUnload");
  manager_->Unload(manager_->Load(FileOf("misbehaving")));
  EXPECT_EQ(Violations(), Texts{"PrepareForUnload failed: an unknown exception"});
  EXPECT_FALSE(IsMapped("misbehaving"));
}

TEST_F(PluginTest, AGoodQueryIsNotNoted) { EXPECT_EQ(ViolationsOfQuery("nothing"), Texts{}); }

TEST_F(PluginTest, WhatAQueryKeepsIsNoted) {
  EXPECT_EQ(ViolationsOfQuery("keep an instance"),
            Texts{"1 references to instances of ACME_Fan are still held after a query"});
}

TEST_F(PluginTest, AClassThatAQueryKeepsIsNoted) {
  EXPECT_EQ(ViolationsOfQuery("keep a class"),
            Texts{"1 references to the class ACME_Fan are still held after a query"});
}

TEST_F(PluginTest, ANamespaceThatAQueryKeepsIsNoted) {
  EXPECT_EQ(ViolationsOfQuery("keep the namespace"),
            Texts{"1 references to the namespace are still held after a query"});
}

TEST_F(PluginTest, AnInstanceThatAQueryForgetsToCommitIsNoted) {
  EXPECT_EQ(ViolationsOfQuery("keep an uncommitted instance"),
            Texts{"1 instances of ACME_Fan were created, are still held and were not committed"});
}

TEST_F(PluginTest, WhatAQueryThrowsPassesThroughAndWhatItKeptIsNoted) {
  AskFor("keep an instance and throw");
  Plugin& plugin = manager_->Load(FileOf("misbehaving"));
  plugin.Init();
  EXPECT_THROW(Query(plugin), std::runtime_error);
  EXPECT_EQ(Violations(),
            Texts{"1 references to instances of ACME_Fan are still held after a query"});
  EXPECT_EQ(nameSpace_->Find("ACME_Fan")->GetInstances().size(), 1U);
}

TEST_F(PluginTest, WhatTheHostItselfHoldsIsNotThePluginsDoing) {
  AskFor("nothing");
  const auto mine = MakeFan(*nameSpace_, "mine");
  const auto uncommitted = MakeFan(*nameSpace_, "open");
  mine->Commit({});
  Plugin& plugin = manager_->Load(FileOf("misbehaving"));
  plugin.Init();
  Query(plugin);
  EXPECT_EQ(Violations(), Texts{});
}

// A namespace of another implementation, to show that the manager works with it.
class ForeignNamespace final : public NQZMVTQ20::ICIMNamespace {
 public:
  std::string GetName(const NQZMVTQ20::TQualifierMap&) const override { return "root/foreign"; }
  std::shared_ptr<NQZMVTQ20::ICIMClass> GetClass(const std::string&,
                                                 const NQZMVTQ20::TQualifierMap&) override {
    throw NQZMVTQ20::TVTQException("none");
  }
};

TEST_F(PluginTest, AQueryWorksOnANamespaceOfAnotherKind) {
  Plugin& plugin = manager_->Load(FileOf("fans"));
  plugin.Init();
  std::vector<std::shared_ptr<NQZMVTQ20::ICIMClass>> none;
  plugin.GetData(std::make_shared<ForeignNamespace>(), none);
  EXPECT_EQ(log_.back(), "GetData root/foreign");
  EXPECT_EQ(Violations(), Texts{});
}

}  // namespace
}  // namespace vtq
