// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

/// A listing with one line per device, and an index of the device addresses in it.
///
/// The description of every function is looked up, and the listing has a line for every function.
/// So searching the text each time would take quadratic time.
class ListingIndex {
 public:
  ListingIndex() = default;
  explicit ListingIndex(std::string listing);
  ListingIndex(const ListingIndex&) = delete;  // the index points into the listing
  ListingIndex& operator=(const ListingIndex&) = delete;
  ~ListingIndex() = default;

  bool IsEmpty() const { return listing_.empty(); }

  /// Returns the text after the first occurrence of `key` and one more character, in the first line
  /// where that text is not empty; empty if there is no such line. Uses the index for a key of the
  /// form "00:1f.2", and searches the text for any other key.
  std::string_view Find(std::string_view key) const;

 private:
  std::string_view Search(std::string_view key) const;

  std::string listing_;
  std::unordered_map<std::string_view, std::string_view> restByAddress_;
};
