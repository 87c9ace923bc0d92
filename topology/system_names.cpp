// SPDX-License-Identifier: Apache-2.0
#include "topology/system_names.h"

#include <algorithm>
#include <array>

namespace topology {
namespace {

struct NamedMeaning {
  std::string_view name;
  DirectoryMeaning meaning;
};

constexpr std::array<NamedMeaning, 6> kWholeNames{{{"net", DirectoryMeaning::kNetwork},
                                                   {"block", DirectoryMeaning::kBlock},
                                                   {"nvme", DirectoryMeaning::kNvme},
                                                   {"drm", DirectoryMeaning::kDrm},
                                                   {"infiniband", DirectoryMeaning::kInfiniband},
                                                   {"mmc_host", DirectoryMeaning::kDevice}}};

/// Beginnings of names that a number follows.
constexpr std::array<NamedMeaning, 9> kNumberedNames{{{"host", DirectoryMeaning::kScsiHost},
                                                      {"target", DirectoryMeaning::kDevice},
                                                      {"virtio", DirectoryMeaning::kDevice},
                                                      {"ata", DirectoryMeaning::kDevice},
                                                      {"mmc", DirectoryMeaning::kDevice},
                                                      {"rport-", DirectoryMeaning::kDevice},
                                                      {"port-", DirectoryMeaning::kDevice},
                                                      {"expander-", DirectoryMeaning::kDevice},
                                                      {"end_device-", DirectoryMeaning::kDevice}}};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// "3:0:0:0" and other names of numbers only.
bool IsNumbersOnly(std::string_view name) {
  return !name.empty() && std::all_of(name.begin(), name.end(),
                                      [](char c) { return IsDigit(c) || c == ':' || c == '-'; });
}

/// Takes `letters` and the digits behind them from the front of `text`: "n1". Empty if they are not
/// there.
std::string_view TakeNumbered(std::string_view& text, std::string_view letters) {
  if (!text.starts_with(letters)) return "";
  std::size_t end = letters.size();
  while (end < text.size() && IsDigit(text[end])) ++end;
  if (end == letters.size()) return "";
  const std::string_view taken = text.substr(0, end);
  text.remove_prefix(end);
  return taken;
}

}  // namespace

DirectoryMeaning MeaningOf(std::string_view name) {
  for (const NamedMeaning& known : kWholeNames) {
    if (name == known.name) return known.meaning;
  }
  for (const NamedMeaning& known : kNumberedNames) {
    if (name.starts_with(known.name) && IsNumbersOnly(name.substr(known.name.size()))) {
      return known.meaning;
    }
  }
  // A SCSI device is named by host, channel, target and unit.
  const bool isScsiDevice = IsNumbersOnly(name) && std::count(name.begin(), name.end(), ':') == 3;
  return isScsiDevice ? DirectoryMeaning::kDevice : DirectoryMeaning::kNothing;
}

std::string NvmeBlockDevice(std::string_view name) {
  const std::string_view controller = TakeNumbered(name, "nvme");
  if (controller.empty()) return "";
  TakeNumbered(name, "c");
  const std::string_view nameSpace = TakeNumbered(name, "n");
  if (nameSpace.empty() || !name.empty()) return "";
  return std::string(controller) + std::string(nameSpace);
}

}  // namespace topology
