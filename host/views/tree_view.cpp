// SPDX-License-Identifier: Apache-2.0
#include "host/views/tree_view.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "host/console/safe_json.h"
#include "host/console/text.h"
#include "host/views/function_json.h"

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

std::string AddressesText(const BusNode& node) {
  const std::string first = AddressText(node.function);
  return node.alike.empty() ? first : first + " .. " + AddressText(node.alike.back());
}

std::string DescriptionText(const BusNode& node) {
  std::string text = Printable(node.function.description);
  if (text.empty()) text = IdText(node.function);
  return node.alike.empty() ? text : fmt::format("{} x {}", node.alike.size() + 1, text);
}

std::string BusesText(const BridgeBuses& buses) {
  if (buses.secondary == buses.subordinate) return fmt::format("bus {:02x}", buses.secondary);
  return fmt::format("buses {:02x}-{:02x}", buses.secondary, buses.subordinate);
}

class TreeWriter {
 public:
  TreeWriter(Output& output, const Terminal& terminal)
      : output_(output), terminal_(terminal), lines_(terminal.unicode ? kUnicode : kAscii) {}

  void Write(const RootBus& root) {
    const std::string title =
        root.bus ? fmt::format("Bus {:02x}", *root.bus) : "Without an address";
    output_.Write(Coloured(title, Colour::kBold, terminal_) + "\n");
    WriteNodes(root.nodes, "");
  }

 private:
  void WriteNodes(const std::vector<BusNode>& nodes, const std::string& indent) {
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      const bool isLast = i + 1 == nodes.size();
      WriteNode(nodes[i], indent + (isLast ? lines_.last : lines_.branch));
      WriteNodes(nodes[i].behind, indent + (isLast ? lines_.gap : lines_.through));
    }
  }

  void WriteNode(const BusNode& node, const std::string& indent) {
    Begin(indent);
    Add(AddressesText(node), Colour::kCyan);
    if (!node.slot.empty()) Add(" [" + node.slot + "]", Colour::kGreen);
    if (node.buses) Add("  " + BusesText(*node.buses), Colour::kFaint);
    Add("  " + DescriptionText(node), Colour::kNone);
    output_.Write(TrimEnd(line_) + "\n");
  }

  void Begin(const std::string& indent) {
    line_.clear();
    remainingWidth_ = terminal_.width;
    Add(indent, Colour::kNone);
  }

  void Add(std::string text, Colour colour) {
    if (remainingWidth_) {
      text = Cut(text, *remainingWidth_);
      *remainingWidth_ -= DisplayWidth(text);
    }
    line_ += Coloured(text, colour, terminal_);
  }

  Output& output_;
  const Terminal& terminal_;
  const Lines& lines_;
  std::string line_;
  std::optional<std::size_t> remainingWidth_;
};

using Json = nlohmann::ordered_json;

Json NodesJson(const std::vector<BusNode>& nodes);

Json NodeJson(const BusNode& node) {
  Json object = FunctionJson(node.function);
  if (!node.slot.empty()) object["slot"] = node.slot;
  if (node.buses) {
    object["secondaryBus"] = node.buses->secondary;
    object["subordinateBus"] = node.buses->subordinate;
    object["functions"] = NodesJson(node.behind);
  }
  return object;
}

Json NodesJson(const std::vector<BusNode>& nodes) {
  Json array = Json::array();
  for (const BusNode& node : nodes) array.push_back(NodeJson(node));
  return array;
}

}  // namespace

void WriteTree(Output& output, const std::vector<RootBus>& tree, const Terminal& terminal) {
  TreeWriter writer(output, terminal);
  for (const RootBus& root : tree) writer.Write(root);
}

void WriteTreeJson(Output& output, const std::vector<RootBus>& tree) {
  output.Write("{\"buses\":[");
  const char* separator = "\n";
  for (const RootBus& root : tree) {
    Json object = Json::object();
    if (root.bus) object["bus"] = *root.bus;
    object["functions"] = NodesJson(root.nodes);
    output.Write(separator + SafeJson(object.dump()));
    separator = ",\n";
  }
  output.Write("\n]}\n");
}

}  // namespace pciinfo
