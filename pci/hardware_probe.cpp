// SPDX-License-Identifier: Apache-2.0
#include "pci/hardware_probe.h"

#include <array>
#include <cstdio>
#include <cstdlib>

#include "framework/exception.h"
#include "framework/os_specific.h"
#include "pci/address.h"
#include "plugin/values.h"

using NQZMVTQ20::TOSSpecific;
using NQZMVTQ20::TVTQException;

namespace {

constexpr const char* kProbeOutputFile = "infopci.txt";
constexpr std::size_t kDomainPrefixLength = 5;  // "0000:"

}  // namespace

bool HasSlotNumber(const TPropertyMap& properties) {
  const auto number = properties.find("UINumber");
  return number != properties.end() && static_cast<unsigned char>(number->second) != 0;
}

std::string ProbeCommand(const std::string& bridgeAddress) {
  // Not quoted: the pattern matches no file name, so the shell passes it to grep unchanged.
  const std::string pattern = bridgeAddress + "/0000:[0-9a-f][0-9a-f]:[0-9a-f][0-9a-f].[0-9a-f]$";
  std::array<char, 128> command{};
  std::snprintf(command.data(), command.size(), "hwinfo --pci 2>&1 |grep %s>infopci.txt",
                pattern.c_str());
  return command.data();
}

std::string LastProbedAddress(std::string output) {
  const std::size_t slash = output.rfind('/');
  if (slash != std::string::npos) output.erase(0, slash + 1);
  return output.erase(0, kDomainPrefixLength);
}

void ProbeBelowBridge(const std::string& bridgeAddress, const TPropertyMap& bridge,
                      THwinfoSlotMap* slots) {
  // The status is not needed: a probe that fails leaves an empty file.
  [[maybe_unused]] const int status = std::system(ProbeCommand(bridgeAddress).c_str());
  std::string output;
  try {
    output = TOSSpecific::CaptureFile(kProbeOutputFile);
  } catch (const TVTQException&) {
    return;
  }
  if (output.empty()) return;
  slots->emplace(DeviceKeyFromAddress(LastProbedAddress(output)), bridge.at("UINumber"));
}

void FillInSlotNumbers(const THwinfoSlotMap& slots, std::vector<TPropertyMap>* devices) {
  for (TPropertyMap& device : *devices) {
    const auto location = device.find("Location");
    // An existing number stays, whatever it is.
    if (location == device.end() || device.count("UINumber") != 0) continue;
    const auto slot = slots.find(DeviceKeyFromLocation(static_cast<std::string>(location->second)));
    if (slot != slots.end()) InsertProperty(&device, "UINumber", slot->second);
  }
}
