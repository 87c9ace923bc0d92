#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/// What `pciinfo instances --format json` says of the machine.
struct Collection {
  int status = -1;
  std::string messages;                   ///< what it said on standard error
  std::vector<nlohmann::json> instances;  ///< each with "class", "path" and "properties"
  std::vector<std::string> log;           ///< the records, each with its severity's digit

  std::vector<nlohmann::json> Of(const std::string& className) const;

  /// The devices, then the bridges.
  std::vector<nlohmann::json> Functions() const;

  bool HasLogged(const std::string& record) const;
};

/// Runs the program for these classes, or for all. Throws when its output is no JSON of that shape.
Collection Collect(const std::vector<std::string>& classes = {});

/// The address "BB:DD.F" that the location of a function ("PCI Bus  0, device  31, function  2")
/// tells. Throws for any other text.
std::string AddressOf(const nlohmann::json& function);

/// A number that an instance has or has not.
unsigned NumberOr(const nlohmann::json& instance, const std::string& property, unsigned otherwise);
