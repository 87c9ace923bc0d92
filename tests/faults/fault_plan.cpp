// SPDX-License-Identifier: Apache-2.0
#include "tests/faults/fault_plan.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

// In memory that the processes share, so that the calls of all processes are counted.
struct Plan {
  std::atomic<bool> armed;
  Fault fault;
  std::atomic<unsigned> count;
  std::atomic<bool> struck;
  char place[256];
};

Plan* MakePlan() {
  void* const page =
      mmap(nullptr, sizeof(Plan), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  return page == MAP_FAILED ? nullptr : static_cast<Plan*>(page);
}

// Null before it is created.
Plan* const plan = MakePlan();
int paused = 0;

bool Counts(Call call) noexcept {
  return plan != nullptr && paused == 0 && plan->armed && plan->fault.call == call;
}

// Counts one call; returns whether it must fail.
bool Strikes() noexcept {
  const unsigned number = ++plan->count;
  const Fault& fault = plan->fault;
  if (number != fault.number && !(fault.lasting && number > fault.number)) return false;
  plan->struck = true;
  return true;
}

void NotePlace(const char* place) noexcept {
  if (plan->place[0] == '\0') std::snprintf(plan->place, sizeof plan->place, "%s", place);
}

#ifdef PCIINFO_SANITIZED
constexpr unsigned kStep = 10;
#else
constexpr unsigned kStep = 1;
#endif

}  // namespace

unsigned NextToFail(unsigned number) noexcept { return number + (number < 10 ? 1 : kStep); }

const char* NameOf(Call call) {
  static constexpr const char* kNames[] = {
      "open",
      "read",
      "short read",
      "close",
      "pipe",
      "start of a program",
      "start of a program that is killed",
      "start of a program that fails",
      "allocation",
      "class name",
      "namespace of a class",
      "class lookup",
      "create instance",
      "set property",
      "commit",
      "enumerate",
      "read property",
      "object reference",
      "system key",
      "smBiosLoad",
      "smBiosGetVersion",
      "smBiosGetFirst",
      "smBiosGetNext",
      "smBiosClose",
      "SpawnProcess",
  };
  return kNames[static_cast<int>(call)];
}

std::string TextOf(const Fault& fault) {
  return std::string(NameOf(fault.call)) + " " + std::to_string(fault.number) +
         (fault.lasting ? " and all after it" : "");
}

void Arm(const Fault& fault) noexcept {
  plan->fault = fault;
  plan->count = 0;
  plan->struck = false;
  plan->place[0] = '\0';
  plan->armed = true;
}

void Disarm() noexcept { plan->armed = false; }

bool HasStruck() noexcept { return plan->struck; }

std::string PlaceOfStrike() { return plan->place; }

bool MustFail(Call call, const char* place) noexcept {
  if (!Counts(call) || !Strikes()) return false;
  if (place != nullptr) NotePlace(place);
  return true;
}

bool MustFail(Call call, int descriptor) noexcept {
  if (!Counts(call) || !Strikes()) return false;
  const int error = errno;
  char link[64];
  std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
  char place[sizeof plan->place] = {};
  if (readlink(link, place, sizeof place - 1) > 0) NotePlace(place);
  errno = error;
  return true;
}

WithoutFaults::WithoutFaults() noexcept { ++paused; }
WithoutFaults::~WithoutFaults() { --paused; }
