// SPDX-License-Identifier: Apache-2.0
#include "host/interchange/redfish_values.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <utility>

#include "host/model/smbios_names.h"

namespace pciinfo {
namespace {

constexpr std::pair<double, const char*> kSpeeds[] = {{2.5, "Gen1"}, {5, "Gen2"},  {8, "Gen3"},
                                                      {16, "Gen4"},  {32, "Gen5"}, {64, "Gen6"}};

// By slot type, DSP0134 7.10.1.
constexpr std::pair<unsigned, const char*> kSlotTypes[] = {
    {0x14, "M2"}, {0x15, "M2"},        {0x16, "M2"},       {0x17, "M2"},   {0x1F, "U2"},
    {0x20, "U2"}, {0x21, "Mini"},      {0x22, "Mini"},     {0x23, "Mini"}, {0x24, "U2"},
    {0x25, "U2"}, {0x26, "OCP3Small"}, {0x27, "OCP3Large"}};

// By slot length, DSP0134 7.10.4.
constexpr std::pair<unsigned, const char*> kSlotLengths[] = {{3, "HalfLength"}, {4, "FullLength"}};

constexpr std::pair<unsigned, const char*> kDeviceClasses[] = {
    {0x00, "UnclassifiedDevice"},
    {0x01, "MassStorageController"},
    {0x02, "NetworkController"},
    {0x03, "DisplayController"},
    {0x04, "MultimediaController"},
    {0x05, "MemoryController"},
    {0x06, "Bridge"},
    {0x07, "CommunicationController"},
    {0x08, "GenericSystemPeripheral"},
    {0x09, "InputDeviceController"},
    {0x0A, "DockingStation"},
    {0x0B, "Processor"},
    {0x0C, "SerialBusController"},
    {0x0D, "WirelessController"},
    {0x0E, "IntelligentController"},
    {0x0F, "SatelliteCommunicationsController"},
    {0x10, "EncryptionController"},
    {0x11, "SignalProcessingController"},
    {0x12, "ProcessingAccelerators"},
    {0x13, "NonEssentialInstrumentation"},
    {0x40, "Coprocessor"},
    {0xFF, "UnassignedClass"}};

template <class Number, std::size_t size>
std::string WordOf(const std::pair<Number, const char*> (&table)[size], Number number) {
  const auto* row = std::find_if(std::begin(table), std::end(table),
                                 [number](const auto& entry) { return entry.first == number; });
  return row == std::end(table) ? "" : row->second;
}

/// The generation that a slot type names, as "PCI Express 3 x16" does.
std::string GenerationIn(const std::string& type) {
  for (const std::string_view before : {"PCI Express ", "PCIe "}) {
    if (!type.starts_with(before) || type.size() == before.size()) continue;
    const char digit = type[before.size()];
    if (digit >= '2' && digit <= '5') return std::string("Gen") + digit;
  }
  return "";
}

}  // namespace

std::string PcieTypeOfSpeed(const std::string& speed) {
  double rate = 0;
  std::from_chars(speed.data(), speed.data() + speed.size(), rate);
  return WordOf(kSpeeds, rate);
}

std::string PcieTypeOf(const MachineSlot& slot) {
  const std::string named = slot.type ? GenerationIn(ConnectorTypeText(*slot.type)) : "";
  return named.empty() ? PcieTypeOfSpeed(slot.link.maxSpeed) : named;
}

std::string SlotTypeOf(const MachineSlot& slot) {
  const std::string word = WordOf(kSlotTypes, slot.type.value_or(0));
  return word.empty() ? WordOf(kSlotLengths, slot.length.value_or(0)) : word;
}

std::optional<unsigned> LanesOf(const MachineSlot& slot) {
  const auto lanes = LanesOfWidth(slot.width.value_or(0));
  return lanes ? lanes : slot.link.maxWidth;
}

std::string DeviceClassOf(const MachineFunction& function) {
  return function.baseClass ? WordOf(kDeviceClasses, *function.baseClass) : "";
}

std::string ClassCodeOf(const MachineFunction& function) {
  if (!function.baseClass || !function.subclass || !function.programmingInterface) return "";
  return fmt::format("0x{:02X}{:02X}{:02X}", *function.baseClass, *function.subclass,
                     *function.programmingInterface);
}

std::string HexByte(const std::optional<unsigned>& number) {
  return number ? fmt::format("0x{:02X}", *number) : "";
}

std::string HexWord(const std::optional<unsigned>& number) {
  return number ? fmt::format("0x{:04X}", *number) : "";
}

}  // namespace pciinfo
