#include <utility>

#include "framework/cim_reference.h"
#include "framework/cim_value.h"
#include "framework/exception.h"

namespace NQZMVTQ20 {

namespace {

using TCIMType = TCIMValue::TCIMType;

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char character : text) {
    if (character == '\\' || character == '"') quoted += '\\';
    quoted += character;
  }
  return quoted += '"';
}

std::string ScalarText(const TCIMValue& value) {
  switch (value.GetType().GetCode()) {
    case TCIMType::kString:
    case TCIMType::kDateTime:
    case TCIMType::kReference:
      return Quoted(std::string(value));
    case TCIMType::kBoolean:
      return static_cast<bool>(value) ? "TRUE" : "FALSE";
    case TCIMType::kUint64:
      return std::to_string(static_cast<std::uint64_t>(value));
    default:
      return std::to_string(static_cast<std::int64_t>(value));
  }
}

void CheckKey(const std::string& className, const std::string& name, const TCIMValue& value) {
  const TCIMType::ECIMType code = value.GetType().GetCode();
  const bool isReal = code == TCIMType::kReal32 || code == TCIMType::kReal64;
  if (!value.IsNull() && !value.IsArray() && !isReal) return;
  throw TVTQException("the key " + className + "." + name +
                          " is null, an array or a real number, which cannot stand in a path",
                      TVTQStatusCode::kInvalidArgument);
}

std::string PathText(const std::string& nameSpace, const std::string& className,
                     const TCIMReference::TKeyMap& keys) {
  std::string path = "/" + nameSpace + ":" + className;
  char separator = '.';
  for (const auto& [name, value] : keys) {
    CheckKey(className, name, value);
    path.append(1, separator).append(name).append("=").append(ScalarText(value));
    separator = ',';
  }
  return path;
}

}  // namespace

struct TCIMReference::Parts {
  std::string nameSpace;
  std::string className;
  TKeyMap keys;
  std::string path;

  static const Parts& Of(const std::shared_ptr<const Parts>& parts) noexcept {
    static const Parts kNull;
    return parts ? *parts : kNull;
  }
};

TCIMReference::TCIMReference() = default;

TCIMReference::TCIMReference(const std::string& nameSpace, const std::string& className,
                             const TKeyMap& keys)
    : parts_(std::make_shared<const Parts>(
          Parts{nameSpace, className, keys, PathText(nameSpace, className, keys)})) {}

bool TCIMReference::IsNull() const noexcept { return parts_ == nullptr; }

const std::string& TCIMReference::GetNamespace() const noexcept {
  return Parts::Of(parts_).nameSpace;
}

const std::string& TCIMReference::GetClassName() const noexcept {
  return Parts::Of(parts_).className;
}

const TCIMReference::TKeyMap& TCIMReference::GetKeys() const noexcept {
  return Parts::Of(parts_).keys;
}

const std::string& TCIMReference::ToString() const noexcept { return Parts::Of(parts_).path; }

bool operator==(const TCIMReference& left, const TCIMReference& right) noexcept {
  return left.parts_ == right.parts_ || left.ToString() == right.ToString();
}

}  // namespace NQZMVTQ20
