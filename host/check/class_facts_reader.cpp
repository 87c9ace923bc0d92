// SPDX-License-Identifier: Apache-2.0
#include "host/check/class_facts_reader.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <charconv>
#include <filesystem>
#include <sstream>
#include <string_view>
#include <system_error>

#include "framework/exception.h"
#include "framework/os_specific.h"
#include "host/formats/value_text.h"
#include "runtime/file_descriptor.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

using NQZMVTQ20::TOSSpecific;
using NQZMVTQ20::TVTQException;

constexpr const char* kProcDirectory = "/proc/bus/pci";
constexpr const char* kSysDirectory = "/sys/bus/pci/devices";

std::optional<std::string> FileText(const std::string& path) {
  try {
    return TOSSpecific::CaptureFile(path);
  } catch (const TVTQException&) {
    return std::nullopt;  // missing, or not readable for this user
  }
}

/// Parses a hexadecimal number after blanks and "0x", as the kernel prints it; 0 for other texts.
std::uint64_t HexNumber(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  if (text.starts_with("0x")) text.remove_prefix(2);
  std::uint64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number, 16);
  return number;
}

/// Removes a hexadecimal number up to `highest` and the character `end` from the front.
std::optional<unsigned> TakeHex(std::string_view& text, char end, unsigned highest) {
  unsigned number = 0;
  const auto [next, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  if (error != std::errc() || number > highest) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(next - text.data()));
  if (end == '\0') return text.empty() ? std::optional(number) : std::nullopt;
  if (!text.starts_with(end)) return std::nullopt;
  text.remove_prefix(1);
  return number;
}

/// "DDDD:BB:DD.F"
std::optional<FullAddress> ParseFullAddress(std::string_view text) {
  const auto domain = TakeHex(text, ':', 0xFFFFFFFF);
  const auto bus = TakeHex(text, ':', 255);
  const auto device = TakeHex(text, '.', 31);
  const auto function = TakeHex(text, '\0', 7);
  if (!domain || !bus || !device || !function) return std::nullopt;
  return FullAddress{*domain, {*bus, *device, *function}};
}

std::vector<std::string> NamesIn(const fs::path& directory) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(directory, error), end; !error && entry != end;
       entry.increment(error)) {
    names.push_back(entry->path().filename());
  }
  return names;
}

std::vector<std::string> TabColumns(const std::string& line) {
  std::vector<std::string> columns;
  std::istringstream stream(line);
  for (std::string column; std::getline(stream, column, '\t');) columns.push_back(column);
  return columns;
}

std::optional<ListedFunction> ParseListLine(const std::string& line) {
  constexpr std::size_t kFirstBase = 3;
  constexpr std::size_t kFirstSize = 10;
  const std::vector<std::string> columns = TabColumns(line);
  if (columns.size() < kFirstBase) return std::nullopt;
  const auto place = static_cast<unsigned>(HexNumber(columns[0]) & 0xFFFF);
  const auto ids = static_cast<unsigned>(HexNumber(columns[1]) & 0xFFFFFFFF);
  if (ids >> 16U == 0) return std::nullopt;  // no function has vendor ID 0
  ListedFunction function;
  function.address = {place >> 8U, (place & 0xFFU) >> 3U, place & 7U};
  function.ids = {ids >> 16U, ids & 0xFFFFU};
  for (std::size_t i = 0; i < kRegions && kFirstSize + i < columns.size(); ++i) {
    function.bases[i] = HexNumber(columns[kFirstBase + i]);
    function.sizes[i] = HexNumber(columns[kFirstSize + i]);
  }
  return function;
}

std::optional<std::vector<ListedFunction>> ReadList(const std::string& file) {
  const std::optional<std::string> text = FileText(file);
  if (!text) return std::nullopt;
  std::vector<ListedFunction> list;
  std::istringstream stream(*text);
  for (std::string line; std::getline(stream, line);) {
    if (const auto function = ParseListLine(line)) list.push_back(*function);
  }
  return list;
}

/// The file has one line per region: first address, last address, flags.
std::array<bool, kRegions> ReadIoRegions(const std::string& directory) {
  constexpr std::uint64_t kIoFlag = 0x100;  // Linux: IORESOURCE_IO
  std::array<bool, kRegions> isIo{};
  std::istringstream lines(FileText(directory + "/resource").value_or(""));
  for (bool& region : isIo) {
    std::string first, last, flags;
    if (!(lines >> first >> last >> flags)) break;
    region = (HexNumber(flags) & kIoFlag) != 0;
  }
  return isIo;
}

