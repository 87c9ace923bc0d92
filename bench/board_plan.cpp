// SPDX-License-Identifier: Apache-2.0
#include "bench/board_plan.h"

#include <fmt/format.h>

#include <array>
#include <stdexcept>

namespace bench {
namespace {

using enum BridgeKind;
using Texts = BoardBuilder::Texts;
using nlohmann::json;

constexpr int kNoSlot = BoardBuilder::kNoSlot;

void Append(Texts& texts, const Texts& more) {
  texts.insert(texts.end(), more.begin(), more.end());
}

/// A port on a root bus with one card behind it.
struct CardBehindPort {
  FunctionPlace port, card;
  Texts functions;
};

CardBehindPort AddCardBehindPort(BoardBuilder& board, int slotNumber) {
  CardBehindPort added;
  added.port = board.NewPort(1);
  const unsigned bus = board.NewBus();
  board.AddBridge(kRoot, added.port, bus, bus, slotNumber);
  added.card = {added.port.domain, bus, 0, 0};
  added.functions = board.AddCard(added.port.domain, bus);
  return added;
}

/// The physical slot number that agrees with the next record.
int AgreeingNumber(const BoardBuilder& board) { return static_cast<int>(board.NextId()); }

void AddNamedPort(BoardBuilder& board) {
  const CardBehindPort added = AddCardBehindPort(board, AgreeingNumber(board));
  board.AddRecord(&added.port, added.functions);
}

void AddNamedCard(BoardBuilder& board) {
  const CardBehindPort added = AddCardBehindPort(board, 0);
  board.AddRecord(&added.card, added.functions)["structureLength"] = 0x1C;  // longer than known
}

/// Firmware counts functions and devices that the card does not have.
void AddCardsWithWrongNumbers(BoardBuilder& board) {
  for (const FunctionPlace wrong :
       {FunctionPlace{0, 0, 0, 1}, FunctionPlace{0, 0, 0, 4}, FunctionPlace{0, 0, 1, 0}}) {
    const CardBehindPort added = AddCardBehindPort(board, 0);
    const FunctionPlace named{added.card.domain, added.card.bus, wrong.device, wrong.function};
    board.AddRecord(&named, added.functions);
  }
}

void AddEmptySlots(BoardBuilder& board) {
  for (const bool namesPort : {true, false}) {
    const FunctionPlace port = board.NewPort(1);
    const unsigned bus = board.NewBus();
    board.AddBridge(kRoot, port, bus, bus, AgreeingNumber(board));
    const FunctionPlace behind{port.domain, bus, 0, 0};
    board.AddRecord(namesPort ? &port : &behind, {});
  }
  // The chip set hides the port of an empty slot.
  const FunctionPlace hidden = board.NewPort(1);
  board.AddRecord(&hidden, {});
}

/// More than eight functions, and virtual functions on the bus after that.
void AddCardWithManyFunctions(BoardBuilder& board) {
  const FunctionPlace port = board.NewPort(2);
  const unsigned first = board.NewBus();
  const unsigned last = board.NewBus();
  board.AddBridge(kRoot, port, first, last, 0);
  Texts functions = board.AddCard(port.domain, first);
  Append(functions, board.AddCard(port.domain, first, 1));
  Append(functions, board.AddCard(port.domain, last, 2));
  board.AddRecord(&port, functions);
}

/// A switch below a port: its functions, the buses behind its ports, and its ports.
struct Switch {
  FunctionPlace port;
  Texts functions;
  std::vector<FunctionPlace> downstream;
  std::vector<unsigned> buses;
};

Switch AddSwitch(BoardBuilder& board, int upperNumber, std::vector<int> numbers) {
  const auto ports = static_cast<unsigned>(numbers.size());
  Switch made;
  made.port = board.NewPort(2 + ports);
  const unsigned domain = made.port.domain;
  const unsigned outer = board.NewBus();
  const unsigned inner = board.NewBus();
  board.AddBridge(kRoot, made.port, outer, inner + ports, upperNumber);
  made.functions = {
      board.AddBridge(kUpstream, {domain, outer, 0, 0}, inner, inner + ports, kNoSlot)};
  for (unsigned i = 0; i < ports; ++i) {
    made.downstream.push_back({domain, inner, 8 * i, 0});
    made.buses.push_back(board.NewBus());
    made.functions.push_back(board.AddBridge(kDownstream, made.downstream.back(), made.buses.back(),
                                             made.buses.back(), numbers[i]));
  }
  return made;
}

void AddCardWithSwitch(BoardBuilder& board) {
  const Switch card = AddSwitch(board, AgreeingNumber(board), {kNoSlot, kNoSlot});
  Texts functions = card.functions;
  for (const unsigned bus : card.buses) Append(functions, board.AddCard(card.port.domain, bus));
  const FunctionPlace named{card.port.domain, card.buses.front() - 2, 0, 0};
  board.AddRecord(&named, functions);
}

/// The backplane of drives is a switch with a slot behind each of its ports.
void AddBoardSwitch(BoardBuilder& board) {
  const int first = AgreeingNumber(board);
  const Switch backplane = AddSwitch(board, kNoSlot, {first, first + 1, first + 2, first + 3});
  for (std::size_t i = 0; i < backplane.buses.size(); ++i) {
    const FunctionPlace card{backplane.port.domain, backplane.buses[i], 0, 0};
    const Texts functions = i == 3 ? Texts() : Texts{board.AddFunction(Drive(), card)};
    board.AddRecord(i % 2 == 0 ? &backplane.downstream[i] : &card, functions);
  }
}

void AddRiser(BoardBuilder& board) {
  const int outer = AgreeingNumber(board);
  const Switch riser = AddSwitch(board, outer, {outer + 1, outer + 2});
  board.AddRecord(&riser.port, riser.functions);
  for (std::size_t i = 0; i < riser.buses.size(); ++i) {
    const Texts card = board.AddCard(riser.port.domain, riser.buses[i]);
    board.AddRecord(&riser.downstream[i], card);
  }
}

/// Firmware that knows the port above the switch only.
void AddSharedPort(BoardBuilder& board) {
  const Switch shared = AddSwitch(board, 0, {0, 0, 0});
  Texts slots, functions;
  for (std::size_t i = 0; i < 3; ++i) slots.push_back(board.AddSharingRecord(shared.port));
  for (std::size_t i = 0; i < 2; ++i) {
    Append(functions, board.AddCard(shared.port.domain, shared.buses[i]));
  }
  board.Share(slots, functions);
}

void AddSharedPortWithNumbers(BoardBuilder& board) {
  const int first = AgreeingNumber(board);
  const Switch numbered = AddSwitch(board, 0, {first + 1, first});
  for (const std::size_t i : {1U, 0U}) {
    const Texts card = board.AddCard(numbered.port.domain, numbered.buses[i]);
    board.AddRecord(&numbered.port, card);
  }
}

void AddBifurcatedSlot(BoardBuilder& board) {
  Texts functions;
  json peers = json::array();
  std::vector<FunctionPlace> drives;
  for (unsigned i = 0; i < 4; ++i) {
    const FunctionPlace port = board.NewPort(1);
    const unsigned bus = board.NewBus();
    board.AddBridge(kRoot, port, bus, bus, 0);
    drives.push_back({port.domain, bus, 0, 0});
    functions.push_back(board.AddFunction(Drive(), drives.back()));
  }
  for (const FunctionPlace& drive : drives) {
    peers.push_back({{"segment", drive.domain},
                     {"bus", drive.bus},
                     {"device", 0},
                     {"function", 0},
                     {"width", 4}});
  }
  json& record = board.AddRecord(&drives.front(), functions);
  record["structureLength"] = 19 + 5 * peers.size();
  record["peers"] = std::move(peers);
}

/// Addresses that tell nothing. The port's own number, a kernel slot, or an ACPI number does, or
/// nothing does.
void AddPlaceholders(BoardBuilder& board) {
  const FunctionPlace last{0, 0xFF, 31, 7}, allOnes{0xFFFF, 0xFF, 31, 7}, hostBridge{0, 0, 0, 0};
  const FunctionPlace missing{0, 0, 31, 7};
  const CardBehindPort byPort = AddCardBehindPort(board, AgreeingNumber(board));
  board.AddRecord(&last, byPort.functions);
  const CardBehindPort byKernelSlot = AddCardBehindPort(board, 0);
  board.AddKernelSlot(board.NextId(), byKernelSlot.card);
  board.AddRecord(&allOnes, byKernelSlot.functions);
  const CardBehindPort byAcpi = AddCardBehindPort(board, 0);
  board.AddUserNumber(board.NextId(), byAcpi.port.Text());
  board.AddRecord(&hostBridge, byAcpi.functions);
  const CardBehindPort byAcpiOfCard = AddCardBehindPort(board, 0);
  board.AddUserNumber(board.NextId(), byAcpiOfCard.functions.front());
  board.AddRecord(&missing, byAcpiOfCard.functions);
  const CardBehindPort withoutAddress = AddCardBehindPort(board, AgreeingNumber(board));
  board.AddRecord(nullptr, withoutAddress.functions);
  board.AddRecord(&last, {});
}

void AddConventionalSlots(BoardBuilder& board) {
  const FunctionPlace bridge = board.NewPort(2);
  const unsigned bus = board.NewBus();
  const unsigned inner = board.NewBus();
  board.AddBridge(kConventional, bridge, bus, inner, kNoSlot);
  const FunctionPlace first{bridge.domain, bus, 1, 0}, second{bridge.domain, bus, 2, 0};
  board.AddRecord(&first, board.AddCard(bridge.domain, bus, 1));
  Texts behind{board.AddBridge(kConventional, second, inner, inner, kNoSlot)};
  Append(behind, board.AddCard(bridge.domain, inner, 4));
  board.AddRecord(&second, behind);
  const FunctionPlace empty{bridge.domain, bus, 3, 0};
  board.AddRecord(&empty, {});
  board.AddCard(bridge.domain, bus, 5);  // soldered
}

/// A conventional slot behind a soldered bridge on a link.
void AddBridgedSlot(BoardBuilder& board) {
  const FunctionPlace port = board.NewPort(2);
  const unsigned outer = board.NewBus();
  const unsigned inner = board.NewBus();
  board.AddBridge(kRoot, port, outer, inner, 0);
  board.AddBridge(kToPci, {port.domain, outer, 0, 0}, inner, inner, kNoSlot);
  board.AddRecord(&port, board.AddCard(port.domain, inner, 1))["type"] = 6;
}

void AddSolderedDevices(BoardBuilder& board) {
  AddCardBehindPort(board, kNoSlot);
  const CardBehindPort named = AddCardBehindPort(board, 0);
  board.AddOnBoardRecord(named.card);
}

/// Slots of which the firmware has no record: of a port, and of the kernel.
void AddUnnamedSlots(BoardBuilder& board) {
  AddCardBehindPort(board, 0);
  const CardBehindPort known = AddCardBehindPort(board, kNoSlot);
  board.AddKernelSlot(8000 + board.NextId(), known.card);
}

/// A slot that the firmware gives a segment that no machine has.
void AddImpossibleSegment(BoardBuilder& board) {
  const CardBehindPort added = AddCardBehindPort(board, 0);
  // In other domains than the first there is nothing that the address could be taken for.
  const bool canBeFound = added.card.domain == 0;
  FunctionPlace named = added.card;
  named.domain = 0xFF00;
  if (canBeFound) board.AddRecord(&named, added.functions);
}

constexpr std::array kParts = {&AddNamedPort,
                               &AddNamedCard,
                               &AddRiser,
                               &AddPlaceholders,
                               &AddBifurcatedSlot,
                               &AddConventionalSlots,
                               &AddSharedPort,
                               &AddEmptySlots,
                               &AddCardsWithWrongNumbers,
                               &AddCardWithSwitch,
                               &AddBoardSwitch,
                               &AddSharedPortWithNumbers,
                               &AddBridgedSlot,
                               &AddSolderedDevices,
                               &AddUnnamedSlots,
                               &AddCardWithManyFunctions,
                               &AddImpossibleSegment};

}  // namespace

BoardPlan PlanBoard(std::size_t functions) {
  if (functions < kFewestOfBoard || functions > kMostOfBoard) {
    throw std::invalid_argument(
        fmt::format("a machine with slots of every kind can be made with {} to {} functions, not "
                    "with {}",
                    kFewestOfBoard, kMostOfBoard, functions));
  }
  constexpr std::size_t kMostOfPart = 40;
  BoardBuilder board;
  for (std::size_t i = 0; board.CountFunctions() + kMostOfPart <= functions; ++i) {
    kParts[i % kParts.size()](board);
  }
  board.FillTo(functions);
  return board.Take();
}

}  // namespace bench
