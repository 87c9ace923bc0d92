// SPDX-License-Identifier: Apache-2.0
#include "tests/faults/fallbacks.h"

#include <algorithm>

namespace {

struct Fallback {
  const char* className;
  const char* what;
};

constexpr const char* kDevice = "QZMSG_PCIDevice";
constexpr const char* kBridge = "QZMSG_PCIBridge";
constexpr const char* kSlot = "QZMSG_SystemSlot";
constexpr const char* kBoard = "QZMSG_SystemBoard";
constexpr const char* kInSlot = "QZMSG_DeviceInSlot";
constexpr const char* kOnBoard = "QZMSG_OnBoardDevice";
constexpr const char* kRaw = "QZMSG_PCIRawData";

// The table in README.md.
constexpr Fallback kFallbacks[] = {
    {kDevice, "missing"},
    {kDevice, "UINumber"},
    {kDevice, "Description"},
    {kDevice, "SystemCreationClassName"},
    {kDevice, "SystemName"},
    {kBridge, "missing"},
    {kBridge, "UINumber"},
    {kBridge, "Description"},
    {kBridge, "SystemCreationClassName"},
    {kBridge, "SystemName"},
    {kSlot, "missing"},
    {kBoard, "missing"},
    {kBoard, "SystemCreationClassName"},
    {kBoard, "SystemName"},
    {kInSlot, "missing"},
    {kInSlot, "extra"},
    {kOnBoard, "missing"},
    {kOnBoard, "extra"},
    {kRaw, "missing"},
};

bool IsFallback(const Change& change) {
  return std::any_of(std::begin(kFallbacks), std::end(kFallbacks), [&](const Fallback& row) {
    return change.className == row.className && change.what == row.what;
  });
}

// Records of low severity that report a failure; log readers match them, so their severity stays.
constexpr const char* kTelling[] = {
    "3 read PCI config failed",
    "3 no PCI config file, read failed",
};

bool Tells(const std::string& record) {
  return record[0] == '!' || record[0] <= '2' ||
         std::find(std::begin(kTelling), std::end(kTelling), record) != std::end(kTelling);
}

// Only very old kernels have the file, so a failure to read it is not reported.
bool IsSilent(const Strike& strike) {
  return strike.place == "/proc/pci" &&
         std::all_of(strike.changes.begin(), strike.changes.end(),
                     [](const Change& change) { return change.what == "Description"; });
}

}  // namespace

std::string JudgeFallbacks(const Strike& strike) {
  const auto& classes = Classes();
  const auto asked = std::find(classes.begin(), classes.end(), strike.className);
  std::string wrong;
  for (const Change& change : strike.changes) {
    const bool wasThere = std::find(classes.begin(), asked, change.className) != asked;
    if (!wasThere && IsFallback(change)) continue;
    wrong +=
        change.className + (wasThere ? " was there already, and now: " : ": ") + change.what + "\n";
  }
  return wrong;
}

bool IsTold(const Strike& strike) {
  const std::vector<std::string> news = strike.News();
  return std::any_of(news.begin(), news.end(), Tells);
}

std::string JudgeToldFallbacks(const Strike& strike) {
  const std::string wrong = JudgeFallbacks(strike);
  if (!wrong.empty() || strike.changes.empty() || IsTold(strike) || IsSilent(strike)) return wrong;
  const Change& change = strike.changes.front();
  return "nothing tells that " + change.className + " has \"" + change.what + "\"\n";
}
