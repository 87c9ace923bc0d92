// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <cstdio>
#include <memory>

#include "framework/logger.h"
#include "framework/os_specific.h"
#include "pci/dev_info.h"
#include "pci/process_state.h"
#include "pci/slot_location.h"
#include "plugin/smbios_handle.h"
#include "plugin/structure_reader.h"

using NQZMVTQ20::fdrWriteLog;
using NQZMVTQ20::ILogger;
using NQZMVTQ20::kSmBiosVersionSize;
using NQZMVTQ20::smBiosGetVersion;
using NQZMVTQ20::TOSSpecific;
using NQZMVTQ20::TPluginManagerProvider;

// Initialised before any code of the plug-in runs, because a registry may ask for data while the
// plug-in registers.
constinit std::vector<SlotLocation> slotLocationVect;
constinit std::vector<SlotBusCollection> slotBusCollectionVect;
std::uint16_t tagCounter = 0;
char dbgBuff[kDbgBuffSize];

namespace {

enum RetrievalType : int { kNoBusInformation = 0, kFromOemStrings = 1, kFromSlots = 2 };

constexpr std::uint16_t kNoSegmentGroup = 0xFF;
constexpr std::uint8_t kBridgeHeader = 1;

using ConfigHeader = std::array<unsigned char, kConfigHeaderSize>;

void LogProgress(const char* text) { fdrWriteLog(ILogger::kDebug, text); }

template <class... Numbers>
const char* Format(const char* format, Numbers... numbers) {
  std::snprintf(dbgBuff, sizeof dbgBuff, format, numbers...);
  return dbgBuff;
}

void LogFailure(const char* format, int code) {
  fdrWriteLog(ILogger::kError, Format(format, code));
}

// Returns false and logs the reason if the tables cannot be opened.
bool OpenSmBios(const TPluginManagerProvider* provider, SmBiosHandle* smBios) {
  const int code = smBios->Load(provider);
  if (code != 0) LogFailure("Unable to open SMBIOS library error: %d", code);
  return code == 0;
}

struct SmBiosVersion {
  int major = 0;
  int minor = 0;
};

SmBiosVersion ReadVersion(void* smBios) {
  char text[kSmBiosVersionSize] = {};
  smBiosGetVersion(smBios, text);
  SmBiosVersion version;
  // Missing numbers stay 0. Unlike a stream, sscanf reads these numbers alike in every locale.
  // NOLINTNEXTLINE(cert-err34-c)
  std::sscanf(text, "%d.%d", &version.major, &version.minor);
  return version;
}

RetrievalType ExamineOemStrings(void* smBios) {
  StructureReader structures(smBios);
  for (int code = structures.First(kOemStringsType); code == 0; code = structures.Next()) {
    if (!DescribesSlot(FirstString(structures.Get()))) continue;
    LogProgress(
        "Exiting GetSlotIDRetrievalType, current SMBIOS version is 2.5 and type 11 contains bus "
        "info");
    return kFromOemStrings;
  }
  return kNoBusInformation;
}

// Firmware that has bus information has it for every slot, so checking the first slot is enough.
RetrievalType ExamineFirstSlot(void* smBios) {
  StructureReader structures(smBios);
  if (structures.First(kSystemSlotsType) != 0) return kNoBusInformation;
  if (structures.AsSlot().length > kLengthWithoutBus) {
    LogProgress(
        "Exiting GetSlotIDRetrievalType, current SMBIOS version >= 2.6 and type 9 contains bus "
        "info");
    return kFromSlots;
  }
  LogProgress(
      "Exiting GetSlotIDRetrievalType, current SMBIOS version >= 2.6 and type 9 contains no bus "
      "info");
  return kNoBusInformation;
}

RetrievalType Examine(void* smBios) {
  const SmBiosVersion version = ReadVersion(smBios);
  if (version.major == 2 && version.minor == 5) return ExamineOemStrings(smBios);
  if (version.major < 2 || (version.major == 2 && version.minor < 5)) {
    LogProgress("Exiting GetSlotIDRetrievalType, not support SlotID Retrieval Feature");
    return kNoBusInformation;
  }
  return ExamineFirstSlot(smBios);
}

// Returns the configuration file of a slot's function; empty if there is none.
std::string FindConfigFile(const SlotLocation& slot) {
  std::string path = Format("/sys/bus/pci/devices/%04x:%02x:%02x.%x/config", slot.segmentGroup,
                            slot.bus, slot.device, slot.function);
  LogProgress(path.c_str());
  if (TOSSpecific::FileExists(path)) return path;
  path = Format("/proc/bus/pci/%02x/%02x.%x", slot.bus, slot.device, slot.function);
  LogProgress(path.c_str());
  return TOSSpecific::FileExists(path) ? path : "";
}

bool ReadConfigHeader(const std::string& path, ConfigHeader* header) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                             std::fclose);
  if (!file) return false;  // not readable for this user: treated like a file that is too short
  std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return std::fread(header->data(), 1, header->size(), file.get()) == header->size();
}

