// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "pci/process_state.h"
#include "plugin/class_names.h"
#include "tests/fakes/plugin_fixture.h"

using Lines = std::vector<std::string>;

/// The log records of a routine of TPciDevInfo at its entry and exit.
inline std::string Entering(const std::string& routine) {
  return "3 Entering TPciDevInfo::" + routine + " routine";
}
inline std::string Exiting(const std::string& routine) {
  return "3 Exiting TPciDevInfo::" + routine + " routine";
}

/// The log record before each instance.
inline std::string Generating(const std::string& className) {
  return "4 TPci::generateCIMInstance - Generating CIM instance for class " + className + ".";
}
/// The log record of an instance that the framework refuses.
inline std::string Refused(const std::string& className, const std::string& why) {
  return "2 PciDevInfo encountered an error generating CIM instances for " + className +
         " Error Code: " + why;
}

/// The lists, concatenated.
inline Lines Join(const std::vector<Lines>& lists) {
  Lines joined;
  for (const Lines& lines : lists) joined.insert(joined.end(), lines.begin(), lines.end());
  return joined;
}

/// A map with the keys of a PCI device.
inline TPropertyMap MapOf(const std::string& id) {
  using NQZMVTQ20::TCIMValue;
  return {{"SystemCreationClassName", TCIMValue("")},
          {"SystemName", TCIMValue("")},
          {"CreationClassName", TCIMValue(kPciDeviceClass)},
          {"DeviceID", TCIMValue(id)}};
}

/// The record of a function whose configuration header has been read.
inline sPciDevices Record(const FakeFunction& function) {
  sPciDevices record;
  record.bus = static_cast<std::uint8_t>(function.bus);
  record.device = static_cast<std::uint8_t>(function.device);
  record.function = static_cast<std::uint8_t>(function.function);
  record.vendorId = function.vendorId;
  record.deviceId = function.deviceId;
  const std::vector<unsigned char> header = Header(function);
  std::copy(header.begin(), header.end(), record.configSpace.begin());
  return record;
}

/// A collector of PCI functions in a process whose slot tables are loaded, and empty.
class PciTest : public PluginTest {
 protected:
  PciTest() { processState.slotDataLoaded = true; }

  std::shared_ptr<vtq::Class> deviceClass = Class(kPciDeviceClass);
  TPciDevInfo Collector() { return TPciDevInfo(deviceClass, &provider); }
};
