// SPDX-License-Identifier: Apache-2.0
#include "topology/pci_names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <initializer_list>

namespace topology {
namespace {

/// The front line of `text`, which is removed with its line end.
std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

/// What follows an ID: the name, without the blanks before it.
std::string_view NameIn(std::string_view line, std::size_t idSize) {
  line.remove_prefix(std::min(idSize, line.size()));
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  return line;
}

std::optional<unsigned> Id(std::string_view line, std::size_t digits) {
  unsigned id = 0;
  if (line.size() < digits) return std::nullopt;
  const auto [stop, error] = std::from_chars(line.data(), line.data() + digits, id, 16);
  if (error != std::errc() || stop != line.data() + digits) return std::nullopt;
  return id;
}

/// The front of a line: the tabs, then each ID with its digits and a blank.
std::string Front(std::size_t tabs, int digits, std::initializer_list<unsigned> ids) {
  std::string front(tabs, '\t');
  for (const unsigned id : ids) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%0*x ", digits, id);
    front += text.data();
  }
  return front;
}

bool IsIndented(std::string_view line, std::size_t tabs) {
  return line.size() >= tabs &&
         std::all_of(line.begin(), line.begin() + tabs, [](char c) { return c == '\t'; });
}

/// Removes the front lines of `text` that are indented by `tabs` or more, and returns them.
/// Comments may stand in any line.
std::string_view TakeIndented(std::string_view& text, std::size_t tabs) {
  std::size_t end = 0;
  while (end < text.size() && (text[end] == '#' || IsIndented(text.substr(end), tabs))) {
    end = std::min(text.find('\n', end), text.size() - 1) + 1;
  }
  const std::string_view lines = text.substr(0, end);
  text.remove_prefix(end);
  return lines;
}

/// The beginning of the next line that is not indented. Most of the file's ten thousands of lines
/// are indented, so many bytes are looked at together: compilers use vector instructions for a loop
/// of known length without branches.
std::size_t NextTopLine(std::string_view text, std::size_t at) {
  constexpr std::size_t kStep = 64;
  for (unsigned char ends = 0; at + kStep < text.size(); at += kStep) {
    const char* const bytes = text.data() + at;
    for (std::size_t i = 0; i < kStep; ++i) {
      ends |= static_cast<unsigned char>((bytes[i] == '\n') & (bytes[i + 1] != '\t'));
    }
    if (ends != 0) break;
  }
  do {
    at = std::min(text.find('\n', at), text.size()) + 1;
  } while (at < text.size() && text[at] == '\t');
  return at;
}

/// Base classes are counted after all vendors.
constexpr unsigned kClasses = 0x10000;

std::optional<unsigned> TopId(std::string_view line) {
  if (!line.starts_with("C ")) return Id(line, 4);
  const auto base = Id(line.substr(2), 2);
  return base ? std::optional(kClasses | *base) : std::nullopt;
}

struct DeviceLine {
  std::size_t begin;
  unsigned device;
};

/// The first line of a device that begins from `at` on and before `end`.
std::optional<DeviceLine> NextDevice(std::string_view lines, std::size_t at, std::size_t end) {
  while (at < end) {
    const std::string_view line = lines.substr(at);
    const auto device = line.starts_with('\t') ? Id(line.substr(1), 4) : std::nullopt;
    if (device && line.substr(5).starts_with(' ')) return DeviceLine{at, *device};
    at = std::min(lines.find('\n', at), end) + 1;
  }
  return std::nullopt;
}

/// Assumes that the lines are in the order of their IDs.
std::optional<std::size_t> BisectDevices(std::string_view lines, unsigned device) {
  std::size_t low = 0;
  for (std::size_t high = lines.size(); low < high;) {
    const std::size_t middle = low + (high - low) / 2;
    const std::size_t at = middle == 0 ? 0 : std::min(lines.find('\n', middle - 1), high) + 1;
    const auto found = NextDevice(lines, at, high);
    if (found && found->device == device) return found->begin;
    if (found && found->device < device) {
      low = found->begin + 1;
    } else {
      high = middle;
    }
  }
  return std::nullopt;
}

/// The lines of a vendor are in the order of their IDs as a rule. Where they are not, or the device
/// is not among them, every line is looked at.
std::optional<std::size_t> FindDeviceLine(std::string_view lines, unsigned device) {
  if (const auto place = BisectDevices(lines, device)) return place;
  auto found = NextDevice(lines, 0, lines.size());
  while (found && found->device != device) {
    found = NextDevice(lines, found->begin + 1, lines.size());
  }
  return found ? std::optional(found->begin) : std::nullopt;
}

}  // namespace

