"""A radio on a pseudo-terminal, the program beside it, and a reader of firmware files that shares no
code with either."""

import os
import pathlib
import signal
import subprocess
import tempfile
import time

BUS_CLIENT = """
import dbus, subprocess, sys, time
service, bus, name = subprocess.Popen([sys.argv[1], "--automation"]), dbus.SessionBus(), "com.kelvane.RV4100_FLDC_EXE"
while not bus.name_has_owner(name):
    assert service.poll() is None
    time.sleep(0.02)
manager = dbus.Interface(bus.get_object(name, "/com/kelvane/RV4100_FLDC_EXE/clsDLManager"), name + "._clsDLManager")
results = [manager.ReportConfigurations("", timeout=100)[0], manager.EraseSelected(sys.argv[2], "", timeout=100)[0]]
service.terminate()
sys.exit(results != [0, 0] or service.wait())
"""


class Workbench:
    """One simulated radio with a folder of its own: settings, boot files, logs, flash dump."""

    def __init__(self, program, simulator, samples, profile, faults=(), debug=True, pace=False,
                 replay=()):
        self.program, self.samples = program, samples
        self._folder = tempfile.TemporaryDirectory(prefix="fldc-")
        self.folder = pathlib.Path(self._folder.name)
        for boot in (samples / "boot").iterdir():
            (self.folder / boot.name).write_bytes(boot.read_bytes())
        (self.folder / "settings.conf").write_text(f"[General]\nDebug={debug}\nHistory=False\n")
        radio = replay or ("--profile", profile, "--flash", self.folder / "flash")
        self._arguments = [simulator, "--link", self.folder / "radio", *radio] + (["--pace"] if pace else [])
        self.start_radio(*faults)

    def start_radio(self, *faults):
        arguments = list(self._arguments)
        for fault in faults:
            arguments += ["--fault", fault]
        with open(self.folder / "radio.txt", "w") as output:
            self.radio = subprocess.Popen(arguments, stdout=output)
        deadline = time.monotonic() + 10
        while not (self.folder / "radio").exists():
            assert self.radio.poll() is None and time.monotonic() < deadline, "no simulated radio"
            time.sleep(0.01)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop_radio()
        self._folder.cleanup()

    def environment(self, **more):
        values = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "WAYLAND_DISPLAY")}
        values.update(RV4100_FLDC_PORTS=f"COM1={self.folder / 'radio'}",
                      RV4100_FLDC_SETTINGS=str(self.folder / "settings.conf"),
                      RV4100_FLDC_HOME=str(self.folder), RV4100_FLDC_POWER_CYCLE_S="3")
        values.update(more)
        return values

    def start(self, *arguments, **more):
        return subprocess.Popen([self.program, *arguments], env=self.environment(**more),
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, cwd=self.folder, text=True)

    def download(self, *files):
        """The usual call; returns the exit code and what was printed."""
        folder = str(files[0].parent).replace("/", "\\")
        names = ",".join(file.name for file in files)
        run = self.start("/p", "1", "/r", "2", "/f", f"{folder},{names}")
        try:
            out, err = run.communicate(timeout=120)
        except subprocess.TimeoutExpired:
            run.kill()
            raise
        return run.returncode, out + err

    def erase_over_the_bus(self, positions, **more):
        """Reports and erases as a client of the session bus; 0 when both went through."""
        return subprocess.run(["dbus-run-session", "--", "/usr/bin/python3", "-c", BUS_CLIENT, self.program, positions],
                              env=self.environment(**more), stderr=subprocess.DEVNULL, timeout=120, check=False).returncode

    def log(self, name="0_Download.log"):
        path = self.folder / name
        return path.read_bytes().decode("latin-1") if path.exists() else ""

    def outcome(self):
        """The last status line of the download log."""
        notes = [line[20:] for line in self.log().splitlines()
                 if line[:2] == "20" and line[20:21].strip()]
        return notes[-1] if notes else ""

    def stop_radio(self):
        if self.radio.poll() is None:
            self.radio.send_signal(signal.SIGTERM)
            self.radio.wait(timeout=10)

    def flash(self):
        """Ends the radio; its flash as {(network, device): (unit, start, bytes)} and its components."""
        self.stop_radio()
        dump = (self.folder / "flash").read_bytes()
        devices, components = {}, []
        for line in (self.folder / "flash.map").read_text().splitlines():
            kind, *pairs = line.split()
            values = dict(pair.split("=", 1) for pair in pairs)
            if kind == "device":
                offset, size = int(values["offset"]), int(values["bytes"])
                devices[int(values["network"]), int(values["device"])] = (
                    int(values["unit"]), int(values["start"], 16), dump[offset:offset + size])
            else:
                components.append(values["product"])
        return devices, components


def lost_records(path, devices):
    """Records of the file that no one memory device holds at their address."""
    return [f"{path.name} at {address:08X}" for _, address, data in records(path)
            if not any(content[(address - start) * unit:][:len(data)] == data
                       for unit, start, content in devices.values() if address >= start)]


def records(path):
    """(image number, address, bytes) of every data record of an S-record file."""
    image = -1
    for line in path.read_text("latin-1").splitlines():
        if line.startswith("S0"):
            image += 1
        elif line[:2] in ("S1", "S2", "S3"):
            digits = {"S1": 4, "S2": 6, "S3": 8}[line[:2]]
            yield image, int(line[4:4 + digits], 16), bytes.fromhex(line[4 + digits:-2])
