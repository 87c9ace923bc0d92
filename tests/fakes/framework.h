#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "framework/plugin_manager_namespace.h"

/// SMBIOS tables made of structures, in table order.
struct FakeSmBios {
  std::string version = "3.2";
  std::vector<std::vector<unsigned char>> structures;
  int loadStatus = 0;
  int loadsBeforeFailure = -1;  ///< smBiosLoad answers 3 after so many calls; -1: never
  int firstStatus = 0;          ///< what smBiosGetFirst answers where there is a structure
  int closeStatus = 0;
  int openHandles = 0;
  bool deliversAllTypes = false;  ///< smBiosGetNext goes through structures of every type
};

/// A programmable stand-in for the framework's services. Values and the repository are the real
/// ones; everything else that the plug-in calls ends here.
struct FakeFramework {
  /// Every record, as the log file of a host holds it: severity digit, blank, text.
  std::vector<std::string> log;

  /// Answers of SpawnProcess by command. A command that is not here fails.
  std::map<std::string, std::function<std::string()>> commands;
  /// Every command with its time limit.
  std::vector<std::pair<std::string, int>> spawned;

  std::string biosId;
  std::function<void()> onGetBiosId = [] {};  ///< called first; what it throws is the failure
  std::string systemCreationClassName = "CIM_ComputerSystem";
  std::string systemName = "host.example";
  bool systemCreationClassNameFails = false;
  bool systemNameFails = false;

  FakeSmBios smBios;

  std::shared_ptr<NQZMVTQ20::ICIMNamespace> pluginManager;

  /// The records of one severity, texts only.
  std::vector<std::string> LogOf(int severity) const;
  /// All records up to a severity.
  std::vector<std::string> LogUpTo(int severity) const;
};

/// The stand-in that the program runs on.
FakeFramework& Fake();
