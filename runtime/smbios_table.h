// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "framework/export.h"

namespace vtq {

/// The content of an SMBIOS entry point (DSP0134, 5.2).
struct SmBiosEntryPoint {
  int majorVersion = 0;
  int minorVersion = 0;
  /// Maximum size of the table in bytes.
  std::size_t tableLength = 0;
  /// Number of structures in the table; 0 if the entry point does not say.
  std::size_t structureCount = 0;
  /// Whether an end-of-table structure (type 127) ends the table.
  bool endsAtMarker = false;
};

/// Parses an entry point: `_SM3_` (5.2.2), `_SM_` (5.2.1) with its `_DMI_` part, or a `_DMI_` part
/// alone, as on machines before version 2.1, whose version is in its BCD revision byte. Also
/// accepts a `_SM_` entry point of 30 bytes, because version 2.1 of the standard stated this wrong
/// length; the last byte of its `_DMI_` part is then missing, so only the outer checksum is
/// checked. Throws TVTQException (kCorruptData) for an unknown anchor, a wrong checksum, or a
/// length that is too small or reaches past `bytes`.
VTQ_EXPORT SmBiosEntryPoint ParseSmBiosEntryPoint(std::span<const std::uint8_t> bytes);

/// An entry point and its table, which may be longer or shorter than the entry point says.
struct SmBiosTable {
  SmBiosEntryPoint entryPoint;
  std::vector<std::uint8_t> bytes;
};

/// Iterates over the structures of a table, which it does not own.
///
/// The walk ends at the table length of the entry point or at the end of the bytes. For `_SM_` and
/// `_DMI_` it also ends after the number of structures in the entry point, if it has one; an
/// end-of-table structure does not end it, because vendor-specific structures may follow. For
/// `_SM3_`, which has no number of structures, it ends after an end-of-table structure. It also
/// ends at a structure with a length below 4, because the next one cannot be found, and at a
/// structure that the end of the bytes cuts off.
class VTQ_EXPORT SmBiosWalk final {
 public:
  explicit SmBiosWalk(const SmBiosTable& table) noexcept;

  /// Returns the next structure: its formatted area, its strings and the two zero bytes that end
  /// them. It has at least 6 bytes; the first is the type, the second the length of the formatted
  /// area. Returns nothing at the end and after it.
  std::optional<std::span<const std::uint8_t>> Next() noexcept;

 private:
  const SmBiosTable* table_;
  std::size_t position_ = 0;
  std::size_t delivered_ = 0;
  bool ended_ = false;
};

}  // namespace vtq
