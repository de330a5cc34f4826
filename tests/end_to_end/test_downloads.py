"""Whole downloads to simulated radios, with and without faults: the flash against the firmware file byte
by byte, the outcome that the program reports, its exit code and closed logs.

Called with the paths of the program, the simulator and the sample firmware."""

import concurrent.futures
import pathlib
import signal
import subprocess
import sys
import time
import unittest

from workbench import Workbench, lost_records

PROGRAM, SIMULATOR = sys.argv[1], sys.argv[2]
SAMPLES = pathlib.Path(sys.argv[3]).resolve()
DONE = "Download successful"

# Profile, files, faults, outcome. Faults are those of the simulator.
CASES = [
    # Radios as they come.
    ("rv4200", "application.srec dsp.srec", "", DONE),
    ("rv4100", "shared_application.srec bundle.srec", "", DONE),
    ("rv6100", "application.srec dsp.srec", "", DONE),
    ("rh6100", "application.srec dsp.srec", "", DONE),
    # Radios with habits: slow answers, busy words, answers in pieces, lost speeds, other flash commands.
    ("rv4100", "shared_application.srec", "split=1/2", DONE),
    ("rv4100", "shared_application.srec", "busy@33=5/400 busy@31=3", DONE),
    ("rv4100", "shared_application.srec", "delay@35:2=1500 delay@3D:2=1900", DONE),
    ("rv4100", "shared_application.srec", "ignores-speed=115200", DONE),
    ("rv4100", "shared_application.srec", "unknown=3C unknown=3E", DONE),
    ("rv4100", "shared_application.srec", "already-in-upgrade-mode=57600", DONE),
    ("rv4100", "shared_application.srec", "fault@35:2=8002 fault@33:1=8003 corrupt@3E:1", DONE),
    ("rv4100", "shared_application.srec", "f1-power-cycle power-cycle-after=5", DONE),
    # Faults that end the run.
    ("rv4100", "shared_application.srec", "deaf=115200", "Error 56 - "),
    ("rv4100", "shared_application.srec", "silent-after=0 silent@start", "Error 42 - "),
    ("rv4100", "shared_application.srec", "silent@logon", "Error 22 - "),
    ("rv4100", "shared_application.srec", "garbage@31=00FF1337", "Error 51 - "),
    ("rv4100", "shared_application.srec", "fault@3D=8104", "Error 8104 - "),
    ("rv4100", "shared_application.srec", "f1-power-cycle", "Error 21 - "),
    # The adapter is pulled out.
    ("rv4100", "shared_application.srec", "hangup@start", "Error 11 - "),
    ("rv4100", "shared_application.srec", "hangup@logon", "Error 22 - "),
    ("rv4100", "shared_application.srec", "hangup@31", "Error 15 - "),
    ("rv4200", "application.srec", "hangup@boot", "Error 15 - "),
]


def workbench(profile, faults=(), **more):
    return Workbench(PROGRAM, SIMULATOR, SAMPLES, profile, faults, **more)


def wait_until_sent(bench, digits):
    while f"Sent     : {digits}" not in bench.log():
        time.sleep(0.05)


def run_case(case):
    profile, names, faults, outcome = case
    files = [SAMPLES / profile / name for name in names.split()]
    with workbench(profile, faults.split()) as bench:
        code, printed = bench.download(*files)
        problems = []
        if code != 0 or printed:
            problems.append(f"exit code {code}, printed: {printed}")
        if not bench.outcome().startswith(outcome):
            problems.append(f"outcome: {bench.outcome()}")
        for name in ("0_Download.log", "0_Config.log"):
            log = bench.log(name)
            if log.count("START LOG") != log.count("END LOG"):
                problems.append(f"{name} was left open")
        if outcome == DONE:
            devices, _ = bench.flash()
            problems += [lost for file in files for lost in lost_records(file, devices)[:3]]
        if problems:
            problems += [bench.log()[-1500:], (bench.folder / "radio.txt").read_text()[-1500:]]
        return problems


class Downloads(unittest.TestCase):
    def test_every_radio_and_fault(self):
        # The runs mostly wait for time-outs, so many go side by side.
        with concurrent.futures.ThreadPoolExecutor(8) as pool:
            for case, problems in zip(CASES, pool.map(run_case, CASES)):
                with self.subTest(case=case):
                    self.assertFalse(problems, "\n".join(problems))

    def test_a_port_that_another_program_holds(self):
        with workbench("rv4100", ["silent@31"]) as bench:
            first = bench.start("/p", "1", "/f", str(SAMPLES / "rv4100\\bundle.srec").replace("/", "\\"))
            wait_until_sent(bench, "3100CEFF")
            (bench.folder / "second").mkdir()
            second = subprocess.run([PROGRAM, "/p", "1", "/f", *first.args[4:]], timeout=60,
                                    env={**bench.environment(), "RV4100_FLDC_HOME": str(bench.folder)})
            self.assertEqual(second.returncode, 0)
            self.assertIn("Error 12 - Serial port in use by another application", bench.log("1_Download.log"))
            first.send_signal(signal.SIGTERM)
            self.assertEqual(first.wait(timeout=60), 1)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=1)
