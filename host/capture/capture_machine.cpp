// SPDX-License-Identifier: Apache-2.0
#include "host/capture/capture_machine.h"

#include <array>
#include <filesystem>
#include <system_error>

#include "framework/exception.h"
#include "framework/os_specific.h"
#include "host/capture/capture_function.h"
#include "host/capture/capture_modules.h"
#include "host/capture/capture_parts.h"
#include "runtime/service_failures.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

using NQZMVTQ20::TOSSpecific;
using NQZMVTQ20::TVTQException;
using NQZMVTQ20::TVTQStatusCode;

constexpr const char* kPciBus = "/proc/bus/pci";
constexpr const char* kFunctions = "/sys/bus/pci/devices";
constexpr const char* kSlots = "/sys/bus/pci/slots";
constexpr int kCommandSeconds = 300;

constexpr std::array<const char*, 7> kSlotFiles = {
    "address", "cur_bus_speed", "max_bus_speed", "adapter", "attention", "latch", "power"};

/// The entry point first: Redactor needs it to find the structures in the table.
constexpr std::array<const char*, 2> kFirmwareFiles = {
    "/sys/firmware/dmi/tables/smbios_entry_point", "/sys/firmware/dmi/tables/DMI"};

constexpr std::array<const char*, 3> kCommands = {"lspci", "lspci -xxxx", "lspci -vvv"};

void CaptureBusDirectories(CaptureReceiver& receiver) {
  for (const fs::path& path : Listing(receiver, kPciBus)) {
    receiver.Begin(path);
    std::error_code ignored;
    if (!fs::is_directory(path, ignored)) {
      AddFile(receiver, path);
      continue;
    }
    for (const fs::path& function : Listing(receiver, path)) AddFile(receiver, function);
  }
}

void CaptureFunctions(CaptureReceiver& receiver) {
  FunctionCapture capture(receiver);
  for (const fs::path& function : Listing(receiver, kFunctions)) {
    receiver.Begin(function);
    capture.Add(function);
  }
}

void CaptureSlots(CaptureReceiver& receiver) {
  for (const fs::path& slot : Listing(receiver, kSlots)) {
    receiver.Begin(slot);
    for (const char* name : kSlotFiles) AddFile(receiver, slot / name);
  }
}

void CaptureFirmware(CaptureReceiver& receiver) {
  for (const char* file : kFirmwareFiles) {
    receiver.Begin(file);
    AddFile(receiver, file);
  }
}

/// Tells the receiver of outputs that may be incomplete, as long as it lives.
class DoubtWatch final {
 public:
  DoubtWatch(CaptureReceiver& receiver, const std::string& path) {
    vtq::ObserveDoubtfulOutputs([&receiver, &path](const std::string& description) {
      receiver.NoteUnread(path, description);
    });
  }
  DoubtWatch(const DoubtWatch&) = delete;
  DoubtWatch& operator=(const DoubtWatch&) = delete;
  ~DoubtWatch() { vtq::ObserveDoubtfulOutputs(nullptr); }
};

void CaptureCommand(CaptureReceiver& receiver, const std::string& command) {
  receiver.Begin(command);
  const std::string path = "commands/" + command;
  std::string output;
  try {
    const DoubtWatch watch(receiver, path);
    output = TOSSpecific::SpawnProcess(command, kCommandSeconds);
  } catch (const TVTQException& failure) {
    receiver.NoteUnread(path, failure.what());
    return;
  }
  receiver.Add({path, std::move(output), ""});
}

bool HasPciBus() {
  std::error_code ignored;
  return fs::exists(kPciBus, ignored) || fs::exists(kFunctions, ignored);
}

}  // namespace

void CaptureMachine(CaptureReceiver& receiver) {
  CaptureBusDirectories(receiver);
  AddFile(receiver, "/proc/pci");
  CaptureFunctions(receiver);
  CaptureModules(receiver);
  CaptureSlots(receiver);
  CaptureFirmware(receiver);
  AddFile(receiver, "/etc/machine-id");
  if (!HasPciBus()) return;  // lspci fails where there is nothing to list
  for (const char* command : kCommands) CaptureCommand(receiver, command);
}

}  // namespace pciinfo
