// SPDX-License-Identifier: Apache-2.0
#include "host/extras/extras.h"

pciinfo::ArchiveReader* PciinfoOpenArchive(const std::string& name) {
  return pciinfo::OpenArchive(name).release();
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
