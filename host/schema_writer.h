#pragma once

#include <string>
#include <vector>

#include "host/output.h"

namespace pciinfo {

/// The formats that WriteSchema knows.
std::vector<std::string> SchemaFormats();

/// Writes the classes of PciSchema in one of SchemaFormats.
void WriteSchema(Output& output, const std::string& format);

}  // namespace pciinfo
