// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>

#include "framework/cim_class.h"
#include "framework/cim_instance.h"
#include "framework/exception.h"
#include "framework/plugin_basic_query_callbacks.h"
#include "framework/plugin_callbacks.h"
#include "framework/plugin_manager_namespace.h"
#include "pci/records.h"
#include "runtime/logger.h"
#include "runtime/plugin_manager.h"
#include "runtime/repository.h"
#include "runtime/root.h"
#include "tests/fakes/host_locale.h"
#include "tests/fakes/pci_schema.h"

using NQZMVTQ20::ICIMClass;
using NQZMVTQ20::ILogger;
using NQZMVTQ20::IPluginCallbacks;
using NQZMVTQ20::TPluginManagerNamespace;
using NQZMVTQ20::TQualifierMap;
using NQZMVTQ20::TVTQException;

namespace {

bool IsMapped() {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    if (line.find("libpciinfo.pi.so") != std::string::npos) return true;
  }
  return false;
}

// Refuses every plug-in.
class FullPluginManager final : public TPluginManagerNamespace {
 public:
  void RegisterPlugin(IPluginCallbacks*) override { throw TVTQException("full"); }
  std::string GetName(const TQualifierMap&) const override { return "plugins"; }
  std::shared_ptr<ICIMClass> GetClass(const std::string&, const TQualifierMap&) override {
    throw TVTQException("no classes here");
  }
};

// Throws an object that is not a standard exception.
class RudePluginManager final : public TPluginManagerNamespace {
 public:
  void RegisterPlugin(IPluginCallbacks*) override { throw 1; }
  std::string GetName(const TQualifierMap&) const override { return "plugins"; }
  std::shared_ptr<ICIMClass> GetClass(const std::string&, const TQualifierMap&) override {
    throw TVTQException("no classes here");
  }
};

using SlotTable = std::vector<SlotLocation>;

// The plug-in's table of slots; valid as long as the plug-in is loaded, or being loaded.
SlotTable* TableOfSlots() {
  void* library = dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_NOLOAD);
  EXPECT_NE(library, nullptr) << dlerror();
  auto* table = static_cast<SlotTable*>(dlsym(library, "slotLocationVect"));
  dlclose(library);
  return table;
}

// Asks a plug-in for data as soon as it registers, while its library is still being loaded, and
// notes a slot more than the machine has.
class EagerPluginManager final : public TPluginManagerNamespace {
 public:
  explicit EagerPluginManager(std::shared_ptr<vtq::Namespace> nameSpace)
      : nameSpace_(std::move(nameSpace)) {}

  void RegisterPlugin(IPluginCallbacks* callbacks) override {
    registered = callbacks;
    auto& queries = dynamic_cast<NQZMVTQ20::IPluginBasicQueryCallbacks&>(*callbacks);
    queries.SetProvider(&provider_);
    std::vector<std::shared_ptr<ICIMClass>> classes;
    for (const char* name : {"QZMSG_PCIDevice", "QZMSG_SystemBoard", "QZMSG_PCIRawData"}) {
      classes.push_back(nameSpace_->Find(name));
    }
    queries.GetData(nameSpace_, classes);
    TableOfSlots()->push_back({4711, 0, 0, 0, 0, 0, 0});
  }
  std::string GetName(const TQualifierMap&) const override { return "plugins"; }
  std::shared_ptr<ICIMClass> GetClass(const std::string&, const TQualifierMap&) override {
    throw TVTQException("no classes here");
  }

  IPluginCallbacks* registered = nullptr;

 private:
  std::shared_ptr<vtq::Namespace> nameSpace_;
  NQZMVTQ20::TPluginManagerProvider provider_{"eager"};
};

using Log = std::vector<std::string>;

constexpr const char* kInventory = "3 Entering TPciDevInfo::GetPciInfo routine";

std::ptrdiff_t Count(const Log& log, const std::string& record) {
  return std::count(log.begin(), log.end(), record);
}

Log Texts(const vtq::Class& held, const std::string& property) {
  Log texts;
  for (const auto& instance : held.GetInstances()) {
    texts.emplace_back(instance->GetProperty(property, {}).value.GetString());
  }
  return texts;
}

