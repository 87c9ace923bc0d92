// SPDX-License-Identifier: Apache-2.0
#include "host/capture/redact.h"

#include <algorithm>

#include "framework/exception.h"
#include "host/capture/redact_config.h"
#include "host/capture/redact_smbios.h"
#include "host/capture/redact_vpd.h"

namespace pciinfo {
namespace {

constexpr const char* kEntryPoint = "sys/firmware/dmi/tables/smbios_entry_point";
constexpr const char* kTable = "sys/firmware/dmi/tables/DMI";

constexpr const char* kFunctionDirectories = "sys/bus/pci/devices/";

bool IsConfigSpace(const std::string& path) {
  const bool onBus = path.starts_with("proc/bus/pci/") && path != "proc/bus/pci/devices";
  return onBus || (path.starts_with(kFunctionDirectories) && path.ends_with("/config"));
}

void RedactTable(const std::string& entryPoint, std::string& table) {
  try {
    RedactSmBios(entryPoint, table);
  } catch (const NQZMVTQ20::TVTQException& failure) {
    throw CannotRedact(std::string("left out because it cannot be redacted: ") + failure.what());
  }
}

void BlankLetters(std::string& text) {
  std::replace_if(
      text.begin(), text.end(), [](unsigned char c) { return c > ' ' && c != ':'; }, 'X');
}

/// What the kernel shows of a function besides its configuration space.
void RedactAttribute(CapturePart& part) {
  // udev gives such names to interfaces whose place it does not know.
  if (part.path.find("/net/enx") != std::string::npos) {
    throw CannotRedact("left out because its name is a link-layer address");
  }
  if (part.path.ends_with("/serial")) BlankLetters(part.content);
  if (part.path.ends_with("/address")) BlankLetters(part.content);
  if (part.path.ends_with("/vpd")) RedactVitalProductData(part.content);
}

}  // namespace

void Redactor::Redact(CapturePart& part) {
  if (part.path == kMachineIdFile) BlankLetters(part.content);
  if (part.path == kEntryPoint) entryPoint_ = part.content;
  if (part.path == kTable) RedactTable(entryPoint_, part.content);
  if (IsConfigSpace(part.path)) RedactConfigSpace(part.content);
  if (part.path.starts_with(kFunctionDirectories)) RedactAttribute(part);
  if (part.path == "commands/lspci -xxxx") RedactHexListing(part.content);
  if (part.path == "commands/lspci -vvv") RedactVerboseListing(part.content);
}

void Redact(Manifest& manifest) {
  manifest.systemName.clear();
  manifest.redacted = true;
}

}  // namespace pciinfo
