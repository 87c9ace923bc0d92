// SPDX-License-Identifier: Apache-2.0
#include "host/model/machine_ids.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <optional>
#include <span>

#include "host/model/machine_identity.h"

namespace pciinfo {
namespace {

constexpr std::size_t kUuidLength = 16;
constexpr std::size_t kUuidOffset = 8;  // DSP0134 7.2

/// The order in which a UUID is written, for its first eight bytes: firmware since SMBIOS 2.6
/// stores the first three numbers with the lowest byte first.
constexpr std::array<std::size_t, 8> kLowestFirst = {3, 2, 1, 0, 5, 4, 7, 6};

/// Values of boards whose maker has set none. Thousands of machines have them.
constexpr std::array kShared = {
    "00000000-0000-0000-0000-000000000000", "ffffffff-ffff-ffff-ffff-ffffffffffff",
    "fefefefe-fefe-fefe-fefe-fefefefefefe", "03000200-0400-0500-0006-000700080009",
    "00020003-0004-0005-0006-000700080009", "12345678-1234-5678-90ab-cddeefaabbcc",
    "78563412-3412-7856-90ab-cddeefaabbcc"};

bool IsHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); }

bool IsShared(const std::string& uuid) {
  return std::find(kShared.begin(), kShared.end(), uuid) != kShared.end();
}

std::string UuidText(std::span<const std::uint8_t> bytes, bool isLowestFirst) {
  std::string text;
  for (std::size_t i = 0; i < kUuidLength; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    const bool isSwapped = isLowestFirst && i < kLowestFirst.size();
    text += fmt::format("{:02x}", bytes[isSwapped ? kLowestFirst[i] : i]);
  }
  return IsShared(text) ? "" : text;
}

bool IsLowestFirst(const vtq::SmBiosEntryPoint& entryPoint) {
  return entryPoint.majorVersion > 2 ||
         (entryPoint.majorVersion == 2 && entryPoint.minorVersion >= 6);
}

std::string FirstLine(const std::string& file) {
  std::ifstream stream(file);
  std::string line;
  std::getline(stream, line);
  return line;
}

std::string KernelUuid(const std::string& root) {
  std::string uuid = FirstLine(root + "/sys/class/dmi/id/product_uuid");
  std::transform(uuid.begin(), uuid.end(), uuid.begin(),
                 [](char c) { return c >= 'A' && c <= 'F' ? static_cast<char>(c + 0x20) : c; });
  return IsUuid(uuid) && !IsShared(uuid) ? uuid : "";
}

}  // namespace

std::string ParseSystemUuid(const vtq::SmBiosTable& table) {
  constexpr std::uint8_t kSystem = 1;
  vtq::SmBiosWalk walk(table);
  while (const auto structure = walk.Next()) {
    if (structure->front() != kSystem) continue;
    const std::size_t formatted = std::min<std::size_t>((*structure)[1], structure->size());
    if (formatted < kUuidOffset + kUuidLength) return "";
    return UuidText(structure->subspan(kUuidOffset, kUuidLength), IsLowestFirst(table.entryPoint));
  }
  return "";
}

MachineIds ReadMachineIds(const std::string& root) {
  MachineIds ids;
  const std::optional<vtq::SmBiosTable> table = ReadSmBiosTable(root);
  ids.systemUuid = table ? ParseSystemUuid(*table) : KernelUuid(root);
  const std::string id = FirstLine(root + "/etc/machine-id");
  if (IsMachineId(id)) ids.machineId = id;
  return ids;
}

bool IsUuid(const std::string& text) {
  constexpr std::string_view kForm = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
  return text.size() == kForm.size() &&
         std::equal(text.begin(), text.end(), kForm.begin(),
                    [](char c, char form) { return form == '-' ? c == '-' : IsHexDigit(c); });
}

bool IsMachineId(const std::string& text) {
  constexpr std::size_t kLength = 32;
  return text.size() == kLength && std::all_of(text.begin(), text.end(), &IsHexDigit) &&
         text.find_first_not_of('0') != std::string::npos;
}

}  // namespace pciinfo
