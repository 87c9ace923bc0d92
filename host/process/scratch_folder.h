#pragma once

#include <string>

namespace pciinfo {

/// An empty folder that only this user may enter, for files that a plug-in writes where it stands.
class ScratchFolder final {
 public:
  /// Makes it below /dev/shm, or else below /tmp. Where neither can be done there is none.
  ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder() { Remove(); }

  /// Makes it the working directory of this process, from which it is another's to remove.
  void MoveIn() noexcept;
  /// Removes it with all that is in it.
  void Remove() noexcept;

 private:
  std::string path_;
};

}  // namespace pciinfo
