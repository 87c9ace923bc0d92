// SPDX-License-Identifier: Apache-2.0
#include "host/diff/machine_state.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "host/console/text.h"
#include "host/formats/value_text.h"
#include "host/machine/function_details.h"
#include "host/machine/property_reader.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

std::string ElementsText(const TCIMValue& value) {
  std::vector<std::string> texts;
  for (const TCIMValue& element : value.GetArray()) texts.push_back(ScalarText(element));
  return fmt::format("{}", fmt::join(texts, ", "));
}

/// Returns the instances of a class for the functions of the model, by address.
std::vector<NamedProperties> ForFunctions(const vtq::Namespace& repository, const char* className,
                                          const MachineModel& model) {
  std::vector<NamedProperties> list(model.functions.size());
  const auto cimClass = repository.Find(className);
  if (cimClass == nullptr) return list;
  const PropertyReader reader(*cimClass);
  for (const auto& instance : cimClass->GetInstances()) {
    const auto address = ParseDomainAddress(reader.Text(*instance, "Address"));
    const MachineFunction* const function = address ? model.Find(*address) : nullptr;
    if (function == nullptr) continue;
    const auto place = static_cast<std::size_t>(function - model.functions.data());
    list[place] = NamedProperties(cimClass, instance);
  }
  return list;
}

}  // namespace

TCIMValue NamedProperties::ValueOf(const std::string& property) const {
  if (cimClass_ == nullptr) return {};
  const auto& properties = cimClass_->GetSchema().properties;
  for (std::size_t i = 0; i < properties.size(); ++i) {
    if (properties[i].name == property) return instance_->GetValue(i);
  }
  return {};
}

std::optional<std::string> NamedProperties::TextOf(const std::string& property) const {
  const TCIMValue value = ValueOf(property);
  if (value.IsNull()) return std::nullopt;
  std::string text = Printable(value.IsArray() ? ElementsText(value) : ScalarText(value));
  return text.empty() ? std::nullopt : std::optional(std::move(text));
}

std::vector<std::string> NamedProperties::Names() const {
  std::vector<std::string> names;
  if (cimClass_ == nullptr) return names;
  for (const auto& property : cimClass_->GetSchema().properties) names.push_back(property.name);
  return names;
}

std::vector<std::string> ComparedMachineClasses() {
  std::vector<std::string> classes = MachineClasses();
  classes.emplace_back(kDetailsClass);
  return classes;
}

MachineState ReadState(const vtq::Namespace& repository, std::optional<MachineIdentity> identity) {
  MachineState state;
  state.identity = std::move(identity);
  state.model = ReadMachine(repository);
  state.tellsDrivers =
      std::any_of(state.model.functions.begin(), state.model.functions.end(),
                  [](const MachineFunction& function) { return !function.driver.empty(); });
  state.functions = ForFunctions(repository, kFunctionClass, state.model);
  state.details = ForFunctions(repository, kDetailsClass, state.model);
  if (const auto cimClass = repository.Find(kSlotClass)) {
    // The model has the slots in the order of their instances.
    for (const auto& instance : cimClass->GetInstances()) {
      state.slots.emplace_back(cimClass, instance);
    }
  }
  return state;
}

}  // namespace pciinfo
