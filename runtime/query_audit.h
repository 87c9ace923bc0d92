// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace NQZMVTQ20 {
class ICIMNamespace;
}

namespace vtq {

/// Counts references and instances of a namespace before a query, to find out what the plug-in
/// still holds after it. For a namespace of another implementation, only the references to the
/// namespace itself are counted.
class QueryAudit final {
 public:
  /// Counts at this moment. The namespace must outlive the audit.
  explicit QueryAudit(const std::shared_ptr<NQZMVTQ20::ICIMNamespace>& nameSpace);

  /// Returns what is held now and was not before, a sentence each: references to the namespace, to
  /// its classes and to committed instances, and instances that were created and not committed.
  std::vector<std::string> GetFindings() const;

 private:
  struct ClassCount {
    std::string name;
    long references = 0;
    long instanceReferences = 0;
    long uncommitted = 0;
  };
  struct Count {
    long references = 0;
    std::vector<ClassCount> classes;
  };

  static Count CountNow(const std::shared_ptr<NQZMVTQ20::ICIMNamespace>& nameSpace);

  const std::shared_ptr<NQZMVTQ20::ICIMNamespace>& nameSpace_;
  Count before_;
};

}  // namespace vtq
