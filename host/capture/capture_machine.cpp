// SPDX-License-Identifier: Apache-2.0
#include "host/capture/capture_machine.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>
#include <vector>

#include "framework/exception.h"
#include "framework/os_specific.h"
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

constexpr std::array<const char*, 23> kFunctionFiles = {"config",
                                                        "resource",
                                                        "vendor",
                                                        "device",
                                                        "class",
                                                        "revision",
                                                        "irq",
                                                        "subsystem_vendor",
                                                        "subsystem_device",
                                                        "modalias",
                                                        "label",
                                                        "index",
                                                        "acpi_index",
                                                        "numa_node",
                                                        "current_link_speed",
                                                        "current_link_width",
                                                        "max_link_speed",
                                                        "max_link_width",
                                                        "sriov_totalvfs",
                                                        "sriov_numvfs",
                                                        "sriov_offset",
                                                        "sriov_stride",
                                                        "sriov_vf_device"};

/// A symbolic link of a function, and the directory of its target relative to the function's
/// directory in a capture, which is a plain directory and not a link as in the kernel's /sys.
struct FunctionLink {
  const char* name;
  const char* directory;
};

constexpr std::array<FunctionLink, 2> kFunctionLinks = {
    {{"driver", "../../../../bus/pci/drivers/"},
     {"iommu_group", "../../../../kernel/iommu_groups/"}}};

constexpr std::array<const char*, 5> kSlotFiles = {"address", "cur_bus_speed", "max_bus_speed",
                                                   "adapter", "power"};

/// The entry point first: Redactor needs it to find the structures in the table.
constexpr std::array<const char*, 2> kFirmwareFiles = {
    "/sys/firmware/dmi/tables/smbios_entry_point", "/sys/firmware/dmi/tables/DMI"};

constexpr std::array<const char*, 3> kCommands = {"lspci", "lspci -xxxx", "lspci -vvv"};

std::string InCapture(const fs::path& path) { return path.relative_path(); }

/// Returns the sorted entries of a directory; none if it does not exist.
std::vector<fs::path> Listing(CaptureReceiver& receiver, const fs::path& directory) {
  std::vector<fs::path> paths;
  std::error_code error;
  for (fs::directory_iterator entry(directory, error), end; !error && entry != end;
       entry.increment(error)) {
    paths.push_back(entry->path());
  }
  const bool missing = error == std::errc::no_such_file_or_directory;
  if (error && !missing) receiver.NoteUnread(InCapture(directory), error.message());
  std::sort(paths.begin(), paths.end());
  return paths;
}

void AddFile(CaptureReceiver& receiver, const fs::path& path) {
  std::string content;
  try {
    content = TOSSpecific::CaptureFile(path);
  } catch (const TVTQException& failure) {
    if (failure.GetStatusCode() == TVTQStatusCode::kNotFound) return;
    receiver.NoteUnread(InCapture(path), failure.what());
    return;
  }
  receiver.Add({InCapture(path), std::move(content), ""});
}

void AddLink(CaptureReceiver& receiver, const fs::path& function, const FunctionLink& link) {
  std::error_code ignored;
  const fs::path target = fs::read_symlink(function / link.name, ignored);
  if (target.empty()) return;
  receiver.Add({InCapture(function / link.name), "", link.directory + target.filename().string()});
}

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
  for (const fs::path& function : Listing(receiver, kFunctions)) {
    receiver.Begin(function);
    for (const char* name : kFunctionFiles) AddFile(receiver, function / name);
    for (const FunctionLink& link : kFunctionLinks) AddLink(receiver, function, link);
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
  CaptureSlots(receiver);
  CaptureFirmware(receiver);
  if (!HasPciBus()) return;  // lspci fails where there is nothing to list
  for (const char* command : kCommands) CaptureCommand(receiver, command);
}

}  // namespace pciinfo
