"""fldc against simulated radios: exit code, lines and last line of each run, and the radio's flash against
what the result says of it. Called with the paths of fldc, the simulator and the sample firmware."""

import concurrent.futures
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import unittest

sys.path.append(str(pathlib.Path(__file__).resolve().parent.parent / "end_to_end"))
from workbench import Workbench, lost_records  # noqa: E402

PROGRAM, SIMULATOR = sys.argv[1], sys.argv[2]
SAMPLES = pathlib.Path(sys.argv[3]).resolve()
README = pathlib.Path(sys.argv[4])
APPLICATION, DSP = SAMPLES / "rv4200/application.srec", SAMPLES / "rv4200/dsp.srec"
OTHER, FPGA = SAMPLES / "rv4100/bundle.srec", SAMPLES / "rv4100/fpga.srec"
DOWNLOAD = f"download PORT {APPLICATION}"

# Arguments, faults of an RV4200, and the result: exit code, component's code, the radio, tags written (a
# number: the best speed of the line).
RUNS = [
    (f"{DOWNLOAD} {DSP}", "", 0, 0, "restarted", "JHA2F-2.03 JHA2A-1.10"),
    (f"download {APPLICATION}", "", 1, 0, "untouched", None),
    (f"download PORT {FPGA}", "", 1, 0, "untouched", None),
    (f"download PORT {OTHER}", "", 2, 37, "restarted", ""),
    (f"{DOWNLOAD} /nowhere", "", 3, 33, "untouched", None),
    (f"{DOWNLOAD} --boot-files /nowhere", "", 3, 33, "reset", ""),
    (f"{DOWNLOAD} --log /nowhere/log", "", 3, 0, "untouched", None),
    (f"download /dev/nowhere {APPLICATION}", "", 4, 11, "untouched", ""),
    (DOWNLOAD, "silent-after=0 silent@start", 5, 42, "reset", ""),
    (DOWNLOAD, "silent@32", 5, 42, "unlocked", ""),
    (DOWNLOAD, "fault@42=810F", 6, 8113, "upgrade-mode", ""),
    (DOWNLOAD, "fault@33=8103", 6, 8103, "unlocked", ""),
    (DOWNLOAD, "silent@33", 7, 42, "erased", ""),
    (DOWNLOAD, "busylist@33=AEAE0003", 7, 59, "erased", ""),
    (DOWNLOAD, "hangup@3D:3", 7, 15, "partly-written", ""),
    (DOWNLOAD, "silent@39", 7, 42, "written", ""),
    (f"{DOWNLOAD} {DSP}", "fault@42:2=810F", 7, 8113, "locked", "JHA2F-2.03"),
    (DOWNLOAD, "silent@31:2", 8, 42, "locked", "JHA2F-2.03"),
    (f"{DOWNLOAD} {OTHER}", "", 9, 37, "restarted", "JHA2F-2.03"),
    (DOWNLOAD, "fault@3D:2=8002 fault@33:1=8003", 0, 0, "restarted", "JHA2F-2.03"),
    (DOWNLOAD, "fault@3D:2=8104 unknown=3E", 0, 0, "restarted", "JHA2F-2.03"),
    (DOWNLOAD, "fault@3D=8104", 7, 8104, "erased", ""),
    (DOWNLOAD, "garbage@33=1337", 7, 51, "erased", ""),
    (DOWNLOAD, "fault@39=8103", 7, 8103, "written", ""),
    (DOWNLOAD, "busy@33=5/50 split=1/1 delay@3D:2=300 ignores-speed=115200", 0, 0, "restarted", "JHA2F-2.03"),
    (DOWNLOAD, "unknown=42 f1-power-cycle power-cycle-after=1", 0, 0, "restarted", "JHA2F-2.03"),
    (DOWNLOAD, "deaf=115200", 5, 56, "upgrade-mode", ""),
    (DOWNLOAD, "corrupt@31:1", 5, 55, "upgrade-mode", ""),
    (DOWNLOAD, "reply@31:1=1337AFAF", 5, 51, "upgrade-mode", ""),
    (DOWNLOAD, "silent@boot", 5, 42, "reset", ""),
    (DOWNLOAD, "answers-at=9600", 5, 21, "reset", ""),
    (DOWNLOAD, "cut@3D:2=1", 7, 42, "partly-written", ""),
    (DOWNLOAD, "silent-after=9", 7, 42, "partly-written", ""),
    ("restart PORT", "", 0, 0, "restarted", None),
    ("restart PORT", "already-in-upgrade-mode=57600", 0, 0, "restarted", None),
    ("restart PORT", "answers-at=9600", 0, 0, "restarted", None),
    ("restart PORT", "power-cycle", 5, 42, "reset", None),
    ("link-test PORT --rounds 20", "ignores-speed=115200", 0, 0, "restarted", 57600),
    ("link-test PORT --rounds 20", "garbage@38:70=00FF13 silent@38:50", 0, 0, "restarted", 19200),
    ("link-test PORT --rounds 20", "deaf=115200", 5, 42, "upgrade-mode", 57600),
    ("link-test PORT --rounds 20", "hangup@38:50", 5, 11, "upgrade-mode", 19200),
    ("link-test PORT --rounds 20", "silent@start:2", 5, 21, "upgrade-mode", 115200),
    ("report PORT", "", 0, 0, "restarted", None),
    ("report PORT", "already-in-upgrade-mode=57600", 0, 0, "restarted", None),
    ("report PORT", "f1-power-cycle", 5, 21, "reset", None),
    ("report PORT", "hangup@start", 5, 11, "reset", None),
    ("report PORT", "silent@logon", 5, 22, "reset", None),
    ("erase PORT #5", "", 0, 0, "erased", None),
    ("erase PORT JHA2A-1.02", "silent@33", 7, 42, "erased", None),
    ("erase PORT JHA2B-1.04", "", 2, 0, "restarted", None),
    ("erase PORT nothing", "", 2, 0, "restarted", None),
    (f"plan {APPLICATION} --port PORT", "", 0, 0, "restarted", None),
    (f"plan {OTHER} --port PORT", "", 2, 0, "restarted", None),
    ("doctor PORT", "", 0, 0, "untouched", None),
    ("doctor /dev/nowhere", "", 4, 0, "untouched", None),
    ("ports", "", 0, 0, "untouched", None),
    ("no-command", "", 1, 0, "untouched", None),
]


