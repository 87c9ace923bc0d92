// SPDX-License-Identifier: Apache-2.0
#include "host/capture/manifest.h"

#include <sys/utsname.h>

#include <algorithm>
#include <ctime>
#include <nlohmann/json.hpp>

#include "framework/exception.h"
#include "framework/os_specific.h"
#include "framework/schema_helper.h"
#include "host/base/namespace_name.h"
#include "host/base/utc_time.h"
#include "host/console/safe_json.h"
#include "host/console/utf8.h"
#include "runtime/repository.h"

namespace pciinfo {
namespace {

using Json = nlohmann::json;
using nlohmann::ordered_json;

constexpr int kFormatVersion = 1;
constexpr int kDeepestNesting = 32;              // values are copied and freed by recursion
constexpr std::size_t kLongestSystemName = 253;  // RFC 1035, 2.3.4, without the final dot
constexpr int kVersionSeconds = 10;

std::string KernelRelease() {
  utsname system{};
  return uname(&system) == 0 ? system.release : "";
}

std::string VersionOfLspci() {
  try {
    const std::string text =
        NQZMVTQ20::TOSSpecific::SpawnProcess("lspci --version", kVersionSeconds);
    return text.substr(0, text.find('\n'));
  } catch (const NQZMVTQ20::TVTQException&) {
    return "";  // a missing lspci is reported when its listings are captured
  }
}

bool IsSystemName(const std::string& name) {
  return name.size() <= kLongestSystemName &&
         std::all_of(name.begin(), name.end(), [](char c) { return c > ' ' && c < '\x7F'; });
}

[[noreturn]] void RefuseDamaged(const std::string& how) {
  throw BadCapture("its manifest.json is damaged: " + how);
}

// Not ordered_json: inserting n keys into an ordered object takes time proportional to n².
Json ParseShallow(std::string_view text) {
  return Json::parse(text, [](int depth, Json::parse_event_t, Json&) {
    if (depth > kDeepestNesting) RefuseDamaged("it is nested too deeply");
    return true;
  });
}

// Checks the type first: the library would convert 1.5, true and 2^32 + 1 to 1.
void RequireKnownVersion(const Json& version) {
  if (!version.is_number_integer()) RefuseDamaged("its formatVersion is not an integer");
  if (version == kFormatVersion) return;
  throw BadCapture("its format version is " + version.dump() +
                   ", but this program reads only version " + std::to_string(kFormatVersion));
}

std::uint64_t CountIn(const Json& parts) {
  if (!parts.is_number_unsigned()) RefuseDamaged("its parts is not a count");
  return parts.get<std::uint64_t>();
}

Manifest FromJson(const Json& parsed) {
  Manifest manifest;
  manifest.systemName = parsed.value("systemName", "");
  manifest.kernelRelease = parsed.value("kernelRelease", "");
  manifest.capturedAt = parsed.value("capturedAt", "");
  manifest.tools = parsed.value("tools", manifest.tools);
  manifest.redacted = parsed.value("redacted", false);
  for (const Json& part : parsed.value("unread", Json::array())) {
    manifest.unread.push_back({part.value("path", ""), part.value("reason", "")});
  }
  if (parsed.contains("parts")) manifest.parts = CountIn(parsed["parts"]);
  return manifest;
}

}  // namespace

Manifest DescribeThisMachine() {
  Manifest manifest;
  manifest.systemName =
      NQZMVTQ20::TCIMSchemaHelper::GetSystemName(vtq::Namespace::Create(kNamespaceName));
  manifest.kernelRelease = KernelRelease();
  manifest.capturedAt = UtcText(std::time(nullptr));
  manifest.tools = {{"pciinfo", PCIINFO_VERSION}, {"lspci", VersionOfLspci()}};
  return manifest;
}

std::string ManifestJson(const Manifest& manifest) {
  ordered_json json;
  json["formatVersion"] = kFormatVersion;
  json["systemName"] = ToUtf8(manifest.systemName);
  json["kernelRelease"] = ToUtf8(manifest.kernelRelease);
  json["capturedAt"] = manifest.capturedAt;
  std::map<std::string, std::string> tools = manifest.tools;
  for (auto& [tool, version] : tools) version = ToUtf8(version);
  json["tools"] = tools;
  json["redacted"] = manifest.redacted;
  json["unread"] = ordered_json::array();
  for (const UnreadPart& part : manifest.unread) {
    json["unread"].push_back({{"path", ToUtf8(part.path)}, {"reason", ToUtf8(part.reason)}});
  }
  if (manifest.parts) json["parts"] = *manifest.parts;
  return SafeJson(json.dump(2)) + "\n";
}

Manifest ParseManifest(std::string_view text) {
  try {
    const Json parsed = ParseShallow(text);
    RequireKnownVersion(parsed.at("formatVersion"));
    Manifest manifest = FromJson(parsed);
    if (!IsSystemName(manifest.systemName)) {
      throw BadCapture("the systemName in its manifest.json is not valid");
    }
    return manifest;
  } catch (const Json::exception& error) {
    RefuseDamaged(error.what());
  }
}

}  // namespace pciinfo