KernelFunction ReadSysFunction(const std::string& directory) {
  KernelFunction function;
  const std::optional<std::string> vendor = FileText(directory + "/vendor");
  const std::optional<std::string> device = FileText(directory + "/device");
  if (vendor && device) {
    function.ids = {static_cast<unsigned>(HexNumber(*vendor)),
                    static_cast<unsigned>(HexNumber(*device))};
  }
  function.isIo = ReadIoRegions(directory);
  return function;
}

/// Reads the functions with configuration files below /proc/bus/pci: in the directory "BB" for
/// domain 0, in "DDDD:BB" for other domains.
void ReadProcFunctions(const std::string& root, ClassFacts& facts) {
  const fs::path directory = root + kProcDirectory;
  for (const std::string& bus : NamesIn(directory)) {
    const char* domain = bus.find(':') == std::string::npos ? "0:" : "";
    for (const std::string& file : NamesIn(directory / bus)) {
      const std::string name = fmt::format("{}{}:{}", domain, bus, file);
      if (const auto where = ParseFullAddress(name)) facts.functions.try_emplace(*where);
    }
  }
}

void ReadSysFunctions(const std::string& root, ClassFacts& facts) {
  const fs::path directory = root + kSysDirectory;
  for (const std::string& name : NamesIn(directory)) {
    const auto where = ParseFullAddress(name);
    if (!where) continue;
    facts.functions[*where] = ReadSysFunction(directory / name);
  }
}

std::optional<ConfigStart> ReadConfigStart(const std::string& path) {
  constexpr std::size_t kHeader = 64;
  const vtq::FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
  std::array<std::uint8_t, kHeader> header{};
  if (!file.IsOpen() || pread(file.Get(), header.data(), kHeader, 0) != ssize_t{kHeader}) {
    return std::nullopt;
  }
  std::uint8_t next = 0;
  const bool hasMore = pread(file.Get(), &next, 1, kHeader) == 1;
  const auto word = [&](std::size_t at) { return header[at] | unsigned{header[at + 1]} << 8U; };
  return ConfigStart{{word(0), word(2)}, !hasMore};
}

void ReadConfigurations(const std::string& root, ClassFacts& facts) {
  for (const ListedFunction& function : *facts.list) {
    const PciAddress& at = function.address;
    const std::string file =
        fmt::format("{}{}/{:02x}/{:02x}.{}", root, kProcDirectory, at.bus, at.device, at.function);
    if (const auto start = ReadConfigStart(file)) facts.configurations[at] = *start;
  }
}

void ReadPublished(const vtq::Namespace& repository, ClassFacts& facts) {
  for (const char* name : {"QZMSG_PCIDevice", "QZMSG_PCIBridge"}) {
    const std::shared_ptr<vtq::Class> cimClass = repository.Find(name);
    for (const auto& instance : cimClass->GetInstances()) {
      facts.published.push_back(
          {ReadFunction(*cimClass, *instance), NumberOf(*instance, "UINumber")});
    }
  }
  facts.slots = ReadSlots(repository);
}

/// Returns why lspci gives no listing; empty if it gives one.
std::string FailureOfListing() {
  constexpr int kSeconds = 60;
  try {
    return TOSSpecific::SpawnProcess("lspci", kSeconds).empty() ? "it printed nothing" : "";
  } catch (const TVTQException& failure) {
    return failure.what();
  }
}

}  // namespace

std::string FormatFullAddress(const FullAddress& address) {
  const std::string text = FormatAddress(address.address);
  return address.domain == 0 ? text : fmt::format("{:04x}:{}", address.domain, text);
}

void ReadKernelFacts(const std::string& root, ClassFacts& facts) {
  std::error_code ignored;
  facts.hasSysfs = fs::is_directory(root + kSysDirectory, ignored);
  facts.hasPciBus = facts.hasSysfs || fs::is_directory(root + kProcDirectory, ignored);
  facts.list = ReadList(root + kProcDirectory + "/devices");
  ReadProcFunctions(root, facts);
  ReadSysFunctions(root, facts);
  if (facts.list) ReadConfigurations(root, facts);
}

ClassFacts ReadClassFacts(const vtq::Namespace& repository, bool isCapture) {
  ClassFacts facts;
  facts.isCapture = isCapture;
  ReadPublished(repository, facts);
  ReadKernelFacts("", facts);
  facts.slotRecords = ReadSlotRecords("");
  if (facts.hasPciBus) facts.listingFailure = FailureOfListing();
  return facts;
}

}  // namespace pciinfo
