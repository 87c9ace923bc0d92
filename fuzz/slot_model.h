// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/smbios_model.h"
#include "tests/fakes/framework.h"

namespace fuzz {

constexpr std::size_t kStructureBuffer = 1024;

/// The memory around a fetched structure: its bytes, with zeros before and after them.
class PlainMemory final {
 public:
  explicit PlainMemory(std::string structure) : structure_(std::move(structure)) {}

  const std::string& Bytes() const { return structure_; }

  unsigned At(int place) const {
    if (place < 0 || place >= static_cast<int>(structure_.size())) return 0;
    return static_cast<std::uint8_t>(structure_[static_cast<std::size_t>(place)]);
  }
  unsigned WordAt(int place) const { return At(place) + 256 * At(place + 1); }
  int SignedAt(int place) const {
    const int byte = static_cast<int>(At(place));
    return byte < 128 ? byte : byte - 256;
  }

  /// The text at `place`, up to a zero.
  std::string TextAt(int place) const {
    std::string text;
    for (; At(place) != 0; ++place) text += static_cast<char>(At(place));
    return text;
  }

  /// The place after the text at `place` and its zero.
  int Behind(int place) const {
    while (At(place) != 0) ++place;
    return place + 1;
  }

 private:
  std::string structure_;
};

/// Sets the first structures of `table`, at most `most`, as those of the fake framework and returns
/// them.
inline std::vector<std::string> ServeStructures(std::string_view table, std::size_t most) {
  std::vector<std::string> structures = PlainStructures(table, most);
  Fake() = {};
  for (const std::string& structure : structures) {
    Fake().smBios.structures.emplace_back(structure.begin(), structure.end());
  }
  return structures;
}

/// Returns the structures that a collector of one type gets: up to one that does not fit into its
/// buffer. With `thenAll`, the framework returns structures of all types after the first.
inline std::vector<PlainMemory> FetchedOf(const std::vector<std::string>& structures, int type,
                                          bool thenAll = false) {
  std::vector<PlainMemory> fetched;
  for (const std::string& structure : structures) {
    const bool asked = static_cast<std::uint8_t>(structure[0]) == type;
    if (!asked && (!thenAll || fetched.empty())) continue;
    if (structure.size() > kStructureBuffer) break;
    fetched.emplace_back(structure);
  }
  return fetched;
}

}  // namespace fuzz
