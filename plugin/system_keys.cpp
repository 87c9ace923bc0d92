// SPDX-License-Identifier: Apache-2.0
#include "plugin/system_keys.h"

#include <memory>

#include "framework/cim_namespace.h"
#include "framework/exception.h"
#include "framework/schema_helper.h"
#include "plugin/values.h"

using NQZMVTQ20::ICIMClass;
using NQZMVTQ20::ICIMNamespace;
using NQZMVTQ20::TCIMSchemaHelper;
using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TVTQException;

void InsertSystemKeys(ICIMClass* cimClass, TPropertyMap* properties) {
  try {
    const std::shared_ptr<ICIMNamespace> nameSpace = cimClass->GetNamespace({});
    InsertProperty(properties, "SystemCreationClassName",
                   TCIMValue(TCIMSchemaHelper::GetSystemCreationClassName(nameSpace)));
    InsertProperty(properties, "SystemName", TCIMValue(TCIMSchemaHelper::GetSystemName(nameSpace)));
  } catch (const TVTQException&) {
    // InsertProperty keeps an existing value, so a value that was found before the failure stays.
    InsertProperty(properties, "SystemCreationClassName", TCIMValue(""));
    InsertProperty(properties, "SystemName", TCIMValue(""));
  }
}
