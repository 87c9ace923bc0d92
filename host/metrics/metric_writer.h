// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/console/output.h"

namespace pciinfo {

/// Names and values of labels. Labels with an empty value are left out.
using MetricLabels = std::vector<std::pair<const char*, std::string>>;

/// One family of metrics with its samples.
struct MetricFamily {
  const char* name;
  const char* help;  ///< a sentence without line ends, backslashes and quotation marks
  std::vector<std::pair<MetricLabels, double>> samples{};

  void Add(MetricLabels labels, double value) { samples.emplace_back(std::move(labels), value); }
};

/// Writes a family as text that is valid both in the Prometheus text format 0.0.4, which the
/// textfile collector of node_exporter reads, and in OpenMetrics 1.0. Every family is a gauge,
/// because the two formats name counters differently. Writes nothing for a family without samples.
/// Texts become printable. Throws like Output::Write.
void WriteMetricFamily(Output& output, const MetricFamily& family);

/// Writes the end mark of OpenMetrics, which is a comment in the other format.
void WriteMetricsEnd(Output& output);

}  // namespace pciinfo
