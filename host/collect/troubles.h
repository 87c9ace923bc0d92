#pragma once

#include <string>

#include "framework/logger.h"

namespace pciinfo {

/// What a log record means to somebody who waits for the inventory.
enum class Verdict {
  kTrouble,    ///< something could not be collected
  kClassLost,  ///< the same, for everything that the class still had to give
  kNotice,     ///< this machine does not have the thing: worth a line, but no failure
  kNothing,    ///< of no interest
};

/// What a finding is about.
enum class Subject { kFunctions, kSlots };

struct Finding {
  Verdict verdict = Verdict::kNothing;
  Subject subject = Subject::kFunctions;
  std::string text;  ///< a clause for people; empty for Verdict::kNothing
};

/// What is known besides the record itself.
struct Circumstances {
  /// Whether the kernel shows its PCI buses (/proc/bus/pci exists).
  bool hasPciBus = true;
  /// The description of the operating-system service that failed right before; empty when none did.
  std::string serviceFailure;
  /// Whether the machine is one that a capture holds.
  bool isCapture = false;
};

/// What a record that a plug-in wrote while it collected a class means. Records less severe than
/// ILogger::kStatus mean nothing; a record that is not known is a trouble in its own words.
Finding JudgeRecord(NQZMVTQ20::ILogger::EVTQLogSeverity severity, const std::string& text,
                    const Circumstances& circumstances);

}  // namespace pciinfo
