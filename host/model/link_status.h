// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>

#include "host/model/address.h"
#include "runtime/repository.h"

namespace pciinfo {

/// The negotiated state of a PCI Express link.
struct LinkStatus {
  int width = 0;      ///< lanes; 0 if the link is down
  std::string speed;  ///< "8GT/s"
};

/// Reads the links of functions in PCI domain 0 from the "lspci -vvv" listing in the repository.
std::map<PciAddress, LinkStatus> ReadLinks(const vtq::Namespace& repository);

/// Returns a speed in gigatransfers per second; 0 for other texts.
double SpeedNumber(const std::string& speed);

}  // namespace pciinfo
