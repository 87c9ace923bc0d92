#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace NQZMVTQ20 {
class ICIMNamespace;
}

namespace vtq {

/// Holds the counts of a namespace at one time, to find out what a query keeps hold of. A namespace
/// of another implementation than this one is audited as a whole, without its classes.
class QueryAudit final {
 public:
  /// Counts now. The namespace must outlive the audit.
  explicit QueryAudit(const std::shared_ptr<NQZMVTQ20::ICIMNamespace>& nameSpace);

  /// What has come to be held since, a sentence each: references to the namespace, to its classes
  /// and to committed instances, and instances that were created and not committed.
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
