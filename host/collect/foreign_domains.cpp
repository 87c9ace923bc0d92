// SPDX-License-Identifier: Apache-2.0
#include "host/collect/foreign_domains.h"

#include <filesystem>
#include <map>
#include <memory>

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFirstDomain = "0000";
constexpr const char* kHexDigits = "0123456789abcdef";

using Domains = std::map<std::string, std::string>;

/// The domain of each function by its path; 0000 for a path that functions of several domains have.
Domains ReadDomains(const std::string& devices) {
  Domains domains;
  std::error_code failure;
  for (const auto& entry : fs::directory_iterator(devices, failure)) {
    const std::string name = entry.path().filename();  // "10000:03:1f.2"
    const std::size_t colon = name.find(':');
    if (colon == std::string::npos || name.size() < colon + 4) continue;
    const std::string domain = name.substr(0, colon);
    if (domain.find_first_not_of(kHexDigits) != std::string::npos) continue;
    const std::string path = name.substr(colon + 1, 2) + "/" + name.substr(colon + 4);
    const auto known = domains.try_emplace(path, domain);
    if (!known.second && known.first->second != domain) known.first->second = kFirstDomain;
  }
  return domains;
}

}  // namespace

std::function<std::string(const std::string&)> MakeDomainLookup(const std::string& devices) {
  return [devices, read = std::shared_ptr<Domains>()](const std::string& path) mutable {
    if (!read) read = std::make_shared<Domains>(ReadDomains(devices));
    const auto found = read->find(path);
    return found == read->end() || found->second == kFirstDomain ? "" : found->second;
  };
}

}  // namespace pciinfo
