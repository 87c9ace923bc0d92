// SPDX-License-Identifier: Apache-2.0

// "lspci -vvv" decodes the same registers of the slots' ports: what both tell must be equal.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>

#include "tests/fakes/run_process.h"
#include "tests/runtime/temporary_directory.h"
#include "tests/topology/captured_trees.h"
#include "tests/topology/config_bytes.h"

namespace {

namespace fs = std::filesystem;

using nlohmann::json;

std::string SysfsOf(const std::string& root) { return "sysfs.path=" + root + "/sys/bus/pci"; }

/// What lspci says of each function, by its address.
std::map<std::string, std::string> AskLspci(const std::string& root) {
  const RunResult run =
      RunProcess({"lspci", "-A", "linux-sysfs", "-O", SysfsOf(root), "-vvv", "-n", "-D"});
  EXPECT_EQ(run.status, 0) << run.err;
  std::map<std::string, std::string> all;
  std::string address;
  for (const std::string& line : LinesOf(run.out)) {
    if (!line.empty() && line[0] != '\t') address = line.substr(0, line.find(' '));
    all[address] += line + "\n";
  }
  return all;
}

json AskForSlots(const std::string& root) {
  const RunResult run = RunProcess({PCIINFO_PROGRAM, "--root", root, "instances", "VTQ_PCISlot",
                                    "--only-plugin", TOPOLOGY_PLUGIN, "--format", "json"});
  EXPECT_EQ(run.status, 0) << run.err;
  json slots = json::array();
  const json document = json::parse(run.out);
  for (const json& instance : document.at("instances")) slots.push_back(instance.at("properties"));
  return slots;
}

/// The groups of an expression in what lspci says; none where it does not match.
std::vector<std::string> Find(const std::string& text, const char* expression) {
  std::smatch match;
  if (!std::regex_search(text, match, std::regex(expression))) return {};
  return {match.begin() + 1, match.end()};
}

/// Of the words "On", "Off", "Blink" and "Unknown"; null for the last one.
json IndicatorOf(const std::string& word) {
  static const std::map<std::string, json> words{
      {"On", "on"}, {"Off", "off"}, {"Blink", "blinking"}, {"Unknown", nullptr}};
  return words.at(word);
}

/// The properties that follow from what lspci says of the port.
json PropertiesIn(const std::string& text) {
  const auto equipment = Find(text,
                              "SltCap:\tAttnBtn. PwrCtrl(.) MRL(.) AttnInd(.) PwrInd(.) HotPlug(.) "
                              "Surprise(.)\n\t\t\tSlot #(\\d+),");
  if (equipment.empty()) return {};
  const auto control = Find(text, "Control: AttnInd (\\w+), PwrInd (\\w+), Power(.)");
  const auto status =
      Find(text, "SltSta:\tStatus: AttnBtn. PowerFlt(.) MRL(.) CmdCplt. PresDet(.)");
  json properties{{"PortHotPlug", equipment[4] == "+"},
                  {"PortSurpriseRemoval", equipment[5] == "+"},
                  {"PortCardPresent", status.at(2) == "+"}};
  if (equipment[6] != "0") properties["PhysicalSlotNumber"] = std::stoi(equipment[6]);
  if (equipment[0] == "+") {
    properties["PowerOn"] = control.at(2) == "-";
    properties["PowerFault"] = status.at(0) == "+";
  }
  if (equipment[1] == "+") properties["LatchOpen"] = status.at(1) == "+";
  if (equipment[2] == "+") properties["AttentionIndicator"] = IndicatorOf(control.at(0));
  if (equipment[3] == "+") properties["PowerIndicator"] = IndicatorOf(control.at(1));
  return properties;
}

/// Link properties, in the forms of lspci.
std::string LinkOf(const json& slot, const std::string& which) {
  if (!slot.contains(which + "LinkWidth")) return "none";
  std::string text = slot.value(which + "LinkSpeed", "unknown");
  text = text.substr(0, text.find(' '));
  if (text.ends_with(".0")) text.erase(text.size() - 2);
  return text + " x" + std::to_string(slot.at(which + "LinkWidth").get<int>());
}

std::string LinkIn(const std::string& text, const char* expression) {
  const auto found = Find(text, expression);
  if (found.empty() || found[1] == "0") return "none";
  return (found[0].empty() ? "unknown" : found[0]) + " x" + found[1];
}

void ExpectSameLinks(const json& slot, const std::string& text, const std::string& where) {
  EXPECT_EQ(LinkOf(slot, "Max"),
            LinkIn(text, "LnkCap:\tPort #\\d+, Speed (?:unknown|([0-9.]+)GT/s), Width x(\\d+)"))
      << where;
  if (slot.at("State") == "empty") {
    EXPECT_EQ(LinkOf(slot, ""), "none") << where;
  } else {
    EXPECT_EQ(
        LinkOf(slot, ""),
        LinkIn(text, "LnkSta:\tSpeed (?:unknown|([0-9.]+)GT/s)(?: \\([^)]*\\))?, Width x(\\d+)"))
        << where;
  }
}

/// The number of slots that were compared.
std::size_t CompareSlots(const std::string& root) {
  const auto listed = AskLspci(root);
  std::size_t compared = 0;
  const json slots = AskForSlots(root);
  for (const json& slot : slots) {
    if (!slot.contains("Leads") || slot.at("Leads").size() != 1) continue;
    const auto port = listed.find(slot.at("Leads").at(0).get<std::string>());
    if (port == listed.end()) continue;
    const json expected = PropertiesIn(port->second);
    if (expected.is_null()) continue;
    const std::string where = root + " " + slot.at("Name").get<std::string>();
    for (const char* name :
         {"PortHotPlug", "PortSurpriseRemoval", "PortCardPresent", "PhysicalSlotNumber", "PowerOn",
          "PowerFault", "LatchOpen", "AttentionIndicator", "PowerIndicator"}) {
      EXPECT_EQ(slot.value(name, json()), expected.value(name, json())) << where << " " << name;
    }
    ExpectSameLinks(slot, port->second, where);
    ++compared;
  }
  return compared;
}

/// A machine whose root port has slot registers and leads to a card, or to none.
class MadeSlot {
 public:
  explicit MadeSlot(bool hasCard) {
    topology::Bytes port(256);
    port.Put(0, 0x000C1B36, 4).Put(0x0A, 0x0604, 2).Put(0x0E, 1).Put(0x19, 1).Put(0x1A, 1);
    port.List(0x40).Put(0x40, 0x10).Put(0x42, 0x0142, 2);
    port.Put(0x4C, 0x104, 4).Put(0x52, 0x0083, 2);
    port_ = port;
    if (hasCard) {
      PutFunction("0000:01:00.0", topology::Bytes(256).Put(0, 0x10D38086, 4).Put(0x0A, 0x0200, 2));
    }
  }

