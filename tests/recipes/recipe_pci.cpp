// SPDX-License-Identifier: Apache-2.0
#include "tests/recipes/recipe_pci.h"

#include <algorithm>
#include <cstdio>

#include "tests/recipes/recipe_files.h"

namespace fs = std::filesystem;

namespace recipe {
namespace {

constexpr unsigned kIoFlag = 0x1;
constexpr unsigned kWideFlag = 0x4;
constexpr unsigned kPrefetchFlag = 0x8;
constexpr std::size_t kRom = 6;  // index of the expansion ROM, after the six regions

struct Region {
  std::uint64_t address = 0;
  std::uint64_t size = 0;
  unsigned flags = 0;

  bool IsIo() const { return flags & kIoFlag; }
  std::uint64_t Register() const { return address | flags; }
};

struct Address {
  unsigned domain = 0, bus = 0, device = 0, function = 0;
};

// Bytes that replace bytes of the header or follow it.
struct Patch {
  std::size_t offset = 0;
  Bytes bytes;
};

struct Function {
  Address at;
  unsigned vendor, device, classCode, progIf, revision, headerType;
  std::array<std::uint16_t, 3> buses{};
  std::array<std::uint16_t, 2> subsystem{};
  unsigned irq;
  std::array<Region, kRom + 1> regions{};
  std::string driver;
  std::size_t configSize, listColumns;
  std::vector<Patch> patches;

