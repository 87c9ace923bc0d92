// SPDX-License-Identifier: Apache-2.0
#include "tests/faults/loaded_plugin.h"

#include "host/base/namespace_name.h"
#include "host/collect/query_order.h"
#include "host/formats/instance_writer.h"
#include "runtime/logger.h"
#include "runtime/root.h"
#include "tests/fakes/captured_output.h"
#include "tests/fakes/pci_schema.h"
#include "tests/faults/fault_plan.h"
#include "tests/faults/faulty_repository.h"

using NQZMVTQ20::ICIMClass;
using NQZMVTQ20::ILogger;

namespace {

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  for (std::size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1) {
    lines.push_back(text.substr(start, end - start));
  }
  return lines;
}

std::vector<std::string> InstancesOf(const vtq::Namespace& repository, const std::string& name) {
  const CapturedOutput captured;
  pciinfo::Output output(captured.Descriptor());
  pciinfo::WriteInstances(repository, {name}, *pciinfo::MakeInstanceWriter("jsonl", output));
  output.Flush();
  return LinesOf(captured.Text());
}

// The log belongs to the test and never fails.
std::shared_ptr<vtq::Logger> MakeLog(Answers* answers) {
  auto log = std::make_shared<vtq::Logger>();
  log->AddSink([answers](ILogger::EVTQLogSeverity severity, const std::string& text) {
    const WithoutFaults pause;
    if (answers->empty()) return;
    answers->back().log.push_back(std::to_string(static_cast<int>(severity)) + " " + text);
  });
  return log;
}

}  // namespace

const std::vector<std::string>& Classes() {
  static const std::vector<std::string> classes =
      pciinfo::PlanQuery(pciinfo::PciSchema(), {}).collect;
  return classes;
}

LoadedPlugin::LoadedPlugin(Repository repository)
    : manager_(std::make_shared<vtq::PluginManager>()),
      repository_(vtq::Namespace::Create(pciinfo::kNamespaceName)),
      nameSpace_(repository_) {
  for (vtq::ClassSchema& schema : pciinfo::PciSchema()) repository_->Declare(std::move(schema));
  if (repository == Repository::kWithFaults) nameSpace_ = WithFaults(repository_);
  vtq::SetCoreLogger(MakeLog(&answers_));
  vtq::SetPluginManager(manager_);
  manager_->Load(PCIINFO_PLUGIN).Init();
}

LoadedPlugin::~LoadedPlugin() {
  vtq::Plugin& plugin = *manager_->GetPlugins().front();
  plugin.DeInit();
  manager_->Unload(plugin);
  vtq::SetPluginManager(nullptr);
  vtq::SetCoreLogger(nullptr);
}

void LoadedPlugin::Ask(const std::string& className) {
  std::vector<std::shared_ptr<ICIMClass>> request;
  {
    const WithoutFaults pause;
    answers_.push_back({className, {}, {}, {}});
    request.push_back(nameSpace_->GetClass(className, {}));
  }
  try {
    manager_->GetPlugins().front()->GetData(nameSpace_, request);
  } catch (const std::exception& failure) {
    const WithoutFaults pause;
    answers_.back().thrown = failure.what();
  }
}

Answers LoadedPlugin::GetAnswers() const {
  Answers answers = answers_;
  for (Answer& answer : answers) answer.instances = InstancesOf(*repository_, answer.className);
  return answers;
}

std::size_t LoadedPlugin::CountUncommitted() const {
  std::size_t count = 0;
  for (const auto& held : repository_->GetClasses()) count += held->CountUncommitted();
  return count;
}
