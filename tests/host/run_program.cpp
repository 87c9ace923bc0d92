// SPDX-License-Identifier: Apache-2.0
#include "tests/host/run_program.h"

#include <algorithm>

namespace {

RunResult Run(const std::vector<std::string>& words,
              std::map<std::string, std::string> environment) {
  // The leak checker reads /proc, but the /proc of a capture lacks the processes that the program
  // forks.
  const bool isCapture = std::any_of(words.begin(), words.end(), [](const std::string& word) {
    return word.find("--root") != std::string::npos;
  });
  if (isCapture) environment["ASAN_OPTIONS"] = "detect_leaks=0";
  return RunProcess(words, environment);
}

}  // namespace

RunResult RunPciinfo(const std::vector<std::string>& arguments,
                     const std::map<std::string, std::string>& environment) {
  std::vector<std::string> words = {PCIINFO_PROGRAM};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return Run(words, environment);
}

std::vector<std::string> InventoryWords(const std::vector<std::string>& more) {
  std::vector<std::string> words = {"instances"};
  words.insert(words.end(), kInventoryClasses.begin(), kInventoryClasses.end());
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

RunResult RunFake(const std::string& plugin, std::vector<std::string> arguments,
                  const std::map<std::string, std::string>& environment) {
  arguments.insert(arguments.end(), {"--only-plugin", FakePluginFile(plugin)});
  return RunPciinfo(arguments, environment);
}

RunResult RunHostile(const std::string& harm, const std::vector<std::string>& arguments) {
  return RunFake("hostile", arguments, {{"HOSTILE", harm}});
}

RunResult RunShell(const std::string& commandLine) {
  return Run({"/bin/bash", "-c", commandLine},
             {{"PCIINFO", PCIINFO_PROGRAM}, {"PLUGINS", FAKE_PLUGINS}});
}

std::string FakePluginFile(const std::string& plugin) { return FAKE_PLUGINS + plugin + ".pi.so"; }
