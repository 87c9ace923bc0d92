// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "host/capture/capture_tree.h"
#include "host/capture/capture_writer.h"

namespace pciinfo {
namespace {

class DirectoryWriter final : public CaptureWriter {
 public:
  explicit DirectoryWriter(vtq::FileDescriptor directory) : tree_(std::move(directory)) {}

  void Write(const CapturePart& part) override {
    if (part.target.empty()) {
      WriteBytes(tree_.MakeFile(part.path), part.content);
    } else {
      tree_.MakeLink(part.path, part.target);
    }
  }

  void Finish() override {}

 private:
  CaptureTree tree_;
};

}  // namespace

std::unique_ptr<CaptureWriter> MakeDirectoryWriter(const vtq::FileDescriptor& directory) {
  vtq::FileDescriptor own(fcntl(directory.Get(), F_DUPFD_CLOEXEC, 0));
  if (!own.IsOpen()) throw std::system_error(errno, std::generic_category());
  return std::make_unique<DirectoryWriter>(std::move(own));
}

}  // namespace pciinfo
