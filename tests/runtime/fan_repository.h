// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "runtime/repository.h"

namespace vtq {

/// A namespace "root/cimv2" with the classes ACME_Fan (keys DeviceID and Bank), ACME_Pump (key
/// DeviceID) and ACME_Cools, which names a fan.
inline std::shared_ptr<Namespace> MakeFanNamespace() {
  using TCIMType = NQZMVTQ20::TCIMValue::TCIMType;
  const TCIMType text(TCIMType::kString);
  const TCIMType number(TCIMType::kUint16);
  const TCIMType reference(TCIMType::kReference);
  std::shared_ptr<Namespace> nameSpace = Namespace::Create("root/cimv2");
  nameSpace->Declare({"ACME_Fan",
                      "CIM_Fan",
                      "Turns.",
                      {{"Speed", number, false, false, {}, ""},
                       {"DeviceID", text, false, true, {}, ""},
                       {"Notes", text, true, false, {}, ""},
                       {"Bank", number, false, true, {}, ""}}});
  nameSpace->Declare({"ACME_Pump", "", "", {{"DeviceID", text, false, true, {}, ""}}});
  nameSpace->Declare({"ACME_Cools",
                      "",
                      "",
                      {{"Fan", reference, false, true, {"ACME_Fan"}, ""},
                       {"Others", reference, true, false, {"ACME_Fan"}, ""},
                       {"Anything", reference, false, false, {}, ""}}});
  return nameSpace;
}

/// A new fan with its keys set, not committed.
inline std::shared_ptr<NQZMVTQ20::ICIMInstance> MakeFan(Namespace& nameSpace,
                                                        const std::string& id) {
  std::shared_ptr<NQZMVTQ20::ICIMInstance> fan = nameSpace.Find("ACME_Fan")->CreateInstance({});
  fan->SetProperty("DeviceID", NQZMVTQ20::TCIMValue(id), {});
  fan->SetProperty("Bank", NQZMVTQ20::TCIMValue(static_cast<unsigned short>(1)), {});
  return fan;
}

}  // namespace vtq
