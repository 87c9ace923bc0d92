// SPDX-License-Identifier: Apache-2.0
#include "host/store/card_functions.h"

#include <algorithm>
#include <iterator>

namespace pciinfo {
namespace {

bool IsOfChipset(const RecordedFunction& function) {
  constexpr unsigned kBaseClasses[] = {0x05, 0x06, 0x08, 0x11};
  const unsigned baseClass = function.classCode.value_or(0) >> 8U;
  return std::find(std::begin(kBaseClasses), std::end(kBaseClasses), baseClass) !=
         std::end(kBaseClasses);
}

std::string DeviceOf(const RecordedFunction& function) {
  if (function.parentPort.empty()) return function.address;
  return function.address.substr(0, function.address.rfind('.'));
}

}  // namespace

std::set<std::string> CardFunctions(const std::vector<RecordedFunction>& functions) {
  std::set<std::string> devices;
  std::set<std::string> addresses;
  for (const RecordedFunction& function : functions) {
    if (function.isBridge || !function.physicalFunction.empty() || IsOfChipset(function)) continue;
    if (devices.insert(DeviceOf(function)).second) addresses.insert(function.address);
  }
  return addresses;
}

}  // namespace pciinfo
