// SPDX-License-Identifier: Apache-2.0
#include "tests/machines/lspci.h"

#include <cstdio>
#include <map>

#include "tests/machines/process.h"

namespace {

unsigned Hex(const std::string& text) {
  return static_cast<unsigned>(std::stoul(text, nullptr, 16));
}

// Reads one line "Key:\tvalue" of "lspci -vmmn". The first line of a function is its slot.
void TakeLine(const std::string& line, std::vector<ListedFunction>& functions) {
  const std::size_t tab = line.find('\t');
  if (tab == std::string::npos) return;  // the empty line between two functions
  const std::string key = line.substr(0, tab);
  const std::string value = line.substr(tab + 1);
  if (key == "Slot:") {
    ListedFunction& begun = functions.emplace_back();
    const std::size_t colon = value.find(':');
    begun.domain = Hex(value.substr(0, colon));
    begun.address = value.substr(colon + 1);
    return;
  }
  ListedFunction& function = functions.at(functions.size() - 1);
  if (key == "Class:") function.classCode = Hex(value);
  if (key == "ProgIf:") function.progIf = Hex(value);
  if (key == "Rev:") function.revision = Hex(value);
  if (key == "Vendor:") function.vendor = Hex(value);
  if (key == "Device:") function.device = Hex(value);
  if (key == "SVendor:") function.subsystemVendor = Hex(value);
  if (key == "SDevice:") function.subsystemDevice = Hex(value);
}

// Returns the text of plain lspci after each address. It prints the domains of all functions if one
// is not in domain 0.
std::map<std::string, std::string> Descriptions(bool withDomains) {
  std::map<std::string, std::string> descriptions;
  for (const std::string& line : LinesOf(RunToEnd({"lspci"}).out)) {
    const std::size_t blank = line.find(' ');
    const std::string address = line.substr(0, blank);
    descriptions[withDomains ? address : "0000:" + address] = line.substr(blank + 1);
  }
  return descriptions;
}

std::string FullAddress(const ListedFunction& function) {
  char domain[16];
  std::snprintf(domain, sizeof domain, "%04x:", function.domain);
  return domain + function.address;
}

}  // namespace

std::vector<ListedFunction> ListFunctions() {
  std::vector<ListedFunction> functions;
  for (const std::string& line : LinesOf(RunToEnd({"lspci", "-Dvmmn"}).out))
    TakeLine(line, functions);
  bool withDomains = false;
  for (const ListedFunction& function : functions) withDomains |= function.domain != 0;
  const std::map<std::string, std::string> descriptions = Descriptions(withDomains);
  for (ListedFunction& function : functions) {
    function.description = descriptions.at(FullAddress(function));
  }
  return functions;
}
