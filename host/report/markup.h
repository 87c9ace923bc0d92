// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/console/output.h"

namespace pciinfo {

/// Writes HTML and SVG. Texts and values of attributes may come from the machine or its firmware:
/// they are made printable (see Printable) and escaped. Names of elements and attributes, and what
/// Fixed writes, come from the program only.
class Markup final {
 public:
  using Attributes = std::vector<std::pair<const char*, std::string>>;

  /// `output` must outlive it.
  explicit Markup(Output& output) : output_(output) {}

  /// Opens an element. Attributes with an empty value are left out.
  void Open(const char* element, const Attributes& attributes = {});
  /// Closes the element that was opened last.
  void Close();
  void CloseLine();
  /// Writes an element of SVG without content.
  void Empty(const char* element, const Attributes& attributes);
  /// Writes the start tag of an element that HTML ends by itself.
  void Begin(const char* element, const Attributes& attributes);
  void Text(std::string_view bytes);
  /// Writes an element that contains only a text.
  void Element(const char* element, const Attributes& attributes, std::string_view text);
  void Fixed(std::string_view markup) { output_.Write(markup); }

 private:
  void Tag(const char* element, const Attributes& attributes, const char* end);

  Output& output_;
  std::vector<const char*> open_;
};

/// Returns a number of pixels with at most one decimal place.
std::string Pixels(double number);

}  // namespace pciinfo