PciNames::PciNames(std::string text) : text_(std::move(text)) {
  bool isOpen = false;  // the block of the last place goes on
  for (std::size_t at = 0; at < text_.size(); at = NextTopLine(text_, at)) {
    if (text_[at] == '#') continue;
    if (isOpen) places_.back().end = at;
    const auto id = TopId(std::string_view(text_).substr(at));
    isOpen = id.has_value();
    if (id) places_.push_back({*id, at, text_.size()});
  }
  const auto isBefore = [](const Place& left, const Place& right) { return left.id < right.id; };
  if (std::is_sorted(places_.begin(), places_.end(), isBefore)) return;
  std::stable_sort(places_.begin(), places_.end(), isBefore);
}

/// Finds the line that begins with `indented`, which holds the tabs and the ID.
std::optional<PciNames::Block> PciNames::FindIn(std::string_view lines, std::string_view indented) {
  const std::size_t tabs = indented.find_first_not_of('\t') + 1;
  while (!lines.empty()) {
    const std::string_view line = TakeLine(lines);
    if (!line.starts_with(indented)) continue;
    return Block{NameIn(line, indented.size()), TakeIndented(lines, tabs)};
  }
  return std::nullopt;
}

std::optional<PciNames::Block> PciNames::FindTop(unsigned id) const {
  const auto place =
      std::lower_bound(places_.begin(), places_.end(), id,
                       [](const Place& left, unsigned right) { return left.id < right; });
  if (place == places_.end() || place->id != id) return std::nullopt;
  std::string_view lines = std::string_view(text_).substr(place->begin, place->end - place->begin);
  const std::string_view line = TakeLine(lines);
  return Block{NameIn(line, 4), lines};
}

std::optional<PciNames::Block> PciNames::FindDevice(std::uint16_t vendor,
                                                    std::uint16_t device) const {
  const auto block = FindTop(vendor);
  if (!block) return std::nullopt;
  const auto begin = FindDeviceLine(block->lines, device);
  if (!begin) return std::nullopt;
  std::string_view lines = block->lines.substr(*begin);
  const std::string_view line = TakeLine(lines);
  return Block{NameIn(line, 6), TakeIndented(lines, 2)};
}

std::optional<PciNames::Block> PciNames::FindSubclass(std::uint32_t classCode) const {
  const auto base = FindTop(kClasses | (classCode >> 16 & 0xFF));
  if (!base) return std::nullopt;
  return FindIn(base->lines, Front(1, 2, {classCode >> 8 & 0xFF}));
}

std::string_view PciNames::Vendor(std::uint16_t vendor) const {
  return FindTop(vendor).value_or(Block()).name;
}

std::string_view PciNames::Device(std::uint16_t vendor, std::uint16_t device) const {
  return FindDevice(vendor, device).value_or(Block()).name;
}

std::string_view PciNames::Subsystem(std::uint16_t vendor, std::uint16_t device,
                                     std::uint16_t subsystemVendor, std::uint16_t subsystem) const {
  const auto found = FindDevice(vendor, device);
  if (!found) return {};
  const auto exact = FindIn(found->lines, Front(2, 4, {subsystemVendor, subsystem}));
  if (exact) return exact->name;
  const bool isSame = vendor == subsystemVendor && device == subsystem;
  return isSame ? found->name : std::string_view();
}

std::string_view PciNames::Class(std::uint32_t classCode) const {
  if (const auto subclass = FindSubclass(classCode)) return subclass->name;
  return FindTop(kClasses | (classCode >> 16 & 0xFF)).value_or(Block()).name;
}

std::string_view PciNames::ProgrammingInterface(std::uint32_t classCode) const {
  const std::string_view lines = FindSubclass(classCode).value_or(Block()).lines;
  return FindIn(lines, Front(2, 2, {classCode & 0xFF})).value_or(Block()).name;
}

}  // namespace topology
