// SPDX-License-Identifier: Apache-2.0

// Lines of the kernel's device list, and the tokenizer that splits them.
#include "fuzz/fuzz.h"
#include "fuzz/models.h"
#include "pci/dev_info.h"
#include "pci/device_line.h"

namespace {

using fuzz::PlainHex;
using fuzz::PlainTokens;
using fuzz::Require;

constexpr const char* kDelimiters[] = {"\t", " ", "\n", "\t \n", ""};

std::uint32_t FirstNumber(const std::string& column) {
  const std::vector<std::string> pieces = PlainTokens(column, " ");
  return pieces.empty() ? 0 : PlainHex<unsigned int>(pieces[0]);
}

// Returns the record of a line; with vendor 0 if the line has none.
sPciDevices PlainRecord(std::string_view line) {
  const std::vector<std::string> columns = PlainTokens(line, "\t");
  sPciDevices record;
  if (columns.size() < 3) return record;
  const unsigned short address = PlainHex<unsigned short>(columns[0]);
  record.bus = static_cast<std::uint8_t>(address / 256);
  record.device = static_cast<std::uint8_t>(address % 256 / 8);
  record.function = static_cast<std::uint8_t>(address % 8);
  const unsigned int ids = PlainHex<unsigned int>(columns[1]);
  record.vendorId = static_cast<std::uint16_t>(ids / 65536);
  record.deviceId = static_cast<std::uint16_t>(ids % 65536);
  record.irq = PlainHex<unsigned short>(columns[2]);
  for (std::size_t i = 0; i < 6; ++i) {
    if (columns.size() >= 9) record.baseAddress[i] = FirstNumber(columns[3 + i]);
    if (columns.size() >= 16) record.regionSize[i] = FirstNumber(columns[10 + i]);
  }
  return record;
}

void CheckLine(std::string_view line) {
  const sPciDevices expected = PlainRecord(line);
  sPciDevices record;
  record.vendorId = 0xFFFF;  // left over from the line before
  record.regionSize.fill(1);
  const bool taken = ParseDeviceLine(line, &record);
  Require(taken == (expected.vendorId != 0), "a line is taken when its vendor is not 0");
  if (!taken) return;
  Require(record.bus == expected.bus && record.device == expected.device &&
              record.function == expected.function,
          "the address is that of the first column");
  Require(record.vendorId == expected.vendorId && record.deviceId == expected.deviceId,
          "the IDs are those of the second column");
  Require(record.irq == expected.irq, "the IRQ is that of the third column");
  Require(record.baseAddress == expected.baseAddress, "base addresses are columns 4 to 9");
  Require(record.regionSize == expected.regionSize, "region sizes are columns 11 to 16");
  Require(record.configSpace == expected.configSpace, "the configuration space is not read yet");
}

}  // namespace

void fuzz::CheckInput(std::string_view input) {
  static TPciDevInfo collector(nullptr);
  std::string text(input);
  for (const char* delimiters : kDelimiters) {
    Require(collector.MultiStringTok(text, delimiters) == PlainTokens(input, delimiters),
            "tokens are the non-empty pieces between delimiters");
  }
  Pieces lines(input);
  while (!lines.IsEmpty()) CheckLine(lines.Until('\n'));
}
