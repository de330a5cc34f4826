"""Plays one plan: a simulated radio, a program beside it, and what both leave behind."""

import contextlib
import dataclasses
import functools
import json
import os
import pathlib
import resource
import shutil
import signal
import subprocess
import tempfile
import threading
import time

import firmware

ROOT = pathlib.Path(__file__).resolve().parents[2]
BIN = ROOT / "build/bin"  # another one: set before the first run
BOOT = ROOT / "samples/boot"
RECEIVED = {"5E": "start", "7E": "logon", "3C": "logon"}


@dataclasses.dataclass
class Ended:
    """How a run ended, as the system, the radio and the program tell it."""

    code: int = 0
    seconds: float = 0
    timed_out: bool = False
    result: dict = dataclasses.field(default_factory=dict)
    lines: list = dataclasses.field(default_factory=list)
    errors: str = ""
    leftovers: list = dataclasses.field(default_factory=list)
    radio_log: str = ""
    before: dict = dataclasses.field(default_factory=dict)
    after: dict = dataclasses.field(default_factory=dict)
    log: bytes = None
    files: tuple = ()
    recovery: int = 0
    recovered: bool = True


def event_of(line):
    """The event that a line of the radio's log tells, by the names of its faults."""
    if "** Boot application received" in line:
        return "boot"
    if " <- " not in line:
        return None
    code, _, rest = line.split(" <- ", 1)[1].partition(" ")
    return RECEIVED[code] if "(reset)" in rest or "(log-on)" in rest else code


class Radio:
    """A simulated radio on a pseudo-terminal, and its flash once it has ended."""

    def __init__(self, folder, profile, faults=(), flash=None, name="radio"):
        self.folder, self.name = folder, name
        arguments = [BIN / "radio_simulator", "--profile", profile, "--link", folder / "port", "--flash", folder / name,
                     "--log", folder / f"{name}.log"]
        arguments += ["--flash-in", flash] if flash else []
        for fault in faults:
            arguments += ["--fault", fault]
        self.process = subprocess.Popen(arguments, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        end = time.monotonic() + 30
        while not (folder / "port").exists() and self.process.poll() is None and time.monotonic() < end:
            time.sleep(0.005)

    def stop(self):
        if self.process.poll() is None:
            self.process.terminate()
        self.process.wait(30)
        return self.folder / self.name

    def log(self):
        path = self.folder / f"{self.name}.log"
        return path.read_text() if path.exists() else ""


def flash_of(path):
    """{(network, device): (unit, start, bytes)} of a dump."""
    dump, devices = path.read_bytes(), {}
    for line in path.with_name(path.name + ".map").read_text().splitlines():
        kind, *pairs = line.split()
        values = dict(pair.split("=", 1) for pair in pairs)
        if kind == "device":
            offset, size = int(values["offset"]), int(values["bytes"])
            devices[int(values["network"]), int(values["device"])] = (
                int(values["unit"]), int(values["start"], 16), dump[offset:offset + size])
    return devices


@functools.cache
def untouched(profile):
    """The flash of a radio as it comes."""
    with tempfile.TemporaryDirectory(prefix="campaign-") as folder:
        return flash_of(Radio(pathlib.Path(folder), profile).stop())


def full_disk():
    """Files can't grow beyond this; what is written to them fails, as on a full disk."""
    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_FSIZE, (2000, 2000))