  void SetRegisters(unsigned capabilities, unsigned control, unsigned status) {
    port_.Put(0x54, capabilities, 4).Put(0x58, control, 2).Put(0x5A, status, 2);
    PutFunction("0000:00:1c.0", port_);
  }
  void Put(const std::string& path, const std::string& content) {
    const fs::path file = root_ / ("sys/bus/pci/" + path);
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
  }
  std::string GetRoot() const { return root_.GetPath(); }
  json OnlySlot() const { return AskForSlots(GetRoot()).at(0); }

 private:
  void PutFunction(const std::string& address, const topology::Bytes& config) {
    const std::string directory = "devices/" + address + "/";
    Put(directory + "config", config.Text());
    char line[32];
    for (const auto& [name, offset, size] :
         {std::tuple("vendor", 0, 4), std::tuple("device", 2, 4), std::tuple("class", 9, 6)}) {
      unsigned value = 0;
      for (int i = size / 2; i-- > 0;) {
        value = value << 8 |
                static_cast<unsigned char>(config.Text().at(static_cast<std::size_t>(offset + i)));
      }
      std::snprintf(line, sizeof line, "0x%0*x\n", size, value);
      Put(directory + name, line);
    }
    Put(directory + "irq", "0\n");
    Put(directory + "resource", "0x0000000000000000 0x0000000000000000 0x0000000000000000\n");
  }

