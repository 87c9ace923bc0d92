// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/console/output.h"
#include "runtime/class_schema.h"

namespace pciinfo {

/// The names of the formats.
std::vector<std::string> SchemaFormats();

/// Writes classes in one of SchemaFormats.
void WriteSchema(Output& output, const std::string& format,
                 const std::vector<vtq::ClassSchema>& classes);

}  // namespace pciinfo
