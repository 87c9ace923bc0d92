// SPDX-License-Identifier: Apache-2.0
#include "framework/os_specific.h"
#include "pci/dev_info.h"
#include "pci/lines.h"
#include "plugin/values.h"

using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TOSSpecific;

namespace {

constexpr int kRawListingSeconds = 300;

// Returns null if there is no line.
TCIMValue MakeLinesValue(const std::string& text) {
  TCIMValue::TArray lines = SplitLines(text);
  TCIMValue value;
  if (lines.empty()) return value;
  const auto count = static_cast<std::uint32_t>(lines.size());
  value.Set(TCIMValue::TCIMType(TCIMValue::TCIMType::kString), count, std::move(lines));
  return value;
}

}  // namespace

void TPciDevInfo::GetPciRawData(std::vector<TPropertyMap>* maps, std::string command) {
  WriteDebug("Entering TPciDevInfo::GetPciRawData, cmd:" + command);
  TPropertyMap properties;
  InsertProperty(&properties, "Command", TCIMValue(command));
  InsertProperty(&properties, "RawResult",
                 MakeLinesValue(TOSSpecific::SpawnProcess(command, kRawListingSeconds)));
  maps->push_back(std::move(properties));
  WriteDebug("Exiting TPciDevInfo::GetPciRawData");
}