std::shared_ptr<vtq::Logger> LoggerInto(Log& log) {
  auto logger = std::make_shared<vtq::Logger>();
  logger->AddSink([&log](ILogger::EVTQLogSeverity severity, const std::string& text) {
    log.push_back(std::to_string(static_cast<int>(severity)) + " " + text);
  });
  return logger;
}

std::shared_ptr<vtq::Namespace> MakeNamespace() {
  auto nameSpace = vtq::Namespace::Create("root/cimv2");
  for (vtq::ClassSchema& schema : pciinfo::PciSchema()) nameSpace->Declare(std::move(schema));
  return nameSpace;
}

}  // namespace

class LoadTest : public testing::Test {
 protected:
  LoadTest() { vtq::SetPluginManager(manager); }
  ~LoadTest() override {
    vtq::SetPluginManager(nullptr);
    vtq::SetCoreLogger(nullptr);
  }

  std::shared_ptr<vtq::PluginManager> manager = std::make_shared<vtq::PluginManager>();
};

TEST_F(LoadTest, TenRoundsLeaveNothingBehind) {
  for (int round = 0; round < 10; ++round) {
    vtq::Plugin& plugin = manager->Load(PLUGIN_FILE);
    EXPECT_EQ(plugin.GetType(), 0);
    EXPECT_EQ(plugin.GetName(), "PCI Information Collector");
    EXPECT_EQ(plugin.GetVersion(), "1.0");
    EXPECT_EQ(plugin.GetInterfaceVersion(), "1.0");
    plugin.Init();
    const auto nameSpace = MakeNamespace();
    std::vector<std::shared_ptr<ICIMClass>> classes;
    for (const char* name : {"QZMSG_SystemBoard", "QZMSG_PCIDevice", "QZMSG_PCIBridge"}) {
      classes.push_back(nameSpace->Find(name));
    }
    plugin.GetData(nameSpace, classes);
    EXPECT_EQ(nameSpace->Find("QZMSG_SystemBoard")->GetInstances().size(), 1U);
    plugin.DeInit();
    EXPECT_TRUE(IsMapped());
    manager->Unload(plugin);
    EXPECT_FALSE(IsMapped()) << "round " << round;
  }
  EXPECT_EQ(manager->GetViolations(), std::vector<std::string>());
}

TEST_F(LoadTest, WithoutAPluginManagerItLoadsAndStaysIdle) {
  vtq::SetPluginManager(nullptr);
  for (int round = 0; round < 10; ++round) {
    void* library = dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_EQ(dlclose(library), 0);
    EXPECT_FALSE(IsMapped()) << "round " << round;
  }
}

TEST_F(LoadTest, RefusedRegistrationIsLoggedAndLeavesItIdle) {
  Log log;
  vtq::SetCoreLogger(LoggerInto(log));
  vtq::SetPluginManager(std::make_shared<FullPluginManager>());
  void* library = dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  EXPECT_EQ(log, Log{"0 The plug-in could not register: full"});
  EXPECT_EQ(dlclose(library), 0);
  EXPECT_FALSE(IsMapped());
}

TEST_F(LoadTest, RegistryThatThrowsAnythingLeavesItIdle) {
  Log log;
  vtq::SetCoreLogger(LoggerInto(log));
  vtq::SetPluginManager(std::make_shared<RudePluginManager>());
  void* library = dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  EXPECT_EQ(log, Log{"0 The plug-in could not register: the registry threw something that is no "
                     "standard exception"});
  EXPECT_EQ(dlclose(library), 0);
}

