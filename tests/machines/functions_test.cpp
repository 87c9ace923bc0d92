// SPDX-License-Identifier: Apache-2.0
#include <map>
#include <set>

#include "tests/machines/collection.h"
#include "tests/machines/lspci.h"
#include "tests/machines/machine.h"

namespace {

using nlohmann::json;

constexpr unsigned kBridge = 0x06;  // a base class

std::map<std::string, ListedFunction> InDomain0(const std::vector<ListedFunction>& functions) {
  std::map<std::string, ListedFunction> found;
  for (const ListedFunction& function : functions) {
    if (function.domain == 0) found[function.address] = function;
  }
  return found;
}

class FunctionsTest : public MachineTest {
 protected:
  void SetUp() override {
    MachineTest::SetUp();
    collection_ = Collect(GetParam());
    listed_ = ListFunctions();
    domain0_ = InDomain0(listed_);
  }

  // Calls check(instance, function of lspci) for each function that both have.
  template <class Check>
  void ForEach(const std::string& className, const Check& check) const {
    for (const json& instance : collection_.Of(className)) {
      const std::string address = AddressOf(instance);
      SCOPED_TRACE(address);
      const auto listed = domain0_.find(address);
      if (listed != domain0_.end()) check(instance, listed->second);
    }
  }

  template <class Check>
  void ForEach(const Check& check) const {
    ForEach("QZMSG_PCIDevice", check);
    ForEach("QZMSG_PCIBridge", check);
  }

  Collection collection_;
  std::vector<ListedFunction> listed_;
  std::map<std::string, ListedFunction> domain0_;
};
INSTANTIATE_TEST_SUITE_P(Machines, FunctionsTest, testing::ValuesIn(AllMachines()), TestNameOf);

TEST_P(FunctionsTest, AreThoseOfDomain0ThatLspciLists) {
  std::multiset<std::string> collected;
  for (const json& function : collection_.Functions()) collected.insert(AddressOf(function));
  std::multiset<std::string> listed;
  for (const auto& [address, function] : domain0_) listed.insert(address);
  EXPECT_EQ(collected, listed);
}

TEST_P(FunctionsTest, HaveTheNumbersThatLspciPrints) {
  ForEach([](const json& instance, const ListedFunction& listed) {
    const json& properties = instance.at("properties");
    EXPECT_EQ(properties.at("VendorID"), listed.vendor);
    EXPECT_EQ(properties.at("PciDeviceID"), listed.device);
    EXPECT_EQ(properties.at("ClassCode"), listed.classCode >> 8);
    EXPECT_EQ(properties.at("Subclass"), listed.classCode & 0xFF);
    EXPECT_EQ(properties.at("ProgrammingInterface"), listed.progIf);
    EXPECT_EQ(properties.at("Revision"), listed.revision);
  });
}

// lspci does not print a subsystem vendor of 0 or ffff. Bridges have no such property.
TEST_P(FunctionsTest, HaveTheSubsystemThatLspciPrints) {
  ForEach("QZMSG_PCIDevice", [](const json& instance, const ListedFunction& listed) {
    if (!listed.subsystemVendor) return;
    EXPECT_EQ(instance.at("properties").at("SubsystemVendorID"), *listed.subsystemVendor);
    EXPECT_EQ(instance.at("properties").at("SubsystemID"), listed.subsystemDevice.value_or(0));
  });
}

TEST_P(FunctionsTest, AreBridgesByTheirBaseClass) {
  ForEach("QZMSG_PCIBridge", [](const json&, const ListedFunction& listed) {
    EXPECT_EQ(listed.classCode >> 8, kBridge);
  });
  ForEach("QZMSG_PCIDevice", [](const json&, const ListedFunction& listed) {
    EXPECT_NE(listed.classCode >> 8, kBridge);
  });
}

TEST_P(FunctionsTest, AreDescribedAsByLspci) {
  ForEach([](const json& instance, const ListedFunction& listed) {
    EXPECT_EQ(instance.at("properties").at("Description"), listed.description);
  });
}

std::string Mismatch(const char* what, unsigned inConfiguration, unsigned inList) {
  return std::string("2 Configuration ") + what + " id " + std::to_string(inConfiguration) +
         " and devices file " + what + " id " + std::to_string(inList) + " did not match.";
}

// The kernel's list contains no domain, so the plug-in searches a function of another domain by its
// bus number in domain 0. If there is no function, or one of another model, the function is
// missing. If there is one of the same model, both have one instance.
TEST_P(FunctionsTest, InOtherDomainsNeverShowBesideThoseOfDomain0) {
  for (const ListedFunction& function : listed_) {
    if (function.domain == 0) continue;
    SCOPED_TRACE(function.address);
    const auto there = domain0_.find(function.address);
    if (there == domain0_.end()) {
      const std::string file = std::string(function.address).replace(2, 1, "/");
      EXPECT_TRUE(collection_.HasLogged("2 Could not open PCI file./proc/bus/pci/" + file));
    } else if (there->second.vendor != function.vendor) {
      EXPECT_TRUE(collection_.HasLogged(Mismatch("vendor", there->second.vendor, function.vendor)));
    } else if (there->second.device != function.device) {
      EXPECT_TRUE(collection_.HasLogged(Mismatch("device", there->second.device, function.device)));
    } else {
      std::size_t shown = 0;
      for (const json& one : collection_.Functions()) shown += AddressOf(one) == function.address;
      EXPECT_EQ(shown, 1U);
    }
  }
}

}  // namespace