class Player:
    def __init__(self, plan):
        self.plan, self.ended = plan, Ended()
        self._folder = tempfile.TemporaryDirectory(prefix="campaign-")
        self.folder = pathlib.Path(self._folder.name)
        self.radio = None
        (self.folder / "home").mkdir()
        for boot in BOOT.iterdir():
            shutil.copy(boot, self.folder / "home")
        (self.folder / "settings.conf").write_text(f"[General]\nDebug={plan.program != 'fldc'}\nHistory=False\n")
        self.environment = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "WAYLAND_DISPLAY", "FLDC_PORT")}
        self.environment.update(RV4100_FLDC_PORTS=f"COM1={self.folder / 'port'}", RV4100_FLDC_HOME=f"{self.folder}/home",
                                RV4100_FLDC_SETTINGS=f"{self.folder}/settings.conf", RV4100_FLDC_POWER_CYCLE_S="3",
                                XDG_DATA_DIRS=f"{BIN.parent}/share:/usr/share")

    def play(self):
        with self._folder:
            dice = self.plan.random("firmware")
            slots = firmware.SLOTS[self.plan.profile]
            chosen = dice.sample(slots, dice.randint(1, len(slots)))
            wanted = [*chosen, *([None] if dice.random() < 0.15 else [])]
            self.ended.files = tuple(firmware.make(dice, self.folder, self.plan.profile, slot) for slot in wanted)
            flash = self._start_flash(dice)
            self.radio = Radio(self.folder, self.plan.profile, self.plan.faults, flash)
            if self.plan.start == "boot-application":  # the radio is left waiting for it
                self._quietly(["report", self.folder / "port", "--boot-files", self.folder / "nowhere"])
            self._run()
            self.ended.radio_log = self.radio.log()
            dump = self.radio.stop()
            self.ended.after = flash_of(dump)
            self._recover(dice, dump)
        return self.ended

    def _start_flash(self, dice):
        """The flash before the run; of a radio that an earlier run has left half written where planned."""
        half = self.plan.start == "half-written"
        if not half:
            self.ended.before = untouched(self.plan.profile)
            return None
        fault = f"hangup@{dice.choice(('35', '3D', '34', '3C', '39'))}:1"
        radio = Radio(self.folder, self.plan.profile, (fault,), name="start")
        self._quietly(["download", self.folder / "port", *(file.path for file in self.ended.files)])
        dump = radio.stop()
        self.ended.before = flash_of(dump)
        return dump

    def _quietly(self, arguments):
        return subprocess.run([BIN / "fldc", *arguments], env=self.environment, stdin=subprocess.DEVNULL, timeout=300,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False).returncode

    def _command(self):
        plan, files = self.plan, [str(file.path) for file in self.ended.files]
        if plan.program == "rv4100_fldc":
            names = ",".join(file.path.name for file in self.ended.files)
            return [BIN / "rv4100_fldc", "/p", "1", "/r", "2", "/f", str(self.folder).replace("/", "\\") + "," + names]
        if plan.program == "bus":
            return ["dbus-run-session", "--", "/usr/bin/python3", ROOT / "examples/download.py", "COM1:", *files]
        arguments = {"download": files, "erase": [plan.random("erase").choice(("#1", "#2", "#3", "#4", "nothing"))]}
        log = ["--log", "log"] if plan.log else []
        return [BIN / "fldc", "--json", *log, plan.operation, self.folder / "port",
                *arguments.get(plan.operation, []), *plan.options]

    def _run(self):
        plan, ended = self.plan, self.ended
        output = open("/dev/full", "w") if plan.output == "full" else subprocess.PIPE
        start = time.monotonic()
        process = subprocess.Popen(self._command(), env=self.environment, stdin=subprocess.DEVNULL, stdout=output,
                                   stderr=open(self.folder / "errors", "w"), cwd=self.folder, text=True,
                                   start_new_session=True, preexec_fn=full_disk if plan.log == "full" else None)
        watch = threading.Thread(target=self._watch, args=(process,), daemon=True)
        watch.start()
        guard = threading.Timer(plan.bound, self._give_up, (process,))
        guard.start()
        if plan.output != "full":
            self._read(process)
        process.wait()
        guard.cancel()
        ended.code, ended.seconds = process.returncode, time.monotonic() - start
        watch.join()
        ended.errors = (self.folder / "errors").read_text(errors="replace")
        ended.log = (self.folder / "log").read_bytes() if (self.folder / "log").exists() else None
        if plan.program == "rv4100_fldc" and (log := self.folder / "home/0_Download.log").exists():
            ended.log = log.read_bytes()
        self._look_around(process.pid)

    def _give_up(self, process):
        self.ended.timed_out = True
        with contextlib.suppress(ProcessLookupError):
            os.killpg(process.pid, signal.SIGKILL)

    def _read(self, process):
        plan, count = self.plan, 0
        for line in process.stdout:
            count += 1
            with contextlib.suppress(ValueError):
                self.ended.lines.append(json.loads(line))
            if plan.signal and not plan.trigger and count == plan.signal_after:
                self._signal(process)
            if plan.output == "closed" and count == 1 + plan.random("output").randrange(8):
                process.stdout.close()
                break
        if self.ended.lines and self.ended.lines[-1].get("type") == "result":
            self.ended.result = self.ended.lines[-1]

    def _signal(self, process):
        if self.plan.signal == "unplug":
            return self.radio.process.terminate()
        with contextlib.suppress(ProcessLookupError):
            process.send_signal(getattr(signal, self.plan.signal))
            if self.plan.signal == "SIGSTOP":
                time.sleep(self.plan.random("stop").uniform(0.1, 3))
                process.send_signal(signal.SIGCONT)

    def _watch(self, process):
        """Sends what is due by what the radio has heard or by time, and plugs a lost device in again."""
        plan, began, sent, returned = self.plan, time.monotonic(), False, False
        timed = plan.signal and plan.program != "fldc"
        while process.poll() is None:
            if plan.trigger and not sent:
                heard = [event_of(line) for line in self.radio.log().splitlines()]
                if heard.count(plan.trigger[0]) >= plan.trigger[1]:
                    sent = True
                    self._signal(process)
            if timed and not sent and time.monotonic() - began > plan.signal_after / 10:
                sent = True
                self._signal(process)
            if plan.returns and not returned and self.radio.process.poll() is not None:
                returned = True
                time.sleep(plan.random("return").uniform(0.1, 2))
                self.radio = Radio(self.folder, plan.profile, (), self.radio.stop(), "again")
            time.sleep(0.002 if plan.trigger else 0.02)

    def _look_around(self, pid):
        """What a run must not leave behind: processes, locks, unfinished files."""
        leftovers = self.ended.leftovers
        end = time.monotonic() + 3  # a bus that was started for the run ends behind it
        while True:
            try:
                os.killpg(pid, 0)
            except ProcessLookupError:
                break
            if time.monotonic() > end:
                leftovers.append("a process")
                os.killpg(pid, signal.SIGKILL)
                break
            time.sleep(0.02)
        # By its number alone the device may be another radio's by now.
        with contextlib.suppress(OSError):
            inode = os.stat(self.folder / "port").st_ino
            leftovers += ["a lock" for line in open("/proc/locks") if line.split()[5].endswith(f":{inode}")
                          and "FLOCK" in line and line.split()[4] == str(pid)]
        certificates = self.folder / "certificates"
        if certificates.exists() and self.ended.code >= 0:
            leftovers += [f"file {each.name}" for each in certificates.iterdir() if each.suffix != ".json"]

    def _recover(self, dice, dump):
        """A faultless download to the same radio, switched off and on, must succeed. A machine so loaded that the
        radio's answers come too late is no fault: it may be tried again."""
        slots = firmware.SLOTS[self.plan.profile]
        files = [firmware.make(dice, self.folder, self.plan.profile, slot, 500) for slot in slots]
        for name in ("second", "third", "fourth"):
            radio = Radio(self.folder, self.plan.profile, (), dump, name)
            self.ended.recovery = self._quietly(["download", self.folder / "port", *(file.path for file in files)])
            dump = radio.stop()
            self.ended.recovered = all(file.is_in(flash_of(dump)) for file in files)
            if self.ended.recovery == 0:
                break
