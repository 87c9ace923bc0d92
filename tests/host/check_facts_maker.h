#pragma once

#include "host/check/checks.h"

/// Facts of a machine without findings: a device, a bridge and a slot in use that holds the
/// device. Tests change what they are about.
pciinfo::CheckFacts MakeSoundFacts();

/// A function that was published for an address ("kind" as in PciFunction).
pciinfo::PublishedFunction Published(const pciinfo::PciAddress& address,
                                     const std::string& kind = "device");

/// A published slot with the number of its tag for its slot ID.
pciinfo::Slot PublishedSlot(unsigned tag);

/// The objects that the check of that code finds; "no such check" for other codes.
std::vector<std::string> Doubtful(const std::string& code, const pciinfo::CheckFacts& facts);

/// The same, with ": " and the detail.
std::vector<std::string> Details(const std::string& code, const pciinfo::CheckFacts& facts);
