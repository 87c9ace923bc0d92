// SPDX-License-Identifier: Apache-2.0
#include "host/capture/capture_modules.h"

#include <fnmatch.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <vector>

#include "host/capture/capture_parts.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

/// Where a capture has these lines; the kernel has no such file.
constexpr const char* kCapturedAliases = "/sys/bus/pci/modules.alias";
constexpr const char* kFunctionsDirectory = "/sys/bus/pci/devices";
constexpr std::string_view kLineBegin = "alias pci:v";
/// Up to the end of the vendor's number, in an alias without "alias ".
constexpr std::size_t kVendorEnd = 13;

std::string Content(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string FirstLine(const fs::path& path) {
  const std::string content = Content(path);
  return content.substr(0, content.find('\n'));
}

std::set<std::string> AliasesOfFunctions() {
  std::set<std::string> aliases;
  std::error_code ignored;
  for (const auto& function : fs::directory_iterator(kFunctionsDirectory, ignored)) {
    aliases.insert(FirstLine(function.path() / "modalias"));
  }
  return aliases;
}

using AliasesByVendor = std::map<std::string, std::vector<std::string>>;

bool Fits(const std::string& pattern, const std::vector<std::string>& aliases) {
  return std::any_of(aliases.begin(), aliases.end(), [&pattern](const std::string& alias) {
    return fnmatch(pattern.c_str(), alias.c_str(), 0) == 0;
  });
}

/// Compares a pattern only with functions of its vendor, unless it is for all vendors.
bool FitsAny(const std::string& pattern, const AliasesByVendor& functions) {
  if (pattern.starts_with("pci:v*")) {
    return std::any_of(functions.begin(), functions.end(),
                       [&](const auto& vendor) { return Fits(pattern, vendor.second); });
  }
  const auto vendor = functions.find(pattern.substr(0, kVendorEnd));
  return vendor != functions.end() && Fits(pattern, vendor->second);
}

}  // namespace

std::string FittingAliases(std::string_view text, const std::set<std::string>& functions) {
  AliasesByVendor byVendor;
  for (const std::string& alias : functions) byVendor[alias.substr(0, kVendorEnd)].push_back(alias);
  std::string fitting;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    const std::string_view line = text.substr(at, end - at);
    at = end + 1;
    if (!line.starts_with(kLineBegin)) continue;
    const std::size_t pattern = line.find(' ') + 1;
    const std::size_t length = line.find(' ', pattern) - pattern;
    if (!FitsAny(std::string(line.substr(pattern, length)), byVendor)) continue;
    fitting.append(line);
    fitting += '\n';
  }
  return fitting;
}

void CaptureModules(CaptureReceiver& receiver) {
  const fs::path live =
      "/lib/modules/" + FirstLine("/proc/sys/kernel/osrelease") + "/modules.alias";
  std::error_code ignored;
  if (!fs::exists(live, ignored)) {
    AddFile(receiver, kCapturedAliases);  // this machine is a capture itself
    return;
  }
  receiver.Begin(live);
  receiver.Add(
      {InCapture(kCapturedAliases), FittingAliases(Content(live), AliasesOfFunctions()), ""});
}

}  // namespace pciinfo
