// SPDX-License-Identifier: Apache-2.0
#include "host/interchange/pci_devices.h"

#include <map>
#include <set>

#include "host/console/text.h"
#include "host/machine/names.h"
#include "host/record/machine_line.h"

namespace pciinfo {
namespace {

DomainAddress DeviceAddressOf(const MachineFunction& function) {
  DomainAddress address = function.physicalFunction.value_or(function.address);
  address.address.function = 0;
  return address;
}

std::string NameOfDevice(const DomainAddress& address) {
  const std::string text = FormatAddress(address);
  return text.substr(0, text.find('.'));
}

/// What a vendor prints on its product comes before what the device alone says.
std::vector<std::string> SerialNumbersOf(const FunctionFacts& facts) {
  std::vector<std::string> numbers = {facts.productSerialNumber};
  for (const SystemDevice& device : facts.systemDevices) numbers.push_back(device.serialNumber);
  numbers.push_back(facts.serialNumber);
  return numbers;
}

std::string FirstSerialNumber(const FunctionFacts& facts) {
  for (const std::string& number : SerialNumbersOf(facts)) {
    if (!IsBlankIdentifier(number)) return NameIn(number);
  }
  return "";
}

}  // namespace

std::vector<PciDevice> DevicesOf(const MachineModel& machine) {
  std::map<DomainAddress, std::vector<std::size_t>> functions;
  for (std::size_t place = 0; place < machine.functions.size(); ++place)
    functions[DeviceAddressOf(machine.functions[place])].push_back(place);
  std::vector<PciDevice> devices;
  devices.reserve(functions.size());
  for (auto& [address, places] : functions)
    devices.push_back({NameOfDevice(address), std::move(places)});
  return devices;
}

Product ProductOf(const PciDevice& device, const MachineFacts& facts) {
  const MachineFunction& first = facts.machine.functions[device.functions.front()];
  Product product{NameIn(first.vendorName), NameIn(first.deviceName), "", "", ""};
  std::set<std::string> firmware;
  for (const std::size_t place : device.functions) {
    const FunctionFacts& function = facts.functions[place];
    if (product.partNumber.empty()) product.partNumber = NameIn(function.partNumber);
    if (product.serialNumber.empty()) product.serialNumber = FirstSerialNumber(function);
    for (const SystemDevice& known : function.systemDevices) {
      if (!known.firmware.empty()) firmware.insert(Printable(known.firmware));
    }
  }
  if (firmware.size() == 1) product.firmware = *firmware.begin();
  return product;
}

}  // namespace pciinfo
