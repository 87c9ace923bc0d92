#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "framework/export.h"

namespace vtq {

/// What an SMBIOS entry point says (DSP0134, 5.2).
struct SmBiosEntryPoint {
  int majorVersion = 0;
  int minorVersion = 0;
  /// Bytes of the table, at most.
  std::size_t tableLength = 0;
  /// Structures in the table; 0 where the entry point does not say.
  std::size_t structureCount = 0;
  /// Whether an end-of-table structure (type 127) is the table's last.
  bool endsAtMarker = false;
};

/// Reads an entry point: `_SM3_` (5.2.2), `_SM_` (5.2.1) with the `_DMI_` part inside it, or a
/// `_DMI_` part alone, as machines before version 2.1 have it. The version of the last comes from
/// its BCD revision byte. A `_SM_` entry point of 30 bytes is taken as well: version 2.1 of the
/// standard misstated its length so, and the checksum of the part inside, whose last byte is then
/// missing, is left to the outer checksum. Throws TVTQException (kCorruptData) for an unknown
/// anchor, a wrong checksum, or a length that is too small or reaches past `bytes`.
VTQ_EXPORT SmBiosEntryPoint ParseSmBiosEntryPoint(std::span<const std::uint8_t> bytes);

/// An entry point and its table, of which more or less may be there than the entry point says.
struct SmBiosTable {
  SmBiosEntryPoint entryPoint;
  std::vector<std::uint8_t> bytes;
};

/// Goes over the structures of a table, which it does not own, from the first to the last.
///
/// The walk ends where the entry point's length or the bytes end; for `_SM_` and `_DMI_` after the
/// entry point's number of structures, if it says one (their end-of-table structure is an ordinary
/// one: vendors' structures may follow it); for `_SM3_`, which counts no structures, after an
/// end-of-table structure. It ends as well at a structure that states a length below 4, since the
/// next one cannot be found behind it, and at one that does not end before the bytes do.
class VTQ_EXPORT SmBiosWalk final {
 public:
  explicit SmBiosWalk(const SmBiosTable& table) noexcept;

  /// The next structure: its formatted area, its strings and the two zero bytes that end them. It
  /// has at least 6 bytes, the type in the first, the length of the formatted area in the second.
  /// Nothing at the end, and ever after.
  std::optional<std::span<const std::uint8_t>> Next() noexcept;

 private:
  const SmBiosTable* table_;
  std::size_t position_ = 0;
  std::size_t delivered_ = 0;
  bool ended_ = false;
};

}  // namespace vtq
