#include <dlfcn.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "framework/cim_class.h"
#include "host/pci_schema.h"
#include "runtime/plugin_manager.h"
#include "runtime/repository.h"
#include "runtime/root.h"

using NQZMVTQ20::ICIMClass;

namespace {

bool IsMapped() {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    if (line.find("libpciinfo.pi.so") != std::string::npos) return true;
  }
  return false;
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
  ~LoadTest() override { vtq::SetPluginManager(nullptr); }

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
