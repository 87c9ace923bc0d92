#pragma once

#include <vector>

#include "host/console/output.h"
#include "runtime/class_schema.h"

namespace pciinfo {

/// Version of the JSON Schema: the first number changes when a document that was valid no longer
/// is, the second when anything is added.
inline constexpr const char* kJsonSchemaVersion = "1.1";

/// Writes the JSON Schema (draft 2020-12) of what `instances` and the views print as JSON and JSON
/// Lines when `classes` are served.
void WriteJsonSchema(Output& output, const std::vector<vtq::ClassSchema>& classes);

}  // namespace pciinfo
