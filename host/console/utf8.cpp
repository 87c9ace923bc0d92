// SPDX-License-Identifier: Apache-2.0
#include "host/console/utf8.h"

#include <fmt/format.h>

namespace pciinfo {
namespace {

struct SequenceForm {
  unsigned char mask;
  unsigned char lead;
  std::size_t length;
  char32_t lowest;  // smaller code points have a shorter form
};

constexpr SequenceForm kForms[] = {
    {0x80, 0x00, 1, 0x0},
    {0xE0, 0xC0, 2, 0x80},
    {0xF0, 0xE0, 3, 0x800},
    {0xF8, 0xF0, 4, 0x10000},
};

unsigned char ByteAt(std::string_view text, std::size_t position) {
  return static_cast<unsigned char>(text[position]);
}

const SequenceForm* FormOf(unsigned char lead) {
  for (const SequenceForm& form : kForms) {
    if ((lead & form.mask) == form.lead) return &form;
  }
  return nullptr;
}

bool IsScalar(char32_t codePoint) {
  return codePoint <= 0x10FFFF && (codePoint < 0xD800 || codePoint > 0xDFFF);
}

bool IsValidUtf8(std::string_view bytes) {
  for (std::size_t position = 0; position < bytes.size();) {
    if (NextCodePoint(bytes, position) == kNoCodePoint) return false;
  }
  return true;
}

}  // namespace

char32_t NextCodePoint(std::string_view text, std::size_t& position) noexcept {
  const unsigned char lead = ByteAt(text, position);
  const SequenceForm* form = FormOf(lead);
  if (form == nullptr || text.size() - position < form->length) return kNoCodePoint;
  char32_t codePoint = lead & static_cast<unsigned char>(~form->mask);
  for (std::size_t i = 1; i < form->length; ++i) {
    const unsigned char byte = ByteAt(text, position + i);
    if ((byte & 0xC0) != 0x80) return kNoCodePoint;
    codePoint = (codePoint << 6) | (byte & 0x3FU);
  }
  if (codePoint < form->lowest || !IsScalar(codePoint)) return kNoCodePoint;
  position += form->length;
  return codePoint;
}

void AppendUtf8(std::string& text, char32_t codePoint) {
  const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
  if (codePoint < 0x80) return append(codePoint);
  if (codePoint < 0x800) {
    append(0xC0 | (codePoint >> 6));
  } else {
    if (codePoint < 0x10000) {
      append(0xE0 | (codePoint >> 12));
    } else {
      append(0xF0 | (codePoint >> 18));
      append(0x80 | ((codePoint >> 12) & 0x3F));
    }
    append(0x80 | ((codePoint >> 6) & 0x3F));
  }
  append(0x80 | (codePoint & 0x3F));
}

void AppendUtf16Escapes(std::string& text, std::string_view mark, char32_t codePoint) {
  const auto append = [&](char32_t unit) {
    text += fmt::format("{}{:04x}", mark, static_cast<unsigned>(unit));
  };
  if (codePoint < 0x10000) return append(codePoint);
  append(0xD800 + ((codePoint - 0x10000) >> 10));
  append(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
}

std::string ToUtf8(std::string_view bytes) {
  if (IsValidUtf8(bytes)) return std::string(bytes);
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const char byte : bytes) AppendUtf8(text, static_cast<unsigned char>(byte));
  return text;
}

}  // namespace pciinfo
