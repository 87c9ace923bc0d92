// SPDX-License-Identifier: Apache-2.0
#include "tests/recipes/recipe_smbios.h"

#include <algorithm>
#include <cstdio>
#include <numeric>

#include "tests/recipes/recipe_files.h"

namespace fs = std::filesystem;

// Sections are those of DSP0134.

namespace recipe {
namespace {

// A structure: its formatted area, then its strings.
Bytes WithStrings(Bytes area, const std::vector<std::string>& strings) {
  for (const std::string& text : strings) {
    area.insert(area.end(), text.begin(), text.end());
    area.push_back(0);
  }
  area.resize(area.size() + (strings.empty() ? 2 : 1));
  return area;
}

Bytes Area(std::uint8_t type, std::size_t length, std::uint16_t handle) {
  Bytes area(length);
  area[0] = type;
  area[1] = static_cast<std::uint8_t>(length);
  Put(area, 2, handle, 2);
  return area;
}

Bytes BiosStructure(Entry entry, std::uint16_t handle) {
  Bytes area = Area(0, 0x18, handle);
  area[4] = 1;
  area[5] = 2;
  Put(area, 6, 0xE000, 2);
  area[8] = 3;
  Bytes structure =
      WithStrings(area, {entry.Text("vendor"), entry.Text("version"), entry.Text("date")});
  entry.RefuseOthers();
  return structure;
}

std::uint8_t DeviceFunction(Entry& entry) {
  return static_cast<std::uint8_t>(entry.Number("device", 31, 0) << 3 |
                                   entry.Number("function", 7, 0));
}

// Appends segment, bus and device/function.
void AppendPlace(Bytes& area, Entry& entry) {
  area.resize(area.size() + 4);
  Put(area, area.size() - 4, entry.Number("segment", 0xFFFF, 0), 2);
  area[area.size() - 2] = entry.Byte("bus");
  area[area.size() - 1] = DeviceFunction(entry);
}

// 7.10: as many of the fields as fit into the structure's length.
Bytes SlotStructure(Entry entry, std::uint16_t handle) {
  std::vector<std::string> strings;
  if (entry.Has("designation")) strings.push_back(entry.Text("designation"));
  Bytes area = Area(9, 0x0D, handle);
  area[0x04] = static_cast<std::uint8_t>(strings.size());
  const char* const bytes[] = {"type", "width", "usage", "length"};
  for (std::size_t i = 0; i < 4; ++i) {
    area[0x05 + i] = static_cast<std::uint8_t>(entry.Number(bytes[i], 0xFF));
  }
  Put(area, 0x09, entry.Number("id", 0xFFFF), 2);
  const auto characteristics = entry.Numbers<2>("characteristics", 0xFF);
  for (std::size_t i = 0; i < 2; ++i) Put(area, 0x0B + i, characteristics[i], 1);
  AppendPlace(area, entry);
  area.push_back(entry.Byte("dataBusWidth"));
  const std::size_t peers = entry.Has("peers") ? entry.List("peers").size() : 0;
  area.push_back(entry.Byte("peerCount", static_cast<std::uint8_t>(peers)));
  entry.ForEach("peers", [&](const json& object, const std::string& where) {
    Entry peer(object, where);
    AppendPlace(area, peer);
    area.push_back(peer.Byte("width"));
    peer.RefuseOthers();
  });
  const std::uint64_t length = entry.Number("structureLength", 0xFF);
  if (length < 0x0D) entry.Fail("a slot structure has at least 13 bytes");
  area.resize(length);
  area[1] = static_cast<std::uint8_t>(length);
  entry.RefuseOthers();
  return WithStrings(area, strings);
}

Bytes OemStrings(const std::vector<std::string>& texts, std::uint16_t handle) {
  Bytes area = Area(11, 5, handle);
  area[4] = static_cast<std::uint8_t>(texts.size());
  return WithStrings(area, texts);
}

Bytes Structure(const json& object, const std::string& where, std::uint16_t ownHandle) {
  Entry entry(object, where);
  const auto handle = static_cast<std::uint16_t>(entry.Number("handle", 0xFFFF, ownHandle));
  Bytes structure;
  if (entry.Has("bios")) {
    structure = BiosStructure({entry.Get("bios"), where + ".bios"}, handle);
  } else if (entry.Has("slot")) {
    structure = SlotStructure({entry.Get("slot"), where + ".slot"}, handle);
  } else if (entry.Has("oemStrings")) {
    structure = OemStrings(entry.Texts("oemStrings"), handle);
  } else {
    structure = entry.HexBytes("raw");
  }
  entry.RefuseOthers();
  return structure;
}

// Sets the checksum so that the bytes of `area`, from `start` on, add up to zero.
void SetChecksum(Bytes& area, std::size_t start, std::size_t checksum) {
  const auto first = area.begin() + static_cast<std::ptrdiff_t>(start);
  area[checksum] = static_cast<std::uint8_t>(-std::accumulate(first, area.end(), 0));
}

struct Version {
  unsigned major = 0, minor = 0;
};

// 5.2.2
Bytes EntryPoint3(Version version, std::size_t length) {
  Bytes entry = {'_', 'S', 'M', '3', '_'};
  entry.resize(0x18);
  entry[0x06] = 0x18;
  Put(entry, 0x07, version.major, 1);
  Put(entry, 0x08, version.minor, 1);
  entry[0x0A] = 1;
  Put(entry, 0x0C, length, 4);
  Put(entry, 0x10, 0xE0000, 8);
  SetChecksum(entry, 0, 0x05);
  return entry;
}

// 5.2.1
Bytes EntryPoint2(Version version, std::size_t length, std::size_t count) {
  Bytes entry = {'_', 'S', 'M', '_'};
  entry.resize(0x1F);
  entry[0x05] = 0x1F;
  Put(entry, 0x06, version.major, 1);
  Put(entry, 0x07, version.minor, 1);
  Put(entry, 0x08, length, 2);  // an upper limit of the size of any structure
  const std::string inner = "_DMI_";
  std::copy(inner.begin(), inner.end(), entry.begin() + 0x10);
  Put(entry, 0x16, length, 2);
  Put(entry, 0x18, 0xE0000, 4);
  Put(entry, 0x1C, count, 2);
  Put(entry, 0x1E, version.major << 4 | version.minor, 1);
  SetChecksum(entry, 0x10, 0x15);
  SetChecksum(entry, 0, 0x04);
  return entry;
}

Version ReadVersion(Entry& entry) {
  const std::string text = entry.Text("version");
  Version version;
  int length = 0;
  std::sscanf(text.c_str(), "%2u.%2u%n", &version.major, &version.minor, &length);
  if (text.empty() || static_cast<std::size_t>(length) != text.size()) {
    entry.Fail("\"" + text + "\" is no version such as \"3.2\"");
  }
  return version;
}

}  // namespace

void BuildSmbios(Entry tables, const fs::path& root) {
  const std::string anchor = tables.Text("anchor");
  const Version version = ReadVersion(tables);
  Bytes table;
  std::uint16_t handle = 0x100;
  tables.ForEach("structures", [&](const json& object, const std::string& where) {
    const Bytes structure = Structure(object, where, handle++);
    table.insert(table.end(), structure.begin(), structure.end());
  });
  const Bytes end = WithStrings(Area(127, 4, 0xFEFF), {});
  table.insert(table.end(), end.begin(), end.end());
  if (anchor != "_SM_" && anchor != "_SM3_") tables.Fail("\"anchor\" must be _SM_ or _SM3_");
  tables.RefuseOthers();
  const std::size_t count = handle - 0x100U + 1;
  const fs::path directory = root / "sys/firmware/dmi/tables";
  WriteFile(directory / "DMI", AsText(table));
  WriteFile(directory / "smbios_entry_point",
            AsText(anchor == "_SM3_" ? EntryPoint3(version, table.size())
                                     : EntryPoint2(version, table.size(), count)));
}

}  // namespace recipe
