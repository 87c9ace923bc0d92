// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <sstream>

#include "framework/smbios.h"
#include "host/check/class_facts_reader.h"
#include "runtime/smbios_access.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TVTQStatusCode;

constexpr int kSlotType = 9;
constexpr int kBufferSize = 1024;

/// The structure, followed by zeros, because a record may be shorter than its fields.
using Buffer = std::array<std::uint8_t, kBufferSize>;

/// The open SMBIOS tables.
class Tables final {
 public:
  explicit Tables(const std::string& directory)
      : status_(vtq::SmBiosLoadFrom(directory.c_str(), &handle_)) {}
  Tables(const Tables&) = delete;
  Tables& operator=(const Tables&) = delete;
  ~Tables() {
    if (handle_ != nullptr) NQZMVTQ20::smBiosClose(&handle_);
  }

  TVTQStatusCode::EVTQStatusCode GetStatus() const { return status_; }
  /// Versions before 2.6 have no slot addresses.
  bool HaveAddresses() const {
    char text[NQZMVTQ20::kSmBiosVersionSize] = {};
    NQZMVTQ20::smBiosGetVersion(handle_, text);
    int major = 0;
    int minor = 0;
    char dot = 0;
    std::istringstream(text) >> major >> dot >> minor;
    return major > 2 || (major == 2 && minor >= 6);
  }
  /// Reads the first or the next slot record; returns false if there is none.
  bool Fetch(bool first, Buffer& buffer) {
    int size = kBufferSize;
    buffer = {};
    const auto status = first ? NQZMVTQ20::smBiosGetFirst(handle_, kSlotType, buffer.data(), &size)
                              : NQZMVTQ20::smBiosGetNext(handle_, buffer.data(), &size);
    return status == TVTQStatusCode::kSuccess;
  }

 private:
  void* handle_ = nullptr;
  TVTQStatusCode::EVTQStatusCode status_;
};

SlotRecord ReadRecord(const Buffer& bytes) {
  const auto word = [&](std::size_t at) { return bytes[at] | unsigned{bytes[at + 1]} << 8U; };
  SlotRecord record;
  record.length = bytes[0x01];
  record.usage = bytes[0x07];
  record.segment = word(0x0D);
  const unsigned deviceFunction = bytes[0x10];
  record.address = {bytes[0x0F], deviceFunction >> 3U, deviceFunction & 7U};
  record.peerCount = bytes[0x12];
  for (std::size_t k = 0; k < std::min(record.peerCount, kMaxPeers); ++k) {
    record.peers.push_back({word(0x13 + 5 * k), bytes[0x15 + 5 * k]});
  }
  return record;
}

}  // namespace

SlotRecords ReadSlotRecords(const std::string& root) {
  Tables tables(root + vtq::kSmBiosDirectory);
  SlotRecords slots;
  slots.opened = tables.GetStatus();
  if (slots.opened != TVTQStatusCode::kSuccess) return slots;
  Buffer buffer{};
  for (bool found = tables.Fetch(true, buffer); found; found = tables.Fetch(false, buffer)) {
    slots.records.push_back(ReadRecord(buffer));
  }
  slots.haveAddresses = tables.HaveAddresses() && !slots.records.empty() &&
                        slots.records.front().length >= kLengthWithAddress;
  return slots;
}

}  // namespace pciinfo
