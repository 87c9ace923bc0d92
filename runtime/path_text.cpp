// SPDX-License-Identifier: Apache-2.0
#include "runtime/path_text.h"

#include <string_view>

#include "framework/exception.h"

namespace vtq {

using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TVTQException;
using NQZMVTQ20::TVTQStatusCode;

namespace {

using TCIMType = TCIMValue::TCIMType;

constexpr std::size_t kUsualLength = 256;

void AppendEscaped(std::string& text, std::string_view escaped) {
  for (const char c : escaped) {
    if (c == '\\' || c == '"') text += '\\';
    text += c;
  }
}

void AppendQuoted(std::string& text, std::string_view quoted) {
  text += '"';
  const bool isPlain =
      quoted.find('"') == std::string_view::npos && quoted.find('\\') == std::string_view::npos;
  if (isPlain) {
    text += quoted;
  } else {
    AppendEscaped(text, quoted);
  }
  text += '"';
}

void AppendScalar(std::string& text, const TCIMValue& value) {
  switch (value.GetType().GetCode()) {
    case TCIMType::kString:
    case TCIMType::kDateTime:
      return AppendQuoted(text, value.GetString());
    case TCIMType::kReference:
      return AppendQuoted(text, value.GetReference().ToString());
    case TCIMType::kBoolean:
      text += static_cast<bool>(value) ? "TRUE" : "FALSE";
      return;
    case TCIMType::kUint64:
      text += std::to_string(static_cast<std::uint64_t>(value));
      return;
    default:
      text += std::to_string(static_cast<std::int64_t>(value));
  }
}

bool CanBeKey(const TCIMValue& value) {
  const TCIMType::ECIMType code = value.GetType().GetCode();
  const bool isReal = code == TCIMType::kReal32 || code == TCIMType::kReal64;
  return !value.IsNull() && !value.IsArray() && !isReal;
}

}  // namespace

PathText::PathText(const std::string& nameSpace, const std::string& className)
    : className_(className) {
  text_.reserve(kUsualLength);
  text_.append("/").append(nameSpace).append(":").append(className);
}

void PathText::AddKey(const std::string& name, const TCIMValue& value) {
  if (!CanBeKey(value)) {
    throw TVTQException("the key " + className_ + "." + name +
                            " is null, an array or a real number, which cannot be part of a path",
                        TVTQStatusCode::kInvalidArgument);
  }
  text_ += separator_;
  text_ += name;
  text_ += '=';
  AppendScalar(text_, value);
  separator_ = ',';
}

}  // namespace vtq
