// SPDX-License-Identifier: Apache-2.0
#include "topology/kernel_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <string_view>

namespace topology {
namespace {

constexpr const char* kDevices = "/sys/bus/pci/devices";
constexpr const char* kSlots = "/sys/bus/pci/slots";
constexpr const char* kProcPci = "/proc/bus/pci";

/// A directory that is open; files are opened relative to it, which spares the kernel the path.
class Directory {
 public:
  explicit Directory(const std::string& path) : stream_(opendir(path.c_str())) {}
  Directory(const Directory& parent, const char* name) : stream_(OpenIn(parent, name)) {}
  Directory(const Directory&) = delete;
  Directory& operator=(const Directory&) = delete;
  ~Directory() {
    if (stream_ != nullptr) closedir(stream_);
  }

  bool IsOpen() const { return stream_ != nullptr; }
  int Descriptor() const { return dirfd(stream_); }

  /// The entries but "." and "..", sorted.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    while (stream_ != nullptr) {
      const dirent* const entry = readdir(stream_);
      if (entry == nullptr) break;
      if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
    }
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  static DIR* OpenIn(const Directory& parent, const char* name) {
    if (!parent.IsOpen()) return nullptr;
    const int file = openat(parent.Descriptor(), name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file < 0) return nullptr;
    DIR* const stream = fdopendir(file);
    if (stream == nullptr) close(file);
    return stream;
  }

  DIR* stream_;
};

/// Reads at most `limit` bytes; nothing if the file cannot be read.
std::optional<std::string> ReadFile(const Directory& in, const char* name, std::size_t limit) {
  const int file = openat(in.Descriptor(), name, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return std::nullopt;
  std::string content(limit, '\0');
  std::size_t size = 0;
  while (size < limit) {
    const ssize_t count = read(file, content.data() + size, limit - size);
    if (count <= 0) break;
    size += static_cast<std::size_t>(count);
  }
  close(file);
  if (size == 0) return std::nullopt;
  content.resize(size);
  return content;
}

/// An attribute of one line, without its line end; empty if there is none.
std::string ReadLine(const Directory& in, const char* name) {
  std::string text = ReadFile(in, name, 256).value_or("");
  text.erase(std::min(text.find('\n'), text.size()));
  return text;
}

template <class Number>
std::optional<Number> ReadNumber(const Directory& in, const char* name) {
  const std::string text = ReadLine(in, name);
  Number number{};
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || stop != text.data() + text.size()) return std::nullopt;
  return number;
}

/// The last part of the name that a symbolic link holds; empty if there is none.
std::string ReadLinkName(const Directory& in, const char* name) {
  std::array<char, PATH_MAX> target{};
  const ssize_t size = readlinkat(in.Descriptor(), name, target.data(), target.size());
  if (size <= 0) return "";
  const std::string text(target.data(), static_cast<std::size_t>(size));
  return text.substr(text.rfind('/') + 1);
}

std::string ReadConfig(const Directory& in, const char* name) {
  std::string front = ReadFile(in, name, kConventionalSize).value_or("");
  // Only PCI Express has more, and reading it costs a bus access for every four bytes.
  if (front.size() < kConventionalSize || !DecodeConfig(ConfigSpace(front)).express) return front;
  return ReadFile(in, name, kExtendedSize).value_or(front);
}

void ReadFirmwareNode(const Directory& device, Function& function) {
  const Directory node(device, "firmware_node");
  if (!node.IsOpen()) return;
  function.firmwarePath = ReadLine(node, "path");
  function.slotUserNumber = ReadNumber<std::uint64_t>(node, "sun");
}

/// Network interfaces and block devices of the function itself or of its virtio device.
void ReadSystemNames(const Directory& device, Function& function) {
  for (const std::string& name : Directory(device, "net").Names()) {
    function.networkInterfaces.push_back(name);
  }
  for (const std::string& name : Directory(device, "nvme").Names()) {
    function.blockDevices.push_back(name);
  }
}

/// Reads a number such as "0x00000000fc000000" from the front of `text` and removes it.
std::optional<std::uint64_t> TakeNumber(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  if (text.starts_with("0x")) text.remove_prefix(2);
  std::uint64_t number = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  if (error != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
  return number;
}

Function ReadFunction(const Directory& device, const Address& address) {
  Function function;
  function.address = address;
  function.config = DecodeConfig(ConfigSpace(ReadConfig(device, "config")));
  function.regions = ParseResources(ReadFile(device, "resource", 4096).value_or(""));
  function.driver = ReadLinkName(device, "driver");
  function.numaNode = ReadNumber<int>(device, "numa_node");
  // The kernel writes -1 where the firmware names no node.
  if (function.numaNode && *function.numaNode < 0) function.numaNode.reset();
  const std::string group = ReadLinkName(device, "iommu_group");
  std::uint64_t number = 0;
  if (std::from_chars(group.data(), group.data() + group.size(), number).ec == std::errc()) {
    function.iommuGroup = number;
  }
  function.powerState = ReadLine(device, "power_state");
  function.enableCount = ReadNumber<std::uint64_t>(device, "enable");
  function.label = ReadLine(device, "label");
  function.index = ReadNumber<std::uint64_t>(device, "index");
  if (!function.index) function.index = ReadNumber<std::uint64_t>(device, "acpi_index");
  function.physicalFunction = ParseAddress(ReadLinkName(device, "physfn"));
  ReadFirmwareNode(device, function);
  ReadSystemNames(device, function);
  return function;
}

std::vector<Function> ReadSysfs(const Directory& devices) {
  std::vector<Function> functions;
  for (const std::string& name : devices.Names()) {
    const auto address = ParseAddress(name);
    const Directory device(devices, name.c_str());
    if (address && device.IsOpen()) functions.push_back(ReadFunction(device, *address));
  }
  return functions;
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
      function.config = DecodeConfig(ConfigSpace(ReadConfig(directory, name.c_str())));
      functions.push_back(std::move(function));
    }
  }
  return functions;
}

}  // namespace

bool IsWithoutSysfs() { return Directory(kDevices).Names().empty(); }

std::vector<Function> ReadFunctions() {
  const Directory devices(kDevices);
  std::vector<Function> functions = ReadSysfs(devices);
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
    if (const auto device = ParseDeviceAddress(ReadLine(slot, "address"))) {
      slots.push_back({name, *device});
    }
  }
  return slots;
}

std::vector<Region> ParseResources(const std::string& text) {
  std::vector<Region> regions;
  unsigned number = 0;
  for (std::size_t at = 0; at < text.size(); ++number) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    std::string_view line = std::string_view(text).substr(at, end - at);
    at = end + 1;
    const auto first = TakeNumber(line);
    const auto last = TakeNumber(line);
    const auto flags = TakeNumber(line);
    if (!first || !last || !flags || (*first == 0 && *last == 0 && *flags == 0)) continue;
    regions.push_back({number, *first, *last < *first ? 0 : *last - *first + 1, *flags});
  }
  return regions;
}

}  // namespace topology
