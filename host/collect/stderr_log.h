#pragma once

#include <optional>

#include "host/collect/trouble_report.h"
#include "runtime/logger.h"

namespace pciinfo {

/// A sink that shows records on standard error, in the form of the log file. With a level: all
/// records up to that severity. Without one: errors and warnings, except those written while a
/// class is being collected, which `report` turns into messages for people. `report` must outlive
/// it.
vtq::LogSink MakeStderrSink(std::optional<int> level, const TroubleReport& report);

}  // namespace pciinfo
