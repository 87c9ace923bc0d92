// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace pciinfo {

/// An empty directory that only this user may enter, for files that a plug-in writes into its
/// working directory. The process that made it removes it.
class ScratchDirectory final {
 public:
  /// Makes it below /dev/shm, or else below /tmp. Where neither can be done there is none.
  ScratchDirectory();
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;
  /// Removes it with all that is in it.
  ~ScratchDirectory();

  /// Makes it the working directory of this process. Answers whether there is one.
  bool Enter() const noexcept;

 private:
  std::string path_;
};

}  // namespace pciinfo
