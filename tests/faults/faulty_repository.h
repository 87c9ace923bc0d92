// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "framework/cim_class.h"
#include "framework/cim_namespace.h"
#include "tests/faults/fault_plan.h"

/// The text of the exceptions of failing operations.
inline constexpr const char* kInjected = "made to fail";

/// Throws the framework's exception if the call must fail.
void ThrowIfFailing(Call call);

/// Returns a namespace that calls `nameSpace` and in which every operation, also of its classes and
/// instances, can fail. It and all objects from it must not outlive `nameSpace`.
std::shared_ptr<NQZMVTQ20::ICIMNamespace> WithFaults(
    std::shared_ptr<NQZMVTQ20::ICIMNamespace> nameSpace);
