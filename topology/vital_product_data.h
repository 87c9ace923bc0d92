// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace topology {

/// The most that there can be: addresses of vital product data have 15 bits.
inline constexpr std::size_t kMostVitalProductData = 0x8000;

/// A keyword of two characters and its value.
struct VitalProductField {
  std::string keyword;
  std::string value;
};

/// Vital product data (PCI Local Bus 3.0, appendix I). Values are text; bytes that are not
/// printable ASCII are written "\x1f", and the blanks and zeros that fill a value are left out. The
/// fields that software may write are not decoded.
struct VitalProductData {
  std::string name;                         ///< of the product; empty: none
  std::vector<VitalProductField> readOnly;  ///< without the checksum
  std::optional<bool> checksumRight;        ///< nothing: the data has no checksum
  /// Why the decoding ended before the end tag; empty: it did not. What stands before is decoded.
  std::string problem;

  /// The value of the first read-only field of that keyword; empty if there is none.
  std::string Find(std::string_view keyword) const;
};

/// How many bytes, from the first one on, have to be read before decoding can go on: at most
/// bytes.size() when nothing behind them matters, because they hold the end tag or are no such
/// data. Used to read no more than that, because each four bytes can take milliseconds.
std::size_t NeededVitalProductData(std::string_view bytes);

/// Decodes what was read, from the first byte on.
VitalProductData DecodeVitalProductData(std::string_view bytes);

}  // namespace topology
