// SPDX-License-Identifier: Apache-2.0
#include "host/schema/class_file.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <limits>
#include <optional>
#include <sstream>
#include <system_error>

#include "host/console/text.h"
#include "host/schema/json_value.h"

namespace pciinfo {
namespace {

using JsonKind = JsonValue::Kind;
using NQZMVTQ20::TCIMValue;
using Names = std::vector<std::string>;
using Members = std::vector<std::pair<std::string, JsonValue>>;

[[noreturn]] void Fail(const std::string& place, const std::string& what) {
  throw ClassFileError(place + ": " + what);
}

/// Where an object stands in the file. Only a message needs the text: a file has hundreds of
/// objects, and all files are read whenever the program starts.
struct Location {
  const Location* parent;
  const char* list;
  std::size_t index;

  /// "classes[0].properties[2]"
  std::string Text() const {
    const std::string text = fmt::format("{}[{}]", list, index);
    return parent == nullptr ? text : parent->Text() + "." + text;
  }
};

/// CIM names are not case-sensitive.
bool IsSameName(const std::string& left, const std::string& right) {
  return std::equal(
      left.begin(), left.end(), right.begin(), right.end(),
      [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
}

bool IsName(const std::string& text) {
  const auto isNameByte = [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; };
  return !text.empty() && std::isdigit(static_cast<unsigned char>(text[0])) == 0 &&
         std::all_of(text.begin(), text.end(), isNameByte);
}

std::optional<TCIMValue::TCIMType> TypeNamed(const std::string& name) {
  using enum TCIMValue::TCIMType::ECIMType;
  for (const auto code : {kBoolean, kUint8, kSint8, kUint16, kSint16, kUint32, kSint32, kUint64,
                          kSint64, kReal32, kReal64, kString, kDateTime, kReference}) {
    const TCIMValue::TCIMType type(code);
    if (name == type.GetName()) return type;
  }
  return std::nullopt;
}

/// Returns the largest value of an unsigned type whose values can have names; nothing for others.
std::optional<unsigned> LargestNamedValue(const TCIMValue::TCIMType& type) {
  using enum TCIMValue::TCIMType::ECIMType;
  switch (type.GetCode()) {
    case kUint8:
      return std::numeric_limits<std::uint8_t>::max();
    case kUint16:
      return std::numeric_limits<std::uint16_t>::max();
    case kUint32:
      return std::numeric_limits<std::uint32_t>::max();
    default:
      return std::nullopt;
  }
}

/// Reads a decimal number as it is usually written ("7", not "07").
std::optional<unsigned> NumberOf(const std::string& text) {
  unsigned number = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, failure] = std::from_chars(text.data(), end, number);
  if (failure != std::errc() || rest != end || std::to_string(number) != text) return std::nullopt;
  return number;
}

/// A JSON object of the file with typed access to its members.
class Object {
 public:
  /// `location` is null for the whole file, and outlives the object.
  Object(const JsonValue& value, const Location* location,
         std::initializer_list<std::string_view> members)
      : value_(value), location_(location) {
    if (value.kind != JsonKind::kObject)
      Fail(Place(), fmt::format("expected an object, found {}", ShownType()));
    for (const auto& [name, ignored] : value.members) {
      if (std::find(members.begin(), members.end(), name) != members.end()) continue;
      Fail(Place(), fmt::format("unknown member \"{}\"; the members are {}", Printable(name),
                                fmt::join(members, ", ")));
    }
  }

  /// For messages.
  std::string Place() const { return location_ == nullptr ? "top level" : location_->Text(); }

  /// Empty if missing.
  std::string Text(const char* name) const {
    const JsonValue* member = Find(name, JsonKind::kString, "a string");
    return member == nullptr ? "" : member->text;
  }

  /// False if missing.
  bool Flag(const char* name) const {
    const JsonValue* member = Find(name, JsonKind::kBoolean, "true or false");
    return member != nullptr && member->flag;
  }

  std::string Name(const char* name) const {
    std::string text = Text(name);
    if (!IsName(text)) {
      Fail(Place() + "." + name, "expected a name of letters, digits and underscores");
    }
    return text;
  }

  /// Empty if missing.
  std::string OptionalName(const char* name) const { return Text(name).empty() ? "" : Name(name); }

  /// Empty if missing.
  const Members& MembersOf(const char* name) const {
    static const Members kNone;
    const JsonValue* member = Find(name, JsonKind::kObject, "an object");
    return member == nullptr ? kNone : member->members;
  }

  /// Empty if missing.
  const Members& Array(const char* name) const {
    static const Members kNone;
    const JsonValue* member = Find(name, JsonKind::kArray, "an array");
    return member == nullptr ? kNone : member->members;
  }

 private:
  std::string ShownType() const { return value_.KindName(); }

  const JsonValue* Find(const char* name, JsonKind kind, const char* needed) const {
    for (const auto& [key, member] : value_.members) {
      if (key != name) continue;
      if (member.kind != kind) {
        Fail(Place() + "." + name, fmt::format("expected {}, found {}", needed, member.KindName()));
      }
      return &member;
    }
    return nullptr;
  }

  const JsonValue& value_;
  const Location* location_;
};

class ClassReader {
 public:
  explicit ClassReader(const Declarations& declared) : files_(declared.files) {
    for (const vtq::ClassSchema& schema : declared.classes) known_.push_back(schema.name);
  }

  ClassFile Read(const JsonValue& document) {
    const Object object(document, nullptr, {"classes", "onRequest"});
    const Members& classes = object.Array("classes");
    if (classes.empty()) Fail("classes", "no class is declared");
    ClassFile file;
    file.onRequest = object.Flag("onRequest");
    for (const auto& [unnamed, element] : classes) {
      file.classes.push_back(ReadClass(element, {nullptr, "classes", file.classes.size()}));
    }
    return file;
  }

 private:
  vtq::ClassSchema ReadClass(const JsonValue& value, const Location& location) {
    const Object object(value, &location, {"name", "superclass", "description", "properties"});
    vtq::ClassSchema schema{
        object.Name("name"), object.OptionalName("superclass"), object.Text("description"), {}};
    RequireNew(schema.name, location);
    known_.push_back(schema.name);  // references of the class may name it
    for (const auto& [unnamed, property] : object.Array("properties")) {
      AddProperty(schema, property, {&location, "properties", schema.properties.size()});
    }
    if (!HasKey(schema)) Fail(object.Place(), "no property is a key; a class needs at least one");
    return schema;
  }

  void RequireNew(const std::string& name, const Location& location) const {
    const std::string* known = Known(name);
    if (known == nullptr) return;
    const auto file = files_.find(*known);
    const std::string advice = file == files_.end()
                                   ? "in this file: remove one of the two declarations"
                                   : "by " + file->second + ": leave out one of the two files";
    Fail(location.Text() + ".name",
         fmt::format("class \"{}\" is already declared {}", name, advice));
  }

  void AddProperty(vtq::ClassSchema& schema, const JsonValue& value,
                   const Location& location) const {
    const Object object(value, &location,
                        {"name", "type", "array", "key", "description", "values", "override",
                         "targets", "commonTarget"});
    vtq::PropertySchema property{object.Name("name"),   TypeOf(object),
                                 object.Flag("array"),  object.Flag("key"),
                                 TargetsOf(object),     object.Text("description"),
                                 ValuesOf(object),      object.OptionalName("override"),
                                 CommonTargetOf(object)};
    for (const vtq::PropertySchema& other : schema.properties) {
      if (IsSameName(other.name, property.name)) {
        Fail(object.Place() + ".name",
             fmt::format("property \"{}\" is already declared", other.name));
      }
    }
    if (property.isKey && property.isArray) Fail(object.Place(), "an array cannot be a key");
    schema.properties.push_back(std::move(property));
  }

  static TCIMValue::TCIMType TypeOf(const Object& object) {
    if (const auto type = TypeNamed(object.Text("type"))) return *type;
    Fail(object.Place() + ".type",
         "expected a type: boolean, uint8 to uint64, sint8 to sint64, real32, real64, string, "
         "datetime or reference");
  }

  static std::vector<vtq::NamedValue> ValuesOf(const Object& object) {
    std::vector<vtq::NamedValue> values;
    if (object.MembersOf("values").empty()) return values;
    const std::string place = object.Place() + ".values";
    const auto largest = LargestNamedValue(TypeOf(object));
    if (!largest) Fail(place, "only properties of type uint8, uint16 or uint32 have \"values\"");
    for (const auto& [number, meaning] : object.MembersOf("values")) {
      values.push_back(ValueOf(place, *largest, number, meaning));
    }
    std::sort(values.begin(), values.end(),
              [](const auto& left, const auto& right) { return left.value < right.value; });
    return values;
  }

  static vtq::NamedValue ValueOf(const std::string& place, unsigned largest,
                                 const std::string& number, const JsonValue& meaning) {
    const auto value = NumberOf(number);
    if (!value || *value > largest) {
      Fail(place,
           fmt::format("expected a number from 0 to {}, found \"{}\"", largest, Printable(number)));
    }
    if (meaning.kind != JsonKind::kString) {
      Fail(place + "." + number, fmt::format("expected a string, found {}", meaning.KindName()));
    }
    return {*value, meaning.text};
  }

  static std::string CommonTargetOf(const Object& object) {
    std::string name = object.OptionalName("commonTarget");
    if (!name.empty() && object.Array("targets").size() < 2) {
      Fail(object.Place(), "only references with several \"targets\" have a \"commonTarget\"");
    }
    return name;
  }

  Names TargetsOf(const Object& object) const {
    Names targets;
    for (const auto& [unnamed, target] : object.Array("targets")) {
      const std::string* known = target.kind == JsonKind::kString ? Known(target.text) : nullptr;
      if (known == nullptr) {
        const std::string place = fmt::format("{}.targets[{}]", object.Place(), targets.size());
        Fail(place, fmt::format("no class of that name is declared before; the classes are {}",
                                fmt::join(known_, ", ")));
      }
      targets.push_back(*known);
    }
    const bool isReference = object.Text("type") == "reference";
    if (isReference == targets.empty()) {
      Fail(object.Place(), "only references have \"targets\", and they need at least one class");
    }
    return targets;
  }

  static bool HasKey(const vtq::ClassSchema& schema) {
    return std::any_of(schema.properties.begin(), schema.properties.end(),
                       [](const vtq::PropertySchema& property) { return property.isKey; });
  }

  /// Returns the name as declared; null if no such class is declared.
  const std::string* Known(const std::string& name) const {
    const auto found = std::find_if(known_.begin(), known_.end(),
                                    [&name](const auto& known) { return IsSameName(known, name); });
    return found == known_.end() ? nullptr : &*found;
  }

  Names known_;
  const std::map<std::string, std::string>& files_;
};

std::string ContentOf(const std::string& file) {
  constexpr std::uintmax_t kMost = 1U << 20U;
  std::error_code failure;
  const std::uintmax_t size = std::filesystem::file_size(file, failure);
  if (failure) Fail(file, failure.message());
  if (size > kMost) Fail(file, "the file is larger than 1 MiB");
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream content;
  content << stream.rdbuf();
  if (!stream) {
    throw ClassFileError("cannot read " + file + ": " + std::generic_category().message(errno));
  }
  return content.str();
}

}  // namespace

ClassFile ParseClasses(std::string_view text, const Declarations& declared) {
  return ClassReader(declared).Read(ParseJson(text));
}

Names ReadClassFile(const std::string& file, Declarations& declared) {
  const std::string content = ContentOf(file);
  Names names;
  try {
    ClassFile read = ParseClasses(content, declared);
    for (vtq::ClassSchema& schema : read.classes) {
      names.push_back(schema.name);
      if (read.onRequest) declared.onRequest.insert(schema.name);
      declared.files[schema.name] = file;
      declared.classes.push_back(std::move(schema));
    }
  } catch (const ClassFileError& error) {
    Fail(file, error.what());
  }
  return names;
}

std::vector<vtq::ClassSchema> LoadClasses(const std::string& file) {
  Declarations declared;
  ReadClassFile(file, declared);
  return std::move(declared.classes);
}

}  // namespace pciinfo
