// SPDX-License-Identifier: Apache-2.0
#include "tests/faults/rounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "tests/fakes/machine_tree.h"
#include "tests/faults/apart.h"
#include "tests/faults/live_blocks.h"

namespace {

// In a child process, so that this one has no cached data before the first fault.
Answers AnswersWithoutFaults(Tools tools) {
  const std::string file = MachineTree::Real("/answers");
  const EndApart end = RunApart([&](std::string&) {
    Use(tools);
    LoadedPlugin plugin(Repository::kPlain);
    for (const std::string& className : Classes()) plugin.Ask(className);
    WriteAnswers(plugin.GetAnswers(), file);
    return 0;
  });
  EXPECT_EQ(end.failure, "");
  return ReadAnswers(file);
}

// Creates the objects that exist once per process, so that they do not count as leaks.
void WarmUp(const Answers& expected) {
  Answers fewer = expected;
  for (Answer& answer : fewer) answer.instances.pop_back();
  ChangesIn(fewer, expected);
}

class Rounds {
 public:
  Rounds(const Round& round, const Judge& judge)
      : round_(round),
        judge_(judge),
        expected_(AnswersWithoutFaults(round.tools)),
        plugin_(std::make_unique<LoadedPlugin>(round.repository)) {
    WarmUp(expected_);
  }

  unsigned Run() {
    for (; asking_ < Classes().size(); ++asking_) {
      if (round_.className.empty() || round_.className == Classes()[asking_]) RunClass();
      Use(round_.tools);
      plugin_->Ask(Classes()[asking_]);
    }
    return faults_;
  }

 private:
  void RunClass() {
    const EndApart whole = Try(0);
    EXPECT_EQ(whole.failure, "") << Classes()[asking_] << " without a fault";
    unsigned wrong = 0;
    for (unsigned number = 1; wrong < 10; number = NextToFail(number)) {
      const EndApart end = Try(number);
      if (!HasStruck()) return;
      ++faults_;
      const std::string failure = FailureOf(end, whole);
      if (failure.empty()) continue;
      ++wrong;
      ADD_FAILURE() << Classes()[asking_] << ": " << TextOf({round_.call, number, round_.lasting})
                    << " (" << PlaceOfStrike() << "): " << failure;
    }
  }

  std::string FailureOf(const EndApart& end, const EndApart& whole) const {
    if (end.failure == kEndless && !round_.endlessPlace.empty() &&
        PlaceOfStrike() == round_.endlessPlace) {
      return "";
    }
    if (!end.failure.empty()) return end.failure;
    if (end.left <= whole.left) return "";
    return std::to_string(end.left - whole.left) + " blocks of memory are lost";
  }

  EndApart Try(unsigned number) {
    const EndApart end = RunApart([&](std::string& failure) {
      const long before = LiveBlocks();
      {
        const Fault fault{round_.call, number, round_.lasting};
        AskForAll(fault);
        const Answers now = Finish(&failure);
        const std::vector<Change> changes = ChangesIn(now, expected_);
        if (HasStruck()) {
          failure += judge_({fault, Classes()[asking_], PlaceOfStrike(), now, expected_, changes});
        } else if (!changes.empty()) {
          failure += "the answers differ without a fault";
        }
      }
      return LiveBlocks() - before;
    });
    Disarm();  // a process that died did not disarm
    return end;
  }

  void AskForAll(const Fault& fault) {
    Use(round_.tools);
    Arm(fault);
    plugin_->Ask(Classes()[asking_]);
    Disarm();
    Use(Tools::kRecorded);
    for (std::size_t i = asking_ + 1; i < Classes().size(); ++i) plugin_->Ask(Classes()[i]);
  }

  Answers Finish(std::string* failure) {
    Answers now = plugin_->GetAnswers();
    if (plugin_->CountUncommitted() != 0) *failure += "instances are held uncommitted\n";
    plugin_.reset();
    return now;
  }

  const Round& round_;
  const Judge& judge_;
  Answers expected_;
  std::unique_ptr<LoadedPlugin> plugin_;
  std::size_t asking_ = 0;
  unsigned faults_ = 0;
};

std::size_t IndexOf(const std::string& className) {
  const auto found = std::find(Classes().begin(), Classes().end(), className);
  return static_cast<std::size_t>(found - Classes().begin());
}

}  // namespace

std::vector<Change> Strike::OwnChanges() const {
  std::vector<Change> own = changes;
  own.erase(std::remove_if(own.begin(), own.end(),
                           [this](const Change& change) { return change.className != className; }),
            own.end());
  return own;
}

std::vector<std::string> Strike::News() const {
  const std::size_t index = IndexOf(className);
  return NewsIn(now[index], expected[index]);
}

std::vector<std::string> Strike::Gone() const {
  const std::size_t index = IndexOf(className);
  return NewsIn({"", {}, expected[index].log, ""}, {"", {}, now[index].log, ""});
}

unsigned RunRounds(const Round& round, const Judge& judge) { return Rounds(round, judge).Run(); }
