// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "host/console/output.h"
#include "runtime/class_schema.h"

namespace pciinfo {

/// Writes the classes as MOF declarations (DSP0004). The repository that compiles them must have
/// the superclasses and qualifiers of the DMTF schema. docs/formats.md describes it.
void WriteMofSchema(Output& output, const std::vector<vtq::ClassSchema>& classes);

}  // namespace pciinfo
