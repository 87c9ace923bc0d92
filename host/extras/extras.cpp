// SPDX-License-Identifier: Apache-2.0
#include "host/extras/extras.h"

#include <utility>

pciinfo::CaptureReader* PciinfoOpenArchive(vtq::FileDescriptor file) {
  return pciinfo::OpenArchive(std::move(file)).release();
}

pciinfo::CaptureWriter* PciinfoMakeArchiveWriter(int descriptor, pciinfo::Compression compression) {
  return pciinfo::MakeArchiveWriter(descriptor, compression).release();
}

pciinfo::InstanceWriter* PciinfoMakeCimXmlWriter(pciinfo::Output& output) {
  return pciinfo::MakeCimXmlWriter(output).release();
}

pciinfo::InstanceWriter* PciinfoMakeYamlWriter(pciinfo::Output& output) {
  return pciinfo::MakeYamlWriter(output).release();
}

void PciinfoWriteYaml(pciinfo::Output& output, const nlohmann::ordered_json& document) {
  pciinfo::WriteYaml(output, document);
}
