// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/fakes/run_process.h"

/// The classes of the first plug-in, in the order of its class file. The test plug-ins serve those
/// of the second one too, so these are named where only they are wanted.
inline const std::vector<std::string> kInventoryClasses = {
    "QZMSG_PCIDevice",    "QZMSG_PCIBridge",     "QZMSG_SystemSlot", "QZMSG_SystemBoard",
    "QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice", "QZMSG_PCIRawData"};

/// Returns the words of `instances` for these classes, and further ones.
std::vector<std::string> InventoryWords(const std::vector<std::string>& more = {});

/// Runs pciinfo.
RunResult RunPciinfo(const std::vector<std::string>& arguments,
                     const std::map<std::string, std::string>& environment = {});

/// Runs pciinfo with one of the test plug-ins ("fixed").
RunResult RunFake(const std::string& plugin, std::vector<std::string> arguments,
                  const std::map<std::string, std::string>& environment = {});

/// Runs pciinfo with the hostile plug-in: `harm` is what it does and where ("Hang Init").
RunResult RunHostile(const std::string& harm, const std::vector<std::string>& arguments);

/// Runs a shell command, in which $PCIINFO is the program and $PLUGINS the directory of the test
/// plug-ins, with a trailing slash.
RunResult RunShell(const std::string& commandLine);

/// Returns the file of a test plug-in.
std::string FakePluginFile(const std::string& plugin);