def start(bench, arguments, **more):
    words = [word.replace("PORT", str(bench.folder / "radio")) for word in arguments.split()]
    return subprocess.Popen([PROGRAM, "--json", *words], env=bench.environment(), stdin=subprocess.DEVNULL,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, **more)


def run_case(case):
    arguments, faults, code, error, radio, written = case
    with Workbench(PROGRAM, SIMULATOR, SAMPLES, "rv4200", faults.split()) as bench:
        run = start(bench, arguments)
        out, err = run.communicate(timeout=120)
        lines = [json.loads(line) for line in out.splitlines()]
        result = lines[-1]
        found = (run.returncode, result["exit"], result["code"], result["radio"], result["ok"])
        problems = [] if found == (code, code, error, radio, code == 0) else [f"{found}"]
        if [line["type"] for line in lines].count("result") != 1 or not result["advice"]:
            problems.append("not one result with advice")
        if "/nowhere" in arguments and code > 1 and "nowhere" not in result["message"]:
            problems.append("does not name what is missing")
        if isinstance(written, int):
            problems += [] if result["best"] == written else [f"best: {result['best']}"]
        elif written is not None:
            if result["written"] != written.split():
                problems.append(f"written: {result['written']}")
            devices, _ = bench.flash()
            if (not lost_records(APPLICATION, devices)) != ("JHA2F-2.03" in written or radio == "written"):
                problems.append("the flash does not agree")
        return problems + [out[-1500:], err] if problems else []


