// SPDX-License-Identifier: Apache-2.0
#include "host/views/tree_view.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

#include "host/console/text.h"
#include "host/console/utf8.h"
#include "host/machine/link_text.h"
#include "host/machine/names.h"
#include "host/record/machine_json.h"
#include "host/views/place_texts.h"

namespace pciinfo {
namespace {

struct Lines {
  const char* branch;
  const char* last;
  const char* through;
  const char* gap;
};

constexpr Lines kUnicode = {"\u251C\u2500 ", "\u2514\u2500 ", "\u2502  ", "   "};
constexpr Lines kAscii = {"|- ", "`- ", "|  ", "   "};

std::string NodeText(const PortNode& node) {
  const std::string text = ModelText(*node.functions.front());
  const std::size_t count = node.functions.size();
  return count == 1 ? text : fmt::format("{} x {}", count, text);
}

std::string BusesText(const BridgeBuses& buses) {
  if (buses.secondary == buses.subordinate) return fmt::format("bus {:02x}", buses.secondary);
  return fmt::format("buses {:02x}-{:02x}", buses.secondary, buses.subordinate);
}

/// The names of the slots that each port leads to, "A" or "A or B".
std::map<std::string, std::string> SlotsAtPorts(const MachineModel& machine) {
  std::map<std::string, std::string> names;
  for (const MachineSlot& slot : machine.slots) {
    if (!slot.IsNamed()) continue;
    for (const std::string& port : slot.ports) {
      std::string& text = names[port];
      text += (text.empty() ? "" : " or ") + NameOf(slot, machine);
    }
  }
  return names;
}

class TreeWriter {
 public:
  TreeWriter(Output& output, const MachineModel& machine, const Terminal& terminal)
      : output_(output),
        machine_(machine),
        terminal_(terminal),
        lines_(terminal.unicode ? kUnicode : kAscii),
        slots_(SlotsAtPorts(machine)) {}

  void Write(const RootBus& root) {
    const std::string domain =
        machine_.HasDomains() ? fmt::format("{:04x}:", root.domain) : std::string();
    output_.Write(
        Coloured(fmt::format("Bus {}{:02x}", domain, root.bus), Colour::kBold, terminal_) + "\n");
    WriteNodes(root.nodes, "");
  }

 private:
  void WriteNodes(const std::vector<PortNode>& nodes, const std::string& indent) {
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      const bool isLast = i + 1 == nodes.size();
      WriteNode(nodes[i], indent + (isLast ? lines_.last : lines_.branch));
      WriteNodes(nodes[i].behind, indent + (isLast ? lines_.gap : lines_.through));
    }
  }

  std::string AddressesText(const PortNode& node) const {
    const bool hasDomains = machine_.HasDomains();
    std::string first = AddressText(node.functions.front()->address, hasDomains);
    if (node.functions.size() == 1) return first;
    return first + " .. " + AddressText(node.functions.back()->address, hasDomains);
  }

  void WriteNode(const PortNode& node, const std::string& indent) {
    const MachineFunction& function = *node.functions.front();
    Begin(indent);
    Add(AddressesText(node), Colour::kCyan);
    const auto slot = slots_.find(FormatAddress(function.address));
    if (slot != slots_.end()) Add(" [" + slot->second + "]", Colour::kGreen);
    if (function.buses) Add("  " + BusesText(*function.buses), Colour::kFaint);
    const std::string narrow = NarrowLinkText(function, machine_);
    if (!narrow.empty()) Add("  link only " + narrow, Colour::kYellow);
    Add("  " + NodeText(node), Colour::kNone);
    output_.Write(TrimEnd(line_) + "\n");
  }

  void Begin(const std::string& indent) {
    line_.clear();
    remainingWidth_ = terminal_.width;
    Add(indent, Colour::kNone);
  }

  void Add(std::string text, Colour colour) {
    if (remainingWidth_) {
      text = CutMiddle(text, *remainingWidth_);
      *remainingWidth_ -= DisplayWidth(text);
    }
    line_ += Coloured(text, colour, terminal_);
  }

  Output& output_;
  const MachineModel& machine_;
  const Terminal& terminal_;
  const Lines& lines_;
  std::map<std::string, std::string> slots_;  ///< by the address of the port
  std::string line_;
  std::optional<std::size_t> remainingWidth_;
};

using SlotNames = std::map<std::string, std::vector<std::string>>;  // by the address of the port

SlotNames SlotNamesAtPorts(const MachineModel& machine) {
  SlotNames names;
  for (const MachineSlot& slot : machine.slots) {
    for (const std::string& port : slot.ports) names[port].push_back(ToUtf8(slot.name));
  }
  return names;
}

nlohmann::ordered_json NodeJson(const PortNode& node, const MachineModel& machine,
                                const SlotNames& slots) {
  const MachineFunction& function = *node.functions.front();
  nlohmann::ordered_json object = FunctionJson(function, machine);
  const auto here = slots.find(FormatAddress(function.address));
  if (here != slots.end()) object["slots"] = here->second;
  const std::string narrow = NarrowLinkText(function, machine);
  if (!narrow.empty()) object["narrowLink"] = narrow;
  if (!function.buses) return object;
  object["functions"] = nlohmann::ordered_json::array();
  for (const PortNode& inner : node.behind)
    object["functions"].push_back(NodeJson(inner, machine, slots));
  return object;
}

}  // namespace

void WriteTree(Output& output, const std::vector<RootBus>& tree, const MachineModel& machine,
               const Terminal& terminal) {
  TreeWriter writer(output, machine, terminal);
  for (const RootBus& root : tree) writer.Write(root);
}

void WriteTreeJson(Output& output, const std::vector<RootBus>& tree, const MachineModel& machine) {
  const SlotNames slots = SlotNamesAtPorts(machine);
  auto buses = nlohmann::ordered_json::array();
  for (const RootBus& root : tree) {
    auto functions = nlohmann::ordered_json::array();
    for (const PortNode& node : root.nodes) functions.push_back(NodeJson(node, machine, slots));
    buses.push_back(
        {{"domain", root.domain}, {"bus", root.bus}, {"functions", std::move(functions)}});
  }
  WriteJsonLines(output, {{"buses", std::move(buses)}});
}

}  // namespace pciinfo
