#include "host/instance_writer.h"

#include <algorithm>
#include <iterator>

#include "host/json_writer.h"
#include "host/table_writer.h"

namespace pciinfo {
namespace {

template <class Writer>
std::unique_ptr<InstanceWriter> Make(Output& output) {
  return std::make_unique<Writer>(output);
}

struct FormatRow {
  const char* name;
  std::unique_ptr<InstanceWriter> (*make)(Output& output);
};

constexpr FormatRow kFormats[] = {
    {"table", &Make<TableWriter>},
    {"json", &Make<JsonWriter>},
    {"jsonl", &Make<JsonLinesWriter>},
};

}  // namespace

std::vector<std::string> InstanceFormats() {
  std::vector<std::string> names;
  for (const FormatRow& row : kFormats) names.emplace_back(row.name);
  return names;
}

std::unique_ptr<InstanceWriter> MakeInstanceWriter(const std::string& format, Output& output) {
  const auto* row =
      std::find_if(std::begin(kFormats), std::end(kFormats),
                   [&format](const FormatRow& entry) { return format == entry.name; });
  return row == std::end(kFormats) ? nullptr : row->make(output);
}

void WriteInstances(const vtq::Namespace& repository, const std::vector<std::string>& classes,
                    InstanceWriter& writer) {
  writer.Begin();
  for (const std::string& name : classes) {
    const std::shared_ptr<vtq::Class> cimClass = repository.Find(name);
    if (cimClass == nullptr) continue;
    writer.BeginClass(*cimClass);
    for (const auto& instance : cimClass->GetInstances()) writer.Write(*cimClass, *instance);
  }
  writer.End();
}

}  // namespace pciinfo
