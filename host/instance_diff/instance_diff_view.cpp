// SPDX-License-Identifier: Apache-2.0
#include "host/instance_diff/instance_diff_view.h"

#include <nlohmann/json.hpp>

#include "host/console/safe_json.h"
#include "host/console/text.h"
#include "host/console/utf8.h"
#include "host/formats/json_text.h"
#include "host/formats/json_writer.h"

namespace pciinfo {
namespace {

using nlohmann::json;

/// Indexed by InstanceChange::Op.
constexpr const char* kOps[] = {"add", "remove", "move", "replace"};
constexpr char kMarks[] = {'+', '-', '~', '~'};

char MarkOf(const InstanceChange& change) { return kMarks[static_cast<std::size_t>(change.op)]; }

bool IsAddOrRemove(const InstanceChange& change) {
  return change.op == InstanceChange::Op::kAdd || change.op == InstanceChange::Op::kRemove;
}

bool AreAboutSameObject(const InstanceChange& left, const InstanceChange& right) {
  return left.subject == right.subject && left.from == right.from && left.to == right.to;
}

class JsonChanges final {
 public:
  explicit JsonChanges(Output& output) : output_(output) {}

  void Write(const InstanceChange& change) {
    isFirst_ = true;
    output_.Write("{");
    Text("op", kOps[static_cast<std::size_t>(change.op)]);
    Text("subject", change.subject);
    Text("label", change.label);
    if (change.from != nullptr) Text("from", change.from->GetPath());
    if (change.to != nullptr) Text("path", change.to->GetPath());
    if (IsAddOrRemove(change)) {
      WriteInstance(change.op == InstanceChange::Op::kAdd ? *change.to : *change.from);
    } else {
      Text("property", change.property);
      Value("old", change.oldValue);
      Value("new", change.newValue);
    }
    Text("text", change.text);
    output_.Write("}");
  }

 private:
  void Name(const char* name) {
    output_.Write(std::string(isFirst_ ? "" : ",") + '"' + name + "\":");
    isFirst_ = false;
  }
  void Text(const char* name, const std::string& text) {
    Name(name);
    WriteJsonString(output_, text);
  }
  void Value(const char* name, const NQZMVTQ20::TCIMValue& value) {
    Name(name);
    value.IsNull() ? output_.Write("null") : WriteJsonValue(output_, value);
  }
  void WriteInstance(const vtq::Instance& instance) {
    const auto cimClass = std::static_pointer_cast<vtq::Class>(instance.GetClass({}));
    JsonObjects objects(output_);
    Name("instance");
    objects.BeginClass(*cimClass);
    objects.Write(*cimClass, instance);
  }

  Output& output_;
  bool isFirst_ = true;
};

}  // namespace

void WriteInstanceDiff(Output& output, const DiffHeading& heading, const InstanceDiff& result) {
  if (result.changes.empty()) {
    output.Write("No differences.\n");
    return;
  }
  output.Write("--- " + Printable(heading.before) + "\n+++ " + Printable(heading.after) + "\n");
  const InstanceChange* last = nullptr;
  for (const InstanceChange& change : result.changes) {
    const bool isNew = last == nullptr || !AreAboutSameObject(*last, change);
    last = &change;
    const std::string head = std::string(1, MarkOf(change)) + ' ' + change.subject + ' ';
    if (isNew) output.Write(TrimEnd(head + change.label) + "\n");
    output.Write("    " + change.text + "\n");
  }
}

void WriteInstanceDiffJson(Output& output, const DiffHeading& heading, const InstanceDiff& result) {
  json head = {{"before", ToUtf8(heading.before)}, {"after", ToUtf8(heading.after)},
               {"compared", "instances"},          {"onlyBefore", result.onlyOld},
               {"onlyAfter", result.onlyNew},      {"ignored", heading.ignored}};
  std::string text = SafeJson(head.dump());
  text.pop_back();
  output.Write(text + ",\"changes\":[");
  JsonChanges changes(output);
  bool isFirst = true;
  for (const InstanceChange& change : result.changes) {
    output.Write(isFirst ? "\n" : ",\n");
    isFirst = false;
    changes.Write(change);
  }
  output.Write(isFirst ? "]}\n" : "\n]}\n");
}

}  // namespace pciinfo
