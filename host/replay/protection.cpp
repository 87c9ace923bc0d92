// SPDX-License-Identifier: Apache-2.0
#include "host/replay/protection.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <system_error>

#include "host/process/confinement.h"
#include "host/process/process_tree.h"
#include "host/replay/root_namespace.h"
#include "runtime/file_descriptor.h"

namespace pciinfo {
namespace {

struct Protection {
  bool hasNamespaces = false;
  Confined confined;
};

/// Changes this process for good.
Protection Try() {
  Protection protection;
  try {
    EnterNamespaces();
    protection.hasNamespaces = true;
  } catch (const std::exception&) {
    return protection;
  }
  protection.confined = Confine({});
  return protection;
}

void Tell(int descriptor) {
  const Protection protection = Try();
  [[maybe_unused]] const ssize_t ignored = write(descriptor, &protection, sizeof protection);
  _exit(0);
}

/// Throws std::system_error when there can be no process.
Protection TryInProcess() {
  Protection protection;
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category());
  const vtq::FileDescriptor reading(ends[0]);
  vtq::FileDescriptor writing(ends[1]);
  const pid_t child = ProcessTree::Start([&writing] { Tell(writing.Get()); });
  writing.Close();
  if (read(reading.Get(), &protection, sizeof protection) != sizeof protection) protection = {};
  waitpid(child, nullptr, 0);
  return protection;
}

const char* YesOrNo(bool is) { return is ? "yes" : "no"; }

}  // namespace

std::string DescribeProtection() {
  const Protection protection = TryInProcess();
  if (!protection.hasNamespaces) return "Captures cannot be read by this user (see --root).\n";
  const Confined& confined = protection.confined;
  return fmt::format(
      "Captures are read:\n"
      "  without capabilities: {}\n"
      "  as an ordinary user: {}\n"
      "  with a filter of system calls (seccomp): {}\n"
      "  with rules for files (Landlock): {}\n",
      YesOrNo(confined.hasNoCapabilities), YesOrNo(confined.isOrdinaryUser),
      YesOrNo(confined.filtersCalls),
      confined.fileRules == 0 ? "no" : fmt::format("yes, version {}", confined.fileRules));
}

}  // namespace pciinfo
