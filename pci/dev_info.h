#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "framework/cim_value.h"
#include "pci/records.h"
#include "plugin/collector.h"

/// Collector of PCI functions, of their places in slots, and of the raw listings. Everything that
/// it finds about the machine is kept process-wide; the object itself holds nothing. Each file
/// dev_info_<role>.cpp holds the operations of one role.
class VTQ_EXPORT TPciDevInfo : public TPci {
 public:
  using TRecord = std::vector<sPciDevices>::iterator;

  /// Leaves the slot tables alone.
  explicit TPciDevInfo(std::shared_ptr<NQZMVTQ20::ICIMClass> cimClass);
  /// Loads the slot tables, the first time in the process.
  TPciDevInfo(std::shared_ptr<NQZMVTQ20::ICIMClass> cimClass,
              NQZMVTQ20::TPluginManagerProvider* infoHandle);

  ~TPciDevInfo() override;
  using TPci::GetCIMInstances;
  std::vector<NQZMVTQ20::ICIMInstance*> GetCIMInstances(std::string className) override;

  /// Turns each map into an instance and appends it; a map that the framework refuses is logged and
  /// left out.
  void GeneratePciInstances(std::vector<NQZMVTQ20::ICIMInstance*>* instances,
                            std::vector<TPropertyMap> maps, std::string className);
  /// The same with maps that stay the caller's: copying an inventory costs as much as taking it.
  [[gnu::visibility("hidden")]] void AppendInstances(
      std::vector<NQZMVTQ20::ICIMInstance*>* instances, const std::vector<TPropertyMap>& maps,
      const std::string& className);

  // Inventory: one pass over all functions.

  /// Appends a map for each bridge and each other function that could be read. When it throws, the
  /// maps of the functions before stay.
  void GetPciInfo(std::vector<TPropertyMap>* bridges, std::vector<TPropertyMap>* devices);
  /// The device key for an address "00:1f.2" that the probe tool prints.
  std::string Parsehwinfo(std::string address);
  /// The device key for a "Location" text.
  std::string Parsedevid(std::string location);

  // Scan and configuration space.

  /// The functions in the kernel's device list, in its order; empty when there is no such list. A
  /// line of more than 511 characters keeps it from returning.
  std::vector<sPciDevices> ScanPciDevices();
  /// Reads the 64-byte configuration header into the record: 0 when done, 1 when not.
  unsigned PciRead(TRecord record);
  /// `value` in decimal, right-aligned with blanks to `width` characters, never cut.
  std::string FormatToString(int value, unsigned width);

  // Descriptions.

  /// The non-empty pieces of `text` between any of the `delimiters`.
  std::vector<std::string> MultiStringTok(std::string& text, const char* delimiters);
  /// What "lspci" prints for the function with that key ("00:1f.2"); empty when it knows none.
  std::string GetLspciDeviceDescription(std::string key);
  /// What /proc/pci says of the function with that key (" Bus  0, device  31, function  2"); empty
  /// when it knows none.
  std::string GetDeviceDescription(std::string key);

  // Slots. Statuses: 0 is success.

  /// See PciProcessState::slotIDRetrievalType.
  int GetSlotIDRetrievalType();
  /// Appends the places of all slots that have one; -1 when the firmware's tables cannot be read.
  int readPCISlotLocation(std::vector<SlotLocation>* locations);
  /// Appends the bus numbers behind each slot that is in use; always 0.
  int readPCIConfigForSlots(std::vector<SlotLocation>* locations,
                            std::vector<SlotBusCollection>* collections);
  /// The tag of the first slot that `bus` leads to, 0xFFFFFFFF when there is none.
  unsigned correlateDeviceAndSlot(int bus, std::vector<SlotBusCollection>* collections);
  /// A map for each function that the framework holds and that sits in a slot that it holds.
  std::vector<TPropertyMap> MakeDeviceSlotAssociation();

  // Raw listings.

  /// Appends a map with the command and its output, an element a line. Text behind the last line
  /// end is dropped. Throws TVTQException when the command fails.
  void GetPciRawData(std::vector<TPropertyMap>* maps, std::string command);

  // Properties of one function.

  /// 0; adds the keys that name the computer system.
  int PopulateKeyProperties(TPropertyMap* properties);
  /// 0, or 1 and an empty map when device list and configuration space disagree.
  int GetCommonDevProperties(TRecord record, TPropertyMap* properties);
  /// Empty when the function is rejected.
  TPropertyMap PopulatePciDeviceProperties(TRecord record);
  TPropertyMap PopulatePciBridgeProperties(TRecord record);
  /// The base class code (PCI Code and ID Assignment 1.11, 1).
  std::uint8_t GetClassCode(TRecord record);
  /// Array values of uint16 and uint32.
  NQZMVTQ20::TCIMValue GetWordCimValue(std::vector<std::uint16_t> numbers);
  NQZMVTQ20::TCIMValue GetDwordCimValue(std::vector<std::uint32_t> numbers);
};

/// The places of the machine's slots, the bus numbers behind them, and the number that the next
/// slot gets; filled once in the process.
extern VTQ_EXPORT std::vector<SlotLocation> slotLocationVect;
extern VTQ_EXPORT std::vector<SlotBusCollection> slotBusCollectionVect;
extern VTQ_EXPORT std::uint16_t tagCounter;

/// Where formatted log lines of the slot routines are built.
inline constexpr unsigned kDbgBuffSize = 256;
extern VTQ_EXPORT char dbgBuff[kDbgBuffSize];
