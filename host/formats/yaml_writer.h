// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>

#include "host/formats/instance_writer.h"

namespace pciinfo {

/// Writes one YAML document with the same keys and values as JSON. docs/formats.md describes it.
/// `output` must outlive the writer.
std::unique_ptr<InstanceWriter> MakeYamlWriter(Output& output);

/// Writes a JSON document as a YAML document, texts all in double quotes.
void WriteYaml(Output& output, const nlohmann::ordered_json& document);

}  // namespace pciinfo
