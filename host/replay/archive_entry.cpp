// SPDX-License-Identifier: Apache-2.0
#include "host/replay/archive_entry.h"

#include <fmt/format.h>

#include <algorithm>
#include <sstream>
#include <vector>

#include "host/capture/manifest.h"

namespace pciinfo {
namespace {

[[noreturn]] void Refuse(const ArchiveEntry& entry, const std::string& what) {
  throw BadCapture(fmt::format("its entry \"{}\" {}", entry.path.substr(0, 200), what));
}

/// Returns the components of a path, except empty ones and ".".
std::vector<std::string> Parts(const std::string& path) {
  std::vector<std::string> parts;
  std::istringstream stream(path);
  stream.exceptions(std::ios::badbit);  // else getline would take bad_alloc for the end
  for (std::string part; std::getline(stream, part, '/');) {
    if (!part.empty() && part != ".") parts.push_back(part);
  }
  return parts;
}

std::ptrdiff_t SlashesIn(const std::string& path) {
  return std::count(path.begin(), path.end(), '/');
}

const char* Hint(bool isLower) { return isLower ? " (see --memory-limit)" : ""; }

std::string PlainPath(const ArchiveEntry& entry) {
  if (entry.path.starts_with('/')) Refuse(entry, "has an absolute path");
  std::string plain;
  for (const std::string& part : Parts(entry.path)) {
    if (part == "..") Refuse(entry, "points outside the capture");
    plain += (plain.empty() ? "" : "/") + part;
  }
  return plain;
}

/// Whether the path is one of a capture below a folder of any name.
bool IsInAFolder(const std::string& path) {
  const std::size_t end = std::min(path.find('/'), path.size());
  const auto isPart = [](const std::string& name) {
    return name == "proc" || name == "sys" || name == "commands" || name == kManifestFile;
  };
  if (end == path.size() || isPart(path.substr(0, end))) return false;
  return isPart(path.substr(end + 1, path.find('/', end + 1) - end - 1));
}

}  // namespace

CaptureLimits LimitsWithin(const std::optional<std::uint64_t>& memory) {
  constexpr std::uint64_t kBytesOfEntry = 2048;  // at most 1.2 KiB were measured
  CaptureLimits limits;
  if (!memory) return limits;
  limits.entries = std::min(limits.entries, *memory / 2 / kBytesOfEntry);
  limits.bytes = std::min(limits.bytes, *memory / 4);
  return limits;
}

bool IsInnerLink(const std::string& path, const std::string& target) {
  if (!path.starts_with("sys/") || target.empty() || target.starts_with('/')) return false;
  const std::vector<std::string> parts = Parts(target);
  const auto isUp = [](const std::string& part) { return part == ".."; };
  const auto down = std::find_if_not(parts.begin(), parts.end(), isUp);
  if (std::any_of(down, parts.end(), isUp)) return false;
  // The number of directories between "sys/" and the link.
  const auto depth = std::count(path.begin(), path.end(), '/') - 1;
  return down - parts.begin() <= depth;
}

std::string EntryGate::Admit(const ArchiveEntry& entry) {
  Count(entry);
  std::string path = PlainPath(entry);
  if (IsInAFolder(path)) {
    throw BadCapture(
        fmt::format("its parts are in the folder \"{}\"; unpack it and name that folder instead",
                    path.substr(0, std::min<std::size_t>(path.find('/'), 200))));
  }
  if (entry.kind == EntryKind::kHardLink) Refuse(entry, "is a hard link");
  if (entry.kind == EntryKind::kOther)
    Refuse(entry, "is neither a file nor a directory nor a symbolic link");
  if (entry.kind == EntryKind::kLink && !IsInnerLink(path, entry.target)) {
    Refuse(entry, fmt::format("links to \"{}\", which is not inside the captured sys/",
                              entry.target.substr(0, 200)));
  }
  return path;
}

void EntryGate::Count(const ArchiveEntry& entry) {
  if (entry.path.size() > limits_.pathLength) {
    Refuse(entry, fmt::format("has a path of more than {} bytes", limits_.pathLength));
  }
  if (std::max(SlashesIn(entry.path), SlashesIn(entry.target)) > limits_.depth) {
    Refuse(entry, fmt::format("has a path of more than {} directories", limits_.depth));
  }
  if (++entries_ > limits_.entries) RefuseEntries();
  const std::uint64_t names = entry.path.size() + entry.target.size();
  const std::uint64_t left = limits_.bytes - bytes_;
  if (names > left || entry.size > left - names) {
    throw BadCapture(fmt::format("it unpacks to more than {} MiB{}", limits_.bytes >> 20,
                                 Hint(limits_.bytes < CaptureLimits().bytes)));
  }
  bytes_ += names + entry.size;
}

void EntryGate::CountDirectories(std::uint64_t directories) const {
  if (directories > limits_.entries - entries_) RefuseEntries();
}

void EntryGate::RefuseEntries() const {
  throw BadCapture(fmt::format("it has more than {} entries{}", limits_.entries,
                               Hint(limits_.entries < CaptureLimits().entries)));
}

}  // namespace pciinfo
