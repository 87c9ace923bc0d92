// SPDX-License-Identifier: Apache-2.0
#include "topology/snapshot.h"

#include <algorithm>
#include <utility>

#include "framework/logger.h"
#include "framework/os_specific.h"
#include "framework/smbios.h"
#include "topology/firmware_records.h"
#include "topology/kernel_files.h"
#include "topology/slot_resolver.h"
#include "topology/slot_states.h"
#include "topology/whole_file.h"

namespace topology {
namespace {

using NQZMVTQ20::TOSSpecific;
using NQZMVTQ20::TVTQStatusCode;
using Status = TVTQStatusCode::EVTQStatusCode;

constexpr int kBoardType = 2;
constexpr int kSlotType = 9;
constexpr int kOnBoardType = 41;

/// The bytes of the structure at the front of `buffer`, which holds a complete one.
Structure StructureIn(const std::vector<unsigned char>& buffer) {
  std::size_t end = buffer[1];
  while (end + 1 < buffer.size() && (buffer[end] != 0 || buffer[end + 1] != 0)) ++end;
  return {buffer.data(), std::min(end + 2, buffer.size())};
}

/// Passes every structure of `type` to `take`. One that is larger than the buffer is left out.
/// Returns the status of the first, kNotFound if there is none.
template <class Take>
Status ForEachStructure(void* handle, int type, const Take& take) {
  // A formatted area of at most 255 bytes and as many strings; real ones have some hundred bytes.
  std::vector<unsigned char> buffer(0x10000);
  auto size = static_cast<int>(buffer.size());
  const Status first = NQZMVTQ20::smBiosGetFirst(handle, type, buffer.data(), &size);
  Status status = first;
  while (status == TVTQStatusCode::kSuccess || status == TVTQStatusCode::kBufferTooSmall) {
    if (status == TVTQStatusCode::kSuccess) take(StructureIn(buffer));
    status = NQZMVTQ20::smBiosGetNext(handle, buffer.data(), &size);
  }
  return first;
}

std::string Reason(Status status) {
  switch (status) {
    case TVTQStatusCode::kNotFound:
      return "the firmware gives no SMBIOS tables";
    case TVTQStatusCode::kAccessDenied:
      return "the SMBIOS tables can be read by root only";
    case TVTQStatusCode::kCorruptData:
      return "the SMBIOS tables are damaged";
    default:
      return "the SMBIOS tables could not be read";
  }
}

/// Says in the framework's log why instances are missing.
void Report(const std::string& record) {
  NQZMVTQ20::fdrWriteLog(NQZMVTQ20::ILogger::kStatus, record.c_str());
}

void ReportStatus(const std::string& what, Status status) {
  Report(what + ": status " + std::to_string(status));
}

void ReadFirmware(const NQZMVTQ20::TPluginManagerProvider* provider, Machine& machine) {
  void* handle = nullptr;
  const Status status = NQZMVTQ20::smBiosLoad(provider, &handle);
  if (status != TVTQStatusCode::kSuccess) {
    machine.noRecordsBecause = Reason(status);
    ReportStatus("SMBIOS tables not loaded", status);
    return;
  }
  const std::unique_ptr<void, void (*)(void*)> closer(
      handle, [](void* open) { NQZMVTQ20::smBiosClose(&open); });
  const Status first = ForEachStructure(handle, kSlotType, [&](Structure structure) {
    if (auto record = DecodeSlotRecord(structure)) {
      machine.slotRecords.push_back(std::move(*record));
    }
  });
  if (first != TVTQStatusCode::kSuccess) ReportStatus("SMBIOS slot records not read", first);
  ForEachStructure(handle, kBoardType, [&](Structure structure) {
    if (auto record = DecodeBoardRecord(structure)) {
      machine.boardRecords.push_back(std::move(*record));
    }
  });
  ForEachStructure(handle, kOnBoardType, [&](Structure structure) {
    if (auto record = DecodeOnBoardRecord(structure)) {
      machine.onBoardRecords.push_back(std::move(*record));
    }
  });
}

/// Distributions keep the file of names in one of these places.
std::string ReadNames() {
  for (const char* path : {"/usr/share/misc/pci.ids", "/usr/share/hwdata/pci.ids"}) {
    if (TOSSpecific::FileExists(path)) return ReadWhole(path).value_or("");
  }
  return {};
}

}  // namespace

Snapshot::Snapshot(Machine machine, PciNames names)
    : machine_(std::move(machine)),
      tree_(machine_.functions),
      resolution_(ResolveSlots(machine_, tree_)),
      names_(std::move(names)) {}

std::unique_ptr<Snapshot> Snapshot::Take(const NQZMVTQ20::TPluginManagerProvider* provider) {
  Machine machine;
  PciNames names;
  machine.functions = ReadFunctions([&] {
    names = PciNames(ReadNames());
    machine.kernelSlots = ReadKernelSlots();
    ReadSlotStates(machine.kernelSlots);
  });
  if (machine.functions.empty()) Report("The kernel shows no PCI functions.");
  ReadFirmware(provider, machine);
  return std::unique_ptr<Snapshot>(new Snapshot(std::move(machine), std::move(names)));
}

}  // namespace topology
