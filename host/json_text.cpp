#include "host/json_text.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/utf8.h"
#include "host/value_text.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

// How a character stands in a JSON string of printable ASCII, as far as that can be told without
// its neighbours; null for itself.
const char* EscapeOf(char c) {
  switch (c) {
    case '"':
      return "\\\"";
    case '\\':
      return "\\\\";
    case '\t':
      return "\\t";
    default:
      return nullptr;
  }
}

bool IsPlain(std::string_view text) {
  // Nearly all texts are: all of it is looked at without a branch, which compilers make wide steps
  // of.
  unsigned char special = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    special |= static_cast<unsigned char>(byte < ' ') | static_cast<unsigned char>(byte > '~') |
               static_cast<unsigned char>(byte == '"') | static_cast<unsigned char>(byte == '\\');
  }
  return special == 0;
}

bool NeedsConversion(std::string_view text) {
  return std::any_of(text.begin(), text.end(),
                     [](char c) { return (c < ' ' || c > '~') && EscapeOf(c) == nullptr; });
}

void WriteEscaped(Output& output, std::string_view text) {
  for (std::size_t begin = 0; begin < text.size();) {
    if (const char* escape = EscapeOf(text[begin])) {
      output.Write(escape);
      ++begin;
    }
    const auto* const end = std::find_if(text.begin() + begin, text.end(),
                                         [](char c) { return EscapeOf(c) != nullptr; });
    const auto size = static_cast<std::size_t>(end - text.begin()) - begin;
    output.Write(text.substr(begin, size));
    begin += size;
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
  const bool isPlain = IsPlain(bytes);
  if (!isPlain && NeedsConversion(bytes)) {
    return output.Write(nlohmann::json(ToUtf8(bytes)).dump());
  }
  output.Write("\"");
  if (isPlain) {
    output.Write(bytes);
  } else {
    WriteEscaped(output, bytes);
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
