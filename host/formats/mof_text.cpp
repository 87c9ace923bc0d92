// SPDX-License-Identifier: Apache-2.0
#include "host/formats/mof_text.h"

#include <cmath>

#include "host/console/unsafe_characters.h"
#include "host/console/utf8.h"
#include "host/formats/value_text.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

/// The letter of a character's short escape; 0 if it has none.
char EscapeLetter(char32_t codePoint) {
  switch (codePoint) {
    case U'"':
    case U'\\':
      return static_cast<char>(codePoint);
    case U'\b':
      return 'b';
    case U'\t':
      return 't';
    case U'\n':
      return 'n';
    case U'\f':
      return 'f';
    case U'\r':
      return 'r';
    default:
      return '\0';
  }
}

void AppendEscaped(std::string& text, char32_t codePoint) {
  if (const char letter = EscapeLetter(codePoint)) {
    text += '\\';
    text += letter;
  } else if (IsUnsafe(codePoint)) {
    // Always four digits: otherwise a following hexadecimal digit would become part of the escape.
    // MOF allows no more, so a character beyond the first plane is two escapes, as in UTF-16.
    AppendUtf16Escapes(text, "\\x", codePoint);
  } else {
    AppendUtf8(text, codePoint);
  }
}

}  // namespace

std::string MofString(std::string_view bytes) {
  const std::string utf8 = ToUtf8(bytes);
  std::string text = "\"";
  for (std::size_t position = 0; position < utf8.size();) {
    AppendEscaped(text, NextCodePoint(utf8, position));
  }
  return text += '"';
}

std::string MofScalar(const TCIMValue& value) {
  using enum TCIMValue::TCIMType::ECIMType;
  if (value.IsNull()) return "NULL";
  if (IsText(value.GetType())) return MofString(static_cast<std::string>(value));
  switch (value.GetType().GetCode()) {
    case kBoolean:
      return static_cast<bool>(value) ? "TRUE" : "FALSE";
    case kReal32:
    case kReal64:
      return std::isfinite(static_cast<double>(value)) ? RealText(value) : "NULL";
    default:
      return IntegerText(value);
  }
}

}  // namespace pciinfo
