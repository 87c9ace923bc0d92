// SPDX-License-Identifier: Apache-2.0
#include <cstdio>
#include <fstream>

#include "pci/dev_info.h"
#include "pci/device_line.h"
#include "pci/paths.h"
#include "pci/routine_lines.h"

std::vector<sPciDevices> TPciDevInfo::ScanPciDevices() {
  static const RoutineLines kLines("ScanPciDevices");
  WriteDebug(kLines.entering);
  std::vector<sPciDevices> records;
  char path[512];
  std::snprintf(path, sizeof path, "%s/devices", kProcBusPci);
  std::ifstream file(path);
  if (!file.is_open() || file.fail()) {
    WriteStatus("Could not open PCI devices file.");
    return records;
  }

  // Only the end of the file ends the scan. A line that does not fit makes the stream fail, so it
  // never reaches the end; the host limits the time of a collection.
  char line[512];
  while (!file.eof()) {
    file.getline(line, sizeof line);
    sPciDevices record;
    if (ParseDeviceLine(line, &record)) records.push_back(record);
  }
  WriteDebug(kLines.exiting);
  return records;
}
