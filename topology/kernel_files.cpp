// SPDX-License-Identifier: Apache-2.0
#include "topology/kernel_files.h"

#include <linux/pci_regs.h>

#include <algorithm>
#include <charconv>
#include <span>

#include "topology/kernel_directory.h"
#include "topology/two_threads.h"

namespace topology {
namespace {

constexpr const char* kSlots = "/sys/bus/pci/slots";

/// The first 256 bytes, or as many as the user may read.
ConfigSpace ReadConfig(const Directory& in, const char* file) {
  return ConfigSpace(in.Read(file, kConventionalSize).value_or(""));
}

/// "0x8086".
std::optional<std::uint16_t> ReadIdentifier(const Directory& device, const char* name) {
  const std::string text = device.ReadLine(name);
  std::uint16_t number = 0;
  if (!text.starts_with("0x")) return std::nullopt;
  const auto error = std::from_chars(text.data() + 2, text.data() + text.size(), number, 16).ec;
  return error == std::errc() ? std::optional(number) : std::nullopt;
}

/// The configuration space of a virtual function does not hold its identifiers (PCI Express 5.0,
/// 9.3.4.1): the kernel has them from the physical one.
void SetIdentifiers(const Directory& device, Function& function) {
  if (function.config.vendor != 0xFFFF) return;
  function.config.vendor = ReadIdentifier(device, "vendor").value_or(0xFFFF);
  function.config.device = ReadIdentifier(device, "device").value_or(0xFFFF);
}

/// The base addresses of a virtual function are always 0 (PCI Express 5.0, 9.3.4.1.11). So most
/// other functions need not be asked for their physical function.
bool MayBeVirtual(const ConfigSpace& config) {
  for (std::size_t offset = PCI_BASE_ADDRESS_0; offset <= PCI_BASE_ADDRESS_5; offset += 4) {
    if (config.Dword(offset).value_or(0) != 0) return false;
  }
  return true;
}

Function ReadFunction(const Directory& device, const Address& address) {
  Function function;
  function.address = address;
  const ConfigSpace config = ReadConfig(device, "config");
  function.config = DecodeConfig(config);
  SetIdentifiers(device, function);
  function.driver = device.ReadLinkName("driver");
  function.numaNode = device.ReadNumber<int>("numa_node");
  // The kernel writes -1 where the firmware names no node.
  if (function.numaNode && *function.numaNode < 0) function.numaNode.reset();
  function.label = device.ReadLine("label");
  function.slotUserNumber = device.ReadNumber<std::uint64_t>("firmware_node/sun");
  if (MayBeVirtual(config)) {
    function.physicalFunction = ParseAddress(device.ReadLinkName("physfn"));
  }
  return function;
}

using Names = std::span<const std::string>;

std::vector<Function> ReadNamed(const Directory& devices, Names names) {
  std::vector<Function> functions;
  functions.reserve(names.size());
  for (const std::string& name : names) {
    const auto address = ParseAddress(name);
    const Directory device(devices, name.c_str());
    if (address && device.IsOpen()) functions.push_back(ReadFunction(device, *address));
  }
  return functions;
}

std::vector<Function> ReadSysfs(const Directory& devices, const std::function<void()>& meanwhile) {
  const std::vector<std::string> names = devices.Names();
  const auto read = [&devices](Names part) { return ReadNamed(devices, part); };
  return ReadOnTwoThreads(Names(names), read, meanwhile);
}

/// Directories of /proc/bus/pci are named "01", or "0001:01" in other domains than the first, and
/// their files "00.0".
std::vector<Function> ReadProc() {
  std::vector<Function> functions;
  const Directory proc(kProcPci);
  for (const std::string& bus : proc.Names()) {
    const Directory directory(proc, bus.c_str());
    if (!directory.IsOpen()) continue;
    const std::string prefix = (bus.find(':') == std::string::npos ? "0000:" : "") + bus + ":";
    for (const std::string& name : directory.Names()) {
      const auto address = ParseAddress(prefix + name);
      if (!address) continue;
      Function function;
      function.address = *address;
      function.config = DecodeConfig(ReadConfig(directory, name.c_str()));
      functions.push_back(std::move(function));
    }
  }
  return functions;
}

}  // namespace

bool IsWithoutSysfs() { return Directory(kSysDevices).Names().empty(); }

std::vector<Function> ReadFunctions(const std::function<void()>& meanwhile) {
  const Directory devices(kSysDevices);
  std::vector<Function> functions = ReadSysfs(devices, meanwhile);
  if (functions.empty()) functions = ReadProc();
  std::sort(functions.begin(), functions.end(), [](const Function& left, const Function& right) {
    return left.address < right.address;
  });
  return functions;
}

std::vector<KernelSlot> ReadKernelSlots() {
  std::vector<KernelSlot> slots;
  const Directory directory(kSlots);
  for (const std::string& name : directory.Names()) {
    const Directory slot(directory, name.c_str());
    if (!slot.IsOpen()) continue;
    if (const auto device = ParseDeviceAddress(slot.ReadLine("address"))) {
      slots.push_back({name, *device});
    }
  }
  return slots;
}

}  // namespace topology
