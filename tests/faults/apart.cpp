// SPDX-License-Identifier: Apache-2.0
#include "tests/faults/apart.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <vector>

namespace {

// What the child process writes to the parent.
struct Page {
  long left;
  char failure[65536];
};

Page& ThePage() {
  static auto* page = static_cast<Page*>(
      mmap(nullptr, sizeof(Page), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  return *page;
}

std::vector<bool> OpenFiles() {
  std::vector<bool> open(256);
  for (std::size_t i = 0; i < open.size(); ++i) {
    open[i] = fcntl(static_cast<int>(i), F_GETFD) != -1;
  }
  return open;
}

void Bound() {
  const rlimit time{1, 1};
  setrlimit(RLIMIT_CPU, &time);
  const rlimit noCore{0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
  alarm(60);
}

void Do(const std::function<long(std::string&)>& body) {
  std::string failure;
  const std::vector<bool> before = OpenFiles();
  try {
    ThePage().left = body(failure);
  } catch (const std::exception& error) {
    failure += std::string("the test itself failed: ") + error.what();
  }
  if (OpenFiles() != before) failure += "it left files open\n";
  if (waitpid(-1, nullptr, WNOHANG) != -1) failure += "it left processes behind\n";
  std::snprintf(ThePage().failure, sizeof ThePage().failure, "%s", failure.c_str());
}

std::string FailureOf(int status) {
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return ThePage().failure;
  if (!WIFSIGNALED(status)) return "it ended its process";
  const int signal = WTERMSIG(status);
  if (signal == SIGXCPU || signal == SIGKILL || signal == SIGALRM) return kEndless;
  return std::string("it died: ") + strsignal(signal);
}

}  // namespace

EndApart RunApart(const std::function<long(std::string& failure)>& body) {
  ThePage().left = 0;
  ThePage().failure[0] = '\0';
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) return {"the test cannot fork", 0};
  if (child == 0) {
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    Bound();
    Do(body);
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return {FailureOf(status), ThePage().left};
}
