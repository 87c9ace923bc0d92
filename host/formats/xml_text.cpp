// SPDX-License-Identifier: Apache-2.0
#include "host/formats/xml_text.h"

#include <fmt/format.h>
#include <libxml/xmlwriter.h>

#include <new>
#include <string>
#include <utility>

#include "host/console/unsafe_characters.h"
#include "host/console/utf8.h"

namespace pciinfo {
namespace {

struct Free {
  void operator()(xmlBuffer* buffer) const noexcept { xmlBufferFree(buffer); }
  void operator()(xmlTextWriter* writer) const noexcept { xmlFreeTextWriter(writer); }
};

const xmlChar* Xml(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

// The writer writes to memory, so lack of memory is its only failure.
void Check(int result) {
  if (result < 0) throw std::bad_alloc();
}

bool IsXmlCharacter(char32_t codePoint) {
  if (codePoint < 0x20) return codePoint == U'\t' || codePoint == U'\n' || codePoint == U'\r';
  return codePoint != 0xFFFE && codePoint != 0xFFFF;
}

std::string XmlCharacters(std::string_view bytes) {
  constexpr char32_t kReplacement = 0xFFFD;
  const std::string utf8 = ToUtf8(bytes);
  std::string text;
  text.reserve(utf8.size());
  for (std::size_t position = 0; position < utf8.size();) {
    const char32_t codePoint = NextCodePoint(utf8, position);
    AppendUtf8(text, IsXmlCharacter(codePoint) ? codePoint : kReplacement);
  }
  return text;
}

/// XML readers turn a bare carriage return into a line feed; tabs and line feeds they keep.
bool NeedsReference(char32_t codePoint) {
  return IsUnsafe(codePoint) && codePoint != U'\t' && codePoint != U'\n';
}

void WriteString(xmlTextWriter* writer, const std::string& text) {
  Check(xmlTextWriterWriteString(writer, Xml(text.c_str())));
}

void WriteReference(xmlTextWriter* writer, char32_t codePoint) {
  const std::string reference = fmt::format("&#{};", static_cast<unsigned>(codePoint));
  Check(xmlTextWriterWriteRaw(writer, Xml(reference.c_str())));
}

}  // namespace

struct XmlText::Parts {
  std::unique_ptr<xmlBuffer, Free> buffer{xmlBufferCreate()};
  std::unique_ptr<xmlTextWriter, Free> writer;
};

XmlText::XmlText() : parts_(std::make_unique<Parts>()) {
  if (parts_->buffer == nullptr) throw std::bad_alloc();
  xmlBufferSetAllocationScheme(parts_->buffer.get(), XML_BUFFER_ALLOC_DOUBLEIT);
  parts_->writer.reset(xmlNewTextWriterMemory(parts_->buffer.get(), 0));
  if (parts_->writer == nullptr) throw std::bad_alloc();
}

XmlText::~XmlText() = default;

void XmlText::Begin() {
  Check(xmlTextWriterStartDocument(parts_->writer.get(), "1.0", "UTF-8", nullptr));
}

void XmlText::Open(const char* element, Attributes attributes) {
  Check(xmlTextWriterStartElement(parts_->writer.get(), Xml(element)));
  for (const auto& [name, value] : attributes) {
    Check(xmlTextWriterWriteAttribute(parts_->writer.get(), Xml(name),
                                      Xml(XmlCharacters(value).c_str())));
  }
}

void XmlText::Close() { Check(xmlTextWriterFullEndElement(parts_->writer.get())); }

void XmlText::Text(std::string_view bytes) {
  const std::string text = XmlCharacters(bytes);
  std::string safe;
  for (std::size_t position = 0; position < text.size();) {
    const char32_t codePoint = NextCodePoint(text, position);
    if (NeedsReference(codePoint)) {
      WriteString(parts_->writer.get(), std::exchange(safe, {}));
      WriteReference(parts_->writer.get(), codePoint);
    } else {
      AppendUtf8(safe, codePoint);
    }
  }
  WriteString(parts_->writer.get(), safe);
}

void XmlText::EndLine() { Check(xmlTextWriterWriteRaw(parts_->writer.get(), Xml("\n"))); }

void XmlText::MoveTo(Output& output) {
  Check(xmlTextWriterFlush(parts_->writer.get()));
  const xmlBuffer* buffer = parts_->buffer.get();
  output.Write({reinterpret_cast<const char*>(xmlBufferContent(buffer)),
                static_cast<std::size_t>(xmlBufferLength(buffer))});
  xmlBufferEmpty(parts_->buffer.get());
}

}  // namespace pciinfo
