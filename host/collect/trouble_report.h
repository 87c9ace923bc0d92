// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/collect/troubles.h"

namespace pciinfo {

/// Gathers what failed while classes were collected. A trouble that several classes meet is
/// reported once, for the first of them. A lost class is reported for every such class.
class TroubleReport final {
 public:
  /// `circumstances` without a service failure.
  explicit TroubleReport(Circumstances circumstances);

  /// Later records and failures belong to `className`.
  void BeginClass(std::string className);
  void EndClass();
  bool IsCollecting() const noexcept { return !className_.empty(); }

  /// Adds a log record; ignores it when no class is being collected.
  void AddRecord(NQZMVTQ20::ILogger::EVTQLogSeverity severity, const std::string& text);
  /// Adds the description of an operating-system service that failed. It is used as the reason of
  /// the next record that is reported.
  void AddServiceFailure(const std::string& description);
  /// Adds a sentence about something that may be incomplete.
  void AddDoubt(const std::string& description);
  /// Adds the reason why a query, or another call of a plug-in, failed.
  void AddFailure(const std::string& why);

  /// Whether something could not be collected.
  bool HasTroubles() const noexcept { return !troubles_.empty(); }
  /// The messages, without the program's name: first what this machine lacks, then the troubles as
  /// "CLASS: why", each in the order in which they were added.
  std::vector<std::string> GetLines() const;
  /// The troubles alone.
  std::vector<std::string> GetTroubles() const;

 private:
  /// A finding, and how often it was made.
  struct Told {
    Finding finding;
    std::string className;  ///< the first class in whose collection it was made
    std::size_t count = 1;
  };

  void Add(const Finding& finding);
  static std::string LineOf(const Told& told);

  Circumstances circumstances_;
  std::string className_;
  std::set<std::pair<std::string, std::string>> seen_;  ///< texts, and what they are about
  std::vector<Told> notices_;
  std::vector<Told> troubles_;
};

}  // namespace pciinfo
