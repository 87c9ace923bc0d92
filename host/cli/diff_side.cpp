#include "host/cli/diff_side.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string_view>

#include "host/console/output.h"
#include "host/process/relayed_process.h"
#include "runtime/file_descriptor.h"

namespace pciinfo {
namespace {

constexpr const char* kStandardInput = "-";

[[noreturn]] void Fail(const std::string& name, const std::string& why) {
  throw std::runtime_error(fmt::format("{}: {}", name, why));
}

[[noreturn]] void FailForErrno(const std::string& name, const char* what) {
  throw std::runtime_error(fmt::format("{} {}: {}", what, name, std::strerror(errno)));
}

std::uint64_t MostBytes(const Options& options) { return options.memoryLimit << 20U; }

bool IsDirectory(int descriptor) {
  struct stat status {};
  return fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
}

/// JSON of instances begins with a brace; no archive does.
bool BeginsLikeJson(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string_view::npos && text[first] == '{';
}

void ReadRest(const std::string& name, int descriptor, std::uint64_t most, std::string& text) {
  while (true) {
    const ssize_t count = AppendBytes(descriptor, text);
    if (count == 0) return;
    if (count < 0) FailForErrno(name, "cannot read");
    if (most != 0 && text.size() > most) Fail(name, "larger than --memory-limit");
  }
}

/// Returns the content of a JSON file; empty for a capture.
std::string ReadJson(const std::string& name, const Options& options) {
  const vtq::FileDescriptor file(open(name.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.IsOpen()) FailForErrno(name, "cannot open");
  std::string text;
  if (IsDirectory(file.Get())) return text;
  if (AppendBytes(file.Get(), text) < 0) FailForErrno(name, "cannot read");
  if (!BeginsLikeJson(text)) return "";
  ReadRest(name, file.Get(), MostBytes(options), text);
  return text;
}

/// Makes standard input readable again from its beginning, for the reader of archives.
void GiveBack(const std::string& text) {
  const vtq::FileDescriptor memory(memfd_create("standard input", MFD_CLOEXEC));
  const bool isThere = memory.IsOpen() && WriteAll(memory.Get(), text) == 0 &&
                       lseek(memory.Get(), 0, SEEK_SET) == 0 &&
                       dup2(memory.Get(), STDIN_FILENO) == STDIN_FILENO;
  if (!isThere) FailForErrno("standard input", "cannot buffer");
}

/// Returns the JSON from standard input; empty for an archive, which can then be read again.
std::string ReadJsonFromInput(const Options& options) {
  std::string text;
  ReadRest(kStandardInput, STDIN_FILENO, MostBytes(options), text);
  if (text.empty()) Fail(kStandardInput, "standard input is empty");
  if (BeginsLikeJson(text)) return text;
  GiveBack(text);
  return "";
}

DiffSide Collect(const std::string& name, Options options, const CommandRunner& run) {
  options.command = Command::kInstances;
  options.format = "json";
  const RelayedResult result = RunRelayed(name, MostBytes(options), [&] { return run(options); });
  if (result.isTooLarge) Fail(name, "the inventory is larger than --memory-limit");
  if (result.output.empty()) Fail(name, "could not be collected");
  const bool isWhole = result.hasExited && result.status == kAllCollected;
  return {name, result.output, true, !isWhole};
}

}  // namespace

DiffSide ReadDiffSide(const std::string& name, const Options& options, const CommandRunner& run) {
  Options side = options;
  side.classes.clear();
  if (name != "live") {
    std::string json =
        name == kStandardInput ? ReadJsonFromInput(options) : ReadJson(name, options);
    if (!json.empty()) return {name, std::move(json), false, false};
    side.root = name;
  }
  return Collect(name, std::move(side), run);
}

}  // namespace pciinfo
