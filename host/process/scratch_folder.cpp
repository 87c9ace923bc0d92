#include "host/process/scratch_folder.h"

#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <utility>

namespace pciinfo {

// Not where the environment says: for a privileged user it may come from somebody else. What is
// made and removed within milliseconds had better be in memory.
ScratchFolder::ScratchFolder() {
  for (const char* const folder : {"/dev/shm", "/tmp"}) {
    path_ = std::string(folder) + "/pciinfo-XXXXXX";
    if (mkdtemp(path_.data()) != nullptr) return;
  }
  path_.clear();
}

void ScratchFolder::MoveIn() noexcept {
  if (path_.empty()) return;
  [[maybe_unused]] const int ignored = chdir(path_.c_str());
  path_.clear();
}

void ScratchFolder::Remove() noexcept {
  if (path_.empty()) return;
  if (rmdir(path_.c_str()) == 0) return path_.clear();  // as nearly always: nobody wrote there
  try {
    std::filesystem::remove_all(std::exchange(path_, ""));
  } catch (const std::exception&) {
    return;  // somebody else's doing; what is left says nothing about this machine
  }
}

}  // namespace pciinfo
