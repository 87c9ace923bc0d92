#pragma once

#include <string>
#include <vector>

/// How a program run ended.
struct RunResult {
  int status = -1;  ///< exit status, 128 + signal number for a program that a signal ended
  std::string out;
  std::string err;
};

/// Restores the default actions of signals that end programs, because a shell that runs the tests
/// in the background may ignore them.
void HearSignals();

/// Runs a program and waits for it. Standard input is empty.
RunResult RunProgram(const std::string& program, const std::vector<std::string>& arguments);

/// Runs pciinfo.
RunResult RunPciinfo(const std::vector<std::string>& arguments);

/// Runs pciinfo with one of the test plug-ins ("fixed").
RunResult RunFake(const std::string& plugin, std::vector<std::string> arguments);

/// Runs a shell command, in which $PCIINFO is the program and $PLUGINS the directory of the test
/// plug-ins, with a trailing slash.
RunResult RunShell(const std::string& commandLine);

/// Returns the file of a test plug-in.
std::string FakePluginFile(const std::string& plugin);

/// The lines of a text, without their ends.
std::vector<std::string> LinesOf(const std::string& text);
