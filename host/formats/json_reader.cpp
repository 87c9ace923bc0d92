// SPDX-License-Identifier: Apache-2.0
#include "host/formats/json_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "framework/exception.h"
#include "host/console/text.h"
#include "host/formats/path_reader.h"
#include "host/formats/value_reader.h"

namespace pciinfo {
namespace {

using nlohmann::json;
using NQZMVTQ20::TCIMValue;

/// A place in the text, for messages.
class Place {
 public:
  static Place OfDocument(std::size_t index) {
    return Place(fmt::format("instances[{}]", index), ".");
  }
  static Place OfLine(std::size_t number) { return Place(fmt::format("line {}", number), ": "); }

  Place Member(const std::string& name) const { return Place(text_ + separator_ + name, "."); }
  Place Element(std::size_t index) const { return Place(fmt::format("{}[{}]", text_, index), "."); }

  [[noreturn]] void Fail(const std::string& what) const {
    throw JsonInputError(text_ + ": " + what);
  }

 private:
  Place(std::string text, const char* separator) : text_(std::move(text)), separator_(separator) {}

  std::string text_;
  const char* separator_;
};

std::string Shown(const json& value) {
  // Not the content: dumping deeply nested input would exhaust the stack.
  if (value.is_structured()) return std::string("an ") + value.type_name();
  constexpr std::size_t kWidth = 60;
  return Cut(Printable(value.dump()), kWidth);
}

const json& MemberOf(const json& object, const char* name, json::value_t type, const Place& place) {
  const auto member = object.find(name);
  if (member == object.end()) place.Fail(fmt::format("\"{}\" is missing", name));
  if (member->type() != type) {
    place.Member(name).Fail(
        fmt::format("{} is not of type {}", Shown(*member), json(type).type_name()));
  }
  return *member;
}

/// Runs a step of the repository and adds the place to its exceptions.
template <class Step>
auto AtPlace(const Place& place, const Step& step) {
  try {
    return step();
  } catch (const NQZMVTQ20::TVTQException& failure) {
    place.Fail(failure.what());
  } catch (const PathError& failure) {
    place.Fail(failure.what());
  }
}

class Reader {
 public:
  explicit Reader(vtq::Namespace& repository) : repository_(repository) {}

  void Read(const json& object, const Place& place) {
    if (!object.is_object()) place.Fail(Shown(object) + " is not an object");
    const auto& name = TextOf(object, "class", place);
    const std::shared_ptr<vtq::Class> cimClass = repository_.Find(name);
    if (cimClass == nullptr) {
      place.Member("class").Fail(fmt::format("unknown class \"{}\"", Printable(name)));
    }
    const auto instance = std::make_shared<vtq::Instance>(cimClass);
    const json& properties = MemberOf(object, "properties", json::value_t::object, place);
    for (const auto& [property, value] : properties.items()) {
      Set(*cimClass, *instance, property, value, place.Member("properties").Member(property));
    }
    CheckPath(*cimClass, *instance, TextOf(object, "path", place), place.Member("path"));
    instance->Commit({});
  }

 private:
  static const std::string& TextOf(const json& object, const char* name, const Place& place) {
    return MemberOf(object, name, json::value_t::string, place).get_ref<const std::string&>();
  }

  void Set(const vtq::Class& cimClass, vtq::Instance& instance, const std::string& name,
           const json& value, const Place& place) const {
    AtPlace(place, [&] {
      const std::size_t position = cimClass.PositionOf(name);
      const vtq::PropertySchema& property = cimClass.GetSchema().properties[position];
      instance.SetProperty(name, ValueOf(property, value, place), {});
    });
  }

  TCIMValue ValueOf(const vtq::PropertySchema& property, const json& value,
                    const Place& place) const {
    if (!property.isArray) return ScalarOf(property.type, value, place);
    if (!value.is_array()) place.Fail(Shown(value) + " is not an array");
    TCIMValue::TArray elements;
    elements.reserve(value.size());
    for (const json& element : value) {
      elements.push_back(ScalarOf(property.type, element, place.Element(elements.size())));
    }
    const auto count = static_cast<std::uint32_t>(elements.size());
    return TCIMValue(property.type, count, std::move(elements));
  }

