#!/usr/bin/env python3
"""A technician's session: the real program on a display of its own, a simulated radio on its port, and
nothing but key presses and clicks. Arguments: program, simulator, folder of the sample firmware."""

import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path += [str(HERE), str(HERE.parent / "end_to_end")]

from desktop import MISSING, Desktop, wait_for  # noqa: E402
from workbench import Workbench  # noqa: E402

# Pixels in the main window: the middle of a row's text, the list's first row being number 1.
LIST_X, LIST_Y, ROW = 130, 100, 20
CANCEL = (556, 408)  # the middle of the button


class Session:
    def __init__(self, bench, desktop):
        self.bench, self.desktop = bench, desktop
        self.program = bench.start(DISPLAY=desktop.display, QT_QPA_PLATFORM="xcb")
        self.window = desktop.window("Kelvane Download Component")

    def press(self, key):
        self.desktop.key(self.window, key)

    def click_row(self, number):
        self.desktop.click(self.window, LIST_X, LIST_Y + ROW * (number - 1))

    def outcome(self, text, seconds=60):
        """Waits until the status line, which is logged, ends with this text."""
        try:
            wait_for(text, lambda: self.bench.outcome().strip() == text, seconds)
        except AssertionError as error:
            raise AssertionError(f"{error}; the status is {self.bench.outcome()!r}") from None

    def radio(self):
        return (self.bench.folder / "radio.txt").read_text()


def report(session):
    session.press("alt+e")  # greyed: no text of the port either, which has the focus
    session.press("alt+r")
    session.outcome("Configuration successfully read")


def erase_one(session):
    """Row 5 is marked by a click, row 4 marked and unmarked again."""
    session.click_row(4)
    session.click_row(5)
    session.press("Up")
    session.press("space")
    before = session.radio().count("Erased block")
    session.press("alt+e")
    session.outcome("Configuration(s) successfully erased")
    assert session.radio().count("Erased block") == before + 1, session.radio()
    assert "Authorised JHA2A-1.02 for the head DSP" in session.radio(), session.radio()


def download(session, files):
    before = len(session.radio())
    session.press("alt+d")
    dialog = session.desktop.window("Open")
    session.desktop.type(dialog, " ".join(f'"{file}"' for file in files))
    session.desktop.key(dialog, "Return")
    wait_for("the first block", lambda: "Unlocked block" in session.radio()[before:])
    session.desktop.close(session.window)  # refused
    session.desktop.window("Not Closed")
    session.desktop.click(session.window, *CANCEL)
    session.desktop.window("Stop Writing")  # nobody answers: the writing goes on, and it goes with that
    failures = session.desktop.window("Download Failures")
    assert not session.desktop.find("Stop Writing") and not session.desktop.find("Not Closed")
    assert session.program.poll() is None and session.desktop.find("Kelvane"), "closed in the middle"
    session.outcome("Download successful")
    session.desktop.key(failures, "Return")
    wait_for("the report to close", lambda: not session.desktop.find("Download Failures"))


def save(session, path):
    session.press("alt+s")
    dialog = session.desktop.window("Save As")
    session.desktop.key(dialog, "ctrl+a")
    session.desktop.type(dialog, str(path))
    session.desktop.key(dialog, "Return")
    wait_for("the file", path.exists)
    session.outcome("Ready")
    lines = path.read_bytes().split(b"\r\n")
    assert lines[0] == b"Type,Code and Version,Status,Target Hardware,NTID", lines
    assert b"Radio Application,JHA2F-2.03,OK,Head,0" in lines, lines


def firmware(bench):
    """Two files of one folder: one for the radio, one for hardware that it has not."""
    folder = bench.folder / "fw"
    folder.mkdir()
    application, foreign = folder / "application.srec", folder / "foreign.srec"
    application.write_bytes((bench.samples / "rv4200" / "application.srec").read_bytes())
    foreign.write_bytes(b'DW 8\r\nMD "RVKC9",0\r\nS00000004A4841325800\r\nS206010000123400\r\nS804000000FB\r\n')
    return [application, foreign]


def main():
    if MISSING:
        print("missing:", *MISSING)
        return 77
    program, simulator, samples = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
    with Workbench(program, simulator, samples, "rv4200", ["delay@3D=800", "delay@35=800"], pace=True) as bench, Desktop() as desktop:
        session = Session(bench, desktop)
        report(session)
        erase_one(session)
        download(session, firmware(bench))
        save(session, bench.folder / "details.csv")
        desktop.close(session.window)
        wait_for("the end of the program", lambda: session.program.poll() is not None)
        assert session.program.returncode == 0, session.program.communicate()
        _, components = bench.flash()
        assert "JHA2F-2.03" in components, components
        erased = "status=1 address=00000000 product=JHA2A-1.02"
        assert erased in (bench.folder / "flash.map").read_text(), "the DSP was not erased"
    return 0


if __name__ == "__main__":
    sys.exit(main())
