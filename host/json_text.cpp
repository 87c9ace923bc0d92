#include "host/json_text.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "host/utf8.h"
#include "host/value_text.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

// What a text needs to become a JSON string, from little to much.
enum Need : unsigned char { kNothing = 0, kBackslashes = 1, kConversion = 2 };

constexpr std::array<unsigned char, 256> kNeeds = [] {
  std::array<unsigned char, 256> needs{};
  for (unsigned c = 0; c != needs.size(); ++c)
    needs[c] = c < ' ' || c > '~' ? kConversion : kNothing;
  needs['"'] = needs['\\'] = kBackslashes;
  return needs;
}();

unsigned NeedOf(char c) { return kNeeds[static_cast<unsigned char>(c)]; }

unsigned NeedsOf(std::string_view text) {
  unsigned needs = kNothing;
  for (const char c : text) needs |= NeedOf(c);
  return needs;
}

void WriteWithBackslashes(Output& output, std::string_view text) {
  const auto isEscaped = [](char c) { return NeedOf(c) == kBackslashes; };
  const auto* const end = text.end();
  for (const auto* begin = text.begin(); begin != end;) {
    const auto* const special = std::find_if(begin + 1, end, isEscaped);
    if (isEscaped(*begin)) output.Write("\\");
    output.Write({begin, special});
    begin = special;
  }
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
    default:
      return output.Write(IntegerText(value));
  }
}

}  // namespace

void WriteJsonString(Output& output, std::string_view bytes) {
  const unsigned needs = NeedsOf(bytes);
  if ((needs & kConversion) != 0) return output.Write(nlohmann::json(ToUtf8(bytes)).dump());
  output.Write("\"");
  if (needs == kNothing) {
    output.Write(bytes);
  } else {
    WriteWithBackslashes(output, bytes);
  }
  output.Write("\"");
}

void WriteJsonValue(Output& output, const TCIMValue& value) {
  if (!value.IsArray()) return WriteScalar(output, value);
  output.Write("[");
  bool first = true;
  for (const TCIMValue& element : value.GetArray()) {
    if (!first) output.Write(",");
    first = false;
    WriteScalar(output, element);
  }
  output.Write("]");
}

}  // namespace pciinfo
