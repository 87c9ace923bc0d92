#pragma once

#include <string>
#include <vector>

/// How a program run ended.
struct RunResult {
  int status = -1;  ///< exit status, 128 + signal number for a program that a signal ended
  std::string out;
  std::string err;
};

/// Gives the signals that end programs their usual meaning: whoever runs the tests in the
/// background may have had them ignored.
void HearSignals();

/// Runs a program and waits for it. Standard input is empty.
RunResult RunProgram(const std::string& program, const std::vector<std::string>& arguments);

/// Runs pciinfo.
RunResult RunPciinfo(const std::vector<std::string>& arguments);

/// Runs pciinfo on one of the made-up plug-ins ("fixed").
RunResult RunFake(const std::string& plugin, std::vector<std::string> arguments);

/// Runs a command line of the shell, in which $PCIINFO is the program and $PLUGINS the folder of
/// the made-up plug-ins with a slash at its end.
RunResult RunShell(const std::string& commandLine);

/// The file of a made-up plug-in.
std::string FakePluginFile(const std::string& plugin);

/// The lines of a text, without their ends.
std::vector<std::string> LinesOf(const std::string& text);
