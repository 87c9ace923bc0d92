// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>

#include "tests/faults/answers.h"
#include "tests/faults/fault_plan.h"
#include "tests/faults/loaded_plugin.h"
#include "tests/faults/medium_machine.h"

/// A fault that occurred, and its effects.
struct Strike {
  Fault fault;
  std::string className;  ///< the class that was being collected
  std::string place;      ///< see PlaceOfStrike
  const Answers& now;
  const Answers& expected;
  std::vector<Change> changes;  ///< of `now` against `expected`

  /// The changes in the result of the class itself, and its log.
  std::vector<Change> OwnChanges() const;
  std::vector<std::string> News() const;
  /// What its log does not say any more.
  std::vector<std::string> Gone() const;
};

/// Returns what is wrong about the effects of a fault; empty if nothing is.
using Judge = std::function<std::string(const Strike& strike)>;

/// Which faults are tried.
struct Round {
  Call call;
  bool lasting = false;
  Repository repository = Repository::kPlain;
  Tools tools = Tools::kRecorded;
  /// The class during whose collection calls fail; empty: each in turn.
  std::string className = {};
  /// The place of a fault after which the collection is known not to end; empty: none.
  std::string endlessPlace = {};
};

/// Collects all classes in turn. During the collection of each, makes one call after the other
/// fail, until no call is left: each time in a forked process, which then collects the other
/// classes without faults. Every such process must end, must not leave memory, files, processes or
/// uncommitted instances behind, and must satisfy `judge`. Returns the number of faults; every
/// problem is a failure of the test.
unsigned RunRounds(const Round& round, const Judge& judge);
