// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>

#include "host/collect/trouble_report.h"
#include "runtime/logger.h"

namespace pciinfo {

/// Returns a sink that writes records to standard error, in the form of the log file. With a level:
/// all records up to that severity. Without one: errors and warnings, except those written while a
/// class is being collected, because `report` turns these into messages. `report` must outlive the
/// sink.
vtq::LogSink MakeStderrSink(std::optional<int> level, const TroubleReport& report);

}  // namespace pciinfo
