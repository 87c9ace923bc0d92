// SPDX-License-Identifier: Apache-2.0

// Configuration spaces with any capabilities, as bytes and as listings: which bytes redaction
// clears. An input is a configuration space; it is also read as the text of a listing.
#include <array>
#include <random>
#include <span>
#include <vector>

#include "fuzz/fuzz.h"
#include "fuzz/mutate.h"
#include "host/capture/redact_config.h"

namespace {

using fuzz::Require;

constexpr std::size_t kExtended = 0x100;
constexpr std::size_t kHeader = 4;
constexpr unsigned kSerialNumber = 3;

unsigned ByteAt(std::string_view bytes, std::size_t place) {
  return place < bytes.size() ? static_cast<std::uint8_t>(bytes[place]) : 0;
}

// Which bytes belong to a device serial number (PCI Express Base 7.9.3), for each byte. A
// capability's header has its ID in the low 16 bits and the place of the next one in the high 12.
std::vector<bool> PlainSerialNumbers(std::string_view bytes) {
  std::vector<bool> isNumber(bytes.size());
  std::vector<bool> isSeen(bytes.size());
  std::size_t place = kExtended;
  while (place >= kExtended && place + kHeader <= bytes.size() && !isSeen[place]) {
    isSeen[place] = true;
    const bool holdsNumber = ByteAt(bytes, place) + 256 * ByteAt(bytes, place + 1) == kSerialNumber;
    for (std::size_t i = place + 4; holdsNumber && i < place + 12 && i < bytes.size(); ++i) {
      isNumber[i] = true;
    }
    place = (16 * ByteAt(bytes, place + 3) + ByteAt(bytes, place + 2) / 16) & ~std::size_t{3};
  }
  return isNumber;
}

std::string PlainRedacted(std::string bytes) {
  const std::vector<bool> isNumber = PlainSerialNumbers(bytes);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (isNumber[i]) bytes[i] = '\0';
  }
  return bytes;
}

// The bytes as "lspci -xxxx" prints them.
std::string ListingOf(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string listing = "00:00.0 Something";
  listing.reserve(4 * bytes.size() + 64);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i % 16 == 0) listing.append("\n10:");
    const unsigned byte = ByteAt(bytes, i);
    const char column[] = {' ', kDigits[byte / 16], kDigits[byte % 16]};
    listing.append(column, sizeof column);
  }
  return listing + "\n\n";
}

void CheckConfigSpace(const std::string& bytes) {
  const std::string expected = PlainRedacted(bytes);
  std::string redacted = bytes;
  pciinfo::RedactConfigSpace(redacted);
  Require(redacted == expected, "exactly the bytes of serial numbers are cleared");
  const std::string other(16, '\x03');
  std::string listing = ListingOf(other) + ListingOf(bytes) + ListingOf(other);
  pciinfo::RedactHexListing(listing);
  Require(listing == ListingOf(other) + ListingOf(expected) + ListingOf(other),
          "in a listing the same bytes, whatever other functions are there");
}

// Whatever the text is, redaction changes no length and no line.
void CheckText(const std::string& text) {
  std::string verbose = text;
  pciinfo::RedactVerboseListing(verbose);
  std::string hex = text;
  pciinfo::RedactHexListing(hex);
  Require(verbose.size() == text.size() && hex.size() == text.size(), "a listing keeps its length");
  for (std::size_t i = 0; i < text.size(); ++i) {
    Require(verbose[i] == text[i] || (verbose[i] == 'X' && text[i] != '\n'),
            "only values become X");
    Require(hex[i] == text[i] || (hex[i] == '0' && text[i] != '\n'), "only digits become 0");
  }
}

}  // namespace

void fuzz::CheckInput(std::string_view input) {
  const std::string bytes(input);
  CheckConfigSpace(bytes);
  CheckText(bytes);
}

namespace {

using Random = std::minstd_rand;

// Writes a capability's header at a place where the list may lead, with any other place behind it.
void PutCapability(std::uint8_t* bytes, std::size_t size, Random& random) {
  constexpr std::array<unsigned, 6> kIds = {kSerialNumber, kSerialNumber, 0, 1, 0x0B, 0xFFFF};
  const auto any = [&] { return kExtended + random() % ((size - kExtended) / 4) * 4; };
  std::size_t place = random() % 4 == 0 ? any() : kExtended;
  for (unsigned steps = random() % 8; steps > 0; --steps) {
    const std::size_t next = (16U * bytes[place + 3] + bytes[place + 2] / 16U) & 0xFFCU;
    if (next < kExtended || next + kHeader > size) break;
    place = next;
  }
  const unsigned id = kIds[random() % kIds.size()];
  const std::size_t next = random() % 8 == 0 ? random() % 4096 : any();
  bytes[place] = static_cast<std::uint8_t>(id);
  bytes[place + 1] = static_cast<std::uint8_t>(id / 256);
  bytes[place + 2] = static_cast<std::uint8_t>(1 + next % 16 * 16);
  bytes[place + 3] = static_cast<std::uint8_t>(next / 16);
}

}  // namespace

// Nearly no changed byte makes a list of capabilities longer, so most changes add one to it.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size,
                                               std::size_t most, unsigned seed) {
  Random random(seed);
  if (size < kExtended + kHeader || random() % 3 == 0) return LLVMFuzzerMutate(bytes, size, most);
  PutCapability(bytes, size / 4 * 4, random);
  return size;
}
