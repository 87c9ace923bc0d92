// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <initializer_list>
#include <memory>
#include <string_view>
#include <utility>

#include "host/console/output.h"

namespace pciinfo {

/// Builds XML 1.0 in UTF-8 that strict CIM-XML readers accept: every element has a start and an end
/// tag, texts are not split into several elements, and markup is escaped by the named entities
/// only. All functions throw std::bad_alloc if memory is short.
class XmlText final {
 public:
  using Attributes = std::initializer_list<std::pair<const char*, std::string_view>>;

  XmlText();
  XmlText(const XmlText&) = delete;
  XmlText& operator=(const XmlText&) = delete;
  ~XmlText();

  /// Adds the XML declaration; call it first.
  void Begin();
  void Open(const char* element, Attributes attributes = {});
  void Close();
  /// Adds `bytes`, converted by ToUtf8, as content of the open element. Unsafe
  /// characters (see IsUnsafe) except tab and line feed are written as character references; those
  /// that XML does not allow at all become U+FFFD.
  void Text(std::string_view bytes);
  /// Adds a line end between elements.
  void EndLine();

  /// Writes the text so far to `output` and clears it; throws what Output throws.
  void MoveTo(Output& output);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace pciinfo
