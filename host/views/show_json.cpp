// SPDX-License-Identifier: Apache-2.0
#include <nlohmann/json.hpp>

#include "host/console/safe_json.h"
#include "host/formats/json_writer.h"
#include "host/views/function_json.h"
#include "host/views/show_view.h"
#include "host/views/slot_json.h"

namespace pciinfo {

void WriteShownJson(Output& output, const Shown& shown) {
  output.Write("{");
  if (shown.function) {
    output.Write("\"function\":" + SafeJson(FunctionJson(*shown.function).dump()) + ",\n");
  }
  if (shown.slot) output.Write("\"slot\":" + SafeJson(SlotJson(*shown.slot).dump()) + ",\n");
  output.Write("\"instance\":");
  JsonObjects objects(output);
  objects.BeginClass(*shown.cimClass);
  objects.Write(*shown.cimClass, *shown.instance);
  output.Write("}\n");
}

}  // namespace pciinfo
