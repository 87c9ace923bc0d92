#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

/// A listing with one line a device, and the places where device addresses stand in it.
///
/// A description is looked up once for each function, and a listing has a line for each function:
/// searching the whole text every time would cost the square of their number.
class ListingIndex {
 public:
  ListingIndex() = default;
  explicit ListingIndex(std::string listing);
  ListingIndex(const ListingIndex&) = delete;  // the index points into the listing
  ListingIndex& operator=(const ListingIndex&) = delete;
  ~ListingIndex() = default;

  bool IsEmpty() const { return listing_.empty(); }

  /// What follows the first occurrence of `key`, and the one character behind it, in the first line
  /// where at least one more character follows; empty when there is no such line. Immediate for a
  /// key of the form "00:1f.2", a search through the text for any other.
  std::string_view Find(std::string_view key) const;

 private:
  std::string_view Search(std::string_view key) const;

  std::string listing_;
  std::unordered_map<std::string_view, std::string_view> restByAddress_;
};
