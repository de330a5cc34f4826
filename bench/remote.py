#!/usr/bin/env python3
"""Round trip over RFC 2217 on this machine, ser2net in between, against the same radio's own line: medians of
`fldc link-test`, the two in turn. Called with the folder of the programs and the samples."""

import json
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

PROGRAMS, SAMPLES = map(pathlib.Path, sys.argv[1:3])
PLACE = ("127.20.22.17", 22170)
SERVER = """connection: &radio
  accepter: telnet(rfc2217),tcp(nodelay=true),{},{}
  connector: serialdev,{},9600n81,local
  options:
    chardelay: {}
"""


def round_trip(port):
    """Milliseconds at 115200 baud, of a radio that answers at once."""
    run = subprocess.run([PROGRAMS / "fldc", "--json", "link-test", port, "--rounds", "500", "--boot-files",
                          SAMPLES / "boot"], capture_output=True, text=True, timeout=120, check=True)
    links = [json.loads(line) for line in run.stdout.splitlines() if '"type":"link"' in line]
    return next(link["median_ms"] for link in links if link["baud"] == 115200)


with tempfile.TemporaryDirectory() as folder:
    radio = pathlib.Path(folder) / "radio"
    device = subprocess.Popen([PROGRAMS / "radio_simulator", "--profile", "rv4200", "--link", radio],
                              stdout=subprocess.DEVNULL)
    try:
        for delay in ("false", "true"):
            config = pathlib.Path(folder) / "ser2net.yaml"
            config.write_text(SERVER.format(*PLACE, radio, delay))
            local, remote = [], []
            for _ in range(5):
                time.sleep(0.5)
                local.append(round_trip(radio))
                server = subprocess.Popen(["/usr/sbin/ser2net", "-n", "-c", config, "-P", f"{folder}/pid"],
                                          stderr=subprocess.DEVNULL)
                time.sleep(0.5)
                remote.append(round_trip(f"rfc2217://{PLACE[0]}:{PLACE[1]}"))
                server.kill()
                server.wait()
            ratio = statistics.median(far / near for far, near in zip(remote, local))
            print(f"round trip over RFC 2217, chardelay {delay:5} {statistics.median(remote) * 1000:6.0f} us"
                  f"  ({ratio:.2f} times the local line)")
    finally:
        device.terminate()
        device.wait()
