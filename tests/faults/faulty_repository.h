#pragma once

#include <memory>

#include "framework/cim_class.h"
#include "framework/cim_namespace.h"
#include "tests/faults/fault_plan.h"

/// What the failing operations of the framework say.
inline constexpr const char* kInjected = "made to fail";

/// Throws the framework's exception if the call has to fail.
void ThrowIfFailing(Call call);

/// The same namespace, with every operation on it, on its classes and on their instances open to
/// faults. It and all that it gives must not outlive `nameSpace`.
std::shared_ptr<NQZMVTQ20::ICIMNamespace> WithFaults(
    std::shared_ptr<NQZMVTQ20::ICIMNamespace> nameSpace);
