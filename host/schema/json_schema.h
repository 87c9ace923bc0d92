// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "host/console/output.h"
#include "runtime/class_schema.h"

namespace pciinfo {

/// Version of the JSON Schema: the first number grows when valid documents become invalid, the
/// second when something is added.
inline constexpr const char* kJsonSchemaVersion = "2.2";

/// Writes the JSON Schema (draft 2020-12) of the JSON and JSON Lines that `instances` and the views
/// print for `classes`.
void WriteJsonSchema(Output& output, const std::vector<vtq::ClassSchema>& classes);

}  // namespace pciinfo
