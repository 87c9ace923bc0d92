// SPDX-License-Identifier: Apache-2.0

// Compares the lookup of descriptions in a listing with a search without an index. An input is a
// key, a line end, and a listing.
#include "fuzz/fuzz.h"
#include "fuzz/models.h"
#include "pci/listing_index.h"

namespace {

using fuzz::Require;

constexpr std::size_t kKeyLength = 7;  // "00:1f.3"
constexpr std::size_t kMostKeys = 64;

using Lines = std::vector<std::string>;

// Returns the text after the key and one more character, in the first line where it is not empty.
// Only the first occurrence of the key in a line counts.
std::string PlainFind(const Lines& lines, const std::string& key) {
  for (const std::string& line : lines) {
    const std::size_t place = line.find(key);
    if (place == std::string::npos) continue;
    const std::size_t start = place + key.size() + 1;
    if (start < line.size()) return line.substr(start);
  }
  return "";
}

void CheckKey(const ListingIndex& index, const Lines& lines, const std::string& key) {
  Require(index.Find(key) == PlainFind(lines, key), "the index finds what the search finds");
}

// Checks every text with a colon at the position where an address has one.
void CheckAddresses(const ListingIndex& index, const Lines& lines, const std::string& listing) {
  std::size_t keys = 0;
  for (std::size_t colon = listing.find(':'); colon != std::string::npos && keys < kMostKeys;
       colon = listing.find(':', colon + 1)) {
    if (colon < 2) continue;
    CheckKey(index, lines, listing.substr(colon - 2, kKeyLength));
    ++keys;
  }
}

}  // namespace

void fuzz::CheckInput(std::string_view input) {
  Pieces pieces(input);
  const std::string key(pieces.Until('\n'));
  const std::string listing(pieces.Rest());
  const Lines lines = PlainTokens(listing, "\n");
  const ListingIndex index(listing);
  Require(index.IsEmpty() == listing.empty(), "an index is empty when its listing is");
  CheckKey(index, lines, key);
  CheckKey(index, lines, "00:00.0");
  CheckAddresses(index, lines, listing);
}
