// SPDX-License-Identifier: Apache-2.0
#include "topology/vital_product_data.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <numeric>
#include <utility>

namespace topology {
namespace {

constexpr std::uint8_t kLargeTag = 0x80;
constexpr std::uint8_t kNameTag = 0x82;
constexpr std::uint8_t kReadOnlyTag = 0x90;
constexpr std::uint8_t kWritableTag = 0x91;
/// Of a small tag, whose low three bits are a length.
constexpr std::uint8_t kEndTag = 0x78;
constexpr std::uint8_t kSmallLength = 0x07;
constexpr std::size_t kLargeHeader = 3;
constexpr std::size_t kFieldHeader = 3;

std::uint8_t ByteOf(std::string_view bytes, std::size_t at) {
  return static_cast<std::uint8_t>(bytes[at]);
}

/// A tag with its place: the data that belongs to it follows the header.
struct Tag {
  std::uint8_t kind = 0;
  std::size_t data = 0;
  std::size_t end = 0;
};

/// The tag at `at`; nothing if its header is not wholly there.
std::optional<Tag> TagAt(std::string_view bytes, std::size_t at) {
  if (at >= bytes.size()) return std::nullopt;
  const std::uint8_t first = ByteOf(bytes, at);
  if ((first & kLargeTag) == 0) {
    const std::uint8_t kind = first & static_cast<std::uint8_t>(~kSmallLength);
    return Tag{kind, at + 1, at + 1 + (first & kSmallLength)};
  }
  if (bytes.size() - at < kLargeHeader) return std::nullopt;
  const std::size_t length = ByteOf(bytes, at + 1) | std::size_t{ByteOf(bytes, at + 2)} << 8;
  return Tag{first, at + kLargeHeader, at + kLargeHeader + length};
}

/// The PCI standards know no other kinds. Memory that nobody has written holds some.
bool IsKnown(const Tag& tag) {
  return tag.kind == kNameTag || tag.kind == kReadOnlyTag || tag.kind == kWritableTag ||
         tag.kind == kEndTag;
}

std::string TextOf(std::string_view value) {
  std::string text;
  const std::size_t end = value.find_last_not_of(std::string_view(" \0", 2)) + 1;
  for (const char c : value.substr(0, end)) {
    if (c >= ' ' && c <= '~') {
      text += c;
      continue;
    }
    std::array<char, 5> code{};
    std::snprintf(code.data(), code.size(), "\\x%02x",
                  static_cast<unsigned>(static_cast<unsigned char>(c)));
    text += code.data();
  }
  return text;
}

/// All bytes up to the checksum, which is the first byte of the field "RV", add up to zero.
bool AddsUpToZero(std::string_view bytes) {
  return std::accumulate(bytes.begin(), bytes.end(), std::uint8_t{0},
                         [](std::uint8_t sum, char byte) {
                           return static_cast<std::uint8_t>(sum + static_cast<std::uint8_t>(byte));
                         }) == 0;
}

class Decoder {
 public:
  explicit Decoder(std::string_view bytes) : bytes_(bytes) {}

  VitalProductData Decode() {
    for (std::size_t at = 0; data_.problem.empty();) {
      const auto tag = TagAt(bytes_, at);
      if (!tag) {
        data_.problem = "the data ends without an end tag";
      } else if (!IsKnown(*tag)) {
        data_.problem = at == 0 ? "the data does not begin with a known tag" : "a tag is not known";
      } else if (tag->kind == kEndTag) {
        break;
      } else {
        DecodeTag(*tag);
        at = tag->end;
      }
    }
    return std::move(data_);
  }

 private:
  void DecodeTag(const Tag& tag) {
    const std::size_t end = std::min(tag.end, bytes_.size());
    if (tag.kind == kNameTag) data_.name = TextOf(bytes_.substr(tag.data, end - tag.data));
    if (tag.kind == kReadOnlyTag) DecodeFields(tag.data, end);
    if (end < tag.end && data_.problem.empty()) data_.problem = "the data is cut short";
  }

  void DecodeFields(std::size_t at, std::size_t end) {
    while (end - at >= kFieldHeader) {
      const std::size_t length = ByteOf(bytes_, at + 2);
      const std::size_t value = at + kFieldHeader;
      if (length > end - value) {
        data_.problem = "a field is longer than its section";
        return;
      }
      DecodeField(bytes_.substr(at, 2), value, length);
      at = value + length;
    }
  }

  void DecodeField(std::string_view keyword, std::size_t at, std::size_t length) {
    if (keyword != "RV") {
      data_.readOnly.push_back({TextOf(keyword), TextOf(bytes_.substr(at, length))});
    } else {
      data_.checksumRight = length != 0 && AddsUpToZero(bytes_.substr(0, at + 1));
    }
  }

  std::string_view bytes_;
  VitalProductData data_;
};

}  // namespace

std::string VitalProductData::Find(std::string_view keyword) const {
  for (const VitalProductField& field : readOnly) {
    if (field.keyword == keyword) return field.value;
  }
  return "";
}

std::size_t NeededVitalProductData(std::string_view bytes) {
  for (std::size_t at = 0;;) {
    const auto tag = TagAt(bytes, at);
    if (!tag) return at + kLargeHeader;
    if (!IsKnown(*tag) || tag->kind == kEndTag) return tag->data;
    at = tag->end;
    if (at >= bytes.size()) return at + 1;
  }
}

VitalProductData DecodeVitalProductData(std::string_view bytes) { return Decoder(bytes).Decode(); }

}  // namespace topology
