// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

/// A machine made of files in /proc/bus/pci, /proc/pci and /sys. They are visible to this process
/// and its children only, in its own mount namespace, so the code under test runs unchanged.
class MachineTree {
 public:
  /// Moves the process into its own mount namespace, with an empty machine. Call it once, at the
  /// beginning of main, because it needs a process with one thread. Prints a message and exits if
  /// the kernel does not allow it.
  static void Enter();

  /// Removes all files of the machine; then it has an empty /proc/bus/pci.
  static void Clear();

  /// Writes a file, for example "/proc/pci", and creates its directories.
  static void Write(const std::string& path, std::string_view content);
  static void Remove(const std::string& path);

  /// Returns the real path of the machine's file `path`.
  static std::filesystem::path Real(const std::string& path);
};

/// A function of a machine under test.
struct FakeFunction {
  unsigned bus = 0;
  unsigned device = 0;
  unsigned function = 0;
  std::uint16_t vendorId = 0x8086;
  std::uint16_t deviceId = 0x1234;
  std::uint8_t baseClass = 0x02;
  std::uint8_t subclass = 0;
  std::string irq = "0";
  std::vector<std::string> baseAddresses = std::vector<std::string>(6, "0");
  std::vector<std::string> sizes = std::vector<std::string>(6, "0");
  std::vector<unsigned char> header;  ///< empty: built by Header()
};

/// Returns the 64-byte configuration header with the values of the fields.
std::vector<unsigned char> Header(const FakeFunction& function);

/// Returns the function's line in the kernel's device list, with the line end.
std::string DeviceLine(const FakeFunction& function);

/// Writes /proc/bus/pci/devices and the configuration files of these functions.
void PutFunctions(const std::vector<FakeFunction>& functions);

/// Bytes as a text.
std::string AsText(const std::vector<unsigned char>& bytes);
