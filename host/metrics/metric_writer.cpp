// SPDX-License-Identifier: Apache-2.0
#include "host/metrics/metric_writer.h"

#include <fmt/format.h>

#include "host/console/text.h"

namespace pciinfo {
namespace {

std::string LabelValue(const std::string& text) {
  std::string value;
  for (const char character : Printable(text)) {
    if (character == '\\' || character == '"') value += '\\';
    value += character;
  }
  return value;
}

std::string LabelsText(const MetricLabels& labels) {
  std::string text;
  for (const auto& [name, value] : labels) {
    if (value.empty()) continue;
    text += fmt::format("{}{}=\"{}\"", text.empty() ? '{' : ',', name, LabelValue(value));
  }
  return text.empty() ? text : text + '}';
}

}  // namespace

void WriteMetricFamily(Output& output, const MetricFamily& family) {
  if (family.samples.empty()) return;
  output.Write(fmt::format("# TYPE {0} gauge\n# HELP {0} {1}\n", family.name, family.help));
  for (const auto& [labels, value] : family.samples)
    output.Write(fmt::format("{}{} {}\n", family.name, LabelsText(labels), value));
}

void WriteMetricsEnd(Output& output) { output.Write("# EOF\n"); }

}  // namespace pciinfo
