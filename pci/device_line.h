// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "pci/records.h"

/// Parses one line of the kernel's PCI device list: tab-separated columns of hexadecimal numbers
/// (bus and devfn, vendor and device, IRQ, six base addresses, ROM address, six sizes, ROM size),
/// then the driver's name. Returns false and an unspecified record if the line describes no
/// function: it has no columns, or the vendor ID is 0, as it is with fewer than three columns. A
/// missing column gives 0. Other columns are read by ExtractDecimalDataToHex, so a number of more
/// than 32 bits gives 0xFFFFFFFF.
bool ParseDeviceLine(std::string_view line, sPciDevices* record);
