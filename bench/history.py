#!/usr/bin/env python3
"""How long the questions of docs/history.md take with a million records, in SQLite and in a PostgreSQL server of
its own: whole processes, start included. The tables are made by the program and filled by SQL. Called with the
folder of the executables."""

import glob
import os
import pathlib
import pwd
import shutil
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import time

PROGRAM = pathlib.Path(sys.argv[1]).resolve() / "fldc"
SERVER = sorted(glob.glob("/usr/lib/postgresql/*/bin"))[-1]
COUNT, UNITS, START = 1_000_000, 50_000, 1_700_000_000_000
QUESTIONS = ["list", "list --unit unit-4711", "list --since 2024-01-01 --until 2024-01-15", "list --tag JHA2A-1.10",
             "list --result failed", "list --result 6", "list --tag JHA2A-1.10 --result 7",
             "list --unit unit-4711 --tag JHA2A-1.10", "show 000f0000", "units", "units --outdated JHA2A-1.10",
             "units --outdated JHA2A-1.09 --outdated JHA2F-2.03"]

# One row in 1000 failed, one in 100,000 with exit code 6. Every tenth unit has the old version.
ID = "{hex} || '-0000-4000-8000-000000000000'"
RECORDS = """INSERT INTO history_record SELECT {id}, {start} + n * 60000, {start} + n * 60000 + 40000, 'download',
    'unit-' || (n % {units}), 'job', 'COM1', '/dev/ttyUSB0', 'A1', 'bench', 'me', '1.21.0', 'RVKC4*', {exit}, 0, 'restarted',
    'The download is complete.', '{{"written":["JHA2A-1.10"],"confirmed":["JHA2A-1.10"],"not_matched":[],"incomplete":[],
    "erased":[]}}', '{{"filler":"{filler}"}}' FROM {numbers}"""
TAGS = "INSERT INTO history_tag SELECT {id}, CASE WHEN n % 10 = 0 THEN 'JHA2A-1.09' ELSE 'JHA2A-1.10' END, {start} + n * 60000, {exit} FROM {numbers}"
UNIT = "INSERT INTO history_unit SELECT 'unit-' || n, {start} + n * 60000, {id}, 0, 'restarted', 0 FROM {numbers}"
PRODUCTS = """INSERT INTO history_product SELECT 'unit-' || n, {family} || CASE WHEN n % 10 = 0 THEN '-1.09' ELSE '-1.10' END, {family},
    0, 1, {device} FROM {numbers}"""


def statements(numbers, hexadecimal):
    values = {"start": START, "units": UNITS, "filler": "x" * 1000, "numbers": numbers(COUNT),
              "exit": "CASE WHEN n % 100000 = 0 THEN 6 WHEN n % 1000 = 0 THEN 7 ELSE 0 END", "id": ID.format(hex=hexadecimal)}
    yield RECORDS.format(**values)
    yield TAGS.format(**values)
    values["numbers"] = numbers(UNITS)
    yield UNIT.format(**values)
    for device in range(6):
        yield PRODUCTS.format(**values, family=f"'JHA2{'AFBCDE'[device]}'", device=device)


def ask(store, question):
    start = time.monotonic()
    subprocess.run([PROGRAM, "history", *question.split(), "--store", store], check=True, stdout=subprocess.DEVNULL,
                   stdin=subprocess.DEVNULL)
    return 1000 * (time.monotonic() - start)


def measure(name, store):
    print(f"{name}: {COUNT} records, {UNITS} units; median of 9, ms (wanted: below 200)")
    for question in QUESTIONS:
        ask(store, question)
        print(f"  {statistics.median(ask(store, question) for _ in range(9)):7.1f}  {question}", flush=True)


def fill_sqlite(folder):
    store = f"sqlite:{folder}/history"
    ask(store, "list")
    database = sqlite3.connect(folder / "history", isolation_level=None)
    database.execute("PRAGMA synchronous = OFF")
    numbers = "(WITH RECURSIVE c(n) AS (SELECT 0 UNION ALL SELECT n + 1 FROM c WHERE n < {} - 1) SELECT n FROM c)"
    for statement in statements(lambda count: numbers.format(count), "printf('%08x', n)"):
        database.execute(statement)
    database.close()
    return store


class Server:
    def __init__(self, folder):
        self.folder = folder
        nobody = pwd.getpwnam("nobody")
        self.user = {"user": nobody.pw_uid, "group": nobody.pw_gid, "extra_groups": []} if os.getuid() == 0 else {}
        if self.user:
            os.chown(folder, nobody.pw_uid, nobody.pw_gid)
        self.store = f"postgresql://fldc@/postgres?host={folder}"

    def __enter__(self):
        self.run("initdb", "-D", "data", "-U", "fldc", "-A", "trust", "--no-sync", "-E", "UTF8", "--locale=C.UTF-8")
        self.run("pg_ctl", "-D", "data", "-l", "log", "-w", "-o",
                 f"-c listen_addresses= -c fsync=off -c max_wal_size=4GB -k {self.folder}", "start")
        return self

    def __exit__(self, *_):
        self.run("pg_ctl", "-D", "data", "-m", "immediate", "-w", "stop")

    def run(self, program, *arguments):
        subprocess.run([f"{SERVER}/{program}", *arguments], cwd=self.folder, check=True, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, **self.user)

    def fill(self):
        ask(self.store, "list")
        for statement in statements(lambda count: f"generate_series(0, {count - 1}::bigint) n", "lpad(to_hex(n), 8, '0')"):
            self.run("psql", "-h", str(self.folder), "-U", "fldc", "-q", "-d", "postgres", "-c", statement)
        self.run("psql", "-h", str(self.folder), "-U", "fldc", "-q", "-d", "postgres", "-c", "VACUUM ANALYZE")


def main():
    folder = pathlib.Path(tempfile.mkdtemp(prefix="fldc-history-"))
    folder.chmod(0o755)
    try:
        (folder / "server").mkdir()
        measure("SQLite", fill_sqlite(folder))
        with Server(folder / "server") as server:
            server.fill()
            measure("PostgreSQL", server.store)
    finally:
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