class Runs(unittest.TestCase):
    def test_results(self):
        with concurrent.futures.ThreadPoolExecutor(8) as pool:
            for case, problems in zip(RUNS, pool.map(run_case, RUNS)):
                with self.subTest(case=case):
                    self.assertFalse(problems, "\n".join(problems))

    def test_a_download_tells_everything_in_its_order(self):
        with Workbench(PROGRAM, SIMULATOR, SAMPLES, "rv4200", ["fault@33:1=8002"]) as bench:
            run = start(bench, f"{DOWNLOAD} {DSP}")
            lines = [json.loads(line) for line in run.communicate(timeout=120)[0].splitlines()]
        told = [line.get("action", line["type"]) for line in lines if line.get("percent") in (None, 100)]
        target = "target unlocked erased table progress locked "
        self.assertEqual(" ".join(told), "started radio boot-application speed configuration " + target.replace(
            "erased table", "retry erased table table") + target + "configuration restarted result")
        self.assertEqual((lines[-1]["retries"], lines[-1]["wire_bytes"]), (1, 4780))

    def test_a_certificate_tells_the_whole_download(self):
        with Workbench(PROGRAM, SIMULATOR, SAMPLES, "rv4200") as bench:
            run = start(bench, f"{DOWNLOAD} --certificate {bench.folder}/c --unit 47/11 --job J")
            out, _ = run.communicate(timeout=120)
            self.assertEqual(run.returncode, 0, out)
            (path,) = (bench.folder / "c").iterdir()
            self.assertRegex(path.name, r"^[0-9A-Za-z.:_-]+-47_11\.json$")
            certificate = json.loads(path.read_text())
            self.assertEqual(json.loads(out.splitlines()[-1]) | certificate["result"],
                             json.loads(out.splitlines()[-1]))
            self.assertEqual([table["bytes"] for table in certificate["targets"][0]["tables"]], [5000, 1600])
            shown = subprocess.run([PROGRAM, "certificate", path], capture_output=True, timeout=60, check=False)
            self.assertEqual(shown.returncode, 0)

    def test_a_radio_is_compared_with_one_as_it_should_be(self):
        with Workbench(PROGRAM, SIMULATOR, SAMPLES, "rv4200") as bench:
            golden, cut = bench.folder / "golden.json", bench.folder / "cut.json"
            golden.write_text(start(bench, "report PORT").communicate(timeout=60)[0])
            cut.write_text(golden.read_text().replace('"status":0', '"status":"0"'))
            for before, file, code, places in (("", golden, 0, []), ("", cut, 3, []), ("", DSP, 3, []),
                                               (DOWNLOAD, golden, 2, [("JHA2F-1.20", "JHA2F-2.03")])):
                start(bench, before or "ports").communicate(timeout=60)
                run = start(bench, f"check PORT --expect {file}")
                lines = [json.loads(line) for line in run.communicate(timeout=60)[0].splitlines()]
                self.assertEqual(run.returncode, code, lines[-1])
                self.assertEqual([(line["expected"], line["found"]) for line in lines if line["type"] == "difference"],
                                 places)

    def test_a_certificate_that_cannot_be_written_is_no_success(self):
        with Workbench(PROGRAM, SIMULATOR, SAMPLES, "rv4200") as bench:
            folder = bench.folder / "c"
            run = start(bench, f"{DOWNLOAD} --certificate {folder}")
            while json.loads(run.stdout.readline())["type"] != "table":
                pass
            shutil.rmtree(folder)
            folder.write_text("no folder")
            out, _ = run.communicate(timeout=120)
            result = json.loads(out.splitlines()[-1])
            self.assertEqual((run.returncode, result["exit"], result["radio"]), (10, 10, "restarted"))
            self.assertEqual(lost_records(APPLICATION, bench.flash()[0]), [])

    def test_signals_end_a_run_in_order(self):
        for number, fault, radio in ((signal.SIGINT, "silent@31", "upgrade-mode"),
                                     (signal.SIGTERM, "silent@3D:2", "partly-written"),
                                     (signal.SIGHUP, "silent@31", "upgrade-mode")):
            with self.subTest(number), Workbench(PROGRAM, SIMULATOR, SAMPLES, "rv4200", [fault]) as bench:
                run = start(bench, DOWNLOAD)
                lines = []
                for line in run.stdout:
                    lines.append(json.loads(line))
                    if lines[-1]["type"] == ("speed" if fault == "silent@31" else "progress"):
                        run.send_signal(number)
                self.assertEqual(run.wait(60), 128 + number)
                self.assertEqual((lines[-1]["exit"], lines[-1]["radio"]), (128 + number, radio))
                run.stdout.close()
                run.stderr.close()

    def test_a_reader_that_goes_away_leaves_no_flash_half_written(self):
        for until, whole_file in (("radio", False), ("table", True)):
            with self.subTest(until), Workbench(PROGRAM, SIMULATOR, SAMPLES, "rv4200") as bench:
                run = start(bench, DOWNLOAD)
                while json.loads(run.stdout.readline())["type"] != until:
                    pass
                run.stdout.close()
                self.assertEqual(run.wait(60), 141)
                run.stderr.close()
                self.assertEqual(not lost_records(APPLICATION, bench.flash()[0]), whole_file)

    def test_the_examples_that_users_are_shown(self):
        blocks = re.findall(r"```(sh|python)\n(.*?)```", README.read_text(), re.DOTALL)
        examples = [(kind, text) for kind, text in blocks if "fldc" in text and "FIRMWARE" in text]
        self.assertEqual([kind for kind, _ in examples], ["sh", "python"])
        for kind, text in examples:
            for faults, code in (((), 0), (("silent@3D:2",), 7)):
                with self.subTest(kind, code=code), Workbench(PROGRAM, SIMULATOR, SAMPLES, "rv4200", faults) as bench:
                    (bench.folder / "script").write_text(text)
                    environment = bench.environment(
                        FIRMWARE=f"{APPLICATION} {DSP}", FLDC_PORT=str(bench.folder / "radio"),
                        PATH=f"{pathlib.Path(PROGRAM).resolve().parent}:{os.environ['PATH']}")
                    run = subprocess.run(["python3" if kind == "python" else "sh", "script", "unit-1"], timeout=120,
                                         cwd=bench.folder, env=environment, capture_output=True, text=True, check=False)
                    self.assertEqual(run.returncode, code, run.stdout + run.stderr)
                    self.assertIn("good" if kind == "sh" and code == 0 else "again" if code else "confirmed", run.stdout)

    def test_the_bytes_that_readers_are_shown(self):
        page = (README.parent / "docs/line.md").read_text().split("## The forms")[0]
        shown = [mark for row in re.findall(r"^\| `(?:->|<-)` \|([^|]*)", page, re.MULTILINE)
                 for mark in re.findall(r"`([0-9A-F]+)…?`", row)]
        with Workbench(PROGRAM, SIMULATOR, SAMPLES, "rv4200") as bench:
            start(bench, f"{DOWNLOAD} --log {bench.folder}/log").communicate(timeout=60)
            logged = re.findall(r"(?:Sent|Received) +: ([0-9A-F]+)", (bench.folder / "log").read_text("latin-1"))
        rest = iter(logged)
        missing = [mark for mark in shown if not any(line.startswith(mark) for line in rest)]
        self.assertEqual((missing, len(shown) > 40), ([], True))

    def test_no_display_library_is_needed(self):
        needed = subprocess.run(["ldd", PROGRAM], capture_output=True, text=True, check=True).stdout
        for library in ("Qt6Gui", "Qt6Widgets", "Qt6DBus", "libX11", "libGL"):
            self.assertNotIn(library, needed)


if __name__ == "__main__":
    os.umask(0o022)
    unittest.main(argv=sys.argv[:1], verbosity=1)
