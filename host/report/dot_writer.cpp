// SPDX-License-Identifier: Apache-2.0
#include "host/report/dot_writer.h"

#include <fmt/format.h>

#include <cstddef>

#include "host/report/item_title.h"

namespace pciinfo {
namespace {

/// A string of the DOT language: quotes and backslashes are escaped, and the ampersands of what
/// Graphviz would take for entities.
std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char character : text) {
    if (character == '"' || character == '\\') quoted += '\\';
    quoted += character;
    if (character == '&') quoted += "amp;";
  }
  return quoted + '"';
}

std::string LabelOf(const Part& part) {
  std::string label = Quoted(CountedName(part));
  if (part.address.empty()) return label;
  label.pop_back();
  return label + "\\n" + Quoted(part.address).substr(1);
}

const char* StyleOf(PartKind kind) {
  switch (kind) {
    case PartKind::kPort:
      return "shape=ellipse";
    case PartKind::kSwitch:
      return "shape=hexagon";
    case PartKind::kGroup:
      return "shape=plaintext";
    default:
      return "shape=box";
  }
}

std::string EdgeText(const PartLink& link) {
  std::string label = link.isNarrow ? "narrow: " + link.widthText : link.widthText;
  if (!link.speedText.empty()) label += (label.empty() ? "" : ", ") + link.speedText;
  const double thickness = 1 + link.width.value_or(0) / 4.0;
  return fmt::format(" [label={}, penwidth={:.2f}{}]", Quoted(label), thickness,
                     link.isNarrow ? ", style=dashed" : "");
}

class DotWriter final {
 public:
  explicit DotWriter(Output& output) : output_(output) {}

  void Write(const PartGroup& group) {
    Begin(group.note.empty() ? group.title : group.title + ", " + group.note);
    const std::size_t root = AddNode(fmt::format("shape=point, label={}", Quoted(group.title)));
    for (const Part& part : group.parts) WritePart(part, root, std::nullopt);
    output_.Write("}\n");
  }

 private:
  void Begin(const std::string& label) {
    output_.Write(fmt::format("subgraph cluster{} {{\nlabel={};\n", clusters_++, Quoted(label)));
  }

  std::size_t AddNode(const std::string& attributes) {
    output_.Write(fmt::format("n{} [{}];\n", nodes_, attributes));
    return nodes_++;
  }

  void Connect(std::size_t from, std::size_t to, const std::optional<PartLink>& link) {
    output_.Write(fmt::format("n{} -> n{}{};\n", from, to, link ? EdgeText(*link) : ""));
  }

  /// What is behind a part stands in the cluster of its slot, the part itself outside.
  void WritePart(const Part& part, std::size_t parent, const std::optional<PartLink>& link) {
    std::size_t node = parent;
    if (part.kind != PartKind::kSlot) {
      node = AddNode(fmt::format("{}, label={}", StyleOf(part.kind), LabelOf(part)));
      Connect(parent, node, link);
    }
    if (!part.slot.empty()) BeginSlot(part);
    if (!part.slot.empty() && part.behind.empty()) {
      Connect(node, AddNode("shape=plaintext, label=" + Quoted(part.state)), part.link);
    }
    for (const Part& inner : part.behind) WritePart(inner, node, part.link);
    if (!part.slot.empty()) output_.Write("}\n");
  }

  void BeginSlot(const Part& part) {
    Begin(part.remark.empty() ? part.slot : fmt::format("{} ({})", part.slot, part.remark));
    output_.Write(part.isEmpty ? "style=dashed;\n" : "style=solid;\n");
  }

  Output& output_;
  std::size_t nodes_ = 0;
  std::size_t clusters_ = 0;
};

}  // namespace

void WriteDot(Output& output, const std::vector<PartGroup>& groups) {
  output.Write("digraph pci {\nrankdir=LR;\n");
  DotWriter writer(output);
  for (const PartGroup& group : groups) writer.Write(group);
  output.Write("}\n");
}

}  // namespace pciinfo
