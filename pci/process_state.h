#pragma once

#include <memory>
#include <vector>

#include "pci/listing_index.h"
#include "plugin/property_map.h"

/// What outlives a collector: set once, and kept until the library is unloaded. Nothing guards it;
/// all queries come on one thread.
struct PciProcessState {
  /// 0: the firmware's slot structures give no usable bus information; 1: bus information is in
  /// type 11 strings (SMBIOS 2.5); 2: it is in the type 9 structures (SMBIOS 2.6 and later).
  unsigned slotIDRetrievalType = 0;
  /// Set before the one load of the slot tables, so that a failing load is not tried again.
  bool slotDataLoaded = false;

  /// The inventory, a map for each function; taken once, on the first request for a PCI class.
  std::vector<TPropertyMap> pciBridgePropsVect;
  std::vector<TPropertyMap> pciDevicePropsVect;
  bool pciInfoCollected = false;

  /// Set before the one "lspci" run; its output, null when there is none.
  bool listingRun = false;
  std::unique_ptr<const ListingIndex> listing;
  bool listingUnavailable = false;
  bool descriptionFileUnavailable = false;

  /// Slot number that functions of one network chip share on one platform; 0 until the first is
  /// seen.
  unsigned char specialSlotNumber = 0;
};

extern PciProcessState processState;
