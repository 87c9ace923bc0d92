// SPDX-License-Identifier: Apache-2.0
#include "host/model/slot_name.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>

#include "host/console/text.h"

namespace pciinfo {
namespace {

std::string Trimmed(std::string_view text) {
  const std::string printable = TrimEnd(Printable(text));
  return printable.substr(std::min(printable.find_first_not_of(' '), printable.size()));
}

bool IsSame(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) ==
           std::tolower(static_cast<unsigned char>(b));
  });
}

std::optional<unsigned> Number(std::string_view text) {
  unsigned number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

}  // namespace

std::string SlotName(const Slot& slot) {
  const std::string designation = Trimmed(slot.designation.value_or(""));
  return designation.empty() ? Printable(slot.tag) : designation;
}

bool IsNamed(const Slot& slot, std::string_view name) {
  if (const auto number = Number(name); number && slot.id == number) return true;
  return IsSame(Printable(slot.tag), name) ||
         (slot.designation && !name.empty() && IsSame(Trimmed(*slot.designation), Trimmed(name)));
}

}  // namespace pciinfo
