#pragma once

#include <set>
#include <string>
#include <vector>

#include "host/collect/troubles.h"

namespace pciinfo {

/// Gathers what went wrong while classes were collected, each thing once however many classes met
/// it, under the class that met it first. That a class is lost is told for every such class.
class TroubleReport final {
 public:
  /// `hasPciBus` and `isCapture` as in Circumstances. Findings about slots are dropped unless
  /// `slotsMatter`.
  TroubleReport(bool hasPciBus, bool slotsMatter, bool isCapture = false);

  /// What is added from now on belongs to `className`.
  void BeginClass(std::string className);
  void EndClass();
  bool IsCollecting() const noexcept { return !className_.empty(); }

  /// Takes a log record; nothing happens when no class is being collected.
  void AddRecord(NQZMVTQ20::ILogger::EVTQLogSeverity severity, const std::string& text);
  /// Takes the description of an operating-system service that failed: it explains the next record
  /// that means something.
  void AddServiceFailure(const std::string& description);
  /// Takes what ended a query, or a plug-in's other work, before its time.
  void AddFailure(const std::string& why);

  /// Whether something could not be collected.
  bool HasTroubles() const noexcept { return !troubles_.empty(); }
  /// The messages, without the program's name: first what this machine does not have, then the
  /// troubles as "CLASS: why", each in the order in which they came.
  std::vector<std::string> GetLines() const;

 private:
  void Add(const Finding& finding);
  std::string LineOf(const Finding& finding) const;

  bool slotsMatter_;
  Circumstances circumstances_;
  std::string className_;
  std::set<std::string> told_;
  std::vector<std::string> notices_;
  std::vector<std::string> troubles_;
};

}  // namespace pciinfo
