// SPDX-License-Identifier: Apache-2.0
#include "runtime/host_name.h"

#include <algorithm>
#include <iterator>
#include <sstream>
#include <utility>
#include <vector>

namespace vtq {

namespace {

std::optional<std::string> givenName;

// Returns the names in one line of a hosts file, without the address and a comment (`#`).
std::vector<std::string> NamesOf(const std::string& line) {
  std::istringstream words(line.substr(0, line.find('#')));
  words.exceptions(std::ios::badbit);
  std::string address;
  words >> address;
  return {std::istream_iterator<std::string>(words), {}};
}

}  // namespace

std::string QualifiedHostName(const std::string& host, std::istream& hostsFile) {
  if (host.empty() || host == "localhost" || host.find('.') != std::string::npos) return host;
  // Without this, the stream would take bad_alloc for the end of the file.
  hostsFile.exceptions(std::ios::badbit);
  std::string line;
  while (std::getline(hostsFile, line)) {
    const std::vector<std::string> names = NamesOf(line);
    const bool isListed = std::find(names.begin(), names.end(), host) != names.end();
    if (isListed && names.front().starts_with(host + ".")) return names.front();
  }
  return host;
}

void SetSystemName(std::string name) { givenName = std::move(name); }

const std::optional<std::string>& GivenSystemName() noexcept { return givenName; }

}  // namespace vtq
