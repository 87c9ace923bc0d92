#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

#include "pci/records.h"

/// What the log holds of a header that is read. Written for every function: made once.
inline const std::string kEnteringPciRead = "Entering TPciDevInfo::PciRead routine";
inline const std::string kExitingPciRead = "Exiting TPciDevInfo::PciRead routine";

/// The file with the configuration space of one PCI function, open for reading as long as this
/// lives.
class ConfigFile final {
 public:
  explicit ConfigFile(const sPciDevices& record);
  ConfigFile(const ConfigFile&) = delete;
  ConfigFile& operator=(const ConfigFile&) = delete;
  ~ConfigFile();

  const std::string& GetPath() const { return path_; }
  bool IsOpen() const { return descriptor_ >= 0; }
  /// Reads the configuration header (kConfigHeaderSize bytes), in one call. False when there is
  /// less.
  bool ReadHeader(unsigned char* header) const;

 private:
  std::string path_;
  int descriptor_;
};

/// Reads the configuration headers of all these functions into their records. Answers for each
/// whether that was done; a record for which it was not is as before, and nobody has been told why:
/// that is for whoever needs it, and reads it again.
std::vector<bool> ReadHeadersAhead(std::vector<sPciDevices>* records);
