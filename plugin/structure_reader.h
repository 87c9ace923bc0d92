#pragma once

#include <array>

#include "framework/smbios.h"
#include "plugin/dmi_type9.h"

/// Fetches SMBIOS structures of one type, one after another, into a buffer that may be read beyond
/// what was fetched: fields that a short structure lacks, and string numbers or lengths that point
/// nowhere, lead to zeros, never outside of the buffer.
class StructureReader {
 public:
  static constexpr int kCapacity = 1024;
  /// A length read as a signed byte points at most this far back.
  static constexpr int kGuardBefore = 128;
  /// 255 empty strings, and the zero behind the last one.
  static constexpr int kGuardAfter = 256;

  /// `handle` comes from smBiosLoad, is not owned, and must outlive the reader.
  explicit StructureReader(void* handle) : handle_(handle) {}

  /// The status of smBiosGetFirst and smBiosGetNext.
  NQZMVTQ20::TVTQStatusCode::EVTQStatusCode First(int type);
  NQZMVTQ20::TVTQStatusCode::EVTQStatusCode Next();

  /// The structure that was fetched last; zeros when none was.
  unsigned char* Get() { return buffer_.data() + kGuardBefore; }
  const DMIType9& AsSlot() { return *reinterpret_cast<const DMIType9*>(Get()); }

 private:
  void Clear();

  void* handle_;
  int size_ = kCapacity;
  std::array<unsigned char, kGuardBefore + kCapacity + kGuardAfter> buffer_{};
};
