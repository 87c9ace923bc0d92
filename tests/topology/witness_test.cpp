// SPDX-License-Identifier: Apache-2.0

// lspci reads the same files: what both tell must be equal.

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>

#include "tests/fakes/run_process.h"
#include "tests/runtime/temporary_directory.h"
#include "tests/topology/captured_trees.h"

namespace {

using nlohmann::json;
using Fields = std::map<std::string, std::string>;
/// Fields by address.
using Machine = std::map<std::string, Fields>;

/// What lspci tells of the files below `root`, in the words of "lspci -vmmnnkD".
Machine ListFunctions(const std::string& root) {
  const RunResult run = RunProcess(
      {"lspci", "-A", "linux-sysfs", "-O", "sysfs.path=" + root + "/sys/bus/pci", "-vmmnnkD"});
  EXPECT_EQ(run.status, 0) << run.err;
  Machine machine;
  std::string address;
  for (const std::string& line : LinesOf(run.out)) {
    const std::size_t tab = line.find('\t');
    if (tab == std::string::npos) continue;
    const std::string key = line.substr(0, tab - 1);
    if (key == "Slot") address = line.substr(tab + 1);
    // Drivers are printed only where the running system has modules, and the physical slot comes
    // from the kernel's slots. The IOMMU group is one of the details.
    if (key != "Driver" && key != "Module" && key != "PhySlot" && key != "IOMMUGroup") {
      machine[address][key] = line.substr(tab + 1);
    }
  }
  for (auto& [slot, fields] : machine) {
    const std::filesystem::path driver = root + "/sys/bus/pci/devices/" + slot + "/driver";
    if (std::filesystem::is_symlink(driver)) {
      fields["Driver"] = std::filesystem::read_symlink(driver).filename();
    }
    if (fields["Class"].ends_with("[0604]")) {
      fields.erase("SVendor");
      fields.erase("SDevice");
    }
  }
  return machine;
}

/// "Ethernet controller [0200]", with the kind of thing where there is no name.
std::string Named(const json& properties, const char* name, const char* kind,
                  const std::string& id) {
  return (properties.contains(name) ? properties.at(name).get<std::string>() : kind) + " [" + id +
         "]";
}

std::string Hex(const json& properties, const char* name, int digits) {
  char text[16];
  std::snprintf(text, sizeof text, "%0*x", digits, properties.at(name).get<unsigned>());
  return text;
}

/// The same fields as lspci tells them.
Fields FieldsOf(const json& properties) {
  Fields fields;
  fields["Slot"] = properties.at("Address");
  fields["Class"] = Named(properties, "ClassName", "Class",
                          Hex(properties, "BaseClass", 2) + Hex(properties, "Subclass", 2));
  fields["Vendor"] = Named(properties, "VendorName", "Vendor", Hex(properties, "VendorID", 4));
  fields["Device"] = Named(properties, "DeviceName", "Device", Hex(properties, "DeviceID", 4));
  const std::string subsystemVendor =
      properties.contains("SubsystemVendorID") ? Hex(properties, "SubsystemVendorID", 4) : "0000";
  // lspci leaves out a subsystem whose vendor nobody filled in, and that of bridges, which stands
  // in a capability.
  const bool isBridge = properties.at("HeaderType") == 1;
  if (!isBridge && subsystemVendor != "0000" && subsystemVendor != "ffff") {
    fields["SVendor"] = Named(properties, "SubsystemVendorName", "Unknown vendor", subsystemVendor);
    fields["SDevice"] =
        Named(properties, "SubsystemName", "Device", Hex(properties, "SubsystemID", 4));
  }
  if (Hex(properties, "Revision", 2) != "00") fields["Rev"] = Hex(properties, "Revision", 2);
  fields["ProgIf"] = Hex(properties, "ProgrammingInterface", 2);
  if (properties.contains("Driver")) fields["Driver"] = properties.at("Driver");
  if (properties.contains("NumaNode")) {
    fields["NUMANode"] = std::to_string(properties.at("NumaNode").get<int>());
  }
  return fields;
}

Machine AskPlugin(const std::string& root) {
  const RunResult run = RunProcess({PCIINFO_PROGRAM, "--root", root, "instances", "VTQ_PCIFunction",
                                    "--only-plugin", TOPOLOGY_PLUGIN, "--format", "json"});
  EXPECT_EQ(run.status, 0) << run.err;
  Machine machine;
  const json instances = json::parse(run.out).at("instances");
  for (const json& instance : instances) {
    Fields fields = FieldsOf(instance.at("properties"));
    const std::string address = fields.at("Slot");
    machine[address] = std::move(fields);
  }
  return machine;
}

void ExpectEqual(const Machine& told, const Machine& listed, const std::string& name) {
  EXPECT_EQ(told.size(), listed.size()) << name;
  for (const auto& [address, fields] : listed) {
    EXPECT_TRUE(told.contains(address) && told.at(address) == fields)
        << name << ": "
        << testing::PrintToString(told.contains(address) ? told.at(address) : Fields()) << "\n"
        << testing::PrintToString(fields);
  }
}

TEST(Witness, LspciTellsTheSameOfAGeneratedServer) {
  const vtq::TemporaryDirectory directory;
  const std::string root = directory / "machine";
  ASSERT_EQ(RunProcess({BENCH_MACHINE, "512", root}).status, 0);
  ExpectEqual(AskPlugin(root), ListFunctions(root), root);
}

#ifdef PCIINFO_MACHINES

TEST(Witness, LspciTellsTheSameOfCapturedMachines) {
  const auto compare = [](const std::string& root) {
    ExpectEqual(AskPlugin(root), ListFunctions(root), root);
    return std::size_t{1};
  };
  EXPECT_GT(CompareCaptures(PCIINFO_MACHINES, compare), 0U) << "no capture has sysfs";
}

#endif

}  // namespace
