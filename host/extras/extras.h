// SPDX-License-Identifier: Apache-2.0
#pragma once

// Code that needs libraries which most runs do not use (archives, XML, YAML) is in a separate
// library. It is loaded when it is first needed, because loading it takes a large part of the time
// of a short run. The program calls the functions of the headers below as usual;
// `extras_loader.cpp` implements them by the functions at the end of this file.

#include "host/capture/capture_writer.h"
#include "host/formats/cim_xml_writer.h"
#include "host/formats/yaml_writer.h"
#include "host/replay/capture_reader.h"

namespace pciinfo {

inline constexpr const char* kExtrasFile = "libpciinfo-extras.so";

}  // namespace pciinfo

extern "C" {
// The caller owns the returned object. Each throws like the function that it is named after.
VTQ_EXPORT pciinfo::CaptureReader* PciinfoOpenArchive(vtq::FileDescriptor file);
VTQ_EXPORT pciinfo::CaptureWriter* PciinfoMakeArchiveWriter(int descriptor,
                                                            pciinfo::Compression compression);
VTQ_EXPORT pciinfo::InstanceWriter* PciinfoMakeCimXmlWriter(pciinfo::Output& output);
VTQ_EXPORT pciinfo::InstanceWriter* PciinfoMakeYamlWriter(pciinfo::Output& output);
VTQ_EXPORT void PciinfoWriteYaml(pciinfo::Output& output, const nlohmann::ordered_json& document);
}
