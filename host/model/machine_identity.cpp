// SPDX-License-Identifier: Apache-2.0
#include "host/model/machine_identity.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "framework/exception.h"
#include "host/console/text.h"

namespace pciinfo {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::optional<Bytes> ReadBytes(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return std::nullopt;
  return Bytes{std::istreambuf_iterator<char>(stream), {}};
}

std::string Cleaned(std::string_view text) {
  const std::string printable = TrimEnd(Printable(text));
  return printable.substr(std::min(printable.find_first_not_of(' '), printable.size()));
}

/// The string whose number is the byte at `offset` of the structure's formatted area.
std::string StringAt(std::span<const std::uint8_t> structure, std::size_t offset) {
  const std::size_t formatted = structure[1];
  if (offset >= formatted || formatted >= structure.size()) return "";
  auto start = structure.begin() + static_cast<std::ptrdiff_t>(formatted);
  for (unsigned number = structure[offset]; number > 0; --number) {
    const auto end = std::find(start, structure.end(), 0);
    if (end == structure.end() || start == end) return "";
    if (number == 1) return Cleaned(std::string(start, end));
    start = end + 1;
  }
  return "";
}

struct Field {
  std::uint8_t structureType;
  std::size_t offset;
  std::string MachineIdentity::*field;
  const char* kernelFile;
};

constexpr Field kFields[] = {
    {0, 4, &MachineIdentity::biosMaker, "bios_vendor"},
    {0, 5, &MachineIdentity::biosVersion, "bios_version"},
    {0, 8, &MachineIdentity::biosDate, "bios_date"},
    {1, 4, &MachineIdentity::maker, "sys_vendor"},
    {1, 5, &MachineIdentity::product, "product_name"},
    {2, 4, &MachineIdentity::boardMaker, "board_vendor"},
    {2, 5, &MachineIdentity::boardProduct, "board_name"},
    {2, 6, &MachineIdentity::boardVersion, "board_version"},
};

MachineIdentity ReadKernelFiles(const std::string& root) {
  MachineIdentity identity;
  for (const Field& field : kFields) {
    std::ifstream stream(root + "/sys/class/dmi/id/" + field.kernelFile);
    std::string line;
    std::getline(stream, line);
    identity.*field.field = Cleaned(line);
  }
  return identity;
}

}  // namespace

MachineIdentity ParseIdentity(const vtq::SmBiosTable& table) {
  MachineIdentity identity;
  std::array<bool, 3> seen{};
  vtq::SmBiosWalk walk(table);
  while (const auto structure = walk.Next()) {
    const std::uint8_t type = structure->front();
    if (type >= seen.size() || std::exchange(seen[type], true)) continue;
    for (const Field& field : kFields) {
      if (field.structureType == type) {
        identity.*field.field = StringAt(*structure, field.offset);
      }
    }
  }
  return identity;
}

std::optional<vtq::SmBiosTable> ReadSmBiosTable(const std::string& root) {
  const std::string directory = root + "/sys/firmware/dmi/tables/";
  const auto entryPoint = ReadBytes(directory + "smbios_entry_point");
  std::optional<Bytes> bytes = ReadBytes(directory + "DMI");
  if (!entryPoint || !bytes) return std::nullopt;
  try {
    return vtq::SmBiosTable{vtq::ParseSmBiosEntryPoint(*entryPoint), *std::move(bytes)};
  } catch (const NQZMVTQ20::TVTQException&) {
    return std::nullopt;
  }
}

MachineIdentity ReadIdentity(const std::string& root) {
  const std::optional<vtq::SmBiosTable> table = ReadSmBiosTable(root);
  return table ? ParseIdentity(*table) : ReadKernelFiles(root);
}

}  // namespace pciinfo
