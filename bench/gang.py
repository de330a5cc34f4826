#!/usr/bin/env python3
"""Many radios at once: the sum of the rates of 8 and of 32 downloads by `fldc gang` against one of the same
program, to simulated radios whose bytes take the time of a real line at 115200, and the processor time of the
programs (not of the radios). Called with the folder of the executables and that of the samples."""

import json
import pathlib
import resource
import subprocess
import sys
import tempfile
import time

PROGRAMS, SAMPLES = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
sys.path.append(str(SAMPLES))
import make_samples  # noqa: E402


def firmware(folder):
    """120,000 bytes that don't compress, for the DSP of an RV4200."""
    lines = make_samples.image("JHA2A-1.10", [(0, make_samples.noise("bench", 120000))], kind=2, targets=[("RVKC4", 1)])
    path = folder / "dsp.srec"
    path.write_text("".join(line + "\r\n" for line in lines))
    return path


def moment(line):
    return time.mktime(time.strptime(line["time"][:19], "%Y-%m-%dT%H:%M:%S")) + float("0" + line["time"][19:23])


def rates(lines):
    """Bytes per second of each port, from the first data to the last answer."""
    spans = {}
    for line in lines:
        if line["type"] == "progress":
            first, _, _ = spans.setdefault(line["port"], (moment(line), line["bytes"], 0))[0:3]
            spans[line["port"]] = (first, spans[line["port"]][1], (moment(line), line["bytes"]))
    return [(end - begin) / (last - first) for first, begin, (last, end) in spans.values()]


def gang(folder, path, count):
    """(sum of the rates, processor milliseconds per second and radio)"""
    radios = [subprocess.Popen([PROGRAMS / "radio_simulator", "--profile", "rv4200", "--pace", "--link", folder / f"r{i}"],
                               stdout=subprocess.DEVNULL) for i in range(count)]
    while not all((folder / f"r{i}").exists() for i in range(count)):
        time.sleep(0.01)
    ports = [word for i in range(count) for word in ("--port", folder / f"r{i}")]
    before, start = resource.getrusage(resource.RUSAGE_CHILDREN), time.monotonic()
    run = subprocess.run([PROGRAMS / "fldc", "--json", "gang", path, *ports, "--boot-files", SAMPLES / "boot"],
                         stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=True)
    seconds, after = time.monotonic() - start, resource.getrusage(resource.RUSAGE_CHILDREN)
    for radio in radios:
        radio.terminate()
        radio.wait()
    used = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    return sum(rates(json.loads(line) for line in run.stdout.splitlines())), 1000 * used / seconds / count


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        path = firmware(folder)
        single, _ = gang(folder, path, 1)
        for count in (8, 32):
            rate, used = gang(folder, path, count)
            print(f"{count:2} radios: {rate / single:5.2f} times the rate of one ({rate / count:.0f} of {single:.0f} "
                  f"bytes/s each), {used:.1f} ms of processor per second and radio")


if __name__ == "__main__":
    main()
