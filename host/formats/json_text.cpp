// SPDX-License-Identifier: Apache-2.0
#include "host/formats/json_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "host/console/safe_json.h"
#include "host/console/utf8.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

// The JSON escape of a common character; empty for those that WriteConverted must handle.
std::string_view EscapeOf(char c) {
  switch (c) {
    case '"':
      return "\\\"";
    case '\\':
      return "\\\\";
    case '\t':
      return "\\t";
    default:
      return {};
  }
}

// The bytes that JSON strings contain unescaped; most texts have no others.
constexpr auto kIsPlain = [] {
  std::array<bool, 256> isPlain{};
  for (unsigned char c = ' '; c <= '~'; ++c) isPlain[c] = c != '"' && c != '\\';
  return isPlain;
}();

std::size_t CountPlain(std::string_view text) {
  const auto* const end = std::find_if_not(
      text.begin(), text.end(), [](char c) { return kIsPlain[static_cast<unsigned char>(c)]; });
  return static_cast<std::size_t>(end - text.begin());
}

// Writes the rest of a string, from the first character that may need conversion, and the closing
// quote. The plain characters before it do not affect the conversion.
void WriteConverted(Output& output, std::string_view rest) {
  output.Write(std::string_view(SafeJson(nlohmann::json(ToUtf8(rest)).dump())).substr(1));
}

void WriteDigits(Output& output, const fmt::format_int& digits) {
  output.Write({digits.data(), digits.size()});
}

void WriteScalar(Output& output, const TCIMValue& value) {
  using enum TCIMValue::TCIMType::ECIMType;
  if (value.IsNull()) return output.Write("null");
  switch (value.GetType().GetCode()) {
    case kBoolean:
      return output.Write(static_cast<bool>(value) ? "true" : "false");
    case kReal32:
    case kReal64:
      return output.Write(nlohmann::json(static_cast<double>(value)).dump());
    case kString:
    case kDateTime:
      return WriteJsonString(output, value.GetString());
    case kReference:
      return WriteJsonString(output, value.GetReference().ToString());
    case kSint8:
    case kSint16:
    case kSint32:
    case kSint64:
      return WriteDigits(output, fmt::format_int(static_cast<long>(value)));
    default:
      return WriteDigits(output, fmt::format_int(static_cast<unsigned long>(value)));
  }
}

}  // namespace

void WriteJsonString(Output& output, std::string_view bytes) {
  output.Write('"');
  for (;;) {
    const std::size_t plain = CountPlain(bytes);
    output.Write(bytes.substr(0, plain));
    bytes.remove_prefix(plain);
    if (bytes.empty()) return output.Write('"');
    const std::string_view escape = EscapeOf(bytes.front());
    if (escape.empty()) return WriteConverted(output, bytes);
    output.Write(escape);
    bytes.remove_prefix(1);
  }
}

void WriteJsonValue(Output& output, const TCIMValue& value) {
  if (!value.IsArray()) return WriteScalar(output, value);
  output.Write('[');
  bool first = true;
  for (const TCIMValue& element : value.GetArray()) {
    if (!first) output.Write(',');
    first = false;
    WriteScalar(output, element);
  }
  output.Write(']');
}

}  // namespace pciinfo