TEST_F(LoadTest, RegistryThatAsksAtOnceGetsTheSameDataAndLog) {
  const auto atOnce = MakeNamespace();
  const auto afterwards = MakeNamespace();
  const auto eager = std::make_shared<EagerPluginManager>(atOnce);
  Log logAtOnce;
  vtq::SetCoreLogger(LoggerInto(logAtOnce));
  vtq::SetPluginManager(eager);
  void* library = dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  ASSERT_NE(eager->registered, nullptr);
  eager->registered->PrepareForUnload();
  ASSERT_EQ(dlclose(library), 0);
  ASSERT_FALSE(IsMapped());

  Log logAfterwards;
  vtq::SetCoreLogger(LoggerInto(logAfterwards));
  vtq::SetPluginManager(manager);
  vtq::Plugin& plugin = manager->Load(PLUGIN_FILE);
  std::vector<std::shared_ptr<ICIMClass>> classes;
  for (const char* name : {"QZMSG_PCIDevice", "QZMSG_SystemBoard", "QZMSG_PCIRawData"}) {
    classes.push_back(afterwards->Find(name));
  }
  plugin.Init();
  logAfterwards.clear();
  plugin.GetData(afterwards, classes);
  EXPECT_EQ(logAtOnce, logAfterwards);
  EXPECT_GT(logAtOnce.size(), 10U);
  for (const auto& served : classes) {
    const std::string name = served->GetName({});
    EXPECT_EQ(atOnce->Find(name)->GetInstances().size(),
              afterwards->Find(name)->GetInstances().size())
        << name;
  }
  EXPECT_EQ(Texts(*atOnce->Find("QZMSG_PCIRawData"), "Command"),
            (Log{"lspci -xxxx", "lspci -vvv"}));
  plugin.DeInit();
}

TEST_F(LoadTest, WhatIsCollectedDuringTheRegistrationIsKept) {
  const auto nameSpace = MakeNamespace();
  const auto eager = std::make_shared<EagerPluginManager>(nameSpace);
  Log log;
  vtq::SetCoreLogger(LoggerInto(log));
  vtq::SetPluginManager(eager);
  void* library = dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  ASSERT_NE(eager->registered, nullptr);
  const SlotTable& slots = *TableOfSlots();
  ASSERT_FALSE(slots.empty());
  EXPECT_EQ(slots.back().tag, 4711);
  EXPECT_EQ(Count(log, kInventory), 1);
  std::vector<std::shared_ptr<ICIMClass>> classes{nameSpace->Find("QZMSG_PCIDevice")};
  dynamic_cast<NQZMVTQ20::IPluginBasicQueryCallbacks&>(*eager->registered)
      .GetData(nameSpace, classes);
  EXPECT_EQ(Count(log, kInventory), 1) << "of the first request";
  EXPECT_EQ(Count(log, "3 Entering GetSlotIDRetrievalType"), 1);
  eager->registered->PrepareForUnload();
  EXPECT_EQ(dlclose(library), 0);
}

TEST_F(LoadTest, HostThatGroupsDigitsBeforeTheFirstNumberIsReadChangesNothing) {
  const GroupingLocale locale(',');
  void* library = dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  auto* read = reinterpret_cast<unsigned (*)(std::string)>(
      dlsym(library,
            "_Z23ExtractDecimalDataToHexIjET_NSt7__cxx1112basic_stringIcSt11char_traitsIcE"
            "SaIcEEE"));
  ASSERT_NE(read, nullptr) << dlerror();
  EXPECT_EQ(read("1,fff"), 1U);
  EXPECT_EQ(read("0X1,fff"), 1U);
  manager->Unload(*manager->GetPlugins()[0]);
  EXPECT_EQ(dlclose(library), 0);
}

TEST_F(LoadTest, RegistersWhenItIsLoadedByHand) {
  void* library = dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  ASSERT_EQ(manager->GetPlugins().size(), 1U);
  EXPECT_EQ(manager->GetPlugins()[0]->GetName(), "PCI Information Collector");
  manager->Unload(*manager->GetPlugins()[0]);
  EXPECT_EQ(dlclose(library), 0);
  EXPECT_FALSE(IsMapped());
}

TEST_F(LoadTest, QueriesOfOneProcessTakeTheInventoryOnce) {
  vtq::Plugin& plugin = manager->Load(PLUGIN_FILE);
  plugin.Init();
  const auto first = MakeNamespace();
  const auto second = MakeNamespace();
  for (const auto& nameSpace : {first, second}) {
    std::vector<std::shared_ptr<ICIMClass>> classes{nameSpace->Find("QZMSG_PCIDevice")};
    plugin.GetData(nameSpace, classes);
  }
  EXPECT_EQ(first->Find("QZMSG_PCIDevice")->GetInstances().size(),
            second->Find("QZMSG_PCIDevice")->GetInstances().size());
  plugin.DeInit();
}
