// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "framework/plugin_manager_namespace.h"

/// SMBIOS tables of these structures, in table order.
struct FakeSmBios {
  std::string version = "3.2";
  std::vector<std::vector<unsigned char>> structures;
  int loadStatus = 0;
  int loadsBeforeFailure = -1;  ///< smBiosLoad returns 3 after so many calls; -1: never
  int firstStatus = 0;          ///< what smBiosGetFirst returns if there is a structure
  int closeStatus = 0;
  int openHandles = 0;
  bool deliversAllTypes = false;  ///< smBiosGetNext returns structures of every type
};

/// A programmable replacement of the framework's services, for everything that the plug-in calls
/// except values and the repository, which are the real ones.
struct FakeFramework {
  /// All log records, in the form of a host's log file: severity digit, space, text.
  std::vector<std::string> log;

  /// What SpawnProcess returns, by command. Other commands fail.
  std::map<std::string, std::function<std::string()>> commands;
  /// All commands that were run, with their time limits.
  std::vector<std::pair<std::string, int>> spawned;

  std::function<void()> onGetCoreLogger = [] {};  ///< called first; what it throws is the failure

  std::string biosId;
  std::function<void()> onGetBiosId = [] {};  ///< called first; if it throws, GetBiosID fails
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

/// The instance that the test program uses.
FakeFramework& Fake();
