// SPDX-License-Identifier: Apache-2.0
#include "runtime/query_audit.h"

#include <algorithm>

#include "runtime/repository.h"

namespace vtq {

namespace {

// References to committed instances other than the repository's own.
long InstanceReferences(const Class& counted) {
  long references = 0;
  for (const std::shared_ptr<Instance>& instance : counted.GetInstances()) {
    references += instance.use_count() - 1;
  }
  return references;
}

void Note(std::vector<std::string>& findings, long before, long after, const std::string& what) {
  if (after > before) findings.push_back(std::to_string(after - before) + " " + what);
}

}  // namespace

QueryAudit::QueryAudit(const std::shared_ptr<NQZMVTQ20::ICIMNamespace>& nameSpace)
    : nameSpace_(nameSpace), before_(CountNow(nameSpace)) {}

QueryAudit::Count QueryAudit::CountNow(const std::shared_ptr<NQZMVTQ20::ICIMNamespace>& nameSpace) {
  Count count{nameSpace.use_count(), {}};
  const auto* repository = dynamic_cast<const Namespace*>(nameSpace.get());
  if (repository == nullptr) return count;
  for (const std::shared_ptr<Class>& counted : repository->GetClasses()) {
    count.classes.push_back({counted->GetSchema().name, counted.use_count(),
                             InstanceReferences(*counted),
                             static_cast<long>(counted->CountUncommitted())});
  }
  return count;
}

std::vector<std::string> QueryAudit::GetFindings() const {
  const Count after = CountNow(nameSpace_);
  std::vector<std::string> findings;
  Note(findings, before_.references, after.references,
       "references to the namespace are still held after a query");
  for (std::size_t index = 0; index < before_.classes.size(); ++index) {
    const ClassCount& old = before_.classes[index];
    const ClassCount& now = after.classes[index];
    Note(findings, old.references, now.references,
         "references to the class " + old.name + " are still held after a query");
    Note(findings, old.instanceReferences, now.instanceReferences,
         "references to instances of " + old.name + " are still held after a query");
    Note(findings, old.uncommitted, now.uncommitted,
         "instances of " + old.name + " were created, are still held and were not committed");
  }
  return findings;
}

}  // namespace vtq
