"""The history: what runs leave in SQLite and in a PostgreSQL server of the test's own, what is asked of it,
and stores that fail. Called with the paths of fldc, the simulator, the sample firmware and rv4100_fldc."""

import csv
import hashlib
import io
import json
import os
import pathlib
import shutil
import signal
import socket
import sqlite3
import subprocess
import sys
import tempfile
import time
import unittest
import uuid

sys.path.append(str(pathlib.Path(__file__).resolve().parent.parent / "end_to_end"))
from postgresql import PostgreSql  # noqa: E402
from workbench import Workbench  # noqa: E402

PROGRAM, SIMULATOR, SAMPLES = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3]).resolve()
WINDOWED = sys.argv[4]
APPLICATION, DSP = SAMPLES / "rv4200/application.srec", SAMPLES / "rv4200/dsp.srec"


def certificate(unit, start, tag, exit_code=0, **more):
    family = tag.rsplit("-", 1)[0]
    return {"type": "certificate", "schema": 1, "unit": unit, "start": start, "end": start, "job": "", "radio": None,
            "started": {"command": "download", "port": "COM1", "device": "/dev/x", "files": []}, "adapter": None,
            "targets": [{"tag": tag, "locked": exit_code == 0}], "configuration_before": None,
            "configuration_after": [{"product": p, "status": 0, "network": 1, "device": 2}
                                    for p in (tag, family + "X-1.00")],
            "result": {"exit": exit_code, "code": 0, "message": "m", "radio": "restarted",
                       "written": [tag] if exit_code == 0 else []}, **more}


