// SPDX-License-Identifier: Apache-2.0
#include "topology/slot_states.h"

#include <charconv>

#include "framework/exception.h"
#include "framework/os_specific.h"

namespace topology {
namespace {

/// Drivers may refuse to tell a state whose file is there.
std::string ReadText(const std::string& file) {
  using NQZMVTQ20::TOSSpecific;
  try {
    return TOSSpecific::FileExists(file) ? TOSSpecific::CaptureFile(file) : "";
  } catch (const NQZMVTQ20::TVTQException&) {
    return "";
  }
}

std::optional<unsigned> ReadState(const KernelSlot& slot, const char* name) {
  const std::string text = ReadText("/sys/bus/pci/slots/" + slot.name + "/" + name);
  unsigned number = 0;
  const auto error = std::from_chars(text.data(), text.data() + text.size(), number).ec;
  return error == std::errc() ? std::optional(number) : std::nullopt;
}

}  // namespace

void ReadSlotStates(std::vector<KernelSlot>& slots) {
  for (KernelSlot& slot : slots) {
    slot.power = ReadState(slot, "power");
    slot.attention = ReadState(slot, "attention");
    slot.latch = ReadState(slot, "latch");
    slot.adapter = ReadState(slot, "adapter");
  }
}

}  // namespace topology
