// SPDX-License-Identifier: Apache-2.0

// The check of functions without a driver, where the kernel has a module for them.

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "host/check/machine_checks.h"

namespace pciinfo {
namespace {

/// A range of class codes: base class and subclass.
struct ClassRange {
  unsigned first = 0;
  unsigned last = 0;
};

/// Devices whose service the machine lacks without a driver.
constexpr ClassRange kServices[] = {{0x0100, 0x0100},   // SCSI
                                    {0x0104, 0x0108},   // RAID, SATA, SAS, NVMe
                                    {0x0180, 0x0180},   // other storage
                                    {0x0200, 0x02FF},   // networks
                                    {0x0302, 0x0302},   // processors for graphics
                                    {0x0502, 0x0502},   // CXL memory
                                    {0x0C03, 0x0C04},   // USB, Fibre Channel
                                    {0x0C06, 0x0C06},   // InfiniBand
                                    {0x1200, 0x12FF}};  // accelerators

/// Devices that boards have whether they are used or not: only those in a slot with a name are
/// there because somebody wanted them.
constexpr ClassRange kCards[] = {{0x0300, 0x03FF},                    // graphics
                                 {0x0400, 0x0400}, {0x0480, 0x0480},  // video, other multimedia
                                 {0x0700, 0x0703},                    // serial, parallel
                                 {0x0B00, 0x0BFF}, {0x0C09, 0x0C09},  // processors, CAN bus
                                 {0x0D00, 0x0DFF},                    // wireless
                                 {0x1000, 0x10FF}};                   // encryption

template <std::size_t count>
bool IsIn(const ClassRange (&ranges)[count], const MachineFunction& function) {
  if (!function.baseClass || !function.subclass) return false;
  const unsigned code = *function.baseClass << 8U | *function.subclass;
  return std::any_of(std::begin(ranges), std::end(ranges), [code](const ClassRange& range) {
    return range.first <= code && code <= range.last;
  });
}

bool IsInNamedSlot(const MachineFunction& function) {
  return function.place == FunctionPlace::kSlot || function.place == FunctionPlace::kSharedPort;
}

bool NeedsDriver(const MachineFunction& function) {
  // Virtual functions wait without a driver for the guest that gets them.
  if (!function.driver.empty() || function.physicalFunction) return false;
  return IsIn(kServices, function) || (IsIn(kCards, function) && IsInNamedSlot(function));
}

/// Without /sys no driver is known.
bool KnowsDrivers(const MachineModel& machine) {
  return std::any_of(machine.functions.begin(), machine.functions.end(),
                     [](const MachineFunction& function) { return !function.driver.empty(); });
}

std::vector<AffectedObject> WithoutDriver(const MachineFacts& facts) {
  std::vector<AffectedObject> objects;
  if (!KnowsDrivers(facts.machine)) return objects;
  for (std::size_t i = 0; i < facts.functions.size(); ++i) {
    const std::vector<std::string>& modules = facts.functions[i].modules;
    if (modules.empty() || !NeedsDriver(facts.machine.functions[i])) continue;
    objects.push_back(ObjectOf(facts.machine.functions[i], facts.machine,
                               fmt::format("module {}", fmt::join(modules, " or "))));
  }
  return objects;
}

const std::vector<MachineCheck> kDriverChecks = {
    {"driver-missing", Severity::kWarning,
     "These functions have no driver, although the kernel has a module for them.",
     "Load the module (modprobe) and read the kernel's log; firmware files may be missing, or the "
     "module may be on a deny list in /etc/modprobe.d.",
     &WithoutDriver},
};

}  // namespace

const std::vector<MachineCheck>& DriverChecks() { return kDriverChecks; }

}  // namespace pciinfo