  TCIMValue ScalarOf(TCIMValue::TCIMType type, const json& value, const Place& place) const {
    if (value.is_null()) return TCIMValue();
    std::optional<TCIMValue> scalar;
    if (value.is_boolean()) {
      scalar = BooleanOf(type, value.get<bool>());
    } else if (value.is_number()) {
      scalar = NumberOf(type, value);
    } else if (value.is_string()) {
      scalar = TextValueOf(type, value.get_ref<const std::string&>(), place);
    }
    if (!scalar) place.Fail(fmt::format("{} is not of type {}", Shown(value), type.GetName()));
    return *std::move(scalar);
  }

  static std::optional<TCIMValue> BooleanOf(TCIMValue::TCIMType type, bool value) {
    if (type.GetCode() != TCIMValue::TCIMType::kBoolean) return std::nullopt;
    return TCIMValue(value);
  }

  static std::optional<TCIMValue> NumberOf(TCIMValue::TCIMType type, const json& value) {
    using enum TCIMValue::TCIMType::ECIMType;
    if (type.GetCode() == kReal32) return TCIMValue(value.get<float>());
    if (type.GetCode() == kReal64) return TCIMValue(value.get<double>());
    if (value.is_number_unsigned()) return IntegerValue(type, value.get<std::uint64_t>());
    if (value.is_number_integer()) return IntegerValue(type, value.get<std::int64_t>());
    return std::nullopt;
  }

  std::optional<TCIMValue> TextValueOf(TCIMValue::TCIMType type, const std::string& text,
                                       const Place& place) const {
    using enum TCIMValue::TCIMType::ECIMType;
    switch (type.GetCode()) {
      case kString:
        return TCIMValue(text);
      case kDateTime:
        return AtPlace(place, [&] { return TCIMValue::DateTime(text); });
      case kReference:
        return AtPlace(place, [&] { return TCIMValue(ReadPath(text, repository_)); });
      default:
        return std::nullopt;
    }
  }

  static void CheckPath(const vtq::Class& cimClass, const vtq::Instance& instance,
                        const std::string& path, const Place& place) {
    const std::string expected =
        AtPlace(place, [&] { return instance.GetObjectReference({}).ToString(); });
    if (expected != path) place.Fail("does not match the keys; expected " + Printable(expected));
    if (cimClass.Find(path) != nullptr) place.Fail("an earlier instance has the same path");
  }

  vtq::Namespace& repository_;
};

/// The message of a parse error without the prefix that names the library.
std::string ReasonOf(const json::parse_error& error) {
  const std::string text = error.what();
  return text.substr(text.find("] ") + 2);
}

json ParseLine(std::string_view line, std::size_t number) {
  try {
    return json::parse(line);
  } catch (const json::parse_error& error) {
    std::string reason = ReasonOf(error);
    const std::string_view libraryLine = "line 1, ";
    if (const auto place = reason.find(libraryLine); place != std::string::npos) {
      reason.erase(place, libraryLine.size());
    }
    throw JsonInputError(fmt::format("line {}: {}", number, reason));
  }
}

json ParseDocument(std::string_view text) {
  try {
    return json::parse(text);
  } catch (const json::parse_error& error) {
    throw JsonInputError(ReasonOf(error));
  }
}

std::string_view TakeLine(std::string_view& text) {
  const std::size_t length = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, length);
  text.remove_prefix(std::min(length + 1, text.size()));
  return line;
}

bool IsBlank(std::string_view text) {
  return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

/// Whether the first line is a complete instance.
bool IsJsonLines(std::string_view text) {
  const json first = json::parse(TakeLine(text), nullptr, false);
  return first.is_object() && first.contains("class");
}

void ReadLines(std::string_view text, Reader& reader) {
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::string_view line = TakeLine(text);
    if (!IsBlank(line)) reader.Read(ParseLine(line, number), Place::OfLine(number));
  }
}

void ReadDocument(std::string_view text, Reader& reader) {
  const json document = ParseDocument(text);
  const auto instances = document.find("instances");
  if (instances == document.end() || !instances->is_array()) {
    throw JsonInputError(
        "not the output of \"pciinfo instances\": the array \"instances\" is missing");
  }
  for (std::size_t index = 0; index < instances->size(); ++index) {
    reader.Read((*instances)[index], Place::OfDocument(index));
  }
}

}  // namespace

void ReadInstances(std::string_view text, vtq::Namespace& repository) {
  if (IsBlank(text)) throw JsonInputError("the input is empty");
  Reader reader(repository);
  if (IsJsonLines(text)) return ReadLines(text, reader);
  ReadDocument(text, reader);
}

}  // namespace pciinfo
