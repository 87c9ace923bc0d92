// SPDX-License-Identifier: Apache-2.0
#include "host/cli/diff_side.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "host/cli/limits.h"
#include "host/cli/memory_file.h"
#include "host/console/output.h"
#include "host/machine/machine_model.h"
#include "host/process/guarded_run.h"
#include "runtime/file_descriptor.h"

namespace pciinfo {
namespace {

[[noreturn]] void Fail(const std::string& name, const std::string& why) {
  throw std::runtime_error(fmt::format("{}: {}", name, why));
}

[[noreturn]] void FailForErrno(const std::string& name, const char* what) {
  throw std::runtime_error(fmt::format("{} {}: {}", what, name, std::strerror(errno)));
}

std::uint64_t MostBytes(const Options& options) { return options.memoryLimit << 20U; }

/// JSON of instances begins with a brace; no archive does.
bool BeginsLikeJson(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string_view::npos && text[first] == '{';
}

void ReadRest(const std::string& name, int descriptor, std::uint64_t most, std::string& text) {
  while (true) {
    const ssize_t count = vtq::AppendFrom(descriptor, text);
    if (count == 0) return;
    if (count < 0) FailForErrno(name, "cannot read");
    if (most != 0 && text.size() > most) Fail(name, "larger than --memory-limit");
  }
}

/// Returns the content of a JSON file; empty for a capture.
std::string ReadJson(const std::string& name, const std::string& path, const Options& options) {
  if (std::filesystem::is_directory(path)) return "";
  const vtq::FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.IsOpen()) FailForErrno(name, "cannot open");
  std::string text;
  const ssize_t count = vtq::AppendFrom(file.Get(), text);
  if (count < 0) FailForErrno(name, "cannot read");
  if (count == 0) Fail(name, name == "-" ? "standard input is empty" : "it is empty");
  if (!BeginsLikeJson(text)) return "";
  ReadRest(name, file.Get(), MostBytes(options), text);
  return text;
}

/// As long as this lives, standard output is kept. A write beyond `most` bytes (0: none) fails.
class KeptOutput final {
 public:
  explicit KeptOutput(std::uint64_t most) : redirected_(file_) {
    getrlimit(RLIMIT_FSIZE, &limit_);
    rlimit lower = limit_;
    if (most != 0) lower.rlim_cur = std::min<rlim_t>(most, lower.rlim_cur);
    setrlimit(RLIMIT_FSIZE, &lower);
  }
  KeptOutput(const KeptOutput&) = delete;
  KeptOutput& operator=(const KeptOutput&) = delete;
  ~KeptOutput() { setrlimit(RLIMIT_FSIZE, &limit_); }

  std::string Read() const { return file_.Read(); }

 private:
  MemoryFile file_;
  StandardOutputTo redirected_;
  rlimit limit_{};
};

/// Takes the first line, without its end, from a text.
std::string TakeFirstLine(std::string& text) {
  const std::size_t length = std::min(text.find('\n'), text.size());
  std::string line = text.substr(0, length);
  text.erase(0, length + 1);
  return line;
}

/// Collects what is compared. Only then is the command `diff` run as a view, which prints a side.
DiffSide Collect(const std::string& name, Compared compared, Options options,
                 const CommandRunner& run) {
  options.command = compared == Compared::kMachines ? Command::kDiff : Command::kInstances;
  options.showAll = false;
  options.format = "json";
  const KeptOutput output(MostBytes(options));
  ExitStatus status = kFailed;
  {
    const MessageSubject subject(name);
    status = RunGuarded([&] { return run(options); });
  }
  std::string text = output.Read();
  if (text.empty()) Fail(name, "could not be collected");
  std::string identity = compared == Compared::kMachines ? TakeFirstLine(text) : "";
  return {name, std::move(identity), std::move(text), true, status != kAllCollected};
}

}  // namespace

bool DiffSource::TellsMachine() const {
  const auto names = [this](const char* className) {
    return json.find(fmt::format("\"{}\"", className)) != std::string::npos;
  };
  return IsMachine() || names(kFunctionClass) || names(kSlotClass);
}

DiffSource OpenDiffSource(const std::string& name, const Options& options) {
  if (name == "live") return {name, nullptr, ""};
  auto input = std::make_unique<RepeatableInput>(name, InputLimitsOf(options));
  std::string json = ReadJson(name, input->GetFile(), options);
  return {name, std::move(input), std::move(json)};
}

DiffSide ReadDiffSide(DiffSource source, Compared compared, const Options& options,
                      const CommandRunner& run) {
  if (!source.IsMachine()) return {source.name, "", std::move(source.json), false, false};
  Options side = options;
  side.classes.clear();
  if (source.capture != nullptr) side.root = source.capture->GetFile();
  return Collect(source.name, compared, std::move(side), run);
}

}  // namespace pciinfo
