// SPDX-License-Identifier: Apache-2.0
#include <string>
#include <utility>

#include "board/system_board.h"
#include "framework/exception.h"
#include "plugin/class_names.h"
#include "plugin/held_instances.h"
#include "plugin/values.h"

using NQZMVTQ20::ICIMInstance;
using NQZMVTQ20::ICIMNamespace;
using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TVTQException;

namespace {

// A function without a readable slot number was found in no slot, so it is on the board.
bool IsOnBoard(const ICIMInstance& function) {
  try {
    const TCIMValue number = function.GetProperty("UINumber", {}).value;
    // Checked first, because most functions have none and an exception for each would take long.
    return number.IsNull() || static_cast<unsigned char>(number) == 0;
  } catch (...) {
    return true;
  }
}

}  // namespace

std::vector<TPropertyMap> TSysBrd::MakeDeviceBoardAssociation() {
  HeldInstances boards;
  HeldInstances functions;
  try {
    const std::shared_ptr<ICIMNamespace> nameSpace = GetCIMClass()->GetNamespace({});
    AppendHeldInstances(*nameSpace, kSystemBoardClass, &boards);
    AppendHeldInstances(*nameSpace, kPciDeviceClass, &functions);
    AppendHeldInstances(*nameSpace, kPciBridgeClass, &functions);
  } catch (const TVTQException& failure) {
    // The same text as for the device-slot association, because log readers match both by one text,
    // including the seven tabs.
    WriteStatus(
        "PCI Device-slot association encountered an error\t\t\t\t\t\t\t"
        "enumerating CIM instances for " +
        std::string(kSystemBoardClass) + " OR " + kPciDeviceClass +
        " Error Code: " + dataToString<const char*>(failure.what()));
    return {};
  }

  std::vector<TPropertyMap> associations;
  if (boards.empty()) return associations;
  for (const auto& function : functions) {
    if (!IsOnBoard(*function)) continue;
    TPropertyMap association;
    InsertProperty(&association, "Antecedent", TCIMValue(boards.front()->GetObjectReference({})));
    InsertProperty(&association, "Dependent", TCIMValue(function->GetObjectReference({})));
    associations.push_back(std::move(association));
  }
  return associations;
}
