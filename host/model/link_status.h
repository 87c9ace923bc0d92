#pragma once

#include <map>
#include <string>

#include "host/model/address.h"
#include "runtime/repository.h"

namespace pciinfo {

/// A PCI Express link as it was trained.
struct LinkStatus {
  int width = 0;      ///< lanes; 0 for a link that is down
  std::string speed;  ///< "8GT/s"
};

/// The links that the listing of "lspci -vvv" in a repository tells, of functions in PCI domain 0.
std::map<PciAddress, LinkStatus> ReadLinks(const vtq::Namespace& repository);

/// Gigatransfers per second of a speed; 0 for other texts.
double SpeedNumber(const std::string& speed);

}  // namespace pciinfo