  bool IsBridge() const { return (headerType & 0x7F) != 0; }
  std::size_t RegionCount() const { return IsBridge() ? 2 : kRom; }
};

Address ReadAddress(Entry& entry) {
  const std::string text = entry.Text("address");
  Address at;
  int length = 0;
  const bool hasDomain = std::sscanf(text.c_str(), "%x:%2x:%2x.%1x%n", &at.domain, &at.bus,
                                     &at.device, &at.function, &length) == 4;
  if (!hasDomain) {
    at.domain = 0;
    std::sscanf(text.c_str(), "%2x:%2x.%1x%n", &at.bus, &at.device, &at.function, &length);
  }
  if (text.empty() || static_cast<std::size_t>(length) != text.size() || at.device > 31 ||
      at.function > 7) {
    entry.Fail("\"" + text + "\" is no address BB:DD.F or DDDD:BB:DD.F");
  }
  return at;
}

Region ReadRegion(const json& object, const std::string& where) {
  if (object.is_null()) return {};
  Entry entry(object, where);
  const bool io = entry.Has("io");
  Region region;
  region.address = io ? entry.Number("io", 0xFFFFFFFF) : entry.Number("memory", ~0ULL);
  region.size = entry.Number("size", ~0ULL);
  region.flags = static_cast<unsigned>(entry.Number("flags", 0xF, io ? kIoFlag : 0));
  if (region.IsIo() != io) entry.Fail("flag 1 is set for I/O regions, and for these only");
  if (region.address > 0xFFFFFFFF && !(region.flags & kWideFlag)) {
    entry.Fail("an address above 4 GiB needs flag 4");
  }
  entry.RefuseOthers();
  return region;
}

void ReadRegions(Entry& entry, Function& function) {
  const std::size_t highest = function.RegionCount();
  std::size_t place = 0;
  bool taken = false;  // used by the upper half of the previous region
  entry.ForEach("regions", [&](const json& object, const std::string& where) {
    if (place == highest) entry.Fail("too many regions");
    if (taken && !object.is_null()) entry.Fail("a region follows one of 64 bits: null must");
    const Region region = function.regions[place++] = ReadRegion(object, where);
    taken = !region.IsIo() && (region.flags & kWideFlag);
    if (taken && place == highest) entry.Fail("no place for the upper half of the last region");
  });
  if (entry.Has("rom")) function.regions[kRom] = ReadRegion(entry.Get("rom"), "rom");
}

void ReadPatches(Entry& entry, Function& function) {
  entry.ForEach("patches", [&](const json& object, const std::string& where) {
    Entry patch(object, where);
    function.patches.push_back({patch.Number("at", function.configSize), patch.HexBytes("bytes")});
    const Patch& read = function.patches.back();
    if (read.offset + read.bytes.size() > function.configSize) patch.Fail("leads past the end");
    patch.RefuseOthers();
  });
}

Function ReadFunction(const json& object, const std::string& where) {
  Entry entry(object, where);
  Function function{};
  const auto number = [&](const char* key, unsigned highest, unsigned otherwise) {
    return static_cast<unsigned>(entry.Number(key, highest, otherwise));
  };
  function.at = ReadAddress(entry);
  function.vendor = static_cast<unsigned>(entry.Number("vendor", 0xFFFF));
  function.device = static_cast<unsigned>(entry.Number("device", 0xFFFF));
  function.classCode = static_cast<unsigned>(entry.Number("class", 0xFFFF));
  function.progIf = number("progIf", 0xFF, 0);
  function.revision = number("revision", 0xFF, 0);
  function.headerType = number("headerType", 0xFF, entry.Has("buses") ? 1 : 0);
  if (entry.Has("buses")) function.buses = entry.Numbers<3>("buses", 0xFF);
  if (function.IsBridge() != entry.Has("buses")) entry.Fail("\"buses\" and header type disagree");
  if (entry.Has("subsystem")) function.subsystem = entry.Numbers<2>("subsystem", 0xFFFF);
  function.irq = number("irq", 0xFFFF, 0);
  ReadRegions(entry, function);
  function.driver = entry.Text("driver", "");
  function.configSize = number("configSize", 4096, 256);
  const std::set<std::size_t> sizes = {64, 256, 4096};
  if (!sizes.contains(function.configSize)) entry.Fail("\"configSize\" must be 64, 256 or 4096");
  function.listColumns = number("listColumns", 18, 18);
  if (function.listColumns == 0) entry.Fail("\"listColumns\" must be 1 to 18");
  ReadPatches(entry, function);
  entry.RefuseOthers();
  return function;
}

// Returns the line of /proc/bus/pci/devices: the kernel prints no domain, and an empty last column
// for a function without a driver.
std::string ListLine(const Function& function) {
  const Address& at = function.at;
  std::vector<std::string> columns = {
      fmt::format("{:02x}{:02x}", at.bus, at.device << 3 | at.function),
      fmt::format("{:04x}{:04x}", function.vendor, function.device),
      fmt::format("{:x}", function.irq)};
  for (const Region& region : function.regions) {
    columns.push_back(fmt::format("{:16x}", region.Register()));
  }
  for (const Region& region : function.regions)
    columns.push_back(fmt::format("{:16x}", region.size));
  columns.push_back(function.driver);
  columns.resize(function.listColumns);
  return fmt::format("{}\n", fmt::join(columns, "\t"));
}

// The configuration header (PCI Local Bus 3.0, 6.1; PCI-to-PCI Bridge 1.2, 3.2) in a file of the
// function's size.
Bytes Configuration(const Function& function) {
  Bytes config(function.configSize);
  unsigned command = 0x4;  // bus master
  for (const Region& region : function.regions) {
    if (region.size != 0) command |= region.IsIo() ? 0x1 : 0x2;
  }
  Put(config, 0x00, function.vendor, 2);
  Put(config, 0x02, function.device, 2);
  Put(config, 0x04, command, 2);
  Put(config, 0x08, function.revision | function.progIf << 8 | function.classCode << 16, 4);
  Put(config, 0x0E, function.headerType, 1);
  for (std::size_t i = 0; i < function.RegionCount(); ++i) {
    const Region& region = function.regions[i];
    if (region.size == 0) continue;
    const bool wide = !region.IsIo() && (region.flags & kWideFlag);
    Put(config, 0x10 + 4 * i, region.Register(), wide ? 8 : 4);
  }
  if (function.IsBridge()) {
    for (std::size_t i = 0; i < 3; ++i) Put(config, 0x18 + i, function.buses[i], 1);
  } else {
    Put(config, 0x2C, function.subsystem[0], 2);
    Put(config, 0x2E, function.subsystem[1], 2);
  }
  Put(config, function.IsBridge() ? 0x38 : 0x30, function.regions[kRom].Register(), 4);
  Put(config, 0x3C, function.irq & 0xFF, 1);
  Put(config, 0x3D, function.irq != 0 ? 1 : 0, 1);
  for (const Patch& patch : function.patches) {
    std::copy(patch.bytes.begin(), patch.bytes.end(),
              config.begin() + static_cast<std::ptrdiff_t>(patch.offset));
  }
  return config;
}

// A line of sysfs' "resource": first and last address, and the kernel's resource flags.
std::string ResourceLine(const Region& region) {
  if (region.size == 0) return fmt::format("0x{0:016x} 0x{0:016x} 0x{0:016x}\n", 0);
  unsigned flags = 0x40000 | (region.IsIo() ? 0x100U : 0x200U) | region.flags;
  if (!region.IsIo() && (region.flags & kWideFlag)) flags |= 0x100000;
  if (!region.IsIo() && (region.flags & kPrefetchFlag)) flags |= 0x2000;
  return fmt::format("0x{:016x} 0x{:016x} 0x{:016x}\n", region.address,
                     region.address + region.size - 1, flags);
}

void WriteSysfs(const Function& function, const std::string& config, const fs::path& root) {
  const Address& at = function.at;
  const fs::path directory = root / fmt::format("sys/bus/pci/devices/{:04x}:{:02x}:{:02x}.{}",
                                                at.domain, at.bus, at.device, at.function);
  const auto write = [&](const char* name, unsigned value, int digits) {
    WriteFile(directory / name, fmt::format("0x{:0{}x}\n", value, digits));
  };
  write("vendor", function.vendor, 4);
  write("device", function.device, 4);
  write("class", function.classCode << 8 | function.progIf, 6);
  write("revision", function.revision, 2);
  write("subsystem_vendor", function.subsystem[0], 4);
  write("subsystem_device", function.subsystem[1], 4);
  WriteFile(directory / "irq", fmt::format("{}\n", function.irq));
  std::string resource;
  for (const Region& region : function.regions) resource += ResourceLine(region);
  WriteFile(directory / "resource", resource);
  WriteFile(directory / "config", config);
  if (!function.driver.empty()) {
    fs::create_symlink("../../../../bus/pci/drivers/" + function.driver, directory / "driver");
  }
}

void WriteFunction(const Function& function, bool sysfs, const fs::path& root) {
  const Address& at = function.at;
  const std::string config = AsText(Configuration(function));
  const std::string domain = at.domain == 0 ? "" : fmt::format("{:04x}:", at.domain);
  WriteFile(
      root / fmt::format("proc/bus/pci/{}{:02x}/{:02x}.{}", domain, at.bus, at.device, at.function),
      config);
  if (sysfs) WriteSysfs(function, config, root);
}

}  // namespace

void BuildPci(Entry& machine, const fs::path& root) {
  const bool sysfs = machine.Flag("sysfs", true);
  std::string list;
  machine.ForEach("pci", [&](const json& object, const std::string& where) {
    const Function function = ReadFunction(object, where);
    WriteFunction(function, sysfs, root);
    list += ListLine(function);
  });
  WriteFile(root / "proc/bus/pci/devices", list);
}

}  // namespace recipe
