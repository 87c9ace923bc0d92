// SPDX-License-Identifier: Apache-2.0
#include "runtime/bios_id.h"

#include <algorithm>

#include "framework/exception.h"
#include "framework/os_specific.h"
#include "runtime/smbios_access.h"

namespace vtq {

using NQZMVTQ20::TVTQException;
using NQZMVTQ20::TVTQStatusCode;

namespace {

constexpr int kBiosInformation = 0;
constexpr std::size_t kVersionOffset = 5;

using Bytes = std::span<const std::uint8_t>;

// String `number`, counted from 1, of a whole structure. Empty when it has none.
std::string StringOf(Bytes structure, int number) {
  Bytes strings = structure.subspan(structure[1]);
  for (int current = 1; !strings.empty() && strings[0] != 0; ++current) {
    const auto end = std::find(strings.begin(), strings.end(), 0);
    if (current == number) return {strings.begin(), end};
    strings = strings.subspan(static_cast<std::size_t>(end - strings.begin()) + 1);
  }
  return {};
}

}  // namespace

std::string BiosVersion(const SmBiosTable& table) {
  SmBiosWalk walk(table);
  while (const std::optional<Bytes> structure = walk.Next()) {
    if ((*structure)[0] != kBiosInformation) continue;
    if ((*structure)[1] <= kVersionOffset) return {};
    return StringOf(*structure, (*structure)[kVersionOffset]);
  }
  return {};
}

std::string BiosIdFrom(const std::string& directory) {
  try {
    return BiosVersion(LoadSmBiosTable(directory));
  } catch (const TVTQException& failure) {
    // Another attempt may succeed, so this is not "no BIOS version".
    if (failure.GetStatusCode() == TVTQStatusCode::kFailure) throw;
    return {};
  }
}

}  // namespace vtq

namespace NQZMVTQ20 {

std::string TOSSpecific::GetBiosID() { return vtq::BiosIdFrom(vtq::kSmBiosDirectory); }

}  // namespace NQZMVTQ20
