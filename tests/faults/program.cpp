// SPDX-License-Identifier: Apache-2.0
#include "tests/faults/program.h"

#include <sys/wait.h>
#include <unistd.h>

#include "tests/fakes/captured_output.h"

// The main function of the program, renamed.
int PciinfoMain(int argc, char** argv);

namespace {

bool isProgram = false;

std::vector<char*> PointersTo(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

#ifdef PCIINFO_SANITIZED
// Asked by the sanitizers' leak check when a process exits. It needs the process's entry in /proc,
// which the machine of the tests has for the test itself only.
extern "C" int __lsan_is_turned_off() { return isProgram ? 1 : 0; }
#endif

ProgramEnd RunProgram(const std::vector<std::string>& words, const Fault& fault) {
  std::vector<std::string> line{"pciinfo"};
  line.insert(line.end(), words.begin(), words.end());
  const std::vector<char*> arguments = PointersTo(line);
  const CapturedOutput out;
  const CapturedOutput err;
  const pid_t child = fork();
  if (child == 0) {
    dup2(out.Descriptor(), STDOUT_FILENO);
    dup2(err.Descriptor(), STDERR_FILENO);
    isProgram = true;
    Arm(fault);
    // The test has cleaning up to do at exit, which is not for this process.
    _exit(PciinfoMain(static_cast<int>(line.size()), const_cast<char**>(arguments.data())));
  }
  int status = 0;
  waitpid(child, &status, 0);
  Disarm();
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), out.Text(), err.Text()};
}
