// SPDX-License-Identifier: Apache-2.0
#include "runtime/plugin_manager.h"

#include <dlfcn.h>

#include <filesystem>

#include "framework/exception.h"
#include "framework/plugin_callbacks.h"
#include "framework/root_object.h"
#include "tests/runtime/failure_of.h"
#include "tests/runtime/plugin_fixture.h"
#include "tests/runtime/temporary_directory.h"

namespace vtq {
namespace {

using NQZMVTQ20::TVTQException;
using Texts = std::vector<std::string>;

class PluginManagerTest : public PluginFixture {
 protected:
  Failure FailureOfLoading(const std::string& file) {
    return FailureOf([&] { manager_->Load(file); });
  }
};

TEST_F(PluginManagerTest, LoadsAPluginAndAsksItForItsNames) {
  const Plugin& fans = manager_->Load(FileOf("fans"));
  EXPECT_EQ(fans.GetFile(), FileOf("fans"));
  EXPECT_EQ(fans.GetType(), 0);
  EXPECT_EQ(fans.GetName(), "Fan Collector");
  EXPECT_EQ(fans.GetVersion(), "1.2");
  EXPECT_EQ(fans.GetInterfaceVersion(), "1.0");
}

TEST_F(PluginManagerTest, LeadsAPluginThroughItsLifeInOrder) {
  Plugin& fans = manager_->Load(FileOf("fans"));
  fans.Init();
  Query(fans);
  fans.DeInit();
  manager_->Unload(fans);
  EXPECT_EQ(log_, (Texts{"registered without provider", "Init " + FileOf("fans"),
                         "GetData root/cimv2", "DeInit", "PrepareForUnload"}));
  EXPECT_EQ(nameSpace_->Find("ACME_Fan")->GetInstances().size(), 1U);
  EXPECT_EQ(manager_->GetViolations(), Texts{});
}

TEST_F(PluginManagerTest, LoadingAndUnloadingLeavesNothingBehind) {
  for (int round = 0; round < 10; ++round) {
    Plugin& fans = manager_->Load(FileOf("fans"));
    EXPECT_TRUE(IsMapped("fans"));
    fans.Init();
    Query(fans);
    fans.DeInit();
    manager_->Unload(fans);
    EXPECT_FALSE(IsMapped("fans")) << "round " << round;
    EXPECT_TRUE(manager_->GetPlugins().empty());
    EXPECT_EQ(manager_.use_count(), 2) << "ours and the installed one";
  }
  EXPECT_EQ(log_.size(), 50U);
}

TEST_F(PluginManagerTest, AnEndedPluginIsUnloadedWithTheManagerOnly) {
  Plugin& fans = manager_->Load(FileOf("fans"));
  fans.Init();
  fans.DeInit();
  log_.clear();
  manager_->End(fans);
  EXPECT_EQ(log_, (Texts{"PrepareForUnload"}));
  EXPECT_TRUE(manager_->GetPlugins().empty());
  EXPECT_TRUE(IsMapped("fans"));
  EXPECT_EQ(manager_->GetViolations(), Texts{});
  SetPluginManager(nullptr);
  manager_.reset();
  EXPECT_FALSE(IsMapped("fans"));
  EXPECT_EQ(log_.size(), 1U) << "ended once";
}

TEST_F(PluginManagerTest, PluginsStandSideBySideAndEndInReverseOrder) {
  manager_->Load(FileOf("fans")).Init();
  manager_->Load(FileOf("misbehaving"));
  EXPECT_EQ(manager_->GetPlugins().size(), 2U);
  EXPECT_EQ(manager_->GetPlugins()[1]->GetName(), "Misbehaving");
  log_.clear();
  SetPluginManager(nullptr);
  manager_.reset();
  EXPECT_EQ(log_, (Texts{"DeInit", "PrepareForUnload"}));
  EXPECT_FALSE(IsMapped("fans"));
  EXPECT_FALSE(IsMapped("misbehaving"));
}

TEST_F(PluginManagerTest, UnloadsOneOfSeveral) {
  Plugin& first = manager_->Load(FileOf("fans"));
  manager_->Load(FileOf("misbehaving"));
  manager_->Unload(first);
  EXPECT_FALSE(IsMapped("fans"));
  ASSERT_EQ(manager_->GetPlugins().size(), 1U);
  EXPECT_EQ(manager_->GetPlugins()[0]->GetName(), "Misbehaving");
}

TEST_F(PluginManagerTest, AMissingFileIsNamedWithWhatToDo) {
  const Failure failure = FailureOfLoading("/no/such/fans.pi.so");
  EXPECT_EQ(failure.text,
            "the plug-in /no/such/fans.pi.so cannot be loaded (/no/such/fans.pi.so: cannot open "
            "shared object file: No such file or directory): check that the file and the "
            "libraries it needs are there");
  EXPECT_TRUE(manager_->GetPlugins().empty());
}

TEST_F(PluginManagerTest, AFileThatIsNoLibraryIsRefused) {
  const TemporaryDirectory directory;
  const std::string file = directory.Write("text.pi.so", "no library");
  EXPECT_NE(FailureOfLoading(file).text.find(file), std::string::npos);
}

TEST_F(PluginManagerTest, ALibraryThatRegistersNothingIsRefusedAndUnloaded) {
  EXPECT_EQ(FailureOfLoading(FileOf("silent")).text,
            "the library " + FileOf("silent") +
                " registers no plug-in: give the path of a plug-in (*.pi.so)");
  EXPECT_FALSE(IsMapped("silent"));
  EXPECT_TRUE(manager_->GetPlugins().empty());
}

TEST_F(PluginManagerTest, ALibraryThatRegistersTwoIsRefusedAndBothEnd) {
  EXPECT_EQ(FailureOfLoading(FileOf("twins")).text,
            "the library " + FileOf("twins") +
                " registers 2 plug-ins: build one library for each of them");
  EXPECT_EQ(log_, (Texts{"a twin ends", "a twin ends"}));
  EXPECT_FALSE(IsMapped("twins"));
}

TEST_F(PluginManagerTest, APluginIsLoadedOnceUnderWhateverName) {
  const TemporaryDirectory directory;
  const std::string link = directory.GetPath() + "/link.pi.so";
  std::filesystem::create_symlink(FileOf("fans"), link);
  manager_->Load(FileOf("fans"));
  EXPECT_EQ(FailureOfLoading(FileOf("fans")).text,
            "the plug-in " + FileOf("fans") + " is already loaded: name it only once");
  EXPECT_EQ(FailureOfLoading(link).text,
            "the plug-in " + link + " is already loaded: name it only once");
  ASSERT_EQ(manager_->GetPlugins().size(), 1U);
  manager_->Unload(*manager_->GetPlugins()[0]);
  EXPECT_FALSE(IsMapped("fans"));
}

TEST_F(PluginManagerTest, ANameWithoutASlashIsAFileOfTheCurrentDirectory) {
  const std::filesystem::path old = std::filesystem::current_path();
  std::filesystem::current_path(TEST_PLUGIN_DIRECTORY);
  EXPECT_EQ(manager_->Load("fans.pi.so").GetFile(), "fans.pi.so");
  std::filesystem::current_path(old);
}

TEST_F(PluginManagerTest, AManagerThatIsNotInstalledLoadsNothing) {
  PluginManager other;
  EXPECT_THROW(other.Load(FileOf("fans")), TVTQException);
  EXPECT_FALSE(IsMapped("fans"));
}

TEST_F(PluginManagerTest, APluginOfAnotherManagerIsNotUnloaded) {
  PluginManager other;
  Plugin& fans = manager_->Load(FileOf("fans"));
  EXPECT_THROW(other.Unload(fans), TVTQException);
  EXPECT_TRUE(IsMapped("fans"));
}

TEST_F(PluginManagerTest, APluginThatIsLoadedByNobodyDoesNotRegister) {
  SetPluginManager(nullptr);
  void* library = ::dlopen(FileOf("fans").c_str(), RTLD_NOW | RTLD_LOCAL);
  EXPECT_NE(library, nullptr);
  ::dlclose(library);
  EXPECT_EQ(log_, Texts{});
}

TEST_F(PluginManagerTest, APluginThatIsLoadedByHandJoinsTheOthers) {
  void* library = ::dlopen(FileOf("fans").c_str(), RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr);
  ASSERT_EQ(manager_->GetPlugins().size(), 1U);
  Plugin& fans = *manager_->GetPlugins()[0];
  EXPECT_EQ(fans.GetName(), "Fan Collector");
  EXPECT_EQ(fans.GetFile(), FileOf("fans"));
  fans.Init();
  Query(fans);
  fans.DeInit();
  manager_->Unload(fans);
  EXPECT_EQ(log_, (Texts{"registered without provider", "Init " + FileOf("fans"),
                         "GetData root/cimv2", "DeInit", "PrepareForUnload"}));
  EXPECT_EQ(manager_->GetViolations(), Texts{});
  EXPECT_EQ(::dlclose(library), 0);
  EXPECT_FALSE(IsMapped("fans"));
}

TEST_F(PluginManagerTest, APluginThatWasLoadedByHandStaysUntilItIsUnloaded) {
  void* library = ::dlopen(FileOf("fans").c_str(), RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr);
  EXPECT_EQ(::dlclose(library), 0);
  ASSERT_EQ(manager_->GetPlugins().size(), 1U);
  EXPECT_EQ(manager_->GetPlugins()[0]->GetVersion(), "1.2");
  manager_->Unload(*manager_->GetPlugins()[0]);
  EXPECT_FALSE(IsMapped("fans"));
}

TEST_F(PluginManagerTest, APluginThatWasLoadedByHandIsNotLoadedAgain) {
  void* library = ::dlopen(FileOf("fans").c_str(), RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr);
  EXPECT_EQ(FailureOfLoading(FileOf("fans")).text,
            "the plug-in " + FileOf("fans") + " is already loaded: name it only once");
  EXPECT_EQ(manager_->GetPlugins().size(), 1U);
  EXPECT_EQ(::dlclose(library), 0);
}

TEST_F(PluginManagerTest, APluginOfAnotherInterfaceVersionIsRefusedAndUnloaded) {
  for (const std::string version :
       {"2.0", "0.9", "1.1", "10.0", "1", "1.", ".0", "1.0.0", "1.x", "-1.0", "1.-1", " 1.0", ""}) {
    AskFor("answer interface version " + version);
    EXPECT_EQ(
        FailureOfLoading(FileOf("misbehaving")).text,
        "the plug-in " + FileOf("misbehaving") + " was built for version " + version +
            " of the plug-in interface, which is not compatible with version 1.0 of this program: "
            "build the plug-in for that version");
    EXPECT_FALSE(IsMapped("misbehaving")) << version;
  }
}

TEST_F(PluginManagerTest, APluginOfThisInterfaceVersionIsTaken) {
  AskFor("answer interface version 1.0");
  EXPECT_EQ(manager_->Load(FileOf("misbehaving")).GetInterfaceVersion(), "1.0");
}

TEST_F(PluginManagerTest, APluginOfAnotherInterfaceVersionThatWasLoadedByHandIsNotInitialised) {
  AskFor("answer interface version 2.0");
  void* library = ::dlopen(FileOf("misbehaving").c_str(), RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr);
  ASSERT_EQ(manager_->GetPlugins().size(), 1U);
  EXPECT_THROW(manager_->GetPlugins()[0]->Init(), TVTQException);
  EXPECT_EQ(::dlclose(library), 0);
}

// A plug-in that is part of the test program.
class BuiltIn final : public NQZMVTQ20::IPluginCallbacks {
 public:
  explicit BuiltIn(bool& isAlive) : isAlive_(isAlive) { isAlive_ = true; }
  ~BuiltIn() override { isAlive_ = false; }
  int GetType() override { return 7; }
  std::string GetName() override { return "Built in"; }
  std::string GetVersion() override { return ""; }
  std::string GetInterfaceVersion() override { return ""; }
  void PrepareForUnload() override { delete this; }
  void Init() override {}
  void DeInit() override {}

 private:
  bool& isAlive_;
};

TEST_F(PluginManagerTest, APluginOfTheProgramItselfIsEndedLikeAnyOther) {
  bool isAlive = false;
  manager_->RegisterPlugin(new BuiltIn(isAlive));
  ASSERT_EQ(manager_->GetPlugins().size(), 1U);
  EXPECT_EQ(manager_->GetPlugins()[0]->GetType(), 7);
  EXPECT_TRUE(isAlive);
  manager_->Unload(*manager_->GetPlugins()[0]);
  EXPECT_FALSE(isAlive);
}

TEST_F(PluginManagerTest, ANullPointerIsNoPlugin) {
  EXPECT_THROW(manager_->RegisterPlugin(nullptr), TVTQException);
  EXPECT_TRUE(manager_->GetPlugins().empty());
}

TEST_F(PluginManagerTest, IsANamespaceWithoutClasses) {
  EXPECT_EQ(manager_->GetName({}), "root/plugins");
  EXPECT_THROW((void)manager_->GetClass("ACME_Fan", {}), TVTQException);
}

}  // namespace
}  // namespace vtq
