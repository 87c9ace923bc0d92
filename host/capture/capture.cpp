#include "host/capture/capture.h"

#include <fmt/format.h>

#include "host/capture/capture_target.h"
#include "host/capture/capture_watch.h"
#include "host/capture/redact.h"
#include "host/console/output.h"

namespace pciinfo {
namespace {

/// Passes the parts of a machine to a writer and completes the manifest.
class Recorder final : public CaptureReceiver {
 public:
  Recorder(CaptureWriter& writer, WorkWatch& watch, Manifest manifest, bool redact)
      : writer_(writer), watch_(watch), manifest_(std::move(manifest)), redact_(redact) {
    if (redact_) Redact(manifest_);
  }

  void Begin(const std::string& what) override { watch_.Tell(what); }

  void Add(CapturePart part) override {
    try {
      if (redact_) redactor_.Redact(part);
    } catch (const CannotRedact& why) {
      NoteUnread(part.path, why.what());
      return;
    }
    const auto lock = watch_.Hold();
    writer_.Write(part);
  }

  void NoteUnread(const std::string& path, const std::string& reason) override {
    manifest_.unread.push_back({path, reason});
    news_.push_back({path, reason});
  }

  /// Call this last: the manifest lists the parts that could not be read.
  void AddManifest() {
    const auto lock = watch_.Hold();
    writer_.Write({kManifestFile, ManifestJson(manifest_), ""});
  }

  /// The parts that this run could not read. A capture of a capture keeps the older ones in the
  /// manifest only.
  const std::vector<UnreadPart>& GetNews() const noexcept { return news_; }

 private:
  CaptureWriter& writer_;
  WorkWatch& watch_;
  Manifest manifest_;
  bool redact_;
  Redactor redactor_;
  std::vector<UnreadPart> news_;
};

// Locks the watch, so that a signal at any moment removes the unfinished capture.
void OpenTarget(WorkWatch& watch, std::optional<CaptureTarget>& target, const std::string& file) {
  const auto lock = watch.Hold();
  target.emplace(file);
}

std::vector<UnreadPart> Record(const CaptureOrder& order, const Manifest& manifest) {
  std::optional<CaptureTarget> target;
  WorkWatch watch([&target] {
    if (target) target->Abandon();
  });
  OpenTarget(watch, target, order.file);
  Recorder recorder(target->GetWriter(), watch, manifest, order.redact);
  CaptureMachine(recorder);
  recorder.AddManifest();
  const auto lock = watch.Hold();
  target->Commit();
  return recorder.GetNews();
}

void TellUnread(const std::vector<UnreadPart>& unread) {
  constexpr std::size_t kTold = 5;
  for (std::size_t i = 0; i < unread.size() && i < kTold; ++i) {
    WriteMessage(fmt::format("not in the capture: {}: {}", unread[i].path, unread[i].reason));
  }
  if (unread.size() > kTold) {
    WriteMessage(fmt::format("not in the capture: {} more; its {} lists them",
                             unread.size() - kTold, kManifestFile));
  }
}

}  // namespace

ExitStatus Capture(const CaptureOrder& order) {
  const Manifest manifest = order.origin ? *order.origin : DescribeThisMachine();
  const std::vector<UnreadPart> unread = Record(order, manifest);
  TellUnread(unread);
  return unread.empty() ? kAllCollected : kFailed;
}

}  // namespace pciinfo
