// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/check/class_checks.h"

/// Facts of a machine for which `check` has no findings: a device, a bridge, and a slot in use with
/// the device in it. Each test changes a part.
pciinfo::ClassFacts MakeSoundFacts();

/// A function that was published for an address ("kind" as in PciFunction).
pciinfo::PublishedFunction Published(const pciinfo::PciAddress& address,
                                     const std::string& kind = "device");

/// A published slot with the number of its tag for its slot ID.
pciinfo::Slot PublishedSlot(unsigned tag);

/// Returns the objects in the findings of the check with that code; "no such check" for other
/// codes.
std::vector<std::string> Doubtful(const std::string& code, const pciinfo::ClassFacts& facts);

/// The same, each followed by ": " and the detail.
std::vector<std::string> Details(const std::string& code, const pciinfo::ClassFacts& facts);
