// SPDX-License-Identifier: Apache-2.0
#include "host/store/target.h"

#include <algorithm>
#include <vector>

#include "host/base/errors.h"

namespace pciinfo {
namespace {

/// Returns where in an address its part "user:password" begins and ends.
std::pair<std::size_t, std::size_t> UserPart(const std::string& address) {
  const std::size_t begin = address.find("://") + 3;
  const std::size_t at = address.substr(0, address.find_first_of("/?", begin)).rfind('@');
  return {begin, at == std::string::npos ? begin : std::max(begin, at)};
}

/// Returns the passwords that an address contains, as they are written in it.
std::vector<std::string> PasswordsIn(const std::string& address) {
  std::vector<std::string> passwords;
  const auto [begin, end] = UserPart(address);
  const std::size_t colon = address.find(':', begin);
  if (colon < end) passwords.push_back(address.substr(colon + 1, end - colon - 1));
  const std::string key = "password=";
  for (std::size_t at = address.find(key); at != std::string::npos; at = address.find(key, at)) {
    at += key.size();
    passwords.push_back(address.substr(at, address.find('&', at) - at));
  }
  std::erase(passwords, "");
  return passwords;
}

}  // namespace

bool IsPostgresql(const std::string& target) {
  return target.starts_with("postgresql://") || target.starts_with("postgres://");
}

void CheckTarget(const std::string& target) {
  if (target.empty()) throw UsageError("the name of the database is empty");
  if (target == "-") throw UsageError("a database cannot be standard output: name a file");
  if (!IsPostgresql(target) && target.find("://") != std::string::npos) {
    throw UsageError("\"" + target.substr(0, target.find("://")) +
                     "\" databases are not supported: name a file, or postgresql://...");
  }
}

std::string ShownTarget(const std::string& target) {
  if (!IsPostgresql(target)) return target;
  std::string shown = target.substr(0, target.find('?'));
  const auto [begin, end] = UserPart(shown);
  const std::size_t colon = shown.find(':', begin);
  if (colon < end) shown.erase(colon, end - colon);
  return shown;
}

std::string WithoutPassword(std::string text, const std::string& target) {
  if (!IsPostgresql(target)) return text;
  for (const std::string& password : PasswordsIn(target)) {
    for (std::size_t at = text.find(password); at != std::string::npos;
         at = text.find(password, at + 3)) {
      text.replace(at, password.size(), "***");
    }
  }
  return text;
}

}  // namespace pciinfo
