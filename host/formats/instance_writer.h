#pragma once

#include <memory>
#include <string>
#include <vector>

#include "framework/export.h"
#include "host/console/output.h"
#include "runtime/repository.h"

namespace pciinfo {

/// Writes instances in one format, one at a time: nothing is kept of an instance that was written.
/// Calls come in the order: Expect for every class, Begin, then for every class BeginClass and its
/// instances, then End. All throw what Output throws.
class VTQ_EXPORT InstanceWriter {
 public:
  virtual ~InstanceWriter() = default;

  virtual void Expect(const vtq::Class& /*cimClass*/) {}
  virtual void Begin() {}
  virtual void BeginClass(const vtq::Class& /*cimClass*/) {}
  virtual void Write(const vtq::Class& cimClass, const vtq::Instance& instance) = 0;
  virtual void End() {}
};

/// The names that MakeInstanceWriter knows.
std::vector<std::string> InstanceFormats();

/// The writer of a format, which must be one of InstanceFormats. `output` must outlive it.
std::unique_ptr<InstanceWriter> MakeInstanceWriter(const std::string& format, Output& output);

/// Writes what the repository holds of `classes`, in that order, each in commit order.
void WriteInstances(const vtq::Namespace& repository, const std::vector<std::string>& classes,
                    InstanceWriter& writer);

}  // namespace pciinfo
