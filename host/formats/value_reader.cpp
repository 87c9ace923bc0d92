// SPDX-License-Identifier: Apache-2.0
#include "host/formats/value_reader.h"

#include <charconv>
#include <system_error>
#include <utility>

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

template <class Integer, class Number>
std::optional<TCIMValue> ConvertTo(Number number) {
  if (!std::in_range<Integer>(number)) return std::nullopt;
  return TCIMValue(static_cast<Integer>(number));
}

template <class Number>
std::optional<TCIMValue> Convert(TCIMValue::TCIMType type, Number number) {
  using enum TCIMValue::TCIMType::ECIMType;
  switch (type.GetCode()) {
    case kUint8:
      return ConvertTo<std::uint8_t>(number);
    case kSint8:
      return ConvertTo<std::int8_t>(number);
    case kUint16:
      return ConvertTo<std::uint16_t>(number);
    case kSint16:
      return ConvertTo<std::int16_t>(number);
    case kUint32:
      return ConvertTo<std::uint32_t>(number);
    case kSint32:
      return ConvertTo<std::int32_t>(number);
    case kUint64:
      return ConvertTo<std::uint64_t>(number);
    case kSint64:
      return ConvertTo<std::int64_t>(number);
    default:
      return std::nullopt;
  }
}

template <class Number>
std::optional<TCIMValue> Read(TCIMValue::TCIMType type, std::string_view text) {
  Number number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return Convert(type, number);
}

}  // namespace

std::optional<TCIMValue> IntegerValue(TCIMValue::TCIMType type, std::uint64_t number) {
  return Convert(type, number);
}

std::optional<TCIMValue> IntegerValue(TCIMValue::TCIMType type, std::int64_t number) {
  return Convert(type, number);
}

std::optional<TCIMValue> IntegerValue(TCIMValue::TCIMType type, std::string_view text) {
  const bool isNegative = text.substr(0, 1) == "-";
  return isNegative ? Read<std::int64_t>(type, text) : Read<std::uint64_t>(type, text);
}

}  // namespace pciinfo
