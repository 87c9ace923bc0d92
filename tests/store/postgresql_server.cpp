// SPDX-License-Identifier: Apache-2.0
#include "tests/store/postgresql_server.h"

#include <fcntl.h>
#include <pwd.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <thread>

#include "tests/fakes/run_process.h"

namespace {

using Words = std::vector<std::string>;

/// The server refuses to run as root. It ends with the process that started it.
Words AsServerUser(Words words) {
  Words all = {"setpriv", "--pdeathsig", "QUIT"};
  if (geteuid() == 0) {
    all.insert(all.end(), {"--reuid=postgres", "--regid=postgres", "--clear-groups"});
  }
  all.emplace_back("--");
  all.insert(all.end(), words.begin(), words.end());
  return all;
}

void MustRun(const Words& words) {
  const RunResult result = RunProcess(words);
  if (result.status != 0) throw std::runtime_error(words.front() + ": " + result.err);
}

}  // namespace

PostgresqlServer::PostgresqlServer() {
  if (geteuid() == 0) {
    const passwd* const user = getpwnam("postgres");
    if (user == nullptr) throw std::runtime_error("there is no user postgres");
    if (chown(directory_.GetPath().c_str(), user->pw_uid, user->pw_gid) != 0) {
      throw std::runtime_error("cannot give the directory to the user postgres");
    }
  }
  MakeCluster();
  Start();
}

PostgresqlServer::~PostgresqlServer() { Kill(); }

void PostgresqlServer::MakeCluster() const {
  // "secret" wants a password, the others none.
  directory_.Write("password", "correct horse\n");
  MustRun({"chmod", "644", directory_ / "password"});
  MustRun(AsServerUser({PG_BINDIR "/initdb", "--no-sync", "-A", "trust", "-U", "fleet", "--pwfile",
                        directory_ / "password", "-D", directory_ / "data"}));
  directory_.Write("data/pg_hba.conf", "local all secret scram-sha-256\nlocal all all trust\n");
}

void PostgresqlServer::Start() {
  const Words words =
      AsServerUser({PG_BINDIR "/postgres", "-D", directory_ / "data", "-k", directory_.GetPath(),
                    "-c", "listen_addresses=", "-c", "fsync=off", "-c", "shared_buffers=32MB"});
  process_ = fork();
  if (process_ == 0) {
    const int log = open((directory_ / "log").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    dup2(log, STDOUT_FILENO);
    dup2(log, STDERR_FILENO);
    _exit(Execute(words));
  }
  for (int i = 0; i < 600; ++i) {
    if (RunProcess({PG_BINDIR "/pg_isready", "-q", "-h", directory_.GetPath()}).status == 0) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  throw std::runtime_error("the server does not answer: " + directory_.Read("log"));
}

void PostgresqlServer::Kill() {
  if (process_ < 0) return;
  kill(process_, SIGQUIT);  // without a checkpoint; its children must end too
  waitpid(process_, nullptr, 0);
  process_ = -1;
}

std::string PostgresqlServer::MakeDatabase() {
  const std::string name = "fleet" + std::to_string(++databases_);
  Run("CREATE DATABASE " + name);
  return AddressOf(name);
}

std::string PostgresqlServer::AddressOf(const std::string& database,
                                        const std::string& user) const {
  return "postgresql://" + user + "@/" + database + "?host=" + directory_.GetPath();
}

void PostgresqlServer::Run(const std::string& statement, const std::string& database) const {
  MustRun(
      {"psql", "-q", "-h", directory_.GetPath(), "-U", "fleet", "-d", database, "-c", statement});
}

PostgresqlServer& PostgresqlServer::Shared() {
  static PostgresqlServer server;
  return server;
}
