#include "host/json_text.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/utf8.h"
#include "host/value_text.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

std::string JsonScalar(const TCIMValue& value) {
  using enum TCIMValue::TCIMType::ECIMType;
  if (value.IsNull()) return "null";
  switch (value.GetType().GetCode()) {
    case kBoolean:
      return static_cast<bool>(value) ? "true" : "false";
    case kReal32:
    case kReal64:
      return nlohmann::json(static_cast<double>(value)).dump();
    case kString:
    case kDateTime:
      return JsonString(value.GetString());
    case kReference:
      return JsonString(value.GetReference().ToString());
    default:
      return IntegerText(value);
  }
}

// Nearly every text of an inventory is: printable ASCII that JSON takes as it is.
bool IsPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
}

}  // namespace

std::string JsonString(std::string_view bytes) {
  if (!IsPlain(bytes)) return nlohmann::json(ToUtf8(bytes)).dump();
  std::string text;
  text.reserve(bytes.size() + 2);
  text += '"';
  text += bytes;
  text += '"';
  return text;
}

void WriteJsonValue(Output& output, const TCIMValue& value) {
  if (!value.IsArray()) return output.Write(JsonScalar(value));
  output.Write("[");
  bool first = true;
  for (const TCIMValue& element : value.GetArray()) {
    if (!first) output.Write(",");
    first = false;
    output.Write(JsonScalar(element));
  }
  output.Write("]");
}

}  // namespace pciinfo
