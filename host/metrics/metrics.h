// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/check/machine_facts.h"
#include "host/console/output.h"
#include "host/model/machine_identity.h"

namespace pciinfo {

/// What `pciinfo metrics` tells.
struct MetricsInput {
  MachineIdentity identity;
  MachineFacts facts;
  bool hasTroubles = false;  ///< something could not be collected
  double seconds = 0;        ///< that collecting took
};

/// Writes all metrics; docs/metrics.md describes each. Virtual functions are counted but have no
/// samples of their own, so that the number of samples is bounded by the hardware. Throws like
/// Output::Write.
void WriteMetrics(Output& output, const MetricsInput& input);

}  // namespace pciinfo
