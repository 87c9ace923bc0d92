// SPDX-License-Identifier: Apache-2.0
#include "host/capture/redact.h"

#include "framework/exception.h"
#include "host/capture/redact_config.h"
#include "host/capture/redact_smbios.h"

namespace pciinfo {
namespace {

constexpr const char* kEntryPoint = "sys/firmware/dmi/tables/smbios_entry_point";
constexpr const char* kTable = "sys/firmware/dmi/tables/DMI";

bool IsConfigSpace(const std::string& path) {
  const bool onBus = path.starts_with("proc/bus/pci/") && path != "proc/bus/pci/devices";
  return onBus || (path.starts_with("sys/bus/pci/devices/") && path.ends_with("/config"));
}

void RedactTable(const std::string& entryPoint, std::string& table) {
  try {
    RedactSmBios(entryPoint, table);
  } catch (const NQZMVTQ20::TVTQException& failure) {
    throw CannotRedact(std::string("left out because it cannot be redacted: ") + failure.what());
  }
}

}  // namespace

void Redactor::Redact(CapturePart& part) {
  if (part.path == kEntryPoint) entryPoint_ = part.content;
  if (part.path == kTable) RedactTable(entryPoint_, part.content);
  if (IsConfigSpace(part.path)) RedactConfigSpace(part.content);
  if (part.path == "commands/lspci -xxxx") RedactHexListing(part.content);
  if (part.path == "commands/lspci -vvv") RedactVerboseListing(part.content);
}

void Redact(Manifest& manifest) {
  manifest.systemName.clear();
  manifest.redacted = true;
}

}  // namespace pciinfo
