// SPDX-License-Identifier: Apache-2.0
#include "host/formats/value_text.h"

#include <fmt/format.h>

#include <algorithm>

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

TCIMValue ValueOf(const vtq::Instance& instance, const std::string& property) {
  return instance.GetProperty(property, {}).value;
}

bool IsSigned(TCIMValue::TCIMType type) {
  using enum TCIMValue::TCIMType::ECIMType;
  const auto code = type.GetCode();
  return code == kSint8 || code == kSint16 || code == kSint32 || code == kSint64;
}

}  // namespace

std::string IntegerText(const TCIMValue& value) {
  if (IsSigned(value.GetType())) return std::to_string(static_cast<long>(value));
  return std::to_string(static_cast<unsigned long>(value));
}

bool IsText(TCIMValue::TCIMType type) {
  using enum TCIMValue::TCIMType::ECIMType;
  const auto code = type.GetCode();
  return code == kString || code == kDateTime || code == kReference;
}

std::string RealText(const TCIMValue& value) {
  std::string text = fmt::format("{}", static_cast<double>(value));
  const std::size_t mantissaEnd = std::min(text.find('e'), text.size());
  if (text.find('.') == std::string::npos) text.insert(mantissaEnd, ".0");
  return text;
}

std::string ScalarText(const TCIMValue& value) {
  using enum TCIMValue::TCIMType::ECIMType;
  if (value.IsNull()) return "";
  switch (value.GetType().GetCode()) {
    case kBoolean:
      return static_cast<bool>(value) ? "true" : "false";
    case kReal32:
    case kReal64:
      return fmt::format("{}", static_cast<double>(value));
    case kString:
    case kDateTime:
    case kReference:
      return static_cast<std::string>(value);
    default:
      return IntegerText(value);
  }
}

std::string TextOf(const vtq::Instance& instance, const std::string& property) {
  const TCIMValue value = ValueOf(instance, property);
  return value.IsNull() ? std::string() : static_cast<std::string>(value);
}

std::optional<unsigned> NumberOf(const vtq::Instance& instance, const std::string& property) {
  TCIMValue value = ValueOf(instance, property);
  if (value.IsArray()) value = value.GetArray().empty() ? TCIMValue() : value.GetArray().front();
  if (value.IsNull()) return std::nullopt;
  return static_cast<unsigned>(value);
}

std::optional<bool> BooleanOf(const vtq::Instance& instance, const std::string& property) {
  const TCIMValue value = ValueOf(instance, property);
  if (value.IsNull()) return std::nullopt;
  return static_cast<bool>(value);
}

}  // namespace pciinfo
