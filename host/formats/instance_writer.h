// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "framework/export.h"
#include "host/console/output.h"
#include "runtime/repository.h"

namespace pciinfo {

/// Writes instances in one format, one at a time, and keeps none of them in memory. Call Expect for
/// every class, then Begin, then for every class BeginClass and Write for its instances, then End.
/// All throw what Output throws.
class VTQ_EXPORT InstanceWriter {
 public:
  virtual ~InstanceWriter() = default;

  virtual void Expect(const vtq::Class& /*cimClass*/) {}
  virtual void Begin() {}
  virtual void BeginClass(const vtq::Class& /*cimClass*/) {}
  virtual void Write(const vtq::Class& cimClass, const vtq::Instance& instance) = 0;
  virtual void End() {}
};

/// The names of the formats.
std::vector<std::string> InstanceFormats();

/// What only some of the formats heed.
struct WriterSettings {
  /// For a terminal, where a format without escapes gives up bytes that are not safe there.
  bool isShown = false;
  /// The members that each object of JSON Lines begins with, with a comma after each.
  std::string lineHead = {};
};

/// Makes the writer of a format, which must be one of InstanceFormats. `output` must outlive it.
std::unique_ptr<InstanceWriter> MakeInstanceWriter(const std::string& format, Output& output,
                                                   const WriterSettings& settings = {});

/// Writes the instances of `classes`: classes in the given order, instances in commit order.
void WriteInstances(const vtq::Namespace& repository, const std::vector<std::string>& classes,
                    InstanceWriter& writer);

}  // namespace pciinfo
