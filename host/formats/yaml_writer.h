#pragma once

#include <memory>

#include "host/formats/instance_writer.h"

namespace pciinfo {

/// One YAML document with the keys and values of the JSON one. docs/formats.md describes it.
/// `output` must outlive the writer.
std::unique_ptr<InstanceWriter> MakeYamlWriter(Output& output);

}  // namespace pciinfo
