// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

/// Returns a machine line: a machine with one slot and as many functions, with this driver.
inline std::string MadeLine(const std::string& name, const std::string& collected,
                            const std::string& driver = "nvme", unsigned functions = 20) {
  std::string list;
  for (unsigned i = 0; i < functions; ++i) {
    const std::string bus = {"0123456789abcdef"[i / 16 % 16], "0123456789abcdef"[i % 16]};
    list.append(i == 0 ? "" : ",")
        .append(R"({"address":"0000:)" + bus + R"(:00.0","kind":"device","place":"unknown",)")
        .append(R"("vendorID":5197,"deviceID":)" + std::to_string(1000 + i % 7))
        .append(R"(,"class":{"base":1,"subclass":8},"driver":")" + driver)
        .append(R"(","systemDevices":[{"kind":"nvme","name":"nvme)" + std::to_string(i))
        .append(R"(","serialNumber":"S)" + std::to_string(i) + "\"}]}");
  }
  return R"({"system":")" + name + R"(","collected":")" + collected +
         R"(","version":"1.0.0","machine":{"product":"Server"},"slots":[{"name":"Slot 1",)" +
         R"("state":"empty","functions":[]}],"shared":[],"onBoard":[],"unnamed":[],"unknown":[)" +
         list + "]}\n";
}
