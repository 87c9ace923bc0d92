// SPDX-License-Identifier: Apache-2.0
#include "host/store/machine_matching.h"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace pciinfo {
namespace {

bool AreSame(const std::string& left, const std::string& right) {
  return !left.empty() && left == right;
}

bool Differ(const std::string& left, const std::string& right) {
  return !left.empty() && !right.empty() && left != right;
}

bool CanBe(const MachineNames& told, const MachineNames& known) {
  if (Differ(told.systemUuid, known.systemUuid)) return false;
  const bool hasSameUuid = AreSame(told.systemUuid, known.systemUuid);
  if (Differ(told.machineId, known.machineId)) {
    return hasSameUuid && !Differ(told.name, known.name);
  }
  return hasSameUuid || AreSame(told.machineId, known.machineId) || AreSame(told.name, known.name);
}

void MakeLowerCase(std::string& text) {
  for (char& letter : text) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
}

bool IsOfOneDigit(const std::string& uuid) {
  return uuid.find_first_not_of(uuid.substr(0, 1) + "-") == std::string::npos;
}

bool IsDefaultUuid(const std::string& uuid) {
  constexpr const char* kDefaults[] = {
      "03000200-0400-0500-0006-000700080009",
      "00020003-0004-0005-0006-000700080009",  // the same bytes in the order of older firmware
      "12345678-1234-5678-90ab-cddeefaabbcc",
      "78563412-3412-7856-90ab-cddeefaabbcc",
  };
  return IsOfOneDigit(uuid) ||
         std::find(std::begin(kDefaults), std::end(kDefaults), uuid) != std::end(kDefaults);
}

bool IsMachineId(const std::string& id) {
  return id.size() == 32 && id.find_first_not_of("0123456789abcdef") == std::string::npos &&
         !IsOfOneDigit(id);
}

}  // namespace

MachineNames OnlyMeaningful(MachineNames names) {
  MakeLowerCase(names.systemUuid);
  MakeLowerCase(names.machineId);
  if (IsDefaultUuid(names.systemUuid)) names.systemUuid.clear();
  if (!IsMachineId(names.machineId)) names.machineId.clear();
  return names;
}

const KnownMachine* ChooseMachine(const MachineNames& told,
                                  const std::vector<KnownMachine>& known) {
  const auto rank = [&told](const KnownMachine& machine) {
    return std::make_tuple(AreSame(told.systemUuid, machine.names.systemUuid),
                           AreSame(told.machineId, machine.names.machineId),
                           AreSame(told.name, machine.names.name), machine.lastSeen);
  };
  const KnownMachine* best = nullptr;
  for (const KnownMachine& machine : known) {
    if (!CanBe(told, machine.names)) continue;
    if (best == nullptr || rank(*best) < rank(machine)) best = &machine;
  }
  return best;
}

}  // namespace pciinfo
