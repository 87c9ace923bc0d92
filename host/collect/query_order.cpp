// SPDX-License-Identifier: Apache-2.0
#include "host/collect/query_order.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cctype>

#include "host/base/errors.h"

namespace pciinfo {
namespace {

using Schemas = std::vector<vtq::ClassSchema>;
using Names = std::vector<std::string>;

bool Holds(const Names& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

Names NamesOf(const Schemas& declared) {
  Names names;
  for (const vtq::ClassSchema& schema : declared) names.push_back(schema.name);
  return names;
}

/// The case of letters does not distinguish names of CIM classes (DSP0004).
bool IsSameName(const std::string& left, const std::string& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) ==
           std::tolower(static_cast<unsigned char>(b));
  });
}

const vtq::ClassSchema* Find(const Schemas& declared, const std::string& name) {
  const auto found = std::find_if(declared.begin(), declared.end(), [&name](const auto& schema) {
    return IsSameName(schema.name, name);
  });
  return found == declared.end() ? nullptr : &*found;
}

class Collector {
 public:
  explicit Collector(const Schemas& declared) : declared_(declared) {}

  void Add(const vtq::ClassSchema& schema) {
    if (Holds(visited_, schema.name)) return;
    visited_.push_back(schema.name);
    for (const std::string& joined : vtq::JoinedClasses(schema)) {
      if (const vtq::ClassSchema* found = Find(declared_, joined)) Add(*found);
    }
    order_.push_back(schema.name);
  }

  Names TakeOrder() { return std::move(order_); }

 private:
  const Schemas& declared_;
  Names visited_;
  Names order_;
};

}  // namespace

QueryPlan PlanQuery(const Schemas& declared, const Names& asked) {
  QueryPlan plan;
  Collector collector(declared);
  for (const std::string& name : asked.empty() ? NamesOf(declared) : asked) {
    const vtq::ClassSchema* schema = Find(declared, name);
    if (schema == nullptr) {
      throw UsageError(fmt::format("unknown class \"{}\"; the known classes are {}", name,
                                   fmt::join(NamesOf(declared), ", ")));
    }
    collector.Add(*schema);
    if (!Holds(plan.print, schema->name)) plan.print.push_back(schema->name);
  }
  plan.collect = collector.TakeOrder();
  if (asked.empty()) plan.print = plan.collect;
  return plan;
}

}  // namespace pciinfo
