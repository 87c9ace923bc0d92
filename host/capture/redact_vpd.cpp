// SPDX-License-Identifier: Apache-2.0
#include "host/capture/redact_vpd.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace pciinfo {
namespace {

using VpdBytes = std::span<char>;

constexpr unsigned kName = 0x82;
constexpr unsigned kReadOnly = 0x90;
constexpr unsigned kWritable = 0x91;
constexpr std::size_t kHeader = 3;

std::uint8_t Unsigned(char byte) { return static_cast<std::uint8_t>(byte); }

bool IdentifiesACard(std::string_view keyword) {
  return keyword == "SN" || keyword[0] == 'V' || keyword[0] == 'Y';
}

class VpdRedactor final {
 public:
  explicit VpdRedactor(VpdBytes bytes) : rest_(bytes) {}

  /// Redacts one section after the other. What is left in the end is cleared: the end tag and what
  /// is behind it, too, but for the tag itself.
  void Redact() {
    while (rest_.size() >= kHeader && IsSection(Unsigned(rest_[0]))) {
      const std::size_t length = Unsigned(rest_[1]) | std::size_t{Unsigned(rest_[2])} << 8;
      const bool hasFields = Unsigned(rest_[0]) != kName;
      rest_ = rest_.subspan(kHeader);
      const VpdBytes section = rest_.first(std::min(length, rest_.size()));
      rest_ = rest_.subspan(section.size());
      if (hasFields) RedactFields(section);
    }
    if (!rest_.empty() && IsEnd(Unsigned(rest_[0]))) rest_ = rest_.subspan(1);
    Overwrite(rest_, '\0');
  }

 private:
  static bool IsSection(unsigned tag) {
    return tag == kName || tag == kReadOnly || tag == kWritable;
  }

  /// Its low three bits are a length.
  static bool IsEnd(unsigned tag) { return (tag & 0xF8) == 0x78; }

  void RedactFields(VpdBytes section) {
    while (section.size() >= kHeader) {
      const std::string_view keyword(section.data(), 2);
      const std::size_t length = Unsigned(section[2]);
      if (length > section.size() - kHeader) break;
      const VpdBytes value = section.subspan(kHeader, length);
      if (IdentifiesACard(keyword)) Overwrite(value, 'X');
      if (keyword == "RV" && !value.empty()) CorrectChecksum(value[0]);
      section = section.subspan(kHeader + length);
    }
    Overwrite(section, '\0');
  }

  void CorrectChecksum(char& checksum) {
    checksum = static_cast<char>(Unsigned(checksum) + removed_);
    removed_ = 0;
  }

  void Overwrite(VpdBytes bytes, char with) {
    for (char& byte : bytes) {
      removed_ = static_cast<std::uint8_t>(removed_ + Unsigned(byte) - Unsigned(with));
      byte = with;
    }
  }

  VpdBytes rest_;
  /// By how much the sum of the bytes has become less since the last checksum.
  std::uint8_t removed_ = 0;
};

}  // namespace

void RedactVitalProductData(std::string& bytes) {
  VpdRedactor({bytes.data(), bytes.size()}).Redact();
}

}  // namespace pciinfo
