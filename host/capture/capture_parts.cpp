// SPDX-License-Identifier: Apache-2.0
#include "host/capture/capture_parts.h"

#include <algorithm>
#include <system_error>

#include "framework/exception.h"
#include "framework/os_specific.h"

namespace pciinfo {

namespace fs = std::filesystem;

using NQZMVTQ20::TOSSpecific;
using NQZMVTQ20::TVTQException;
using NQZMVTQ20::TVTQStatusCode;

std::string InCapture(const fs::path& path) { return path.relative_path(); }

std::vector<fs::path> Listing(CaptureReceiver& receiver, const fs::path& directory) {
  std::vector<fs::path> paths;
  std::error_code error;
  for (fs::directory_iterator entry(directory, error), end; !error && entry != end;
       entry.increment(error)) {
    paths.push_back(entry->path());
  }
  const bool missing = error == std::errc::no_such_file_or_directory;
  if (error && !missing) receiver.NoteUnread(InCapture(directory), error.message());
  std::sort(paths.begin(), paths.end());
  return paths;
}

void AddFile(CaptureReceiver& receiver, const fs::path& path) {
  std::string content;
  try {
    content = TOSSpecific::CaptureFile(path);
  } catch (const TVTQException& failure) {
    if (failure.GetStatusCode() == TVTQStatusCode::kNotFound) return;
    receiver.NoteUnread(InCapture(path), failure.what());
    return;
  }
  receiver.Add({InCapture(path), std::move(content), ""});
}

}  // namespace pciinfo
