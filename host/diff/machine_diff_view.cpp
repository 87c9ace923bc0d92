// SPDX-License-Identifier: Apache-2.0
#include "host/diff/machine_diff_view.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <map>
#include <nlohmann/json.hpp>

#include "host/console/text.h"
#include "host/console/utf8.h"
#include "host/diff/function_labels.h"
#include "host/record/machine_json.h"

namespace pciinfo {
namespace {

using OrderedJson = nlohmann::ordered_json;

/// Indexed by ObjectChange::Op.
constexpr char kOpMarks[] = {'+', '-', '~'};

const char* OpName(const ObjectChange& change, const FactChange& fact) {
  if (change.op == ObjectChange::Op::kAdd) return "add";
  if (change.op == ObjectChange::Op::kRemove) return "remove";
  return fact.property == "Slot" ? "move" : "replace";
}

/// The number, if there are several, and what they are: "slot" or "4 functions".
std::string SubjectText(const ObjectChange& change) {
  const std::size_t count = change.functions.size() + change.slots.size();
  return count > 1 ? fmt::format("{} {}s", count, change.subject) : change.subject;
}

/// Writes changes, and says at the end how to see what was cut short.
class ChangeWriter final {
 public:
  ChangeWriter(Output& output, bool hasDomains) : output_(output), hasDomains_(hasDomains) {}

  void Write(const ObjectChange& change) {
    output_.Write(HeadOf(change) + "\n");
    // Only a list of buses is longer, when all cards have other addresses.
    const std::size_t most = change.subject == "buses" ? 8 : change.facts.size();
    for (std::size_t i = 0; i < change.facts.size() && i < most; ++i) {
      output_.Write("    " + Printable(change.facts[i].text) + "\n");
    }
    if (change.facts.size() <= most) return;
    output_.Write(fmt::format("    and {} more\n", change.facts.size() - most));
    isWhole_ = false;
  }

  void End() {
    if (!isWhole_) output_.Write("Lists are cut short; --format json has all of them.\n");
  }

 private:
  std::string HeadOf(const ObjectChange& change) {
    std::string text =
        fmt::format("{} {}", kOpMarks[static_cast<std::size_t>(change.op)], SubjectText(change));
    if (!change.functions.empty()) text += ' ' + Shown(change.functions);
    if (!change.formerFunctions.empty()) {
      text += fmt::format(" (was {})", Shown(change.formerFunctions));
    }
    if (change.label.empty()) return text;
    return text + (change.functions.empty() ? " " : "  ") + Printable(change.label);
  }

  std::string Shown(const std::vector<DomainAddress>& addresses) {
    ShownAddresses shown = ShowAddresses(addresses, hasDomains_);
    isWhole_ = isWhole_ && shown.isWhole;
    return std::move(shown.text);
  }

  Output& output_;
  bool hasDomains_;
  bool isWhole_ = true;
};

OrderedJson Texts(const std::vector<std::string>& texts) {
  OrderedJson array = OrderedJson::array();
  for (const std::string& text : texts) array.push_back(ToUtf8(text));
  return array;
}

OrderedJson Addresses(const std::vector<DomainAddress>& addresses) {
  OrderedJson array = OrderedJson::array();
  for (const DomainAddress& address : addresses) array.push_back(FormatAddress(address));
  return array;
}

OrderedJson ValueJson(const std::optional<std::string>& value) {
  return value ? OrderedJson(ToUtf8(*value)) : OrderedJson(nullptr);
}

OrderedJson ChangeJson(const ObjectChange& change, const FactChange& fact) {
  OrderedJson json = {
      {"op", OpName(change, fact)}, {"subject", change.subject}, {"label", ToUtf8(change.label)}};
  if (!change.functions.empty()) json["functions"] = Addresses(change.functions);
  if (!change.formerFunctions.empty()) json["formerFunctions"] = Addresses(change.formerFunctions);
  if (!change.slots.empty()) json["slots"] = Texts(change.slots);
  if (!fact.property.empty()) {
    json["property"] = fact.property;
    json["old"] = ValueJson(fact.before);
    json["new"] = ValueJson(fact.after);
  }
  json["text"] = ToUtf8(fact.text);
  return json;
}

OrderedJson NotComparedJson(const NotCompared& row) {
  OrderedJson json = {{"unknownIn", row.unknownIn == DiffSideName::kBefore ? "before" : "after"},
                      {"property", ToUtf8(row.property)},
                      {"text", ToUtf8(row.text)}};
  if (!row.because.empty()) json["because"] = ToUtf8(row.because);
  return json;
}

/// What a side does not tell, those with one reason together: "A, B (because)".
std::vector<std::string> UnknownTexts(const MachineDiff& diff, DiffSideName side) {
  std::map<std::string, std::vector<std::string>> byReason;
  for (const NotCompared& row : diff.notCompared) {
    if (row.unknownIn == side) byReason[row.because].push_back(row.text);
  }
  std::vector<std::string> texts;
  for (const auto& [because, parts] : byReason) {
    const std::string text = fmt::format("{}", fmt::join(parts, ", "));
    texts.push_back(because.empty() ? text : fmt::format("{} ({})", text, because));
  }
  return texts;
}

}  // namespace

void WriteMachineDiff(Output& output, const DiffHeading& heading, const MachineDiff& diff,
                      bool hasDomains) {
  if (diff.changes.empty()) {
    output.Write("No differences.\n");
    return;
  }
  output.Write("--- " + Printable(heading.before) + "\n+++ " + Printable(heading.after) + "\n");
  ChangeWriter writer(output, hasDomains);
  for (const ObjectChange& change : diff.changes) writer.Write(change);
  writer.End();
}

void WriteMachineDiffJson(Output& output, const DiffHeading& heading, const MachineDiff& diff) {
  OrderedJson object = {{"before", ToUtf8(heading.before)},
                        {"after", ToUtf8(heading.after)},
                        {"compared", "machines"},
                        {"ignored", heading.ignored},
                        {"notCompared", OrderedJson::array()},
                        {"changes", OrderedJson::array()}};
  for (const NotCompared& row : diff.notCompared) {
    object["notCompared"].push_back(NotComparedJson(row));
  }
  for (const ObjectChange& change : diff.changes) {
    for (const FactChange& fact : change.facts) {
      object["changes"].push_back(ChangeJson(change, fact));
    }
  }
  WriteJsonLines(output, object);
}

std::vector<std::string> NotComparedLines(const DiffHeading& heading, const MachineDiff& diff) {
  std::vector<std::string> lines;
  for (const DiffSideName side : {DiffSideName::kBefore, DiffSideName::kAfter}) {
    const std::vector<std::string> texts = UnknownTexts(diff, side);
    if (texts.empty()) continue;
    lines.push_back(fmt::format("{}: not compared, because this side does not tell it: {}",
                                side == DiffSideName::kBefore ? heading.before : heading.after,
                                fmt::join(texts, "; ")));
  }
  return lines;
}

}  // namespace pciinfo
