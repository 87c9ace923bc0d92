// SPDX-License-Identifier: Apache-2.0
#include "host/formats/path_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>

#include "framework/exception.h"
#include "host/formats/value_reader.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMReference;
using NQZMVTQ20::TCIMValue;

class PathParser {
 public:
  PathParser(std::string_view path, const vtq::Namespace& repository)
      : rest_(path), repository_(repository) {}

  TCIMReference Read() {
    const std::string nameSpace = repository_.GetName({});
    Skip("/" + nameSpace + ":");
    const std::shared_ptr<vtq::Class> cimClass = ReadClass();
    TCIMReference::TKeyMap keys;
    for (char separator = '.'; !rest_.empty(); separator = ',') {
      Skip(std::string(1, separator));
      ReadKey(*cimClass, keys);
    }
    CheckKeys(cimClass->GetSchema(), keys);
    return TCIMReference(nameSpace, cimClass->GetSchema().name, keys);
  }

 private:
  void Skip(std::string_view expected) {
    if (!rest_.starts_with(expected)) {
      throw PathError(fmt::format("expected \"{}\" at \"{}\"", expected,
                                  rest_.substr(0, expected.size() + 20)));
    }
    rest_.remove_prefix(expected.size());
  }

  std::string TakeUntil(std::string_view ends) {
    const std::size_t length = std::min(rest_.find_first_of(ends), rest_.size());
    std::string taken(rest_.substr(0, length));
    rest_.remove_prefix(length);
    return taken;
  }

  std::shared_ptr<vtq::Class> ReadClass() {
    const std::string name = TakeUntil(".");
    if (auto cimClass = repository_.Find(name)) return cimClass;
    throw PathError(fmt::format("unknown class \"{}\"", name));
  }

  void ReadKey(const vtq::Class& cimClass, TCIMReference::TKeyMap& keys) {
    const std::string name = TakeUntil("=");
    const std::vector<vtq::PropertySchema>& properties = cimClass.GetSchema().properties;
    const auto property = std::find_if(properties.begin(), properties.end(), [&](const auto& item) {
      return item.isKey && item.name == name;
    });
    if (property == properties.end()) {
      throw PathError(fmt::format("{} has no key \"{}\"", cimClass.GetSchema().name, name));
    }
    Skip("=");
    if (!keys.emplace(name, ReadValue(*property)).second) {
      throw PathError(fmt::format("the key {} occurs twice", name));
    }
  }

  TCIMValue ReadValue(const vtq::PropertySchema& key) {
    using enum TCIMValue::TCIMType::ECIMType;
    switch (key.type.GetCode()) {
      case kString:
        return TCIMValue(TakeQuoted(key.name));
      case kDateTime:
        return ReadDateTime(key);
      case kReference:
        return TCIMValue(ReadPath(TakeQuoted(key.name), repository_));
      default:
        return ReadUnquoted(key, TakeUntil(","));
    }
  }

  TCIMValue ReadDateTime(const vtq::PropertySchema& key) {
    try {
      return TCIMValue::DateTime(TakeQuoted(key.name));
    } catch (const NQZMVTQ20::TVTQException& failure) {
      throw PathError(fmt::format("the key {}: {}", key.name, failure.what()));
    }
  }

  static TCIMValue ReadUnquoted(const vtq::PropertySchema& key, const std::string& text) {
    if (key.type.GetCode() == TCIMValue::TCIMType::kBoolean && (text == "TRUE" || text == "FALSE"))
      return TCIMValue(text == "TRUE");
    if (auto value = IntegerValue(key.type, std::string_view(text))) return *std::move(value);
    throw PathError(
        fmt::format("the key {}: {} is not of type {}", key.name, text, key.type.GetName()));
  }

  std::string TakeQuoted(const std::string& key) {
    Skip("\"");
    std::string text;
    while (!rest_.empty() && rest_.front() != '"') {
      if (rest_.front() == '\\' && rest_.size() > 1) rest_.remove_prefix(1);
      text += rest_.front();
      rest_.remove_prefix(1);
    }
    if (rest_.empty()) throw PathError(fmt::format("the key {} has no closing quote", key));
    rest_.remove_prefix(1);
    return text;
  }

  static void CheckKeys(const vtq::ClassSchema& schema, const TCIMReference::TKeyMap& keys) {
    for (const vtq::PropertySchema& property : schema.properties) {
      if (property.isKey && !keys.contains(property.name)) {
        throw PathError(fmt::format("the key {} of {} is missing", property.name, schema.name));
      }
    }
  }

  std::string_view rest_;
  const vtq::Namespace& repository_;
};

}  // namespace

TCIMReference ReadPath(std::string_view path, const vtq::Namespace& repository) {
  return PathParser(path, repository).Read();
}

}  // namespace pciinfo
