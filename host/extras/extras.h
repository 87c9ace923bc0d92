#pragma once

// What takes libraries that most runs of the program do without (archives, XML, YAML) is in a
// library of its own, which is loaded when it is first needed: the time that loading takes would
// be a large part of a short run. The program calls the functions of the headers below as any
// other; `extras_loader.cpp` finds them in that library, under these names.

#include "host/capture/capture_writer.h"
#include "host/formats/cim_xml_writer.h"
#include "host/formats/yaml_writer.h"
#include "host/replay/archive_reader.h"

namespace pciinfo {

inline constexpr const char* kExtrasFile = "libpciinfo-extras.so";

}  // namespace pciinfo

extern "C" {
// The caller owns what these return. They throw as the functions that they are named after.
VTQ_EXPORT pciinfo::ArchiveReader* PciinfoOpenArchive(const std::string& name);
VTQ_EXPORT pciinfo::CaptureWriter* PciinfoMakeArchiveWriter(int descriptor,
                                                            pciinfo::Compression compression);
VTQ_EXPORT pciinfo::InstanceWriter* PciinfoMakeCimXmlWriter(pciinfo::Output& output);
VTQ_EXPORT pciinfo::InstanceWriter* PciinfoMakeYamlWriter(pciinfo::Output& output);
}
