// SPDX-License-Identifier: Apache-2.0
#include "host/diff/identity_facts.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "host/console/safe_json.h"
#include "host/console/utf8.h"
#include "host/machine/names.h"

namespace pciinfo {
namespace {

struct IdentityRow {
  const char* property;
  const char* words;
  std::string MachineIdentity::*field;
};

constexpr IdentityRow kIdentityRows[] = {
    {"Maker", "maker", &MachineIdentity::maker},
    {"Product", "product", &MachineIdentity::product},
    {"BoardMaker", "maker of the board", &MachineIdentity::boardMaker},
    {"BoardProduct", "board", &MachineIdentity::boardProduct},
    {"BoardVersion", "board version", &MachineIdentity::boardVersion},
    {"BiosMaker", "BIOS vendor", &MachineIdentity::biosMaker},
    {"BiosVersion", "BIOS version", &MachineIdentity::biosVersion},
    {"BiosDate", "BIOS date", &MachineIdentity::biosDate},
};

}  // namespace

std::vector<Fact> IdentityFacts(const std::optional<MachineIdentity>& identity) {
  std::vector<Fact> facts;
  for (const IdentityRow& row : kIdentityRows) {
    const std::string name = identity ? NameIn((*identity).*row.field) : "";
    facts.push_back(
        {row.property, row.words, name.empty() ? std::nullopt : std::optional(name), ""});
  }
  return facts;
}

void WriteIdentityLine(Output& output, const MachineIdentity& identity) {
  nlohmann::json object = nlohmann::json::object();
  for (const IdentityRow& row : kIdentityRows) {
    object[row.property] = ToUtf8(identity.*row.field);
  }
  output.Write(SafeJson(object.dump()) + "\n");
}

MachineIdentity ReadIdentityLine(const std::string& line) {
  const auto object = nlohmann::json::parse(line, nullptr, false);
  MachineIdentity identity;
  for (const IdentityRow& row : kIdentityRows) {
    if (!object.is_object() || !object.contains(row.property)) {
      throw std::runtime_error("the description of the machine is incomplete");
    }
    identity.*row.field = object[row.property].get<std::string>();
  }
  return identity;
}

}  // namespace pciinfo
