// SPDX-License-Identifier: Apache-2.0
#include "host/formats/instance_writer.h"

#include <algorithm>
#include <iterator>

#include "host/formats/cim_xml_writer.h"
#include "host/formats/csv_writer.h"
#include "host/formats/json_writer.h"
#include "host/formats/mof_writer.h"
#include "host/formats/table_writer.h"
#include "host/formats/yaml_writer.h"

namespace pciinfo {
namespace {

template <class Writer>
std::unique_ptr<InstanceWriter> Make(Output& output, const WriterSettings& /*settings*/) {
  return std::make_unique<Writer>(output);
}

std::unique_ptr<InstanceWriter> MakeCsv(Output& output, const WriterSettings& settings) {
  return std::make_unique<CsvWriter>(output, settings.isShown);
}

std::unique_ptr<InstanceWriter> MakeJsonLines(Output& output, const WriterSettings& settings) {
  return std::make_unique<JsonLinesWriter>(output, settings.lineHead);
}

template <std::unique_ptr<InstanceWriter> (*make)(Output& output)>
std::unique_ptr<InstanceWriter> MakeExtra(Output& output, const WriterSettings& /*settings*/) {
  return make(output);
}

struct FormatRow {
  const char* name;
  std::unique_ptr<InstanceWriter> (*make)(Output& output, const WriterSettings& settings);
};

constexpr FormatRow kFormats[] = {
    {"table", &Make<TableWriter>},
    {"json", &Make<JsonWriter>},
    {"jsonl", &MakeJsonLines},
    {"csv", &MakeCsv},
    {"yaml", &MakeExtra<&MakeYamlWriter>},
    {"mof", &Make<MofWriter>},
    {"cim-xml", &MakeExtra<&MakeCimXmlWriter>},
};

std::vector<std::shared_ptr<vtq::Class>> Declared(const vtq::Namespace& repository,
                                                  const std::vector<std::string>& names) {
  std::vector<std::shared_ptr<vtq::Class>> classes;
  for (const std::string& name : names) {
    if (auto cimClass = repository.Find(name)) classes.push_back(std::move(cimClass));
  }
  return classes;
}

}  // namespace

std::vector<std::string> InstanceFormats() {
  std::vector<std::string> names;
  for (const FormatRow& row : kFormats) names.emplace_back(row.name);
  return names;
}

std::unique_ptr<InstanceWriter> MakeInstanceWriter(const std::string& format, Output& output,
                                                   const WriterSettings& settings) {
  const auto* row =
      std::find_if(std::begin(kFormats), std::end(kFormats),
                   [&format](const FormatRow& entry) { return format == entry.name; });
  return row == std::end(kFormats) ? nullptr : row->make(output, settings);
}

void WriteInstances(const vtq::Namespace& repository, const std::vector<std::string>& classes,
                    InstanceWriter& writer) {
  const std::vector<std::shared_ptr<vtq::Class>> found = Declared(repository, classes);
  for (const auto& cimClass : found) writer.Expect(*cimClass);
  writer.Begin();
  for (const auto& cimClass : found) {
    writer.BeginClass(*cimClass);
    for (const auto& instance : cimClass->GetInstances()) writer.Write(*cimClass, *instance);
  }
  writer.End();
}

}  // namespace pciinfo
