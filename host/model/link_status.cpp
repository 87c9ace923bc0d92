// SPDX-License-Identifier: Apache-2.0
#include "host/model/link_status.h"

#include <charconv>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "host/formats/value_text.h"

namespace pciinfo {
namespace {

std::optional<unsigned> TakeHex(std::string_view& text, char end, unsigned highest) {
  unsigned number = 0;
  const auto [next, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  const bool isThere = error == std::errc() && number <= highest &&
                       next != text.data() + text.size() && *next == end;
  if (!isThere) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(next - text.data()) + 1);
  return number;
}

/// The address in the first line of a function, "03:00.0 Name"; nothing for other lines and for
/// other domains.
std::optional<PciAddress> AddressOf(std::string_view line) {
  constexpr std::string_view kDomain = "0000:";
  if (line.starts_with(kDomain)) line.remove_prefix(kDomain.size());
  const auto bus = TakeHex(line, ':', 255);
  const auto device = TakeHex(line, '.', 31);
  const auto function = TakeHex(line, ' ', 7);
  if (!bus || !device || !function) return std::nullopt;
  return PciAddress{*bus, *device, *function};
}

std::string_view WordBehind(std::string_view line, std::string_view label) {
  const std::size_t place = line.find(label);
  if (place == std::string_view::npos) return {};
  line.remove_prefix(place + label.size());
  return line.substr(0, line.find_first_of(" ,"));
}

std::optional<LinkStatus> LinkIn(std::string_view line) {
  if (line.find("LnkSta:") == std::string_view::npos) return std::nullopt;
  const std::string_view width = WordBehind(line, "Width x");
  LinkStatus link;
  link.speed = WordBehind(line, "Speed ");
  const auto end = width.data() + width.size();
  const bool isNumber = std::from_chars(width.data(), end, link.width).ec == std::errc();
  if (!isNumber || link.width < 0) return std::nullopt;
  return link;
}

void ReadListing(const NQZMVTQ20::TCIMValue& lines, std::map<PciAddress, LinkStatus>& links) {
  if (!lines.IsArray()) return;
  std::optional<PciAddress> address;
  for (const NQZMVTQ20::TCIMValue& element : lines.GetArray()) {
    if (element.IsNull()) continue;
    const std::string_view line = element.GetString();
    if (!line.empty() && line.front() != '\t' && line.front() != ' ') address = AddressOf(line);
    if (!address) continue;
    if (const auto link = LinkIn(line)) links[*address] = *link;
  }
}

}  // namespace

std::map<PciAddress, LinkStatus> ReadLinks(const vtq::Namespace& repository) {
  std::map<PciAddress, LinkStatus> links;
  for (const auto& instance : repository.Find("QZMSG_PCIRawData")->GetInstances()) {
    if (TextOf(*instance, "Command") != "lspci -vvv") continue;
    ReadListing(instance->GetProperty("RawResult", {}).value, links);
  }
  return links;
}

double SpeedNumber(const std::string& speed) { return std::strtod(speed.c_str(), nullptr); }

}  // namespace pciinfo
