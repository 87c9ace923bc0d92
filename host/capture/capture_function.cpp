// SPDX-License-Identifier: Apache-2.0
#include "host/capture/capture_function.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>
#include <system_error>

#include "host/capture/capture_parts.h"
#include "runtime/file_descriptor.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

using Clock = std::chrono::steady_clock;

constexpr std::array<const char*, 30> kFunctionFiles = {"config",
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
                                                        "power_state",
                                                        "enable",
                                                        "current_link_speed",
                                                        "current_link_width",
                                                        "max_link_speed",
                                                        "max_link_width",
                                                        "sriov_totalvfs",
                                                        "sriov_numvfs",
                                                        "sriov_offset",
                                                        "sriov_stride",
                                                        "sriov_vf_device",
                                                        "aer_dev_correctable",
                                                        "aer_dev_nonfatal",
                                                        "aer_dev_fatal",
                                                        "firmware_node/path",
                                                        "firmware_node/sun"};

/// A symbolic link of a function, and the directory of its target relative to the function's
/// directory in a capture, which is a plain directory and not a link as in the kernel's /sys.
struct FunctionLink {
  const char* name;
  const char* directory;
};

constexpr std::array<FunctionLink, 3> kFunctionLinks = {
    {{"driver", "../../../../bus/pci/drivers/"},
     {"iommu_group", "../../../../kernel/iommu_groups/"},
     {"physfn", "../"}}};

/// A directory that holds one directory for each name of a kind, and the files of each that are
/// captured. `uevent` makes sure that the name is there.
struct NamesDirectory {
  std::string_view name;
  std::array<const char*, 4> files;
};

constexpr std::array<NamesDirectory, 5> kNamesDirectories = {
    {{"net", {"address"}},
     {"block", {"uevent"}},
     {"nvme", {"uevent", "model", "serial", "firmware_rev"}},
     {"drm", {"uevent"}},
     {"infiniband", {"uevent", "fw_ver"}}}};

/// Beginnings of the names of directories that lead to such ones. A number follows.
constexpr std::array<std::string_view, 9> kWays = {
    "host", "target", "virtio", "ata", "mmc", "rport-", "port-", "expander-", "end_device-"};

constexpr int kMostLevels = 16;
constexpr std::size_t kMostVitalProductData = 0x8000;
/// The kernel waits up to an eighth of a second for each four bytes, and a read cannot be stopped.
constexpr std::size_t kPieceSize = 32;

bool IsNumbers(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789:-") == std::string_view::npos;
}

/// Whether names may be below a directory: "host3", "target3:0:0", "3:0:0:0".
bool LeadsToNames(std::string_view name) {
  if (name == "mmc_host" || (IsNumbers(name) && std::count(name.begin(), name.end(), ':') == 3)) {
    return true;
  }
  return std::any_of(kWays.begin(), kWays.end(), [name](std::string_view way) {
    return name.starts_with(way) && IsNumbers(name.substr(way.size()));
  });
}

/// Whether it is a directory itself, not a link to one.
bool IsOwnDirectory(const fs::path& path) {
  std::error_code ignored;
  return fs::symlink_status(path, ignored).type() == fs::file_type::directory;
}

void AddNamesOf(CaptureReceiver& receiver, const fs::path& directory, const NamesDirectory& kind) {
  for (const fs::path& named : Listing(receiver, directory)) {
    for (const char* file : kind.files) {
      if (file != nullptr) AddFile(receiver, named / file);
    }
    // The namespaces of an NVMe controller are block devices.
    if (kind.name != "nvme") continue;
    for (const fs::path& below : Listing(receiver, named)) {
      if (below.filename().string().starts_with("nvme") && IsOwnDirectory(below)) {
        AddFile(receiver, below / "uevent");
      }
    }
  }
}

/// Appends what a file has until `end`. Returns what went wrong, or "".
std::string ReadInPieces(int file, Clock::time_point end, std::string& bytes) {
  while (bytes.size() < kMostVitalProductData) {
    if (Clock::now() >= end) return "reading it took too long";
    std::array<char, kPieceSize> piece{};
    const ssize_t count = pread(file, piece.data(), piece.size(), static_cast<off_t>(bytes.size()));
    if (count < 0) return std::strerror(errno);
    if (count == 0) break;
    bytes.append(piece.data(), static_cast<std::size_t>(count));
  }
  return "";
}

}  // namespace

void FunctionCapture::Add(const fs::path& function) {
  for (const char* name : kFunctionFiles) AddFile(receiver_, function / name);
  AddLinks(function);
  AddVitalProductData(function);
  AddNames(function, 0);
}

void FunctionCapture::AddLinks(const fs::path& function) {
  for (const FunctionLink& link : kFunctionLinks) {
    std::error_code ignored;
    const fs::path target = fs::read_symlink(function / link.name, ignored);
    if (target.empty()) continue;
    receiver_.Add(
        {InCapture(function / link.name), "", link.directory + target.filename().string()});
  }
}

void FunctionCapture::AddVitalProductData(const fs::path& function) {
  const fs::path path = function / "vpd";
  const vtq::FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file.IsOpen()) {
    if (errno != ENOENT) receiver_.NoteUnread(InCapture(path), std::strerror(errno));
    return;
  }
  const Clock::time_point begin = Clock::now();
  std::string bytes;
  const std::string trouble = ReadInPieces(
      file.Get(), begin + std::min<Clock::duration>(left_, std::chrono::seconds(1)), bytes);
  left_ -= std::min(left_, Clock::now() - begin);
  if (!trouble.empty()) receiver_.NoteUnread(InCapture(path), trouble);
  if (!bytes.empty()) receiver_.Add({InCapture(path), std::move(bytes), ""});
}

void FunctionCapture::AddNames(const fs::path& directory, int level) {
  for (const fs::path& path : Listing(receiver_, directory)) {
    const std::string name = path.filename();
    const auto kind =
        std::find_if(kNamesDirectories.begin(), kNamesDirectories.end(),
                     [&name](const NamesDirectory& known) { return known.name == name; });
    const bool leads = LeadsToNames(name);
    if ((kind == kNamesDirectories.end() && !leads) || !IsOwnDirectory(path)) continue;
    if (kind != kNamesDirectories.end()) AddNamesOf(receiver_, path, *kind);
    if (leads && name.starts_with("host")) AddFile(receiver_, path / "uevent");
    if (leads && level < kMostLevels) AddNames(path, level + 1);
  }
}

}  // namespace pciinfo
