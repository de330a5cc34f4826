"""How a run starts and ends, beside the download itself: switches, ports, displays, terminals, signals.

Called with the paths of the program, the simulator and the sample firmware."""

import errno
import os
import pathlib
import pty
import signal
import subprocess
import sys
import time
import unittest

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "ui"))

from desktop import MISSING, Desktop  # noqa: E402
from workbench import Workbench  # noqa: E402

PROGRAM, SIMULATOR = sys.argv[1], sys.argv[2]
SAMPLES = pathlib.Path(sys.argv[3]).resolve()
DONE = "Download successful"
CANCELLED = "Error 1 - User cancelled upgrade"


def workbench(profile="rv4100", faults=(), **more):
    return Workbench(PROGRAM, SIMULATOR, SAMPLES, profile, faults, **more)


def switch(path):
    return str(path).replace("/", "\\")


BUNDLE, FPGA = (switch(SAMPLES / "rv4100" / name) for name in ("bundle.srec", "fpga.srec"))


def wait_for(what, condition, seconds=60):
    deadline = time.monotonic() + seconds
    while not condition():
        assert time.monotonic() < deadline, f"waited for {what}"
        time.sleep(0.02)


class Terminal:
    """The program with a user in front of it."""

    def __init__(self, bench, *arguments, **more):
        self.ours, theirs = pty.openpty()
        self.run = subprocess.Popen([PROGRAM, *arguments], env=bench.environment(**more), stdin=theirs,
                                    stdout=theirs, stderr=theirs, cwd=bench.folder)
        os.close(theirs)
        self.shown = b""

    def read(self, until=None):
        """Reads until the text has come, or to the end; returns whether it came."""
        while until is None or until.encode() not in self.shown:
            try:
                piece = os.read(self.ours, 4096)
            except OSError as error:
                assert error.errno == errno.EIO
                return False
            if not piece:
                return False
            self.shown += piece
        return True

    def end(self):
        """The exit code, and the lines on the screen as they stood when they were ended."""
        self.read()
        os.close(self.ours)
        lines = self.shown.decode().split("\r\n")
        return self.run.wait(timeout=20), [line.split("\r\x1b[K")[-1].rstrip() for line in lines]


class StartUp(unittest.TestCase):
    def test_exit_codes_and_usage(self):
        with workbench() as bench:
            for arguments, code, text in [(["/?"], 0, "RV4100_FLDC Usage"),
                                          (["/r", "1"], 1, "RV4100_FLDC Usage"),
                                          (["/g", "/f", "a"], 1, "RV4100_FLDC Usage"),
                                          (["/F", "a"], 1, "RV4100_FLDC Usage"),
                                          (["/f", "a", "/f", "b"], 1, "/f is given twice"),
                                          (["/r", "x", "/f", "a"], 1, "/r takes a number"),
                                          (["/r", "99999", "/f", "a"], 1, "/r is out of range"),
                                          ([], 1, "there is no display")]:
                with self.subTest(arguments=arguments):
                    out, err = (run := bench.start(*arguments)).communicate(timeout=20)
                    self.assertEqual(run.returncode, code)
                    self.assertIn(text, out if text.endswith("Usage") else err)
            # A display that is named but not there; the library for it must not complain.
            for more in ({"DISPLAY": ":987"}, {"WAYLAND_DISPLAY": "none"},
                         {"DISPLAY": ":987", "WAYLAND_DISPLAY": "/nowhere"}, {"QT_QPA_PLATFORM": "offscreen"}):
                out, err = (run := bench.start(**more)).communicate(timeout=20)
                self.assertEqual((run.returncode, out, err.count("\n")), (1, "", 1), more)

    def test_a_port_that_cannot_be_chosen_is_not_replaced(self):
        with workbench() as bench:
            for ports, port, outcome in [(None, "7", "Error 11 - Serial port does not exist"),
                                         ("", "1", "Error 5 - ")]:
                more = {} if ports is None else {"RV4100_FLDC_PORTS": ports}
                out, err = (run := bench.start("/p", port, "/f", BUNDLE, **more)).communicate(timeout=20)
                self.assertEqual((run.returncode, out + err), (0, ""))
                self.assertTrue(bench.outcome().startswith(outcome), bench.outcome())
            for nothing in ("Sent", "Validating file"):
                self.assertNotIn(nothing, bench.log())

    def test_a_power_cycle_that_no_screen_asks_for(self):
        """The wait is announced and bounded, also with the window's switch."""
        with workbench(faults=["f1-power-cycle"]) as bench:
            user = Terminal(bench, "/g", "/r", "1", "/p", "1", "/f", BUNDLE)
            code, lines = user.end()
            self.assertEqual(code, 0)
            self.assertIn("Please hold the F1 Key and Power Cycle the Radio to continue ...", lines)
            self.assertEqual(bench.outcome(), "Error 21 - Radio did not reset")

    def test_an_adapter_that_loses_its_power_with_the_radio(self):
        with workbench(faults=["f1-power-cycle"]) as bench:
            user = Terminal(bench, "/p", "1", "/f", BUNDLE, RV4100_FLDC_POWER_CYCLE_S="60")
            self.assertTrue(user.read("Power Cycle the Radio"), user.shown)
            bench.stop_radio()
            time.sleep(2)  # looked for several times, and not there
            bench.start_radio("f1-power-cycle", "power-cycle-after=1")
            self.assertEqual((user.end()[0], bench.outcome()), (0, DONE))

    def test_a_terminal_shows_status_progress_and_what_was_not_loaded(self):
        with workbench("rv4200") as bench:
            file, broken = bench.folder / "application.srec", bench.folder / "broken.srec"
            file.write_bytes((SAMPLES / "rv4200/application.srec").read_bytes())
            user = Terminal(bench, "/p", "1", "/f", f"{switch(bench.folder)},missing.srec,{file.name}")
            code, lines = user.end()
            self.assertEqual(code, 0)
            self.assertIn(f"{switch(bench.folder)}\\missing.srec: Error 33 - File does not exist", lines)
            self.assertIn("Erasing flash...", lines)
            self.assertIn(b"100 %", user.shown)
            self.assertEqual([line for line in lines if line][-1], DONE)
            broken.write_text("S00000004A48\r\n")
            code, lines = Terminal(bench, "/p", "1", "/f",
                                   f"{switch(bench.folder)},{broken.name},{file.name}").end()
            self.assertIn(f"{switch(bench.folder)}\\broken.srec: Error 34 - ", "\n".join(lines))


