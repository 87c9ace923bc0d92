// SPDX-License-Identifier: Apache-2.0
#include "host/base/utc_time.h"

namespace pciinfo {
namespace {

constexpr const char* kForm = "%Y-%m-%dT%H:%M:%SZ";

}  // namespace

std::string UtcText(std::time_t time) {
  std::tm utc{};
  gmtime_r(&time, &utc);
  char text[sizeof "2026-01-31T23:59:59Z"] = {};
  return std::strftime(text, sizeof text, kForm, &utc) != 0 ? text : "";
}

bool IsUtcText(const std::string& text) {
  std::tm utc{};
  if (strptime(text.c_str(), kForm, &utc) == nullptr) return false;
  return UtcText(timegm(&utc)) == text;  // not for a 31st of June
}

}  // namespace pciinfo
