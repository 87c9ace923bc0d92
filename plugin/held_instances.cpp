// SPDX-License-Identifier: Apache-2.0
#include "plugin/held_instances.h"

#include "framework/add_to_vector_callback.h"
#include "framework/cim_class.h"

using NQZMVTQ20::ICIMInstance;
using NQZMVTQ20::ICIMNamespace;
using NQZMVTQ20::TAddToVectorCallback;

void AppendHeldInstances(ICIMNamespace& nameSpace, const char* className,
                         HeldInstances* instances) {
  nameSpace.GetClass(className, {})
      ->EnumerateInstances(TAddToVectorCallback<ICIMInstance>(*instances), 0, {});
}
