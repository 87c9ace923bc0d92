// SPDX-License-Identifier: Apache-2.0

// Slots: from the firmware's structures to the slot of a function.

#include <benchmark/benchmark.h>

#include "pci/dev_info.h"
#include "pci/slot_location.h"
#include "runtime/logger.h"
#include "runtime/root.h"
#include "slots/type9.h"

namespace {

void DecodeSlot(benchmark::State& state) {
  DMIType9 slot{};
  slot.type = kSystemSlotsType;
  slot.length = 17;
  slot.currentUsage = kUsageInUse;
  slot.bus = 0x3B;
  std::vector<SlotLocation> locations;
  for (auto _ : state) {
    std::uint16_t tag = 1;
    locations.clear();
    AppendSlotLocations(slot, &tag, &locations);
    benchmark::DoNotOptimize(locations.data());
    benchmark::DoNotOptimize(StatusOfUsage(slot.currentUsage));
    benchmark::DoNotOptimize(VoltagesOf(slot.characteristics1));
  }
}
BENCHMARK(DecodeSlot);

// A function in no slot. Nobody reads the log, but each slot writes a line.
void CorrelateWithNoSlot(benchmark::State& state) {
  vtq::SetCoreLogger(std::make_shared<vtq::Logger>());
  std::vector<SlotBusCollection> slots(static_cast<std::size_t>(state.range(0)));
  for (SlotBusCollection& slot : slots) slot = {1, 1, 1, 2, 3};
  TPciDevInfo collector(nullptr);
  for (auto _ : state) benchmark::DoNotOptimize(collector.correlateDeviceAndSlot(0x80, &slots));
  vtq::SetCoreLogger(nullptr);
}
BENCHMARK(CorrelateWithNoSlot)->Arg(8)->Arg(128);

}  // namespace
