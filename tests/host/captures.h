// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string>
#include <vector>

/// The captures of real machines, sorted by name; for suites with one test per machine.
inline std::vector<std::string> Captures() {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(PCIINFO_MACHINES)) {
    if (entry.path().string().ends_with(".tar.gz")) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

/// Returns the name of a capture in a form that a test's name may contain.
inline std::string NameOfCapture(const testing::TestParamInfo<std::string>& capture) {
  std::string name = std::filesystem::path(capture.param).stem().stem();
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
  return name;
}