// Appends the buses behind a slot, from the configuration header of the function in it.
void AppendBuses(const SlotLocation& slot, const ConfigHeader& header,
                 std::vector<SlotBusCollection>* collections) {
  const std::uint16_t vendor = ConfigWord(header, kConfigVendorId);
  if (vendor == 0x0000 || vendor == 0xFFFF) return;  // no function there
  if ((header[kConfigHeaderType] & 0x7F) == kBridgeHeader) {
    collections->push_back({slot.tag, slot.slotId, header[kConfigPrimaryBus],
                            header[kConfigSecondaryBus], header[kConfigSubordinateBus]});
  }
  collections->push_back({slot.tag, slot.slotId, slot.bus, slot.bus, slot.bus});
}

void AppendBusesOf(const SlotLocation& slot, std::vector<SlotBusCollection>* collections) {
  const std::string path = FindConfigFile(slot);
  if (path.empty()) {
    LogProgress("no PCI config file, read failed");
    return;
  }
  ConfigHeader header{};
  if (!ReadConfigHeader(path, &header)) {
    LogProgress("read PCI config failed");
    return;
  }
  AppendBuses(slot, header, collections);
}

// The primary bus of a bridge leads to its slot, like the buses behind the bridge. So functions on
// the same bus as the bridge count as being in its slot if its entry comes first.
bool LeadsTo(const SlotBusCollection& slot, int bus) {
  return slot.bus == bus || (slot.secondaryBus <= bus && bus <= slot.subordinateBus);
}

}  // namespace

int TPciDevInfo::GetSlotIDRetrievalType() {
  LogProgress("Entering GetSlotIDRetrievalType");
  SmBiosHandle smBios;
  if (!OpenSmBios(GetInfoHandle(), &smBios)) return kNoBusInformation;
  return Examine(smBios.Get());
}

int TPciDevInfo::readPCISlotLocation(std::vector<SlotLocation>* locations) {
  LogProgress("Entering readPCISlotLocation");
  SmBiosHandle smBios;
  if (!OpenSmBios(GetInfoHandle(), &smBios)) return -1;
  const bool fromSlots = processState.slotIDRetrievalType == kFromSlots;
  StructureReader structures(smBios.Get());
  int code = structures.First(fromSlots ? kSystemSlotsType : kOemStringsType);
  if (code != 0) {
    LogFailure("Return from smBiosGetFirst: %d", code);
    return -1;
  }
  for (tagCounter = 1; code == 0; code = structures.Next()) {
    if (fromSlots) {
      AppendSlotLocations(structures.AsSlot(), &tagCounter, locations);
    } else {
      AppendSlotLocation(FirstString(structures.Get()), &tagCounter, locations);
    }
  }
  code = smBios.Close();
  if (code != 0) LogFailure("Return from smBiosClose: %d", code);
  LogProgress("Exiting readPCISlotLocation");
  return 0;
}

int TPciDevInfo::readPCIConfigForSlots(std::vector<SlotLocation>* locations,
                                       std::vector<SlotBusCollection>* collections) {
  LogProgress("Entering readPCIConfigForSlots");
  for (const SlotLocation& slot : *locations) {
    LogProgress(Format("segNum = %x, bus = %x, dev = %x, func = %x", slot.segmentGroup, slot.bus,
                       slot.device, slot.function));
    // OEM strings do not contain the usage, so slots from them are always skipped.
    if (slot.currentUsage != kUsageInUse || slot.segmentGroup == kNoSegmentGroup) continue;
    AppendBusesOf(slot, collections);
  }
  LogProgress("Exiting readPCIConfigForSlots");
  return 0;
}

unsigned TPciDevInfo::correlateDeviceAndSlot(int bus, std::vector<SlotBusCollection>* collections) {
  LogProgress("Entering correlateDeviceAndSlot");
  for (const SlotBusCollection& slot : *collections) {
    if (LeadsTo(slot, bus)) {
      LogProgress("Exiting correlateDeviceAndSlot");
      return slot.tag;
    }
    LogProgress("not match slot");
  }
  // A function in no slot is not an error; the severity stays, because log readers count these
  // lines.
  fdrWriteLog(ILogger::kError, "Exiting correlateDeviceAndSlot");
  return kNoSlot;
}