class Signals(unittest.TestCase):
    def test_an_interrupt_ends_the_run_in_order(self):
        with workbench(faults=["silent@31"]) as bench:
            run = bench.start("/p", "1", "/f", BUNDLE)
            wait_for("the command that is not answered", lambda: "Command (Report Configuration)" in bench.log())
            run.send_signal(signal.SIGINT)
            self.assertEqual(run.wait(timeout=10), 1)
            self.assertEqual(bench.outcome(), CANCELLED)
            self.assertTrue(bench.log().rstrip().endswith("*" * 42))

    def test_an_interrupt_while_files_load(self):
        with workbench() as bench:
            large = bench.folder / "large.srec"
            body = b"".join(b"S315%08X%s00\r\n" % (at, os.urandom(16).hex().upper().encode())
                            for at in range(0x10000, 0x10000 + 300_000 * 16, 16))
            large.write_bytes(b'DW 8\r\nMD "RVKB1",0\r\nS00000004A4841325800\r\n' + body + b"S70500000000FA\r\n")
            run = bench.start("/p", "1", "/f", switch(large))
            wait_for("the loading", lambda: "Validating file" in bench.log())
            run.send_signal(signal.SIGTERM)
            self.assertEqual(run.wait(timeout=60), 1)
            for nothing in ("Sent", "Resetting radio"):
                self.assertNotIn(nothing, bench.log())

    def test_an_interrupt_at_a_question_on_the_terminal(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            with workbench() as bench:
                user = Terminal(bench, "/p", "1", "/f", FPGA)
                self.assertTrue(user.read("[y/N] "), user.shown)
                user.run.send_signal(number)
                code, lines = user.end()
                self.assertEqual((code, bench.outcome()), (1, CANCELLED))
                self.assertNotIn("Sent", bench.log())
                self.assertTrue(any(line.startswith("You are attempting") for line in lines), lines)
                self.assertIn("rv4100_fldc: Interrupted", lines)

    @unittest.skipIf(MISSING, "needs Xvfb and xdotool")
    def test_an_interrupt_of_a_program_with_windows(self):
        """Whether it waits for the radio, for an answer or for nothing; with one signal."""
        command = "Command (Report Configuration)"
        for arguments, title, key, until, code, outcome in [
                ((), "Kelvane", "alt+r", command, 1, CANCELLED),
                ((), "Kelvane", None, None, 0, "Ready"),
                (("/f", FPGA), "Kelvane", None, None, 1, CANCELLED),
                (("/g", "/r", "1", "/f", BUNDLE), "Kelvane", None, command, 1, CANCELLED),
                (("/?",), "Kelvane", None, None, 1, "")]:
            with self.subTest(arguments=arguments, key=key), Desktop() as desktop, \
                    workbench(faults=["silent@31"]) as bench:
                run = bench.start(*arguments, DISPLAY=desktop.display, QT_QPA_PLATFORM="xcb")
                window = desktop.window(title)
                if key:
                    desktop.key(window, key)
                if until:
                    wait_for(until, lambda: until in bench.log())
                run.send_signal(signal.SIGTERM)
                self.assertEqual(run.wait(timeout=20), code)
                log = bench.log()
                self.assertTrue(outcome in (bench.outcome(), ""), bench.outcome())
                self.assertEqual(log.count("START LOG"), log.count("END LOG"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=1)
