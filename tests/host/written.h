// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/formats/instance_writer.h"
#include "tests/host/fixed_repository.h"

/// Returns the given classes in a format.
inline std::string Written(const std::string& format, const vtq::Namespace& repository,
                           const std::vector<std::string>& classes) {
  OutputToText output;
  pciinfo::WriteInstances(repository, classes, *pciinfo::MakeInstanceWriter(format, output.Get()));
  return output.Text();
}

/// Returns all classes in a format.
inline std::string Written(const std::string& format, const vtq::Namespace& repository) {
  std::vector<std::string> classes;
  for (const auto& cimClass : repository.GetClasses())
    classes.push_back(cimClass->GetSchema().name);
  return Written(format, repository, classes);
}
