// SPDX-License-Identifier: Apache-2.0
#include "host/report/markup.h"

#include <fmt/format.h>

#include <cmath>

#include "host/console/text.h"

namespace pciinfo {
namespace {

std::string_view EntityOf(char character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return "";
  }
}

std::string MarkupEscaped(std::string_view bytes) {
  const std::string text = Printable(bytes);
  std::string escaped;
  escaped.reserve(text.size());
  for (const char character : text) {
    const std::string_view entity = EntityOf(character);
    if (entity.empty()) {
      escaped += character;
    } else {
      escaped += entity;
    }
  }
  return escaped;
}

}  // namespace

void Markup::Tag(const char* element, const Attributes& attributes, const char* end) {
  output_.Write("<");
  output_.Write(element);
  for (const auto& [name, value] : attributes) {
    if (!value.empty()) output_.Write(fmt::format(" {}=\"{}\"", name, MarkupEscaped(value)));
  }
  output_.Write(end);
}

void Markup::Open(const char* element, const Attributes& attributes) {
  Tag(element, attributes, ">");
  open_.push_back(element);
}

void Markup::Close() {
  output_.Write(fmt::format("</{}>", open_.back()));
  open_.pop_back();
}

void Markup::CloseLine() {
  Close();
  output_.Write("\n");
}

void Markup::Empty(const char* element, const Attributes& attributes) {
  Tag(element, attributes, "/>");
}

void Markup::Begin(const char* element, const Attributes& attributes) {
  Tag(element, attributes, ">");
}

void Markup::Text(std::string_view bytes) { output_.Write(MarkupEscaped(bytes)); }

void Markup::Element(const char* element, const Attributes& attributes, std::string_view text) {
  Open(element, attributes);
  Text(text);
  Close();
}

std::string Pixels(double number) { return fmt::format("{}", std::round(number * 10) / 10); }

}  // namespace pciinfo
