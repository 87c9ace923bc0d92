# SPDX-License-Identifier: Apache-2.0

"""Database servers of a test or a measurement: each has a directory of its own and ends with its block."""

import contextlib
import glob
import os
import pwd
import shutil
import socket
import subprocess
import time


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


@contextlib.contextmanager
def postgresql(directory, settings=""):
    """Yields the address of a new server with an empty database. It refuses to run as root."""
    os.makedirs(directory)
    as_user = []
    if os.geteuid() == 0:
        user = pwd.getpwnam("postgres")
        os.chown(directory, user.pw_uid, user.pw_gid)
        as_user = ["setpriv", "--reuid=postgres", "--regid=postgres", "--clear-groups", "--"]
    programs = sorted(glob.glob("/usr/lib/postgresql/*/bin"))[-1]
    data = os.path.join(directory, "data")
    control = [*as_user, f"{programs}/pg_ctl", "--silent", "-w", "-D", data]
    subprocess.run([*as_user, f"{programs}/initdb", "--no-sync", "-A", "trust", "-U", "fleet", "-D", data],
                   check=True, stdout=subprocess.DEVNULL, cwd=directory)
    options = f"-k {directory} -c listen_addresses='' {settings}"
    subprocess.run([*control, "-l", f"{directory}/log", "-o", options, "start"], check=True, cwd=directory)
    try:
        yield f"postgresql:///postgres?host={directory}&user=fleet"
    finally:
        subprocess.run([*control, "-m", "immediate", "stop"], check=True, cwd=directory)


CLICKHOUSE_CONFIG = """<?xml version="1.0"?>
<yandex>
  <logger>
    <level>warning</level> <log>{directory}/log</log> <errorlog>{directory}/errors</errorlog>
  </logger>
  <listen_host>127.0.0.1</listen_host> <tcp_port>{port}</tcp_port>
  <path>{directory}/</path> <tmp_path>{directory}/tmp/</tmp_path>
  <users_config>users.xml</users_config>
  <default_profile>default</default_profile> <default_database>default</default_database>
  <mark_cache_size>67108864</mark_cache_size> <timezone>UTC</timezone>
  <remote_servers> <fleet> {shards} </fleet> </remote_servers>
</yandex>
"""
CLICKHOUSE_SHARD = "<shard> <replica> <host>127.0.0.1</host> <port>{}</port> </replica> </shard>"
CLICKHOUSE_USERS = """<?xml version="1.0"?>
<yandex>
  <profiles> <default> <max_memory_usage>{memory}</max_memory_usage> </default> </profiles>
  <users>
    <default>
      <password></password> <networks> <ip>127.0.0.1</ip> </networks>
      <profile>default</profile> <quota>default</quota>
    </default>
  </users>
  <quotas> <default/> </quotas>
</yandex>
"""


class ClickhouseServer:
    """One server of a cluster on the loopback interface; `ports` are those of all its servers."""

    def __init__(self, program, directory, port, ports, memory=2_000_000_000):
        os.makedirs(directory)
        self.directory, self.port = directory, port
        shards = " ".join(map(CLICKHOUSE_SHARD.format, ports))
        self._write("config.xml", CLICKHOUSE_CONFIG.format(directory=directory, port=port, shards=shards))
        self._write("users.xml", CLICKHOUSE_USERS.format(memory=memory))
        command = [program, f"--config-file={directory}/config.xml"]
        with open(f"{directory}/output", "wb") as output:
            self._process = subprocess.Popen(command, cwd=directory, stdout=output, stderr=output)

    def _write(self, name, text):
        with open(os.path.join(self.directory, name), "w", encoding="utf-8") as file:
            file.write(text)

    def options(self):
        """Those with which clickhouse-client asks this server."""
        return ["--host", "127.0.0.1", "--port", str(self.port)]

    def ask(self, *options, sql):
        return subprocess.run(["clickhouse-client", *self.options(), *options], input=sql, check=True, text=True,
                              stdout=subprocess.PIPE).stdout

    def wait(self, seconds=60):
        end = time.monotonic() + seconds
        while self._process.poll() is None and time.monotonic() < end:
            with contextlib.suppress(OSError), socket.create_connection(("127.0.0.1", self.port), timeout=1):
                return
            time.sleep(0.1)
        with open(f"{self.directory}/output", encoding="utf-8", errors="replace") as output:
            raise RuntimeError(f"clickhouse-server does not answer:\n{output.read()[-2000:]}")

    def stop(self):
        self._process.terminate()
        try:
            self._process.wait(20)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()


@contextlib.contextmanager
def clickhouse_cluster(program, directory, tables, count=2):
    """Yields the servers of a new cluster, each with the tables of that file."""
    ports = [free_port() for _ in range(count)]
    servers = [ClickhouseServer(program, f"{directory}/shard{n}", port, ports) for n, port in enumerate(ports, 1)]
    try:
        with open(tables, encoding="utf-8") as file:
            statements = file.read()
        for server in servers:
            server.wait()
            server.ask("--multiquery", sql=statements)
        yield servers
    finally:
        for server in servers:
            server.stop()


def size_of(directory):
    """The bytes that the files of a directory, or a file, take."""
    return int(subprocess.run(["du", "-s", "-B1", directory], check=True, text=True,
                              stdout=subprocess.PIPE).stdout.split()[0])


def find_program(name, *places):
    found = shutil.which(name, path=os.pathsep.join([*places, os.environ["PATH"], "/usr/sbin"]))
    if found is None:
        raise FileNotFoundError(f"{name} is not installed")
    return found
