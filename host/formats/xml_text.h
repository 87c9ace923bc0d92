#pragma once

#include <initializer_list>
#include <memory>
#include <string_view>
#include <utility>

#include "host/console/output.h"

namespace pciinfo {

/// Makes XML 1.0 in UTF-8 as the strictest of its readers take it: every element has a start and an
/// end tag, texts stand unbroken, and nothing but the five named entities is used. All throw
/// std::bad_alloc when memory does not suffice.
class XmlText final {
 public:
  using Attributes = std::initializer_list<std::pair<const char*, std::string_view>>;

  XmlText();
  XmlText(const XmlText&) = delete;
  XmlText& operator=(const XmlText&) = delete;
  ~XmlText();

  /// The XML declaration; comes first.
  void Begin();
  void Open(const char* element, Attributes attributes = {});
  void Close();
  /// `bytes` (made UTF-8, see ToUtf8) as content of the open element. A character that XML cannot
  /// carry becomes U+FFFD, a carriage return too: its readers turn it into a line feed.
  void Text(std::string_view bytes);
  /// A line end between elements.
  void EndLine();

  /// Moves what was made so far to `output`; throws what Output throws.
  void MoveTo(Output& output);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace pciinfo
