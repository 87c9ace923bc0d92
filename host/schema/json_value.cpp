// SPDX-License-Identifier: Apache-2.0
#include "host/schema/json_value.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/console/text.h"
#include "host/schema/class_file.h"

namespace pciinfo {
namespace {

using nlohmann::json;
using JsonKind = JsonValue::Kind;

constexpr std::size_t kUsualMembers = 4;
constexpr std::size_t kDeepestNesting = 32;  // values are freed by recursion

/// Makes a value of the events of the library's parser.
class ValueMaker final : public nlohmann::json_sax<json> {
 public:
  explicit ValueMaker(JsonValue& root) : root_(root) {}

  bool null() override { return Add({}); }
  bool boolean(bool flag) override { return Add({JsonKind::kBoolean, flag, ""}); }
  bool number_integer(number_integer_t) override { return Add({JsonKind::kNumber, false, ""}); }
  bool number_unsigned(number_unsigned_t) override { return Add({JsonKind::kNumber, false, ""}); }
  bool number_float(number_float_t, const string_t&) override {
    return Add({JsonKind::kNumber, false, ""});
  }
  bool string(string_t& text) override { return Add({JsonKind::kString, false, text}); }
  bool binary(binary_t&) override { return false; }
  bool start_object(std::size_t) override { return Open(JsonKind::kObject); }
  bool end_object() override { return Close(); }
  bool start_array(std::size_t) override { return Open(JsonKind::kArray); }
  bool end_array() override { return Close(); }

  bool key(string_t& name) override {
    const auto& members = open_.back()->members;
    if (std::any_of(members.begin(), members.end(),
                    [&name](const auto& member) { return member.first == name; })) {
      throw ClassFileError("member \"" + Printable(name) + "\" is there twice in one object");
    }
    key_ = name;
    return true;
  }

  bool parse_error(std::size_t, const std::string&, const json::exception& error) override {
    const std::string reason = error.what();
    throw ClassFileError(reason.substr(reason.find("] ") + 2));
  }

 private:
  bool Add(JsonValue value) {
    Place(std::move(value));
    return true;
  }

  JsonValue& Place(JsonValue value) {
    if (open_.empty()) {
      root_ = std::move(value);
      return root_;
    }
    return open_.back()->members.emplace_back(std::move(key_), std::move(value)).second;
  }

  bool Open(JsonKind kind) {
    if (open_.size() == kDeepestNesting) throw ClassFileError("values are nested too deeply");
    open_.push_back(&Place({kind, false, ""}));
    open_.back()->members.reserve(kUsualMembers);
    return true;
  }

  bool Close() {
    open_.pop_back();
    return true;
  }

  JsonValue& root_;
  std::vector<JsonValue*> open_;  ///< stay in place: only the innermost one gets members
  std::string key_;
};

}  // namespace

const char* JsonValue::KindName() const {
  constexpr const char* kNames[] = {"null", "boolean", "number", "string", "array", "object"};
  return kNames[static_cast<std::size_t>(kind)];
}

JsonValue ParseJson(std::string_view text) {
  JsonValue root;
  ValueMaker maker(root);
  json::sax_parse(text, &maker);
  return root;
}

}  // namespace pciinfo
