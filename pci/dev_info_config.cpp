#include <algorithm>
#include <memory>
#include <new>

#include "pci/address.h"
#include "pci/config_file.h"
#include "pci/dev_info.h"

unsigned TPciDevInfo::PciRead(TRecord record) {
  WriteDebug(kEnteringPciRead);
  const ConfigFile file(*record);
  if (!file.IsOpen()) {
    WriteStatus("Could not open PCI file." +
                file.GetPath());  // log readers know it without a blank
    return 1;
  }
  const std::unique_ptr<unsigned char[]> header(new (std::nothrow) unsigned char[256]);
  if (!header) {
    WriteError("Could not allocate memory.");
    return 1;
  }
  if (!file.ReadHeader(header.get())) {
    WriteStatus("Could not read PCI file " + file.GetPath());
    return 1;
  }
  std::copy_n(header.get(), kConfigHeaderSize, record->configSpace.begin());
  WriteDebug(kExitingPciRead);
  return 0;
}

std::string TPciDevInfo::FormatToString(int value, unsigned width) {
  return PadDecimal(value, width);
}
