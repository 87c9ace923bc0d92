// SPDX-License-Identifier: Apache-2.0
#include "host/collect/foreign_domains.h"

#include <dirent.h>
#include <sys/stat.h>

#include <map>
#include <memory>
#include <string_view>

namespace pciinfo {
namespace {

constexpr std::string_view kFirstDomain = "0000";
constexpr const char* kHexDigits = "0123456789abcdef";

using Domains = std::map<std::string, std::string>;

void AddDomain(std::string_view name, Domains& domains) {  // "10000:03:1f.2"
  const std::size_t colon = name.find(':');
  if (colon == std::string_view::npos || name.size() < colon + 4) return;
  const std::string_view domain = name.substr(0, colon);
  if (domain == kFirstDomain || domain.find_first_not_of(kHexDigits) != std::string_view::npos)
    return;
  const std::string address(name.substr(colon + 1));
  const auto known = domains.try_emplace(address, domain);
  if (!known.second && known.first->second != domain) known.first->second.clear();
}

bool IsInFirstDomain(const std::string& devices, const std::string& address) {
  const std::string file = devices + '/' + std::string(kFirstDomain) + ':' + address;
  struct stat ignored {};
  return lstat(file.c_str(), &ignored) == 0;
}

/// The domain of each address that only functions outside the first domain have; empty for an
/// address of several domains. std::filesystem would take a tenth of the whole run for this.
Domains ReadDomains(const std::string& devices) {
  Domains domains;
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(devices.c_str()), &closedir);
  while (const dirent* entry = entries ? readdir(entries.get()) : nullptr)
    AddDomain(entry->d_name, domains);
  std::erase_if(domains, [&](const auto& item) { return IsInFirstDomain(devices, item.first); });
  return domains;
}

}  // namespace

std::function<std::string(const std::string&)> MakeDomainLookup(const std::string& devices) {
  return [devices, read = std::shared_ptr<Domains>()](const std::string& path) mutable {
    if (!read) read = std::make_shared<Domains>(ReadDomains(devices));
    std::string address = path;
    if (const std::size_t slash = address.find('/'); slash != std::string::npos)
      address[slash] = ':';
    const auto found = read->find(address);
    return found == read->end() ? "" : found->second;
  };
}

}  // namespace pciinfo
