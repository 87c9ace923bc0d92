#pragma once

#include <string>
#include <vector>

/// What the request for one class gave.
struct Answer {
  std::string className;
  std::vector<std::string> instances;  ///< a JSON object each, in commit order
  std::vector<std::string> log;        ///< severity digit, blank, text
  std::string thrown;                  ///< what left the plug-in; empty when nothing did
};

using Answers = std::vector<Answer>;

/// From one process to another.
void WriteAnswers(const Answers& answers, const std::string& file);
Answers ReadAnswers(const std::string& file);

/// What faults may do to the instances that are there all the same. System keys are left out of
/// paths when instances are compared, so that a key that fell back is a changed property.
struct Change {
  std::string className;
  /// "missing", "extra", "double", "order", "dangling" (an association with an end that is not
  /// there), or the name of the property that changed.
  std::string what;

  friend bool operator<(const Change& left, const Change& right) {
    return left.className < right.className ||
           (left.className == right.className && left.what < right.what);
  }
};

/// How `now` differs from `expected`, a change for each instance that it befell. The answers are to
/// the same requests.
std::vector<Change> ChangesIn(const Answers& now, const Answers& expected);

/// What the log of `now` says that the other one does not, and what left the plug-in, as
/// "! " and its text.
std::vector<std::string> NewsIn(const Answer& now, const Answer& expected);
