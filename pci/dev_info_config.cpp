#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <new>

#include "pci/address.h"
#include "pci/dev_info.h"
#include "pci/paths.h"

namespace {

// Written for every function: made once.
const std::string kEnteringPciRead = "Entering TPciDevInfo::PciRead routine";
const std::string kExitingPciRead = "Exiting TPciDevInfo::PciRead routine";

std::string ConfigPath(const sPciDevices& record) {
  const PciAddress address{record.bus, record.device, record.function};
  std::string path = std::string(kProcBusPci) + '/' + address.ListingKey();
  std::replace(path.begin(), path.end(), ':', '/');
  return path;
}

// A file descriptor that is closed at the end of its scope.
class File {
 public:
  explicit File(const std::string& path) : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() {
    if (IsOpen()) close(descriptor_);
  }

  bool IsOpen() const { return descriptor_ >= 0; }
  ssize_t Read(unsigned char* buffer, std::size_t size) const {
    return read(descriptor_, buffer, size);
  }

 private:
  int descriptor_;
};

}  // namespace

unsigned TPciDevInfo::PciRead(TRecord record) {
  WriteDebug(kEnteringPciRead);
  const std::string path = ConfigPath(*record);
  const File file(path);
  if (!file.IsOpen()) {
    WriteStatus("Could not open PCI file." + path);  // log readers know it without a blank
    return 1;
  }
  const std::unique_ptr<unsigned char[]> header(new (std::nothrow) unsigned char[256]);
  if (!header) {
    WriteError("Could not allocate memory.");
    return 1;
  }
  if (file.Read(header.get(), kConfigHeaderSize) != static_cast<ssize_t>(kConfigHeaderSize)) {
    WriteStatus("Could not read PCI file " + path);
    return 1;
  }
  std::copy_n(header.get(), kConfigHeaderSize, record->configSpace.begin());
  WriteDebug(kExitingPciRead);
  return 0;
}

std::string TPciDevInfo::FormatToString(int value, unsigned width) {
  return PadDecimal(value, width);
}
