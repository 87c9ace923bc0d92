// SPDX-License-Identifier: Apache-2.0

// Vital product data: decoded, read piece by piece, and redacted. An input is such data.
#include <vector>

#include "fuzz/fuzz.h"
#include "host/capture/redact_vpd.h"
#include "topology/vital_product_data.h"

namespace {

using fuzz::Require;

using topology::VitalProductData;

unsigned ByteAt(std::string_view bytes, std::size_t place) {
  return static_cast<std::uint8_t>(bytes[place]);
}

// The read-only keywords, found by walking over the tags (PCI Local Bus 3.0, appendix I).
std::vector<std::string> PlainKeywords(std::string_view bytes) {
  std::vector<std::string> keywords;
  std::size_t place = 0;
  while (place + 3 <= bytes.size()) {
    const unsigned tag = ByteAt(bytes, place);
    if (tag != 0x82 && tag != 0x90 && tag != 0x91) break;
    const std::size_t section = place + 3;
    place = section + ByteAt(bytes, place + 1) + 256 * ByteAt(bytes, place + 2);
    const std::size_t end = std::min(place, bytes.size());
    std::size_t field = section;
    while (tag == 0x90 && field + 3 <= end) {
      const std::size_t next = field + 3 + ByteAt(bytes, field + 2);
      if (next > end) return keywords;
      const std::string keyword(bytes.substr(field, 2));
      if (keyword != "RV") keywords.push_back(keyword);
      field = next;
    }
  }
  return keywords;
}

bool IsPrintable(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

void CheckDecoded(std::string_view bytes, const VitalProductData& data) {
  const std::vector<std::string> keywords = PlainKeywords(bytes);
  Require(data.readOnly.size() == keywords.size(), "every field is found, and no other");
  for (std::size_t i = 0; i < keywords.size(); ++i) {
    const bool isPlain = IsPrintable(keywords[i]) && keywords[i].back() != ' ';
    Require(!isPlain || data.readOnly[i].keyword == keywords[i], "in their order");
    Require(IsPrintable(data.readOnly[i].keyword) && IsPrintable(data.readOnly[i].value),
            "texts are printable");
  }
  Require(IsPrintable(data.name), "the name is printable");
}

bool IsSame(const VitalProductData& left, const VitalProductData& right) {
  const auto isSameField = [](const auto& one, const auto& other) {
    return one.keyword == other.keyword && one.value == other.value;
  };
  return left.name == right.name && left.checksumRight == right.checksumRight &&
         left.problem == right.problem &&
         std::equal(left.readOnly.begin(), left.readOnly.end(), right.readOnly.begin(),
                    right.readOnly.end(), isSameField);
}

// Reading only what is needed loses nothing.
void CheckReading(std::string_view bytes, const VitalProductData& whole) {
  std::string_view read;
  for (int steps = 0; steps < 20000; ++steps) {
    const std::size_t needed = topology::NeededVitalProductData(read);
    if (needed <= read.size() || read.size() == bytes.size()) {
      Require(IsSame(topology::DecodeVitalProductData(read), whole), "what was read is enough");
      return;
    }
    read = bytes.substr(0, needed);
  }
  Require(false, "reading ends");
}

void CheckRedacted(std::string_view bytes, const VitalProductData& whole) {
  std::string redacted(bytes);
  pciinfo::RedactVitalProductData(redacted);
  Require(redacted.size() == bytes.size(), "redaction keeps the length");
  const VitalProductData data = topology::DecodeVitalProductData(redacted);
  Require(data.checksumRight == whole.checksumRight || !whole.problem.empty(),
          "redaction keeps a right checksum right and a wrong one wrong");
  for (const topology::VitalProductField& field : data.readOnly) {
    const bool isSecret =
        field.keyword == "SN" || field.keyword[0] == 'V' || field.keyword[0] == 'Y';
    Require(!isSecret || field.value.find_first_not_of('X') == std::string::npos,
            "nothing that identifies a card is left");
  }
}

}  // namespace

void fuzz::CheckInput(std::string_view input) {
  const VitalProductData data = topology::DecodeVitalProductData(input);
  CheckDecoded(input, data);
  CheckReading(input, data);
  CheckRedacted(input, data);
}