  vtq::TemporaryDirectory root_;
  topology::Bytes port_{256};
};

// Bits of the slot capabilities: 1 power controller, 2 latch sensor, 3 and 4 indicators, 5
// surprise, 6 hot-plug; from 19 on the number.
TEST(SlotWitness, LspciTellsTheSameOfEverySlotRegister) {
  MadeSlot made(true);
  for (unsigned bit = 0; bit < 7; ++bit) {
    for (unsigned indicator = 0; indicator < 4; ++indicator) {
      made.SetRegisters(9U << 19 | 0x7FU >> bit,
                        indicator << 6 | (3 - indicator) << 8 | (indicator & 1) << 10,
                        indicator == 3 ? 0x62 : 0x20 * bit);
      EXPECT_EQ(CompareSlots(made.GetRoot()), 1U);
    }
  }
}

TEST(SlotWitness, AnEmptySlotHasNoLink) {
  MadeSlot made(false);
  made.SetRegisters(0x60, 0, 0);
  EXPECT_EQ(made.OnlySlot().at("State"), "empty");
  EXPECT_EQ(CompareSlots(made.GetRoot()), 1U);
}

TEST(SlotWitness, TheDriverOfTheSlotIsStrongerThanThePort) {
  MadeSlot made(true);
  made.SetRegisters(0x7F, 0x04C0, 0x0020);
  made.Put("slots/9/address", "0000:01:00\n");
  made.Put("slots/9/power", "1\n");
  made.Put("slots/9/attention", "2\n");
  made.Put("slots/9/adapter", "1\n");
  const json slot = made.OnlySlot();
  EXPECT_EQ(slot.at("Source"), "kernel slot");
  EXPECT_EQ(slot.at("PowerOn"), true);
  EXPECT_EQ(slot.at("AttentionIndicator"), "blinking");
  EXPECT_EQ(slot.at("CardPresent"), true);
  EXPECT_EQ(slot.at("PortCardPresent"), false);
  EXPECT_EQ(slot.at("LatchOpen"), true) << "the driver does not tell it";
  EXPECT_FALSE(slot.contains("Conflicts"));
}

TEST(SlotWitness, AcpiNumbersTheSlotAlsoInACapture) {
  MadeSlot made(true);
  made.SetRegisters(0x60, 0, 0x40);
  made.Put("devices/0000:01:00.0/firmware_node/path", "\\_SB_.PC00.RP01.PXSX\n");
  made.Put("devices/0000:01:00.0/firmware_node/sun", "12\n");
  const vtq::TemporaryDirectory directory;
  const std::string copy = directory / "copy.tar.gz";
  const RunResult run = RunProcess({PCIINFO_PROGRAM, "--root", made.GetRoot(), "capture", copy});
  ASSERT_EQ(run.status, 0) << run.err;
  for (const std::string& root : {made.GetRoot(), copy}) {
    const json slot = AskForSlots(root).at(0);
    EXPECT_EQ(slot.at("Source"), "ACPI") << root;
    EXPECT_EQ(slot.at("Name"), "ACPI slot 12") << root;
    EXPECT_EQ(slot.at("State"), "occupied") << root;
  }
}

#ifdef PCIINFO_MACHINES

TEST(SlotWitness, LspciTellsTheSameOfCapturedMachines) {
  EXPECT_GT(CompareCaptures(PCIINFO_MACHINES, &CompareSlots), 10U);
}

#endif

}  // namespace
