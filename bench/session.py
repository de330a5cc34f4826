#!/usr/bin/env python3
"""What the session record costs: fldc and the silent program side by side against a radio whose bytes take
the time of a real line. Called with the folder of the executables and that of the samples."""

import datetime
import json
import os
import pathlib
import pty
import select
import statistics
import subprocess
import sys
import tempfile
import time
import tty

PROGRAMS, SAMPLES = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
sys.path.append(str(SAMPLES))
import make_samples  # noqa: E402

BAUD = 115200


def firmware(folder):
    """60,000 bytes that don't compress, for the DSP of an RV4200."""
    lines = make_samples.image("JHA2A-1.10", [(0, make_samples.noise("bench", 60000))], kind=2, targets=[("RVKC4", 1)])
    path = folder / "dsp.srec"
    path.write_text("".join(line + "\r\n" for line in lines))
    return path


def download(program, port, path):
    if program == "rv4100_fldc":
        os.environ["RV4100_FLDC_PORTS"] = f"COM1={port}"
        return [PROGRAMS / program, "/p", "1", "/r", "2", "/f", str(path).replace("/", "\\")]
    return [PROGRAMS / "fldc", *(["--json"] if program == "fldc --json" else []), "download", str(port), str(path)]


def start_to_first_byte(program, path):
    """Milliseconds until the reset byte is on the line."""
    times = []
    for _ in range(15):
        master, slave = pty.openpty()
        tty.setraw(slave)
        start = time.monotonic()
        run = subprocess.Popen(download(program, os.ttyname(slave), path), stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        if select.select([master], [], [], 5)[0]:
            times.append(1000 * (time.monotonic() - start))
        run.kill()
        run.wait()
        os.close(master)
        os.close(slave)
    return statistics.median(times) if times else float("nan")


def whole_run(program, folder, path):
    """Seconds of a download to a paced radio, and what the program said."""
    radio = subprocess.Popen([PROGRAMS / "radio_simulator", "--profile", "rv4200", "--pace", "--link", folder / "radio"],
                             stdout=subprocess.DEVNULL)
    while not (folder / "radio").exists():
        time.sleep(0.01)
    start = time.monotonic()
    run = subprocess.run(download(program, folder / "radio", path), stdin=subprocess.DEVNULL, capture_output=True,
                         text=True, check=True)
    seconds = time.monotonic() - start
    radio.terminate()
    radio.wait()
    return seconds, run.stdout


def moment(line):
    return datetime.datetime.fromisoformat(line["time"].replace("Z", "+00:00")).timestamp()


def wire_use(output, ideal):
    """Share of the line's time between the first address and the last data frame's answer."""
    lines = [json.loads(line) for line in output.splitlines()]
    begin = next(moment(line) for line in lines if line.get("action") == "erased")
    end = next(moment(line) for line in lines if line.get("percent") == 100)
    return 100 * ideal / (end - begin)


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        path = firmware(folder)
        os.environ.update(RV4100_FLDC_HOME=str(SAMPLES / "boot"), RV4100_FLDC_SETTINGS=str(folder / "settings.conf"))
        for program in ("rv4100_fldc", "fldc", "fldc --json"):
            print(f"start to first byte, {program:<12} {start_to_first_byte(program, path):7.1f} ms")
        plan = subprocess.run([PROGRAMS / "fldc", "--json", "plan", path], capture_output=True, text=True, check=True)
        ideal = next(json.loads(line) for line in plan.stdout.splitlines() if '"seconds":{' in line)["seconds"][str(BAUD)]
        times = {"rv4100_fldc": [], "fldc": [], "fldc --json": []}
        uses = []
        for _ in range(5):
            for program, seconds in times.items():
                took, output = whole_run(program, folder, path)
                seconds.append(took)
                if program == "fldc --json":
                    uses.append(wire_use(output, ideal))
        print(f"wire use of the data with --json   {statistics.median(uses):7.2f} %")
        silent = statistics.median(times["rv4100_fldc"])
        for program in ("fldc", "fldc --json"):
            print(f"whole download, {program:<12} {statistics.median(times[program]) / silent:14.4f} times the silent program")


if __name__ == "__main__":
    main()
