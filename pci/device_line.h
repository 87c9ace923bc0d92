#pragma once

#include <string_view>

#include "pci/records.h"

/// Parses one line of the kernel's PCI device list: tab-separated columns of hexadecimal numbers
/// (bus and devfn, vendor and device, IRQ, six base addresses, ROM address, six sizes, ROM size),
/// then the driver's name. Returns false, leaving an unspecified record, when the line describes no
/// function: no columns, or vendor ID 0, which fewer than three columns give as well. Columns that
/// are missing give 0; columns that are not hexadecimal give what ExtractDecimalDataToHex makes of
/// them, so numbers wider than 32 bits give 0xFFFFFFFF.
bool ParseDeviceLine(std::string_view line, sPciDevices* record);
