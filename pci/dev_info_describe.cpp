// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <fstream>
#include <memory>
#include <new>

#include "framework/exception.h"
#include "framework/os_specific.h"
#include "pci/dev_info.h"
#include "pci/paths.h"
#include "pci/process_state.h"
#include "pci/routine_lines.h"
#include "pci/tokens.h"
#include "plugin/values.h"

using NQZMVTQ20::TOSSpecific;
using NQZMVTQ20::TVTQException;

namespace {

constexpr int kListingSeconds = 60;
constexpr std::streamsize kLineBufferSize = 1024;

// Reads the next line, or the next 1023 characters of a longer one. Returns false at the end of the
// file.
bool ReadLine(std::istream& file, char* buffer) {
  file.getline(buffer, kLineBufferSize);
  if (file.fail() && !file.eof() && !file.bad()) file.clear();
  return !file.fail();
}

// Returns the line after the first one that contains `header`, without leading spaces.
std::string LineBehind(std::istream& file, const std::string& header, char* buffer) {
  while (ReadLine(file, buffer)) {
    if (std::string(buffer).find(header) == std::string::npos) continue;
    if (!ReadLine(file, buffer)) break;
    const std::string line = buffer;
    return line.substr(std::min(line.find_first_not_of(' '), line.size()));
  }
  return "";
}

}  // namespace

std::vector<std::string> TPciDevInfo::MultiStringTok(std::string& text, const char* delimiters) {
  std::vector<std::string> tokens;
  ForEachToken(text, delimiters, [&](std::string_view token) {
    tokens.emplace_back(token);
    return true;
  });
  return tokens;
}

std::string TPciDevInfo::GetLspciDeviceDescription(std::string key) {
  static const RoutineLines kLines("GetLspciDeviceDescription");
  WriteDebug(kLines.entering);
  PciProcessState& state = processState;
  if (state.listingUnavailable) return "";
  if (!state.listingRun) {
    state.listingRun = true;
    try {
      state.listing =
          std::make_unique<ListingIndex>(TOSSpecific::SpawnProcess("lspci", kListingSeconds));
    } catch (const TVTQException& failure) {
      WriteStatus("PCI description spawn encountered an error in lspci: " +
                  dataToString<const char*>(failure.what()));
      state.listingUnavailable = true;
      return "";
    }
  }
  if (!state.listing || state.listing->IsEmpty()) {
    WriteStatus("PCI description buffer is empty");
    state.listingUnavailable = true;
    return "";
  }
  std::string description(state.listing->Find(key));
  WriteDebug(kLines.exiting);
  return description;
}

std::string TPciDevInfo::GetDeviceDescription(std::string key) {
  static const RoutineLines kLines("GetDeviceDescription");
  WriteDebug(kLines.entering);
  if (processState.descriptionFileUnavailable) return "";
  std::ifstream file(kProcPci);
  if (!file.is_open() || file.fail()) {
    WriteStatus("Could not open PCI description file.");
    processState.descriptionFileUnavailable = true;
    return "";
  }
  const std::unique_ptr<char[]> buffer(new (std::nothrow) char[kLineBufferSize]);
  if (!buffer) {
    WriteError("Could not allocate memory.");
    return "";
  }
  std::string description = LineBehind(file, key + ":", buffer.get());
  WriteDebug(kLines.exiting);
  return description;
}
