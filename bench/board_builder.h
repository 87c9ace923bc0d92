// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "bench/device_kinds.h"

namespace bench {

/// The address of a planned function.
struct FunctionPlace {
  unsigned domain = 0, bus = 0, device = 0, function = 0;

  std::string Text() const;  ///< "0000:3b:00.0"
};

/// Kinds of bridges. The PCI Express ones are the port types of their capability.
enum class BridgeKind { kConventional = 0, kRoot = 4, kUpstream = 5, kDownstream = 6, kToPci = 7 };

/// A machine with the places of its functions as its makers know them.
struct BoardPlan {
  nlohmann::json recipe;                           ///< as BuildMachine takes it
  std::map<std::string, std::string> kernelSlots;  ///< devices ("0000:3b:00") by the slots' names
  std::map<std::string, unsigned> userNumbers;     ///< ACPI slot user numbers by functions
  /// {"slots": {NAME: [FUNCTION]}, "shared": [{"slots": [NAME], "functions": [FUNCTION]}]}, for the
  /// slots of the firmware's records.
  nlohmann::json truth;
};

/// Adds functions and slot records to a plan, and hands out places and numbers that are free.
class BoardBuilder {
 public:
  using Texts = std::vector<std::string>;
  /// For AddBridge: a port that says that it leads to no slot.
  static constexpr int kNoSlot = -1;

  BoardBuilder();

  std::size_t CountFunctions() const { return functions_.size(); }

  /// A free place for a port on a root bus, behind which `buses` buses are free. Begins another
  /// root bus or domain when needed.
  FunctionPlace NewPort(unsigned buses);
  /// Takes one of these buses.
  unsigned NewBus() { return nextBus_++; }

  /// Adds a bridge to the buses from `first` to `last`. A port has the slot bit with this physical
  /// slot number unless it is kNoSlot.
  std::string AddBridge(BridgeKind kind, const FunctionPlace& at, unsigned first, unsigned last,
                        int slotNumber);
  /// Adds the functions of the next kind of card and returns their addresses.
  Texts AddCard(unsigned domain, unsigned bus, unsigned device = 0);
  std::string AddFunction(const DeviceKind& kind, const FunctionPlace& at);

  /// The slot ID of the next record.
  unsigned NextId() const { return nextId_; }
  /// Adds a record of a slot in which these functions are. It names `at`; without a place it is as
  /// short as those of SMBIOS 2.0. Returns it, to be changed.
  nlohmann::json& AddRecord(const FunctionPlace* at, const Texts& functions);
  /// The same for one of several slots that share functions. Returns its name.
  std::string AddSharingRecord(const FunctionPlace& at);
  void Share(const Texts& slots, const Texts& functions);
  /// Adds an onboard device, SMBIOS type 41.
  void AddOnBoardRecord(const FunctionPlace& at);

  void AddKernelSlot(unsigned number, const FunctionPlace& at);
  void AddUserNumber(unsigned number, const std::string& function);

  /// Fills up to exactly `functions` functions with devices of the processors.
  void FillTo(std::size_t functions);
  BoardPlan Take();

 private:
  nlohmann::json& Append(const DeviceKind& kind, const FunctionPlace& at);
  void BeginDomain();
  void BeginRootBus();
  nlohmann::json& NewRecord(const FunctionPlace* at, bool isInUse);

  BoardPlan plan_;
  nlohmann::json functions_ = nlohmann::json::array();
  nlohmann::json structures_ = nlohmann::json::array();
  unsigned domain_ = 0;
  unsigned rootBus_ = 0;
  unsigned nextBus_ = 0;
  unsigned ports_ = 0;  ///< on the root bus
  unsigned nextCard_ = 0;
  unsigned nextId_ = 1;
  std::uint64_t nextAddress_ = 0x90000000;
};

}  // namespace bench
