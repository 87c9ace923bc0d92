// SPDX-License-Identifier: Apache-2.0
#include "host/cli/fleet_command.h"

#include <unistd.h>

#include <chrono>

#include "host/console/output.h"
#include "host/fleet/fleet_database.h"
#include "host/fleet/questions.h"
#include "host/fleet/row_writer.h"

namespace pciinfo {
namespace {

/// Passes rows on and counts them.
class CountingSink final : public RowSink {
 public:
  explicit CountingSink(RowSink& next) : next_(next) {}

  void Begin(const std::vector<std::string>& names) override { next_.Begin(names); }
  void Write(const DbRow& row) override {
    ++count_;
    next_.Write(row);
  }
  void End() override { next_.End(); }

  std::size_t GetCount() const noexcept { return count_; }

 private:
  RowSink& next_;
  std::size_t count_ = 0;
};

/// Takes the only number of an answer.
class NumberSink final : public RowSink {
 public:
  void Begin(const std::vector<std::string>& /*names*/) override {}
  void Write(const DbRow& row) override { number_ = std::get<std::int64_t>(row.at(0)); }
  void End() override {}

  std::int64_t GetNumber() const noexcept { return number_; }

 private:
  std::int64_t number_ = 0;
};

std::int64_t CountMachines(FleetDatabase& database) {
  NumberSink count;
  database.Ask({"SELECT COUNT(*) FROM machine"}, count);
  return count.GetNumber();
}

void PrintAnswer(const Options& options, const Terminal& terminal, const FleetStatement& statement,
                 FleetDatabase& database) {
  const FleetRequest& request = options.fleet;
  Output output(STDOUT_FILENO);
  const auto writer =
      MakeRowWriter({options.format, ListNameOf(request), ColumnsOf(request), terminal}, output);
  CountingSink rows(*writer);
  database.Ask(statement, rows);
  output.Flush();
  if (rows.GetCount() == 0) WriteMessage(WhyEmpty(request, CountMachines(database)));
}

}  // namespace

ExitStatus RunFleet(const Options& options, const Terminal& terminal, const WorkRunner& run) {
  const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
  const FleetStatement statement = StatementOf(options.fleet, now);
  return run([&](Worker& worker) {
    worker.Begin({"asking the database", true, true});
    const auto database = OpenFleet(options.database);
    worker.BeginOutput();
    PrintAnswer(options, terminal, statement, *database);
    return kAllCollected;
  });
}

}  // namespace pciinfo
