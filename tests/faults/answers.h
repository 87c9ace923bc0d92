// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

/// The result of collecting one class.
struct Answer {
  std::string className;
  std::vector<std::string> instances;  ///< as JSON objects, in commit order
  std::vector<std::string> log;        ///< severity digit, space, text
  std::string thrown;                  ///< the text of an exception from the plug-in; empty if none
};

using Answers = std::vector<Answer>;

/// To pass results from one process to another.
void WriteAnswers(const Answers& answers, const std::string& file);
Answers ReadAnswers(const std::string& file);

/// Changes of instances by a fault. Paths are compared without system keys, so that a key with a
/// fallback value counts as a changed property.
struct Change {
  std::string className;
  /// "missing", "extra", "double", "order", "dangling" (an association with an end that does not
  /// exist), or the name of the changed property.
  std::string what;

  friend bool operator<(const Change& left, const Change& right) {
    return left.className < right.className ||
           (left.className == right.className && left.what < right.what);
  }
};

/// Returns the changes from `expected` to `now`, one for each instance and property. Both are
/// results of the same requests.
std::vector<Change> ChangesIn(const Answers& now, const Answers& expected);

/// Returns the log records of `now` that the other result lacks, and an exception from the plug-in,
/// as "! " and its text.
std::vector<std::string> NewsIn(const Answer& now, const Answer& expected);
