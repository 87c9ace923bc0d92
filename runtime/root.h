// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "framework/export.h"

namespace NQZMVTQ20 {
class ICIMNamespace;
class ILogger;
}  // namespace NQZMVTQ20

namespace vtq {

/// Sets what TRootObject returns. Null restores the initial state: a logger that drops everything,
/// no plug-in manager. Not thread-safe.
VTQ_EXPORT void SetCoreLogger(std::shared_ptr<NQZMVTQ20::ILogger> logger);
VTQ_EXPORT void SetPluginManager(std::shared_ptr<NQZMVTQ20::ICIMNamespace> manager);

}  // namespace vtq
