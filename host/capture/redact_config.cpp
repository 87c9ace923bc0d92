// SPDX-License-Identifier: Apache-2.0
#include "host/capture/redact_config.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <set>
#include <string_view>
#include <vector>

namespace pciinfo {
namespace {

// PCI Express Base 7.9.3.
constexpr std::size_t kFirstExtended = 0x100;
constexpr unsigned kSerialNumberCapability = 0x0003;
constexpr std::size_t kNumberOffset = 4;
constexpr std::size_t kNumberLength = 8;

std::uint32_t Word32(std::string_view bytes, std::size_t offset) {
  std::uint32_t word = 0;
  for (std::size_t i = 4; i-- > 0;) {
    word = word << 8 | static_cast<unsigned char>(bytes[offset + i]);
  }
  return word;
}

/// Returns the offsets of device serial numbers in a configuration space. Visits each capability
/// once, so a circular list ends.
std::vector<std::size_t> SerialNumbersIn(std::string_view bytes) {
  std::vector<std::size_t> places;
  std::set<std::size_t> seen;
  std::size_t offset = kFirstExtended;
  while (offset >= kFirstExtended && offset + 4 <= bytes.size() && seen.insert(offset).second) {
    const std::uint32_t header = Word32(bytes, offset);
    if ((header & 0xFFFF) == kSerialNumberCapability) places.push_back(offset + kNumberOffset);
    offset = header >> 20 & 0xFFC;
  }
  return places;
}

/// The bytes of one function in a hexadecimal listing, and the position of the digits of each.
struct HexDump {
  std::string bytes;
  std::vector<std::size_t> places;
};

bool IsHexDigit(char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; }

int HexValue(char c) {
  return std::isdigit(static_cast<unsigned char>(c)) != 0 ? c - '0' : (c | 0x20) - 'a' + 10;
}

/// Adds the bytes of a line such as "10: 00 0f" of a listing. Returns whether it had any.
bool AddHexLine(HexDump& dump, std::string_view listing, std::size_t start, std::size_t end) {
  std::size_t place = start;
  while (place < end && IsHexDigit(listing[place])) ++place;
  if (place == start || place == end || listing[place] != ':') return false;
  const std::size_t before = dump.bytes.size();
  ++place;
  while (place + 3 <= end && listing[place] == ' ' && IsHexDigit(listing[place + 1]) &&
         IsHexDigit(listing[place + 2])) {
    const int byte = HexValue(listing[place + 1]) * 16 + HexValue(listing[place + 2]);
    dump.bytes += static_cast<char>(byte);
    dump.places.push_back(place + 1);
    place += 3;
  }
  return dump.bytes.size() > before;
}

void RedactDump(const HexDump& dump, std::string& listing) {
  for (const std::size_t number : SerialNumbersIn(dump.bytes)) {
    const std::size_t end = std::min(number + kNumberLength, dump.bytes.size());
    for (std::size_t i = number; i < end; ++i) std::fill_n(&listing[dump.places[i]], 2, '0');
  }
}

/// Returns where the value begins in a line of vital product data that can identify a card, or npos
/// for other lines. Such fields are the serial number and the vendor- and system-specific fields
/// (PCI Local Bus 3.0, I.3); each has its own line, such as "[SN] Serial number: 1234".
std::size_t VitalProductValue(std::string_view line) {
  const std::size_t text = std::min(line.find_first_not_of(" \t"), line.size());
  const std::string_view field = line.substr(text);
  if (!field.starts_with("[SN]") && !field.starts_with("[V") && !field.starts_with("[Y")) {
    return std::string_view::npos;
  }
  return line.find(": ", text);
}

/// Returns where the device serial number in a line begins, or npos.
std::size_t SerialNumberValue(std::string_view line) {
  constexpr std::string_view kName = "Device Serial Number ";
  const std::size_t place = line.find(kName);
  return place == std::string_view::npos ? place : place + kName.size();
}

void RedactLine(std::string& listing, std::size_t start, std::size_t end) {
  const std::string_view line = std::string_view(listing).substr(start, end - start);
  const std::size_t value = std::min(VitalProductValue(line), SerialNumberValue(line));
  if (value == std::string_view::npos) return;
  std::replace_if(
      listing.begin() + static_cast<std::ptrdiff_t>(start + value),
      listing.begin() + static_cast<std::ptrdiff_t>(end),
      [](unsigned char c) { return c > ' ' && c != '-' && c != ':'; }, 'X');
}

/// Calls `use` with the begin and the end of every line.
template <class Use>
void ForEachLine(const std::string& text, const Use& use) {
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    use(start, end);
    start = end + 1;
  }
}

}  // namespace

void RedactConfigSpace(std::string& bytes) {
  for (const std::size_t number : SerialNumbersIn(bytes)) {
    const std::size_t length = std::min(kNumberLength, bytes.size() - number);
    bytes.replace(number, length, length, '\0');
  }
}

void RedactHexListing(std::string& listing) {
  HexDump dump;
  ForEachLine(listing, [&](std::size_t start, std::size_t end) {
    if (AddHexLine(dump, listing, start, end)) return;
    RedactDump(dump, listing);
    dump = {};
  });
  RedactDump(dump, listing);
}

void RedactVerboseListing(std::string& listing) {
  ForEachLine(listing,
              [&](std::size_t start, std::size_t end) { RedactLine(listing, start, end); });
}

}  // namespace pciinfo
