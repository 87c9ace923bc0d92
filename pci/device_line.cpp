// SPDX-License-Identifier: Apache-2.0
#include "pci/device_line.h"

#include <algorithm>
#include <array>

#include "pci/tokens.h"
#include "plugin/values.h"

namespace {

constexpr std::size_t kFirstBaseAddress = 3;
constexpr std::size_t kFirstRegionSize = 10;
constexpr std::size_t kRegions = 6;

struct Columns {
  std::array<std::string_view, kFirstRegionSize + kRegions> texts;
  std::size_t count = 0;  // of the columns that the record needs
};

Columns SplitColumns(std::string_view line) {
  Columns columns;
  ForEachToken(line, '\t', [&](std::string_view column) {
    columns.texts[columns.count++] = column;
    return columns.count < columns.texts.size();
  });
  return columns;
}

// The kernel pads these columns with leading spaces; text after the number is ignored.
std::uint32_t ParsePaddedHex(std::string_view column) {
  const auto* const number =
      std::find_if_not(column.begin(), column.end(), [](char c) { return c == ' '; });
  return ReadHex<unsigned int>({number, column.end()});
}

void ParseRegionColumns(const Columns& columns, std::size_t first,
                        std::array<std::uint32_t, kRegions>* values) {
  if (columns.count < first + kRegions) return;
  for (std::size_t i = 0; i < kRegions; ++i)
    (*values)[i] = ParsePaddedHex(columns.texts[first + i]);
}

}  // namespace

bool ParseDeviceLine(std::string_view line, sPciDevices* record) {
  const Columns columns = SplitColumns(line);
  if (columns.count < 3) return false;
  *record = {};
  const unsigned address = ReadHex<unsigned short>(columns.texts[0]);
  record->bus = static_cast<std::uint8_t>(address >> 8);
  record->device = static_cast<std::uint8_t>((address & 0xFF) >> 3);
  record->function = static_cast<std::uint8_t>(address & 7);
  const unsigned ids = ReadHex<unsigned int>(columns.texts[1]);
  record->vendorId = static_cast<std::uint16_t>(ids >> 16);
  record->deviceId = static_cast<std::uint16_t>(ids);
  record->irq = ReadHex<unsigned short>(columns.texts[2]);
  ParseRegionColumns(columns, kFirstBaseAddress, &record->baseAddress);
  ParseRegionColumns(columns, kFirstRegionSize, &record->regionSize);
  return record->vendorId != 0;
}
