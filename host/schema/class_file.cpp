#include "host/schema/class_file.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>

#include "host/console/text.h"
#include "host/schema/pci_schema.h"

namespace pciinfo {
namespace {

using nlohmann::json;
using NQZMVTQ20::TCIMValue;
using Names = std::vector<std::string>;

[[noreturn]] void Fail(const std::string& place, const std::string& what) {
  throw ClassFileError(place + ": " + what);
}

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

/// CIM names are not case-sensitive.
bool IsSameName(const std::string& left, const std::string& right) {
  return Lower(left) == Lower(right);
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

/// A JSON object of the file with typed access to its members.
class Object {
 public:
  Object(const json& value, std::string place, const Names& members)
      : value_(value), place_(std::move(place)) {
    if (!value.is_object()) Fail(place_, fmt::format("expected an object, found {}", ShownType()));
    for (const auto& [name, ignored] : value.items()) {
      if (std::find(members.begin(), members.end(), name) != members.end()) continue;
      Fail(place_, fmt::format("unknown member \"{}\"; the members are {}", Printable(name),
                               fmt::join(members, ", ")));
    }
  }

  const std::string& Place() const { return place_; }

  /// Empty if missing.
  std::string Text(const char* name) const {
    const json* member = Find(name, json::value_t::string, "a string");
    return member == nullptr ? "" : member->get<std::string>();
  }

  /// False if missing.
  bool Flag(const char* name) const {
    const json* member = Find(name, json::value_t::boolean, "true or false");
    return member != nullptr && member->get<bool>();
  }

  std::string Name(const char* name) const {
    std::string text = Text(name);
    if (!IsName(text)) {
      Fail(place_ + "." + name, "expected a name of letters, digits and underscores");
    }
    return text;
  }

  /// Empty if missing.
  json Array(const char* name) const {
    const json* member = Find(name, json::value_t::array, "an array");
    return member == nullptr ? json::array() : *member;
  }

 private:
  std::string ShownType() const { return value_.type_name(); }

  const json* Find(const char* name, json::value_t type, const char* needed) const {
    const auto member = value_.find(name);
    if (member == value_.end()) return nullptr;
    if (member->type() != type) {
      Fail(place_ + "." + name, fmt::format("expected {}, found {}", needed, member->type_name()));
    }
    return &*member;
  }

  const json& value_;
  std::string place_;
};

class Reader {
 public:
  explicit Reader(const std::vector<vtq::ClassSchema>& declared) {
    for (const vtq::ClassSchema& schema : declared) known_.push_back(schema.name);
  }

  std::vector<vtq::ClassSchema> Read(const json& document) {
    const json classes = Object(document, "top level", {"classes"}).Array("classes");
    if (classes.empty()) Fail("classes", "no class is declared");
    std::vector<vtq::ClassSchema> schemas;
    for (const json& element : classes) {
      schemas.push_back(ReadClass(element, fmt::format("classes[{}]", schemas.size())));
    }
    return schemas;
  }

 private:
  vtq::ClassSchema ReadClass(const json& value, const std::string& place) {
    const Object object(value, place, {"name", "superclass", "description", "properties"});
    vtq::ClassSchema schema{
        object.Name("name"), object.Text("superclass"), object.Text("description"), {}};
    if (Known(schema.name) != nullptr) {
      Fail(place + ".name", fmt::format("class \"{}\" is already declared", schema.name));
    }
    if (!schema.superclass.empty()) object.Name("superclass");
    known_.push_back(schema.name);  // references of the class may name it
    for (const json& property : object.Array("properties")) {
      AddProperty(schema, property,
                  fmt::format("{}.properties[{}]", place, schema.properties.size()));
    }
    if (!HasKey(schema)) Fail(place, "no property is a key; a class needs at least one");
    return schema;
  }

  void AddProperty(vtq::ClassSchema& schema, const json& value, const std::string& place) const {
    const Object object(value, place, {"name", "type", "array", "key", "description", "targets"});
    vtq::PropertySchema property{object.Name("name"),  TypeOf(object),
                                 object.Flag("array"), object.Flag("key"),
                                 TargetsOf(object),    object.Text("description")};
    for (const vtq::PropertySchema& other : schema.properties) {
      if (IsSameName(other.name, property.name)) {
        Fail(place + ".name", fmt::format("property \"{}\" is already declared", other.name));
      }
    }
    if (property.isKey && property.isArray) Fail(place, "an array cannot be a key");
    schema.properties.push_back(std::move(property));
  }

  static TCIMValue::TCIMType TypeOf(const Object& object) {
    if (const auto type = TypeNamed(object.Text("type"))) return *type;
    Fail(object.Place() + ".type",
         "expected a type: boolean, uint8 to uint64, sint8 to sint64, real32, real64, string, "
         "datetime or reference");
  }

  Names TargetsOf(const Object& object) const {
    Names targets;
    for (const json& target : object.Array("targets")) {
      const std::string place = fmt::format("{}.targets[{}]", object.Place(), targets.size());
      const std::string* known =
          target.is_string() ? Known(target.get_ref<const std::string&>()) : nullptr;
      if (known == nullptr) {
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
  if (!stream) throw ClassFileError("cannot read " + file);
  return content.str();
}

}  // namespace

std::vector<vtq::ClassSchema> ParseClasses(std::string_view text,
                                           const std::vector<vtq::ClassSchema>& declared) {
  json document;
  try {
    document = json::parse(text);
  } catch (const json::parse_error& error) {
    const std::string reason = error.what();
    throw ClassFileError(reason.substr(reason.find("] ") + 2));
  }
  return Reader(declared).Read(document);
}

std::vector<vtq::ClassSchema> DeclaredClasses(const std::vector<std::string>& classFiles) {
  std::vector<vtq::ClassSchema> declared = PciSchema();
  for (const std::string& file : classFiles) {
    const std::string content = ContentOf(file);
    try {
      for (auto& schema : ParseClasses(content, declared)) declared.push_back(std::move(schema));
    } catch (const ClassFileError& error) {
      Fail(file, error.what());
    }
  }
  return declared;
}

}  // namespace pciinfo
