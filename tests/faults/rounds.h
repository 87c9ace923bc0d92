#pragma once

#include <functional>
#include <string>

#include "tests/faults/answers.h"
#include "tests/faults/fault_plan.h"
#include "tests/faults/loaded_plugin.h"
#include "tests/faults/medium_machine.h"

/// A fault that struck, and what came of it.
struct Strike {
  Fault fault;
  std::string className;  ///< the class that was being asked for
  std::string place;      ///< see PlaceOfStrike
  const Answers& now;
  const Answers& expected;
  std::vector<Change> changes;  ///< of `now` against `expected`

  /// What became of the class's own answer, and what its log says of it.
  std::vector<Change> OwnChanges() const;
  std::vector<std::string> News() const;
  /// What its log does not say any more.
  std::vector<std::string> Gone() const;
};

/// Says what is wrong about the outcome of a strike; empty when nothing is.
using Judge = std::function<std::string(const Strike& strike)>;

/// What is tried.
struct Round {
  Call call;
  bool lasting = false;
  Repository repository = Repository::kPlain;
  Tools tools = Tools::kRecorded;
  /// The class while which is asked for the calls fail; empty: each in turn.
  std::string className = {};
  /// A place of a strike at which it is known that the collection never ends; empty: none.
  std::string endlessPlace = {};
};

/// Asks for all classes in turn, and while one of them is being asked for makes one call after the
/// other fail, until none is left to fail: each time in a process of its own, which then asks for
/// the classes that remain, without faults. Every such process has to end, to leave no memory,
/// files, processes and uncommitted instances behind, and to satisfy `judge`. Returns the number of
/// faults; each thing that is wrong is a failure of the test.
unsigned RunRounds(const Round& round, const Judge& judge);
