// SPDX-License-Identifier: Apache-2.0
#include "host/report/part_link.h"

#include <algorithm>
#include <cstdlib>

#include "host/machine/link_text.h"

namespace pciinfo {
namespace {

std::optional<unsigned> LessOf(const std::optional<unsigned>& left,
                               const std::optional<unsigned>& right) {
  if (!left || !right) return left ? left : right;
  return std::min(*left, *right);
}

std::string SlowerOf(const std::string& left, const std::string& right) {
  if (left.empty() || right.empty()) return left + right;
  return std::strtod(left.c_str(), nullptr) <= std::strtod(right.c_str(), nullptr) ? left : right;
}

/// What a link does, told by the device or else by the port, and what both ends of it allow.
Link BetweenEnds(const Link& port, const Link& device) {
  return {device.width ? device.width : port.width,
          device.speed.empty() ? port.speed : device.speed, LessOf(port.maxWidth, device.maxWidth),
          SlowerOf(port.maxSpeed, device.maxSpeed)};
}

}  // namespace

std::optional<PartLink> LinkBehind(const PortNode& port, const MachineModel& machine) {
  const MachineFunction& above = *port.functions.front();
  if (port.behind.empty()) {
    const Link down = {std::nullopt, "", above.link.maxWidth, ""};
    if (!down.maxWidth) return std::nullopt;
    return PartLink{std::nullopt, down.maxWidth, false, LinkText(down), ""};
  }
  const MachineFunction& below = *port.behind.front().functions.front();
  const Link link = BetweenEnds(above.link, below.link);
  if (LinkText(link).empty()) return std::nullopt;
  return PartLink{link.width, link.maxWidth, !NarrowLinkText(below, machine).empty(),
                  LinkText({link.width, "", link.maxWidth, ""}),
                  LinkText({std::nullopt, link.speed, std::nullopt, link.maxSpeed})};
}

}  // namespace pciinfo
