// SPDX-License-Identifier: Apache-2.0
#include "host/capture/capture.h"

#include <fmt/format.h>

#include <cstdint>

#include "host/capture/redact.h"
#include "host/console/output.h"

namespace pciinfo {
namespace {

/// Passes the parts of a machine to a writer and completes the manifest.
class Recorder final : public CaptureReceiver {
 public:
  Recorder(CaptureWriter& writer, Worker& worker, Manifest manifest, bool redact)
      : writer_(writer), worker_(worker), manifest_(std::move(manifest)), redact_(redact) {
    if (redact_) Redact(manifest_);
  }

  void Begin(const std::string& what) override { worker_.Tell("reading " + what); }

  void Add(CapturePart part) override {
    try {
      if (redact_) redactor_.Redact(part);
    } catch (const CannotRedact& why) {
      NoteUnread(part.path, why.what());
      return;
    }
    writer_.Write(part);
    if (part.path != kMachineIdFile) ++parts_;
  }

  void NoteUnread(const std::string& path, const std::string& reason) override {
    manifest_.unread.push_back({path, reason});
    news_.push_back({path, reason});
  }

  /// To be called last: only then all is known that the manifest says.
  void AddManifest() {
    manifest_.parts = parts_;
    writer_.Write({kManifestFile, ManifestJson(manifest_), ""});
  }

  /// The parts that this run could not read. A capture of a capture keeps the older ones in the
  /// manifest only.
  const std::vector<UnreadPart>& GetNews() const noexcept { return news_; }

 private:
  CaptureWriter& writer_;
  Worker& worker_;
  Manifest manifest_;
  bool redact_;
  Redactor redactor_;
  std::vector<UnreadPart> news_;
  std::uint64_t parts_ = 0;
};

void TellUnread(const std::vector<UnreadPart>& unread) {
  constexpr std::size_t kTold = 5;
  for (std::size_t i = 0; i < unread.size() && i < kTold; ++i) {
    WriteMessage(fmt::format("not fully in the capture: {}: {}", unread[i].path, unread[i].reason));
  }
  if (unread.size() > kTold) {
    WriteMessage(fmt::format("not fully in the capture: {} more; its {} lists them",
                             unread.size() - kTold, kManifestFile));
  }
}

}  // namespace

ExitStatus Capture(const CaptureOrder& order, CaptureTarget& target, Worker& worker) {
  const Manifest manifest = order.origin ? *order.origin : DescribeThisMachine();
  Recorder recorder(target.GetWriter(), worker, manifest, order.redact);
  CaptureMachine(recorder);
  recorder.AddManifest();
  target.GetWriter().Finish();
  worker.BeginOutput();
  TellUnread(recorder.GetNews());
  return recorder.GetNews().empty() ? kAllCollected : kPartsUnread;
}

}  // namespace pciinfo
