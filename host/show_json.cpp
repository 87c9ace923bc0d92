#include <nlohmann/json.hpp>

#include "host/function_json.h"
#include "host/json_writer.h"
#include "host/show_view.h"
#include "host/slot_json.h"

namespace pciinfo {

void WriteShownJson(Output& output, const Shown& shown) {
  output.Write("{");
  if (shown.function) {
    output.Write("\"function\":" + FunctionJson(*shown.function).dump() + ",\n");
  }
  if (shown.slot) output.Write("\"slot\":" + SlotJson(*shown.slot).dump() + ",\n");
  output.Write("\"instance\":");
  JsonObjects objects(output);
  objects.BeginClass(*shown.cimClass);
  objects.Write(*shown.cimClass, *shown.instance);
  output.Write("}\n");
}

}  // namespace pciinfo
