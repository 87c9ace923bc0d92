// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <vector>

#include "pci/listing_index.h"
#include "plugin/property_map.h"

/// Data that outlives a collector: set once and kept until the library is unloaded. It needs no
/// lock, because all queries come on one thread.
struct PciProcessState {
  /// 0: the firmware's slot structures give no usable bus information; 1: bus information is in
  /// type 11 strings (SMBIOS 2.5); 2: it is in the type 9 structures (SMBIOS 2.6 and later).
  unsigned slotIDRetrievalType = 0;
  /// Set before the slot tables are loaded, so that a failed load is not repeated.
  bool slotDataLoaded = false;

  /// The inventory, a map for each function; collected once, on the first request for a PCI class.
  std::vector<TPropertyMap> pciBridgePropsVect;
  std::vector<TPropertyMap> pciDevicePropsVect;
  bool pciInfoCollected = false;

  /// `listingRun` is set before the only run of "lspci"; the listing is null if there is no output.
  bool listingRun = false;
  std::unique_ptr<const ListingIndex> listing;
  bool listingUnavailable = false;
  bool descriptionFileUnavailable = false;

  /// The slot number that the functions of a certain network chip share; 0 until the first function
  /// with one is seen.
  unsigned char specialSlotNumber = 0;
};

extern PciProcessState processState;