class History(unittest.TestCase):
    data = "data"

    @classmethod
    def setUpClass(cls):
        cls.server = cls.enterClassContext(PostgreSql())

    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="fldc-")))

    def environment(self, data, **more):
        kept = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "FLDC_STORE", "FLDC_PORT")}
        return {**kept, "XDG_DATA_HOME": str(self.folder / data), "RV4100_FLDC_SETTINGS": "/nowhere",
                "RV4100_FLDC_HOME": str(SAMPLES / "boot"), "TZ": "UTC", **more}

    def start(self, *arguments, data=None, **more):
        return subprocess.Popen([PROGRAM, *arguments], env=self.environment(data or self.data, **more), stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def ask(self, *arguments, store=None, code=0, **more):
        """The rows that fldc history tells, and its messages."""
        run = self.start("--json", "history", *arguments, *(["--store", store] if store else []), **more)
        out, err = run.communicate(timeout=120)
        lines = [json.loads(line) for line in out.decode().splitlines()]
        self.assertEqual((run.returncode, lines[-1]["exit"]), (code, code), lines[-1]["message"] + err.decode())
        return [line for line in lines if line["type"] in ("record", "unit")], lines[-1]["message"] + err.decode()

    def spool(self, store):
        """The store's folder, made by a run without a radio, with a data folder of its own from now on."""
        self.data = f"data{uuid.uuid4()}"
        self.start("erase", "/dev/nowhere", "#1", "--store", store).communicate(timeout=60)
        return next(self.folder.glob(f"{self.data}/kelvane/fldc/spool/*"))

    def put(self, folder, *certificates):
        folder.mkdir(parents=True, exist_ok=True)
        for each in certificates:
            number = str(uuid.uuid4())
            (folder / f"{number}.json").write_text(json.dumps({"id": number, "certificate": each}))

    def test_runs_are_recorded_and_found(self):
        for store in ("", self.server.store()):
            with Workbench(PROGRAM, SIMULATOR, SAMPLES, "rv4200") as bench:
                options = ["--store", store] if store else []
                port = bench.folder / "radio"
                for arguments in (["download", port, DSP, "--unit", "=1+1", "--job", 'a,"b"', "--certificate", self.folder / "c"],
                                  ["erase", port, "JHA2A-1.10"]):
                    run = self.start(*arguments, *options)
                    self.assertEqual((run.communicate(timeout=100)[1].count(b"history"), run.returncode), (0, 0), arguments)
            (erased, written), _ = self.ask("list", store=store)
            self.assertEqual((written["written"], written["unit"], written["exit"]), (["JHA2A-1.10"], "=1+1", 0), written)
            self.assertEqual((erased["command"], erased["erased"]), ("erase", ["JHA2A-1.10"]), erased)
            shown, _ = self.ask("show", written["id"][:8].upper(), store=store)
            wanted = json.loads(next((self.folder / "c").iterdir()).read_text())
            self.assertEqual(shown[0]["certificate"] | {"end": ""}, wanted | {"end": ""})
            self.ask("show", "", code=1, store=store)
            self.ask("show", "0-0", code=2, store=store)
            self.assertEqual([r["id"] for r in self.ask("list", "--tag", "JHA2A-1.10", "--unit", "=1+1", store=store)[0]],
                             [written["id"]])
            table = self.start("history", "export", *options).communicate(timeout=60)[0].decode()
            rows = list(csv.DictReader(io.StringIO(table, newline="")))
            self.assertEqual([(r["unit"], r["job"], r["written"]) for r in rows], [("", "", ""), ("'=1+1", 'a,"b"', "JHA2A-1.10")])
            shutil.rmtree(self.folder / "c")

    def test_questions(self):
        for store in (f"sqlite:{self.folder}/s", self.server.store()):
            spool = self.spool(store)
            self.put(spool,  # out of order: the older one comes to the store later or first, as it happens
                     certificate("q1", "2026-01-02T00:00:00.000Z", "Q-2"), certificate("q1", "2026-01-01T00:00:00.000Z", "Q-1"),
                     certificate("q2", "2026-01-01T12:00:00.000Z", "Q-1"), certificate("q3", "2026-01-03T00:00:00.000Z", "Q-2", 7),
                     certificate("q4", "2026-01-04T00:00:00.000Z", "R-1", 6), certificate("q5\0", "2026-01-05T00:00:00.000Z", "R-1"))
            (spool / "0.json").write_text("{")
            for question, units in (("list --limit 2 --since 2026-01-01 --until 2026-01-04", "q4 q3"), ("list --tag Q-2", "q3 q1"),
                                    ("list --since 2026-01-01T12:00Z --until 2026-01-01", "q2"), ("list --result 6", "q4"),
                                    ("list --tag Q-2 --result failed", "q3"), ("list --unit q1 --result ok", "q1 q1"),
                                    ("units --outdated Q-2", "q2 q3"), ("units --outdated Q-3 --outdated R-1", "q1 q2 q3"),
                                    ("units --limit 1", "q1"), ("list --unit q5\ufffd", "q5\ufffd")):
                self.assertEqual(" ".join(row["unit"] for row in self.ask(*question.split(), store=store)[0]), units, question)
            unit = self.ask("units", store=store)[0][0]
            self.assertEqual([p["product"] for p in unit["products"]], ["Q-2", "QX-1.00"])
            self.assertEqual([path.name for path in spool.iterdir()], ["0.json.bad"])
            self.ask("list", "--since", "yesterday", code=1)

    def test_twenty_writers_at_once(self):
        for store in (f"sqlite:{self.folder}/s", self.server.store()):
            spool = self.spool(store).name
            for number in range(20):
                self.put(self.folder / f"{self.data}w{number}/kelvane/fldc/spool/{spool}",
                         *(certificate(f"w{i % 7}", f"2026-02-01T00:{number:02}:{i:02}.000Z", "W-1") for i in range(10)))
            shutil.copytree(self.folder / f"{self.data}w0", self.folder / f"{self.data}w20")  # delivered twice
            runs = [self.start("history", "deliver", "--store", store, data=f"{self.data}w{i % 21}") for i in range(22)]
            for run in runs:
                run.communicate(timeout=200)
            for number in range(21):
                self.ask("deliver", store=store, data=f"{self.data}w{number}")
            rows, _ = self.ask("list", "--tag", "W-1", "--limit", "0", store=store)
            self.assertEqual((len(rows), len({row["start"] for row in rows})), (200, 200))

    def test_a_store_that_fails_changes_nothing_and_gets_its_record_later(self):
        path = self.folder / "s"
        silent = self.enterContext(socket.create_server(("127.0.0.1", 0)))
        silent_store = f"postgresql://127.0.0.1:{silent.getsockname()[1]}/x"
        self.ask("list", store=f"sqlite:{path}")
        with Workbench(PROGRAM, SIMULATOR, SAMPLES, "rv4200") as bench:
            def download(store):
                run = self.start("--json", "download", bench.folder / "radio", APPLICATION, "--store", store)
                out, err = run.communicate(timeout=100)
                result = json.loads(out.splitlines()[-1])
                self.assertEqual((run.returncode, result["exit"], b"history" in err), (0, 0, False), store)

            lock = sqlite3.connect(path, isolation_level=None)
            lock.execute("BEGIN EXCLUSIVE")
            download(f"sqlite:{path}")
            lock.execute("ROLLBACK")
            self.assertEqual(len(self.ask("list", store=f"sqlite:{path}")[0]), 1)
            lock.execute("UPDATE history_schema SET version = 99")
            download(f"sqlite:{path}")
            self.assertIn("99", self.ask("list", store=f"sqlite:{path}", code=3)[1])
            lock.execute("UPDATE history_schema SET version = 1")
            lock.close()
            whole = path.read_bytes()
            path.write_bytes(b"SQLite format 3\0" + os.urandom(5000))
            download(f"sqlite:{path}")
            self.ask("deliver", store=f"sqlite:{path}", code=3)
            path.write_bytes(whole)
            self.assertEqual(len(self.ask("list", store=f"sqlite:{path}")[0]), 3)

            download(silent_store)
            self.assertEqual(len(list(self.folder.glob("data/kelvane/fldc/spool/*/*.json"))), 1)
            store = self.server.store()
            self.server.stop()
            download(store)
            self.server.start()
            self.assertEqual(len(self.ask("list", store=store)[0]), 1)
            self.ask("list", store="mysql://x", code=1)

    def test_switches_and_clients_of_the_bus_are_recorded_when_asked(self):
        """A server that is down at first holds nobody up; the records come by a process of their own."""
        store = self.server.store()
        with Workbench(WINDOWED, SIMULATOR, SAMPLES, "rv4200") as bench:
            def switches(setting, **more):
                (bench.folder / "settings.conf").write_text(f"[General]\n{setting}\n")
                run = bench.start("/p", "1", "/f", f"{DSP.parent},{DSP.name}".replace("/", "\\"),
                                  **{"XDG_DATA_HOME": str(self.folder / "w"), **more})
                err = run.communicate(timeout=100)[1]
                self.assertEqual((run.returncode, err.count("history")), (0, "HOME" in more), err)

            switches("")
            switches("History=True", XDG_DATA_HOME="", HOME="")
            self.assertEqual(list(self.folder.iterdir()), [])
            self.server.stop()
            switches(f"History={store}")
            self.assertEqual(len(list(self.folder.glob("w/kelvane/fldc/spool/*/*.json"))), 1)
            self.server.start()
            self.assertEqual(bench.erase_over_the_bus("5|", XDG_DATA_HOME=str(self.folder / "w")), 0)
        deadline = time.monotonic() + 60
        while len(rows := self.ask("list", store=store)[0]) < 2 and time.monotonic() < deadline:
            time.sleep(0.1)
        self.assertEqual([(row["command"], row["exit"], row["written"], row["erased"], row["port"]) for row in rows],
                         [("erase", 0, [], ["JHA2A-1.10"], "COM1"), ("download", 0, ["JHA2A-1.10"], [], "COM1")])
        shown = self.ask("show", rows[1]["id"], store=store)[0][0]["certificate"]
        self.assertEqual(shown["started"]["files"], [{"path": str(DSP), "bytes": DSP.stat().st_size,
                                                      "sha256": hashlib.sha256(DSP.read_bytes()).hexdigest()}])
        self.assertTrue(all(t["crc32"] for target in shown["targets"] for t in target["tables"]) and shown["targets"])

    def test_a_disk_that_is_full_and_a_user_without_a_folder(self):
        with Workbench(PROGRAM, SIMULATOR, SAMPLES, "rv4200") as bench:
            for environment, limit in ((dict(XDG_DATA_HOME="", HOME=""), False), ({}, True)):
                old = signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
                run = subprocess.Popen(
                    ["prlimit", "--fsize=0", PROGRAM][0 if limit else 2:] + ["download", bench.folder / "radio", APPLICATION],
                    env=self.environment("data", **environment), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                    stderr=subprocess.PIPE, restore_signals=False)
                signal.signal(signal.SIGXFSZ, old)
                _, err = run.communicate(timeout=100)
                self.assertEqual((run.returncode, err.count(b"history")), (0, 1), err)


if __name__ == "__main__":
    del sys.argv[1:5]
    unittest.main(verbosity=2)
