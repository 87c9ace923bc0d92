#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0

"""clickhouse_test.py PROGRAMS SOURCE PCIINFO BENCH_FLEET [MACHINES]: loads a made-up fleet, and what it was a
week later, into PostgreSQL and into two ClickHouse servers, and checks that both answer the questions in the
same way, also when one of the two servers is stopped. The clickhouse-server is that of the directory PROGRAMS."""

import importlib.machinery
import importlib.util
import json
import os
import shlex
import subprocess
import sys
import tempfile

programs, source, pciinfo, bench_fleet, machines = (sys.argv[1:] + ["50"])[:5]
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(source, "bench/fleet"))
import servers  # noqa: E402

clickhouse = os.path.join(source, "packaging/clickhouse")
COMMAND = "-- pciinfo fleet DATABASE "
# Only the history of PostgreSQL tells since when a fact holds.
MISSING_COLUMNS = {"first_seen"}


def run(*command, **options):
    return subprocess.run(command, check=True, text=True, **options)


def make_lines(directory):
    files = []
    for week in ("0", "1"):
        files.append(os.path.join(directory, f"week{week}.jsonl"))
        with open(files[-1], "w", encoding="utf-8") as file:
            run(bench_fleet, machines, "--week", week, "--changed", "400", stdout=file)
    return files


def read_questions():
    """Each file of SQL, and the arguments of the command that asks the same."""
    questions = []
    folder = os.path.join(clickhouse, "questions")
    for name in sorted(os.listdir(folder)):
        with open(os.path.join(folder, name), encoding="utf-8") as file:
            sql = file.read()
        command = next(line for line in sql.splitlines() if line.startswith(COMMAND))
        questions.append((name, sql, shlex.split(command.removeprefix(COMMAND))))
    return questions


def normal(row):
    """ClickHouse writes numbers of 64 bits as texts."""
    return {name: str(value) if isinstance(value, int) else value for name, value in row.items()}


def rows_of(lines):
    return [normal(json.loads(line)) for line in lines.splitlines()]


def sorted_rows(rows):
    return sorted(rows, key=lambda row: json.dumps(row, sort_keys=True))


def ask_postgresql(database, arguments):
    return rows_of(run(pciinfo, "fleet", database, *arguments, "--format", "jsonl", stdout=subprocess.PIPE).stdout)


def ask_clickhouse(server, sql, *options):
    return rows_of(server.ask(*options, "--format", "JSONEachRow", sql=sql))


def without_missing(rows, example):
    """The rows without the columns that ClickHouse may lack, and does lack in the example."""
    missing = MISSING_COLUMNS - set(example)
    return [{name: value for name, value in row.items() if name not in missing} for row in rows]


def check_same(name, found, expected):
    expected = without_missing(expected, found[0] if found else {})
    if found == expected:
        return
    # Rows that the order of a question does not tell apart may come in any order.
    found, expected = sorted_rows(found), sorted_rows(expected)
    lacking = [row for row in expected if row not in found][:2]
    added = [row for row in found if row not in expected][:2]
    assert found == expected, f"{name}: ClickHouse lacks {lacking} and adds {added}"


def check_all(database, server):
    for name, sql, arguments in read_questions():
        expected = ask_postgresql(database, arguments)
        assert expected, f"{name}: PostgreSQL has no rows, so nothing is compared"
        check_same(name, ask_clickhouse(server, sql), expected)


def machines_of(server):
    rows = ask_clickhouse(server, "SELECT DISTINCT machine FROM fleet.machine_shard")
    return {row["machine"] for row in rows}


def check_without_a_shard(database, server):
    """What has the name of a machine is told for the machines of the other server, all of them."""
    rest = machines_of(server)
    assert 0 < len(rest) < int(machines), f"{len(rest)} of {machines} machines are on one server"
    for name, sql, arguments in read_questions():
        expected = ask_postgresql(database, arguments)
        found = ask_clickhouse(server, sql, "--skip_unavailable_shards=1")
        if "machine" in expected[0]:
            check_same(name, found, [row for row in expected if row["machine"] in rest])
        else:
            assert 0 < len(found) < len(expected), name
    refused = subprocess.run(["clickhouse-client", *server.options(), "--query", "SELECT * FROM fleet.machines"],
                             check=False, text=True, capture_output=True)
    assert refused.returncode != 0 and "All connection tries failed" in refused.stderr, refused


def load(server, path):
    with open(path, encoding="utf-8") as file:
        run(os.path.join(clickhouse, "load"), *server.options(), stdin=file)


def load_in_parts(server, path):
    """As a fleet is loaded that is too large for one INSERT."""
    loader = importlib.machinery.SourceFileLoader("load", os.path.join(clickhouse, "load"))
    program = importlib.util.module_from_spec(importlib.util.spec_from_loader("load", loader))
    loader.exec_module(program)
    program.MACHINES_AT_ONCE = 20
    with open(path, encoding="utf-8") as file:
        program.load(server.options(), file)


def check(directory):
    program = servers.find_program("clickhouse-server", programs)
    lines = make_lines(directory)
    with servers.postgresql(f"{directory}/postgresql") as database, servers.clickhouse_cluster(
            program, directory, f"{clickhouse}/tables.sql") as (first, second):
        for path in lines:
            run(pciinfo, "store", database, path, stdout=subprocess.DEVNULL)
            load_in_parts(first, path)
        check_all(database, first)
        load(second, lines[1])
        check_all(database, second)
        second.stop()
        check_without_a_shard(database, first)


with tempfile.TemporaryDirectory() as scratch:
    os.chmod(scratch, 0o755)
    check(scratch)
