// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "host/formats/instance_writer.h"

namespace pciinfo {

/// Writes a CIM-XML declaration (DSP0201, DSP0203 2.4) of instances with their local paths.
/// docs/formats.md describes it.
/// `output` must outlive the writer.
std::unique_ptr<InstanceWriter> MakeCimXmlWriter(Output& output);

}  // namespace pciinfo
