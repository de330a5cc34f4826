#!/usr/bin/env python3
"""fldc gang with several simulated radios. Called with the paths of fldc, the simulator and the samples."""

import fcntl
import json
import os
import pathlib
import pty
import re
import select
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unittest

sys.path.append(str(pathlib.Path(__file__).resolve().parent.parent / "end_to_end"))
from postgresql import SERVER, PostgreSql  # noqa: E402

PROGRAM, SIMULATOR, SAMPLES = (pathlib.Path(path) for path in sys.argv[1:4])
PAGE = pathlib.Path(sys.argv[4])
APPLICATION = SAMPLES / "rv4200/application.srec"


class Gang(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="fldc-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def radio(self, name, *arguments):
        link = self.folder / name
        process = subprocess.Popen([SIMULATOR, "--profile", "rv4200", "--link", link, *arguments],
                                   stdout=subprocess.DEVNULL)
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)
        while not link.exists():
            time.sleep(0.01)
        return process

    def gang(self, *names, options=()):
        ports = [word for name in names for word in ("--port", self.folder / name)]
        run = subprocess.Popen([PROGRAM, "--json", "gang", APPLICATION, *ports, "--boot-files", SAMPLES / "boot",
                                *options], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.addCleanup(run.stdout.close)
        self.addCleanup(run.stdin.close)
        return run

    def lines(self, run, until=lambda line: False):
        """The objects of a run, up to one that fits."""
        objects = []
        for line in run.stdout:
            objects.append(json.loads(line))
            if until(objects[-1]):
                break
        return objects

    def test_each_unit_has_its_own_end(self):
        self.radio("good")
        self.radio("bad", "--fault", "silent@33")
        self.radio("killed", "--fault", "silent@33")
        run = self.gang("good", "bad", "killed", "missing")
        told = self.lines(run, lambda line: line["type"] == "blocks" and line["port"].endswith("killed"))
        for child in pathlib.Path(f"/proc/{run.pid}/task/{run.pid}/children").read_text().split():
            if str(self.folder / "killed") in pathlib.Path(f"/proc/{child}/cmdline").read_text():
                os.kill(int(child), signal.SIGKILL)
        told += self.lines(run)
        results = {line["port"].rsplit("/", 1)[-1]: (line["exit"], line["radio"])
                   for line in told if line["type"] == "unit-result"}
        self.assertEqual(results, {"good": (0, "restarted"), "bad": (7, "erased"), "killed": (7, "partly-written"),
                                   "missing": (4, "untouched")})
        self.assertEqual((run.wait(), told[-1]["exit"], told[-1]["command"]), (7, 7, "gang"))
        self.assertEqual(sum(line["type"] == "result" for line in told), 1)

    def test_the_next_radio_starts_by_itself(self):
        radio = self.radio("line")
        run = self.gang("line", options=("--repeat", "--prompt-unit", "--certificate", self.folder / "out"))
        run.stdin.write("first\nsecond\n")
        run.stdin.flush()
        is_end = lambda line: line["type"] == "unit-result"  # noqa: E731
        self.assertEqual(self.lines(run, is_end)[-1]["exit"], 0)
        for pause in (4, 10, 25, 60):  # a look without a radio is longer in coming on a busy machine
            radio.terminate()
            radio.wait()
            time.sleep(pause)
            radio = self.radio("line")
            if select.select([run.stdout], [], [], 10 + pause)[0]:
                break
        self.assertEqual(self.lines(run, is_end)[-1]["exit"], 0)
        run.send_signal(signal.SIGINT)
        self.assertEqual((self.lines(run)[-1]["exit"], run.wait()), (130, 130))
        units = [json.loads(each.read_text())["unit"] for each in sorted((self.folder / "out").iterdir())]
        self.assertEqual(units, ["first", "second"])

    def test_ways_to_end_from_outside(self):
        self.radio("a")
        self.radio("b")
        for options, until, number, code in (((), "radio", 0, 141), (("--repeat",), "unit-result", 0, 141),
                                             (("--repeat",), "unit-result", signal.SIGHUP, 129)):
            with self.subTest(options=options, number=number):
                run = self.gang("a", "b", options=options)
                self.lines(run, lambda line: line["type"] == until)  # noqa: B023
                if number:
                    run.send_signal(number)
                else:
                    run.stdout.close()  # also when nothing is left to tell
                self.assertEqual(run.wait(60), code)

    def test_a_radio_is_completed_when_the_reader_goes_before_the_gang_has_heard_of_the_erase(self):
        for name in ("a", "b"):
            self.radio(name, "--fault", "busy@33=30/100")  # erases for 3 s
        run = self.gang("a", "b", options=("--certificate", self.folder / "out"))
        self.lines(run, lambda line: line["type"] == "radio")
        run.send_signal(signal.SIGSTOP)
        time.sleep(1.5)  # the units go on; what they tell waits
        run.stdout.close()
        run.send_signal(signal.SIGCONT)
        self.assertEqual(run.wait(60), 141)
        left = {json.loads(each.read_text())["result"]["radio"] for each in (self.folder / "out").iterdir()}
        self.assertFalse(left & {"unlocked", "erased", "partly-written", "written"}, left)

    def test_all_ports_and_a_low_terminal(self):
        """Remote lines count as free, each once; what has no room on the board is named."""
        ports = ";".join(f"COM{i}=rfc2217://127.0.0.1:{i // 2}" for i in range(2, 12)) + ";COM1=/dev/nowhere"
        master, slave = pty.openpty()
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 5, 120, 0, 0))
        with open(slave, "wb") as terminal, open(master, "rb", buffering=0) as screen:
            run = subprocess.Popen([PROGRAM, "gang", APPLICATION, "--all"], stdout=subprocess.PIPE, stderr=terminal, text=True,
                                   env=os.environ | {"RV4100_FLDC_PORTS": ports, "TERM": "xterm"})
            told = run.communicate(timeout=60)[0]
            self.assertEqual(run.returncode, 4)
            drawn = screen.read(1 << 16).decode()
        self.assertEqual(set(re.findall(r"(?m)^(\S+) .*FAILED", told)), {f"COM{i}" for i in range(2, 12, 2)}, told)
        self.assertRegex(drawn, r"not shown: 4 failed \((COM\d+ ?){4}\)")  # the last to end has the one line: any of the five

    def test_what_can_not_be_meant(self):
        self.radio("a")
        twice = ("--port", "/dev/nowhere", "--port", "/dev/nowhere")
        for options in ((), twice, ("--port", self.folder / "a", "--port", self.folder / ".." / self.folder.name / "a"),
                        ("--all", "--port", self.folder / "a")):
            run = self.gang(options=options)
            self.assertEqual((self.lines(run)[-1]["exit"], run.wait()), (1, 1), options)

    def test_the_page_about_a_workshop(self):
        database = self.enterContext(PostgreSql())
        ports, lines = [], []
        settings = [f"[General]\nHistory=postgresql://bench@/fldc?host={database.folder}\n[Ports]"]
        for number in range(1, 9):
            self.radio(f"r{number}")
            ports.append(f"COM{number}={self.folder}/r{number}")
        for number in range(1, 4):
            self.radio(f"bench{number}")
            with socket.create_server(("127.0.0.1", 0)) as free:
                place = free.getsockname()[1]
            settings.append(f"bench{number}=rfc2217://127.0.0.1:{place}")
            lines.append(f"connection: &b{number}\n  accepter: telnet(rfc2217),tcp,127.0.0.1,{place}\n"
                         f"  connector: serialdev,{self.folder}/bench{number},9600n81,local\n")
        (self.folder / "settings.conf").write_text("\n".join(settings))
        (self.folder / "ser2net.yaml").write_text("".join(lines))
        server = subprocess.Popen(["/usr/sbin/ser2net", "-n", "-c", self.folder / "ser2net.yaml", "-P",
                                   self.folder / "ser2net.pid"], stderr=subprocess.DEVNULL)
        self.addCleanup(server.wait)
        self.addCleanup(server.kill)
        path = f"{PROGRAM.resolve().parent}:{SERVER}:{os.environ['PATH']}"
        for commands in re.findall(r"```sh\n(.*?)```", PAGE.read_text(), re.DOTALL):
            run = subprocess.run(["sh", "-e", "-c", commands], cwd=self.folder, capture_output=True, timeout=120, text=True,
                                 check=False, env=os.environ | {
                                     "PATH": path, "FIRMWARE": str(APPLICATION), "RV4100_FLDC_PORTS": ";".join(ports),
                                     "RV4100_FLDC_HOME": str(SAMPLES / "boot"), "PGHOST": str(database.folder),
                                     "PGUSER": "fldc", "XDG_DATA_HOME": str(self.folder / "data"),
                                     "RV4100_FLDC_SETTINGS": str(self.folder / "settings.conf")})
            self.assertEqual(run.returncode, 0, commands + run.stdout + run.stderr)
        self.assertEqual(len(list((self.folder / "certificates").iterdir())), 11)
        self.assertIn("13 records.", run.stdout)  # those from before there was a database, too


if __name__ == "__main__":
    del sys.argv[1:5]
    unittest.main(verbosity=2)
