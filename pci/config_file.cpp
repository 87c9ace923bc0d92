#include "pci/config_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "pci/address.h"
#include "pci/paths.h"

namespace {

std::string ConfigPath(const sPciDevices& record) {
  const PciAddress address{record.bus, record.device, record.function};
  std::string path = std::string(kProcBusPci) + '/' + address.ListingKey();
  std::replace(path.begin(), path.end(), ':', '/');
  return path;
}

}  // namespace

ConfigFile::ConfigFile(const sPciDevices& record)
    : path_(ConfigPath(record)), descriptor_(open(path_.c_str(), O_RDONLY | O_CLOEXEC)) {}

ConfigFile::~ConfigFile() {
  if (IsOpen()) close(descriptor_);
}

bool ConfigFile::ReadHeader(unsigned char* header) const {
  return read(descriptor_, header, kConfigHeaderSize) == static_cast<ssize_t>(kConfigHeaderSize);
}

bool ReadHeaderAhead(sPciDevices* record) {
  const ConfigFile file(*record);
  std::array<unsigned char, kConfigHeaderSize> header{};
  if (!file.IsOpen() || !file.ReadHeader(header.data())) return false;
  std::copy(header.begin(), header.end(), record->configSpace.begin());
  return true;
}
