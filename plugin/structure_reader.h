// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>

#include "framework/smbios.h"
#include "plugin/dmi_type9.h"

/// Fetches SMBIOS structures of one type, one after another, into a buffer with zeros before and
/// after the structure. So a field that a short structure lacks, or an invalid string number or
/// length, reads zeros and never memory outside the buffer.
class StructureReader {
 public:
  static constexpr int kCapacity = 1024;
  /// A length that is read as a signed byte points back at most this far.
  static constexpr int kGuardBefore = 128;
  /// 255 empty strings and the zero after the last one.
  static constexpr int kGuardAfter = 256;

  /// `handle` comes from smBiosLoad, is not owned, and must outlive the reader.
  explicit StructureReader(void* handle) : handle_(handle) {}

  /// The status of smBiosGetFirst and smBiosGetNext.
  NQZMVTQ20::TVTQStatusCode::EVTQStatusCode First(int type);
  NQZMVTQ20::TVTQStatusCode::EVTQStatusCode Next();

  /// The structure that was fetched last; zeros if there is none.
  unsigned char* Get() { return buffer_.data() + kGuardBefore; }
  const DMIType9& AsSlot() { return *reinterpret_cast<const DMIType9*>(Get()); }

 private:
  void Clear();

  void* handle_;
  int size_ = kCapacity;
  std::array<unsigned char, kGuardBefore + kCapacity + kGuardAfter> buffer_{};
};
