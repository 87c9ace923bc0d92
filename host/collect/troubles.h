// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>

#include "framework/logger.h"

namespace pciinfo {

/// What a log record means for the inventory.
enum class Verdict {
  kTrouble,    ///< something could not be collected
  kClassLost,  ///< all further instances of the class could not be collected
  kNotice,     ///< the machine lacks the hardware: reported, but not an error
  kNothing,    ///< not reported
};

struct Finding {
  Verdict verdict = Verdict::kNothing;
  std::string text;  ///< a message; empty for Verdict::kNothing
  /// For findings of which one cause makes many: the message for several of them, the same for
  /// each, with {count} for their number, {others} for one less, and {first} for the `subject` of
  /// the first. Empty: each finding is told by itself.
  std::string ofMany = {};
  std::string subject = {};
};

/// What JudgeRecord uses besides the record itself.
struct Circumstances {
  /// Whether the kernel shows its PCI buses (/proc/bus/pci exists).
  bool hasPciBus = true;
  /// The description of the operating-system service that failed just before; empty if none did.
  std::string serviceFailure;
  /// Whether the machine comes from a capture (--root).
  bool isCapture = false;
  /// See MakeDomainLookup.
  std::function<std::string(const std::string&)> domainOf = nullptr;
  /// Whether a capture tells that nothing kept its maker from reading SMBIOS tables.
  bool showedNoTables = false;
};

/// Decides what a record means that a plug-in wrote while it collected a class. Records less severe
/// than ILogger::kStatus mean nothing; an unknown record is a trouble with its own text.
Finding JudgeRecord(NQZMVTQ20::ILogger::EVTQLogSeverity severity, const std::string& text,
                    const Circumstances& circumstances);

}  // namespace pciinfo
