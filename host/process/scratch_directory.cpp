// SPDX-License-Identifier: Apache-2.0
#include "host/process/scratch_directory.h"

#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <filesystem>

namespace pciinfo {

// The environment does not choose the place: for a privileged user it may come from somebody else.
// /dev/shm is in memory, where making and removing a directory takes less time.
ScratchDirectory::ScratchDirectory() {
  for (const char* const directory : {"/dev/shm", "/tmp"}) {
    path_ = std::string(directory) + "/pciinfo-XXXXXX";
    if (mkdtemp(path_.data()) != nullptr) return;
  }
  path_.clear();
}

ScratchDirectory::~ScratchDirectory() {
  if (path_.empty() || rmdir(path_.c_str()) == 0) return;  // it is nearly always empty
  try {
    std::filesystem::remove_all(path_);
  } catch (const std::exception&) {
    return;  // a plug-in made something that this user may not remove
  }
}

bool ScratchDirectory::Enter() const noexcept {
  return !path_.empty() && chdir(path_.c_str()) == 0;
}

}  // namespace pciinfo
