// SPDX-License-Identifier: Apache-2.0
#include "host/capture/capture_tree.h"
#include "host/capture/capture_writer.h"

namespace pciinfo {
namespace {

class FolderWriter final : public CaptureWriter {
 public:
  explicit FolderWriter(const std::string& directory) : tree_(directory) {}

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

std::unique_ptr<CaptureWriter> MakeFolderWriter(const std::string& directory) {
  return std::make_unique<FolderWriter>(directory);
}

}  // namespace pciinfo
