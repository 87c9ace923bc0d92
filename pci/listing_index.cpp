// SPDX-License-Identifier: Apache-2.0
#include "pci/listing_index.h"

#include <algorithm>
#include <utility>

#include "pci/tokens.h"

namespace {

constexpr std::string_view kShape = "xx:xx.x";  // x: a lower-case hexadecimal digit

bool IsAddress(std::string_view text) {
  return std::equal(text.begin(), text.end(), kShape.begin(), kShape.end(), [](char c, char shape) {
    return shape == 'x' ? (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') : c == shape;
  });
}

// Returns the rest of the line after a key that ends at `end` and the character that follows it.
std::string_view RestBehind(std::string_view line, std::size_t end) {
  return end + 1 < line.size() ? line.substr(end + 1) : std::string_view();
}

}  // namespace

ListingIndex::ListingIndex(std::string listing) : listing_(std::move(listing)) {
  ForEachToken(listing_, '\n', [this](std::string_view line) {
    for (std::size_t colon = line.find(':'); colon != std::string_view::npos;
         colon = line.find(':', colon + 1)) {
      if (colon < 2) continue;
      const std::string_view key = line.substr(colon - 2, kShape.size());
      const std::string_view rest = RestBehind(line, colon - 2 + kShape.size());
      if (!rest.empty() && IsAddress(key)) restByAddress_.emplace(key, rest);
    }
    return true;
  });
}

std::string_view ListingIndex::Find(std::string_view key) const {
  if (!IsAddress(key)) return Search(key);
  const auto found = restByAddress_.find(key);
  return found == restByAddress_.end() ? std::string_view() : found->second;
}

std::string_view ListingIndex::Search(std::string_view key) const {
  std::string_view rest;
  ForEachToken(listing_, '\n', [&](std::string_view line) {
    const std::size_t place = line.find(key);
    if (place != std::string_view::npos) rest = RestBehind(line, place + key.size());
    return rest.empty();
  });
  return rest;
}
