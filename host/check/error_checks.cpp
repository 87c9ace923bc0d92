// SPDX-License-Identifier: Apache-2.0

// The checks of the errors that the kernel has counted since the start of the machine.

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "host/check/machine_checks.h"

namespace pciinfo {
namespace {

/// The link repeats what it corrects. A few are normal; so many show a bad contact.
constexpr std::uint64_t kManyCorrected = 1000;

std::string CountText(const ErrorCount& count) {
  if (count.kinds.empty()) return fmt::format("{}", *count.total);
  return fmt::format("{}", fmt::join(count.kinds, ", "));
}

/// The functions with at least `least` errors, and at most `most`.
std::vector<AffectedObject> WithErrors(const MachineFacts& facts, ErrorCount FunctionFacts::*count,
                                       std::uint64_t least, std::uint64_t most = UINT64_MAX) {
  std::vector<AffectedObject> objects;
  for (std::size_t i = 0; i < facts.functions.size(); ++i) {
    const ErrorCount& errors = facts.functions[i].*count;
    if (!errors.total || *errors.total < least || *errors.total > most) continue;
    objects.push_back(ObjectOf(facts.machine.functions[i], facts.machine, CountText(errors)));
  }
  return objects;
}

std::vector<AffectedObject> WithFatal(const MachineFacts& facts) {
  return WithErrors(facts, &FunctionFacts::fatal, 1);
}

std::vector<AffectedObject> WithNonFatal(const MachineFacts& facts) {
  return WithErrors(facts, &FunctionFacts::nonFatal, 1);
}

std::vector<AffectedObject> WithManyCorrected(const MachineFacts& facts) {
  return WithErrors(facts, &FunctionFacts::corrected, kManyCorrected);
}

std::vector<AffectedObject> WithFewCorrected(const MachineFacts& facts) {
  return WithErrors(facts, &FunctionFacts::corrected, 1, kManyCorrected - 1);
}

const std::vector<MachineCheck> kErrorChecks = {
    {"errors-fatal", Severity::kError, "The kernel has counted fatal PCI Express errors here.",
     "Read the kernel's log. Seat the card again, try it in another slot, then replace it.",
     &WithFatal},
    {"errors-nonfatal", Severity::kWarning,
     "The kernel has counted uncorrectable PCI Express errors here that were not fatal.",
     "Read the kernel's log: when they occurred, and which driver was affected.", &WithNonFatal},
    {"errors-corrected-many", Severity::kWarning,
     "The kernel has counted 1000 or more corrected PCI Express errors here.",
     "Nothing was lost yet. Seat the card, riser and cable again and clean the contacts.",
     &WithManyCorrected},
    {"errors-corrected", Severity::kNote,
     "The kernel has counted corrected PCI Express errors here.",
     "Nothing was lost. See whether the number grows.", &WithFewCorrected},
};

}  // namespace

const std::vector<MachineCheck>& ErrorChecks() { return kErrorChecks; }

}  // namespace pciinfo
