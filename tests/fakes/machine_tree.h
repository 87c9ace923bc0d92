#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

/// A machine made of files: what stands under /proc/bus/pci, /proc/pci and /sys, as this process
/// and its children see it. The files really are at these places, in a mount namespace of the
/// process's own, so the code under test runs unchanged.
class MachineTree {
 public:
  /// Moves the process into its own mount namespace, with an empty machine. To be called once,
  /// first thing in main: it needs a process with one thread. Ends the process with a sentence when
  /// the kernel does not allow it.
  static void Enter();

  /// Removes everything from the machine; then it has a /proc/bus/pci without a device list.
  static void Clear();

  /// Writes a file, for example "/proc/pci", making its directories.
  static void Write(const std::string& path, std::string_view content);
  static void Remove(const std::string& path);

  /// Where the machine's file `path` really is.
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
  std::vector<unsigned char> header;  ///< built by Header() where it is empty
};

/// The 64-byte configuration header that the function's fields tell.
std::vector<unsigned char> Header(const FakeFunction& function);

/// Its line in the kernel's device list, with the line end.
std::string DeviceLine(const FakeFunction& function);

/// Makes these functions the machine's: /proc/bus/pci/devices and their configuration files.
void PutFunctions(const std::vector<FakeFunction>& functions);

/// Bytes as a text.
std::string AsText(const std::vector<unsigned char>& bytes);
