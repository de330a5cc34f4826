"""A download against a recorded radio writes the same log again.

    test_replay.py PROGRAM SIMULATOR SAMPLES            compares
    test_replay.py PROGRAM SIMULATOR SAMPLES --record   records the logs in recorded/ anew

Record anew what a change of the samples or of the bytes sent is meant to change, and read the
difference before it is committed.
"""

import pathlib
import re
import subprocess
import sys
import unittest

from workbench import Workbench

PROGRAM, SIMULATOR = (str(pathlib.Path(path).resolve()) for path in sys.argv[1:3])
SAMPLES = pathlib.Path(sys.argv[3]).resolve()
RECORDED = pathlib.Path(__file__).resolve().parent / "recorded"
FILES = {"rv4100": "shared_application.srec", "rv4200": "application.srec",
         "rv6100": "dsp.srec", "rh6100": "dsp.srec"}


def download(profile, log=None):
    """A download; returns the log that it writes, the radio's exit code and words, the last status."""
    replay = ("--replay", log) if log else ()
    with Workbench(PROGRAM, SIMULATOR, SAMPLES, profile, replay=replay) as bench:
        for boot in SAMPLES.glob("boot/*.Srec"):  # a short one is enough: a log line for each byte
            lines = boot.read_bytes().splitlines(keepends=True)
            data = [line for line in lines if line[:2] in (b"S1", b"S2", b"S3")]
            (bench.folder / boot.name).write_bytes(
                b"".join(line for line in lines if line not in data[2:]))
        code, printed = bench.download(SAMPLES / profile / FILES[profile])
        assert code == 0, printed
        if not log:
            bench.stop_radio()
        code = bench.radio.wait(timeout=60)
        return bench.log(), code, (bench.folder / "radio.txt").read_text(), bench.outcome()


def conversation(log):
    return re.findall(r"  (Sent     |Received ) : (\w+)", log)


class Replay(unittest.TestCase):
    def test_a_download_against_the_recorded_radio_is_the_recorded_one(self):
        for profile in FILES:
            with self.subTest(profile):
                recorded = RECORDED / f"{profile}.log"
                log, code, said, outcome = download(profile, recorded)
                self.assertEqual(conversation(log), conversation(recorded.read_text("latin-1")))
                self.assertEqual((code, outcome), (0, "Download successful"), said)

    def test_it_says_where_the_conversation_departs(self):
        lines = (RECORDED / "rv4100.log").read_text("latin-1").splitlines()
        write = next(i for i, line in enumerate(lines) if "Sent     : 3D" in line)
        sent = lines[write].split(" : ")[1]
        changes = [
            # A byte in a data frame is another.
            (lines[:write] + [lines[write].replace(sent, sent[:40] + "00" + sent[42:])]
             + lines[write + 1:], f"line {write + 1}, byte 21: other bytes", sent),
            # The host sends more than the log holds.
            (lines[:write], f"behind line {write - 3}: more", sent[:2]),
        ]
        for text, where, got in changes:
            with self.subTest(where), Workbench(PROGRAM, SIMULATOR, SAMPLES, "rv4100") as folder:
                log = folder.folder / "changed.log"
                log.write_bytes("\r\n".join(text).encode())  # as the program writes it
                _, code, said, _ = download("rv4100", log)
                self.assertEqual(code, 3)
                self.assertIn(where, said)
                self.assertIn("got " + got, said)

    def test_logs_that_can_not_be_played_are_refused(self):
        for text in ("", "no log", "d 1  Received : 56", "d 1  Sent     : 5", "d 1  Sent     : 5G",
                     "d 1  Sent     : 7E\nd 1  Received : 2A"):
            run = subprocess.run([SIMULATOR, "--replay", "/dev/stdin"], input=text, text=True,
                                 capture_output=True, timeout=60)
            self.assertEqual(run.returncode, 1, text)
            self.assertIn("log", run.stderr)


if __name__ == "__main__":
    if sys.argv[4:] == ["--record"]:
        for name in FILES:
            lines = [line.rstrip() + "\n" for line in download(name)[0].splitlines()]
            (RECORDED / f"{name}.log").write_bytes("".join(lines).encode("latin-1"))
    else:
        unittest.main(argv=sys.argv[:1])
