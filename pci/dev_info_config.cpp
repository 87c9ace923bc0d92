// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <new>

#include "pci/address.h"
#include "pci/dev_info.h"
#include "pci/paths.h"
#include "pci/routine_lines.h"

namespace {

constexpr std::size_t kBufferSize = 256;

std::string ConfigPath(const sPciDevices& record) {
  return std::string(kProcBusPci) + '/' + TwoHexDigits(record.bus) + '/' +
         TwoHexDigits(record.device) + '.' + std::to_string(record.function);
}

// Opens a file for reading and closes it in the destructor.
class OpenFile final {
 public:
  explicit OpenFile(const std::string& path)
      : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (IsOpen()) close(descriptor_);
  }

  bool IsOpen() const { return descriptor_ >= 0; }
  int Get() const { return descriptor_; }

 private:
  int descriptor_;
};

}  // namespace

unsigned TPciDevInfo::PciRead(TRecord record) {
  static const RoutineLines kLines("PciRead");
  WriteDebug(kLines.entering);
  const std::string path = ConfigPath(*record);
  const OpenFile file(path);
  if (!file.IsOpen()) {
    WriteStatus("Could not open PCI file." +
                path);  // without a space, because log readers match it so
    return 1;
  }
  const std::unique_ptr<unsigned char[]> header(new (std::nothrow) unsigned char[kBufferSize]);
  if (!header) {
    WriteError("Could not allocate memory.");
    return 1;
  }
  if (read(file.Get(), header.get(), kConfigHeaderSize) != ssize_t{kConfigHeaderSize}) {
    WriteStatus("Could not read PCI file " + path);
    return 1;
  }
  std::copy_n(header.get(), kConfigHeaderSize, record->configSpace.begin());
  WriteDebug(kLines.exiting);
  return 0;
}

std::string TPciDevInfo::FormatToString(int value, unsigned width) {
  return PadDecimal(value, width);
}
