#pragma once

#include <string>

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

/// Reads the configuration header of a function into its record. Where that cannot be done the
/// record is as before, and nobody has been told why: that is for whoever needs it, and reads it
/// again.
bool ReadHeaderAhead(sPciDevices* record);
