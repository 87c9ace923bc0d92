// SPDX-License-Identifier: Apache-2.0
#include "host/machine/link_text.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/console/text.h"

namespace pciinfo {
namespace {

/// "8" for "8.0 GT/s".
std::string SpeedNumberText(const std::string& speed) {
  std::string number = Printable(speed.substr(0, speed.find(' ')));
  if (number.ends_with(".0")) number.resize(number.size() - 2);
  return number;
}

std::string WidthText(const Link& link) {
  if (!link.width) return link.maxWidth ? fmt::format("up to x{}", *link.maxWidth) : "";
  if (!link.maxWidth || *link.maxWidth == *link.width) return fmt::format("x{}", *link.width);
  return fmt::format("x{} of x{}", *link.width, *link.maxWidth);
}

std::string SpeedText(const Link& link) {
  const std::string now = SpeedNumberText(link.speed);
  const std::string most = SpeedNumberText(link.maxSpeed);
  if (now.empty()) return most.empty() ? "" : most + " GT/s";
  return now == most || most.empty() ? now + " GT/s" : fmt::format("{} of {} GT/s", now, most);
}

}  // namespace

bool LeadsToLink(const MachineFunction& function) {
  return function.portType == "root port" || function.portType == "switch downstream port";
}

std::string LinkText(const Link& link) {
  const std::string width = WidthText(link);
  const std::string speed = SpeedText(link);
  return width.empty() || speed.empty() ? width + speed : width + ", " + speed;
}

std::string MostLinkText(const Link& link) {
  return LinkText({link.maxWidth, link.maxSpeed, link.maxWidth, link.maxSpeed});
}

const MachineFunction* PortOfLink(const MachineFunction& function, const MachineModel& machine) {
  if (!function.parentPort || function.address.address.function != 0) return nullptr;
  const MachineFunction* port = machine.Find(*function.parentPort);
  return port != nullptr && LeadsToLink(*port) ? port : nullptr;
}

std::string NarrowLinkText(const MachineFunction& function, const MachineModel& machine) {
  const MachineFunction* port = PortOfLink(function, machine);
  const Link& link = function.link;
  if (port == nullptr || !link.width || !link.maxWidth || !port->link.maxWidth) return "";
  const unsigned possible = std::min(*link.maxWidth, *port->link.maxWidth);
  return *link.width < possible ? fmt::format("x{} of x{}", *link.width, possible) : "";
}

}  // namespace pciinfo
