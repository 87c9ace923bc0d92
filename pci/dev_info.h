// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "framework/cim_value.h"
#include "pci/records.h"
#include "plugin/collector.h"

/// Collector of PCI functions, of their slots, and of the raw listings. Keeps its data about the
/// machine in process-wide variables; the object itself has no data. Each file dev_info_<role>.cpp
/// contains the operations of one role.
class VTQ_EXPORT TPciDevInfo : public TPci {
 public:
  using TRecord = std::vector<sPciDevices>::iterator;

  /// Does not load the slot tables.
  explicit TPciDevInfo(std::shared_ptr<NQZMVTQ20::ICIMClass> cimClass);
  /// Loads the slot tables when it is first called in the process.
  TPciDevInfo(std::shared_ptr<NQZMVTQ20::ICIMClass> cimClass,
              NQZMVTQ20::TPluginManagerProvider* infoHandle);

  ~TPciDevInfo() override;
  using TPci::GetCIMInstances;
  std::vector<NQZMVTQ20::ICIMInstance*> GetCIMInstances(std::string className) override;

  /// Creates an instance from each map and appends it; logs and skips a map that the framework
  /// refuses.
  void GeneratePciInstances(std::vector<NQZMVTQ20::ICIMInstance*>* instances,
                            std::vector<TPropertyMap> maps, std::string className);
  /// The same without copying the maps, because copying an inventory takes as long as collecting
  /// it.
  [[gnu::visibility("hidden")]] void AppendInstances(
      std::vector<NQZMVTQ20::ICIMInstance*>* instances, const std::vector<TPropertyMap>& maps,
      const std::string& className);

  // Inventory: one pass over all functions.

  /// Appends a map for each bridge and each other function that could be read. If it throws, the
  /// maps of earlier functions stay.
  void GetPciInfo(std::vector<TPropertyMap>* bridges, std::vector<TPropertyMap>* devices);
  /// Returns the device key for an address "00:1f.2" that the hardware-probe tool prints.
  std::string Parsehwinfo(std::string address);
  /// Returns the device key for a "Location" text.
  std::string Parsedevid(std::string location);

  // Scan and configuration space.

  /// Returns the functions in the kernel's device list, in its order; empty if there is no such
  /// list. Does not return if a line has more than 511 characters.
  std::vector<sPciDevices> ScanPciDevices();
  /// Reads the 64-byte configuration header into the record. Returns 0 on success, 1 on failure.
  unsigned PciRead(TRecord record);
  /// Returns `value` in decimal, padded with leading spaces to `width` characters, never cut.
  std::string FormatToString(int value, unsigned width);

  // Descriptions.

  /// Returns the non-empty parts of `text` between any of the `delimiters`.
  std::vector<std::string> MultiStringTok(std::string& text, const char* delimiters);
  /// Returns the description that lspci prints for the function with that key ("00:1f.2"); empty if
  /// there is none.
  std::string GetLspciDeviceDescription(std::string key);
  /// Returns the description in /proc/pci of the function with that key (" Bus  0, device  31,
  /// function  2"); empty if there is none.
  std::string GetDeviceDescription(std::string key);

  // Slots. Statuses: 0 is success.

  /// See PciProcessState::slotIDRetrievalType.
  int GetSlotIDRetrievalType();
  /// Appends the locations of all slots that have one. Returns -1 if the firmware's tables cannot
  /// be read.
  int readPCISlotLocation(std::vector<SlotLocation>* locations);
  /// Appends the bus numbers behind each slot that is in use. Always returns 0.
  int readPCIConfigForSlots(std::vector<SlotLocation>* locations,
                            std::vector<SlotBusCollection>* collections);
  /// Returns the tag of the first slot that `bus` leads to; kNoSlot if there is none.
  unsigned correlateDeviceAndSlot(int bus, std::vector<SlotBusCollection>* collections);
  /// Returns a map for each function that is in a slot, if the framework holds instances of both.
  std::vector<TPropertyMap> MakeDeviceSlotAssociation();

  // Raw listings.

  /// Appends a map with the command and its output, one element per line. Drops text after the last
  /// line end. Throws TVTQException when the command fails.
  void GetPciRawData(std::vector<TPropertyMap>* maps, std::string command);

  // Properties of one function.

  /// Adds the keys that identify the computer system. Returns 0.
  int PopulateKeyProperties(TPropertyMap* properties);
  /// Returns 0, or 1 and an empty map if the device list and the configuration space disagree.
  int GetCommonDevProperties(TRecord record, TPropertyMap* properties);
  /// Returns an empty map if the function is rejected.
  TPropertyMap PopulatePciDeviceProperties(TRecord record);
  TPropertyMap PopulatePciBridgeProperties(TRecord record);
  /// Returns the base class code (PCI Code and ID Assignment 1.11, 1).
  std::uint8_t GetClassCode(TRecord record);
  /// Array values of uint16 and uint32.
  NQZMVTQ20::TCIMValue GetWordCimValue(std::vector<std::uint16_t> numbers);
  NQZMVTQ20::TCIMValue GetDwordCimValue(std::vector<std::uint32_t> numbers);
};

/// The locations of the machine's slots, the bus numbers behind them, and the tag of the next slot;
/// filled once in the process.
extern VTQ_EXPORT std::vector<SlotLocation> slotLocationVect;
extern VTQ_EXPORT std::vector<SlotBusCollection> slotBusCollectionVect;
extern VTQ_EXPORT std::uint16_t tagCounter;

/// What correlateDeviceAndSlot returns for a bus that no slot leads to.
inline constexpr unsigned kNoSlot = 0xFFFFFFFF;

/// Size of the buffer for formatted log lines of the slot routines.
inline constexpr unsigned kDbgBuffSize = 256;
extern VTQ_EXPORT char dbgBuff[kDbgBuffSize];
