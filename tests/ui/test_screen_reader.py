#!/usr/bin/env python3
"""What a screen reader is told: walks the tree of the window over AT-SPI, and hears its events.
Arguments: rv4100_fldc, radio_simulator, the samples. Exit code 77: something that it needs is missing."""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

sys.path.append(str(pathlib.Path(__file__).resolve().parent.parent / "end_to_end"))

from desktop import MISSING, Desktop, wait_for  # noqa: E402
from workbench import Workbench  # noqa: E402

if os.environ.get("SCREEN_READER_TEST") != "started":  # on a bus of its own
    if MISSING or not shutil.which("dbus-run-session"):
        sys.exit(77)
    with tempfile.TemporaryDirectory() as runtime:  # the bus of the screen readers has its socket there
        environment = {**os.environ, "SCREEN_READER_TEST": "started", "XDG_RUNTIME_DIR": runtime}
        sys.exit(subprocess.run(["dbus-run-session", "--", sys.executable, *sys.argv], env=environment).returncode)
try:
    import gi
    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi, GLib
except (ImportError, ValueError):
    sys.exit(77)

PROGRAM, SIMULATOR, SAMPLES = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
LIST_X, LIST_Y, ROW = 130, 100, 20
FAULTS = ["delay@3D=1000", "delay@33=1000", "silent@39:2"]  # slow enough that every name is still there when asked for


class Reader:
    """Keeps what would be spoken: new names, and what was checked."""

    def __init__(self):
        self.told = []
        self.listener = Atspi.EventListener.new(self.hear)
        for kind in ("object:property-change:accessible-name", "object:state-changed:checked"):
            self.listener.register(kind)

    def hear(self, event):
        try:
            checked = "checked: " * event.type.endswith("checked")
            self.told.append(checked + event.source.get_name())  # as readers do: the event has no name
        except GLib.Error:
            pass  # it has gone meanwhile

    def hears(self, *texts, seconds=60):
        """Waits until all were told, in this order; other things may stand between."""
        def heard():
            while GLib.MainContext.default().iteration(False):
                pass
            told = iter(self.told)
            return all(any(text in line for line in told) for text in texts)
        try:
            return wait_for(texts, heard, seconds)
        except AssertionError:
            return False

    def expect(self, *texts):
        assert self.hears(*texts), (texts, self.told)
        self.told.clear()


def parts(node):
    yield node
    for index in range(node.get_child_count()):
        child = node.get_child_at_index(index)
        if child is not None:
            yield from parts(child)


def described(window):
    """Role, name (or the label that it has) and text of each part that is shown."""
    for part in parts(window):
        if part.get_state_set().contains(Atspi.StateType.SHOWING):
            labels = [relation.get_target(0).get_name() for relation in part.get_relation_set()
                      if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY]
            yield f"{part.get_role_name()} {' '.join([*labels, part.get_name()])}"


def find_window():
    desktop = Atspi.get_desktop(0)
    programs = [desktop.get_child_at_index(index) for index in range(desktop.get_child_count())]
    return next((program.get_child_at_index(0) for program in programs
                 if program is not None and program.get_name() == "rv4100_fldc" and program.get_child_count()), None)


def session(reader, desktop, program_window):
    window = wait_for("the window", find_window)
    found = set(described(window))
    wanted = {"frame Kelvane Download Component (1.21.00.00) - Debug", "combo box Port COM1:",
              "combo box Baud Rate Auto", "text Current Download : Current Download", "progress bar Progress", "label Ready"}
    assert wanted <= found, (wanted - found, found)

    desktop.key(program_window, "alt+r")
    reader.expect("Configuration successfully read", "Read in ")
    for _ in range(6):  # the list takes clicks again a moment after the notice
        desktop.click(program_window, LIST_X, LIST_Y + 4 * ROW)
        if reader.hears("checked: DSP, marked for erasure", seconds=5):
            break
    checked = [part.get_name() for part in parts(window)
               if part.get_state_set().contains(Atspi.StateType.CHECKED)]
    assert checked == ["DSP, marked for erasure"], (checked, reader.told)
    reader.told.clear()
    desktop.key(program_window, "alt+e")
    reader.expect("Erasing flash...", "successfully erased", "Erased in ")

    desktop.key(program_window, "alt+d")
    dialog = desktop.window("Open")
    desktop.type(dialog, str(SAMPLES / "rv4200" / "application.srec"))
    desktop.key(dialog, "Return")
    reader.expect("Downloading data...", "Progress, 25 %", "Progress, 50 %", "Progress, 75 %", "Error ", "The download failed")
    assert any(line.startswith("label The download failed") for line in described(window))


def main():
    with Workbench(PROGRAM, SIMULATOR, SAMPLES, "rv4200", FAULTS) as bench, Desktop() as desktop:
        reader = Reader()  # before the program, which asks at its start what is listened for
        program = bench.start(DISPLAY=desktop.display, QT_QPA_PLATFORM="xcb", QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
                              DBUS_SESSION_BUS_ADDRESS=os.environ["DBUS_SESSION_BUS_ADDRESS"])
        try:
            session(reader, desktop, desktop.window("Kelvane Download Component"))
        finally:
            program.kill()
            program.communicate()


if __name__ == "__main__":
    main()
