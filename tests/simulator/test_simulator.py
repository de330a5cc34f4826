"""Drives radio_simulator over its pseudo-terminal, byte by byte, as a host would.

The environment variable RADIO_SIMULATOR names the executable.
"""

import os
import pathlib
import select
import signal
import subprocess
import tempfile
import termios
import time
import tty
import unittest
import zlib

DONE = bytes.fromhex("AFAF")
CONFIRM_READY = bytes.fromhex("3800C7FF")
SPEED_115200 = bytes.fromhex("30010060CF9E")
SPEEDS = {9600: termios.B9600, 19200: termios.B19200, 57600: termios.B57600, 115200: termios.B115200}


def frame(code, data=""):
    """A command frame; code and data in hexadecimal, data also as bytes."""
    data = data if isinstance(data, bytes) else bytes.fromhex(data)
    body = bytes([int(code, 16), len(data) // 2]) + data
    words = sum(int.from_bytes(body[i:i + 2], "big") for i in range(0, len(body), 2))
    return body + (0xFFFF - words % 0x10000).to_bytes(2, "big")


class Radio:
    """A running simulator and the host's end of its line."""

    def __init__(self, profile, *arguments):
        self.folder = tempfile.TemporaryDirectory()
        self.port_path = os.path.join(self.folder.name, "radio")
        self.flash_path = os.path.join(self.folder.name, "flash")
        self.process = subprocess.Popen(
            [os.environ["RADIO_SIMULATOR"], "--profile", profile, "--link", self.port_path,
             "--flash", self.flash_path, *arguments], stdout=subprocess.PIPE, text=True)
        self.first_line = self.process.stdout.readline()
        self.port = None
        self.set_speed(19200)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.end()
        self.folder.cleanup()

    def end(self):
        """Ends the simulator; returns its exit code and what it printed after its first line."""
        self.close()
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
        output, _ = self.process.communicate(timeout=10)
        return self.process.returncode, output

    def close(self):
        if self.port is not None:
            os.close(self.port)
            self.port = None

    def set_speed(self, speed):
        self.close()
        self.port = os.open(self.port_path, os.O_RDWR | os.O_NOCTTY)
        tty.setraw(self.port, termios.TCSANOW)
        settings = termios.tcgetattr(self.port)
        settings[4] = settings[5] = SPEEDS[speed]
        termios.tcsetattr(self.port, termios.TCSANOW, settings)

    def read(self, count, seconds=10.0):
        """Up to `count` bytes; fewer when `seconds` pass in which none arrives."""
        received = b""
        while len(received) < count and select.select([self.port], [], [], seconds)[0]:
            received += os.read(self.port, count - len(received))
        return received

    def ask(self, request, count=2, seconds=10.0):
        os.write(self.port, request)
        return self.read(count, seconds)

    def components(self):
        """The configuration records, busy words between them dropped."""
        os.write(self.port, frame("31"))
        records = []
        while (head := self.read(2)) != DONE:
            if head != b"\xAE\xAE":
                record = head + self.read(2 * head[1])
                checksum = self.read(2)
                assert head[0] == 0x43 and frame(record[:1].hex(), record[2:])[-2:] == checksum
                records.append(record)
        return records


def commanded(profile, *arguments):
    """A radio that takes commands from the beginning, at 19200 bit/s."""
    return Radio(profile, "--fault", "already-in-upgrade-mode=19200", *arguments)


# Profile, faults and what is said: ">" the host, "<" the radio; "-": the radio says nothing. "ready" asks
# whether it takes commands, "speed" for 115200 bit/s; "@" the host's speed, "closed": its port for a while,
# "late": longer than a radio is patient.
IDENTITY = b"RV4100 1.08 RVKB3*?".hex() + "AFAF"
BOOT = b"RVKC4*".hex()
COMMANDED = "already-in-upgrade-mode=19200 "
DIALOGUES = [
    # Log-on without and with a boot application, in which 5E is no reset; given up; a reset while commanded.
    ("rv4100", "", f"> 5E, < 76, > 7E, < {IDENTITY}, ready, < AFAF"),
    ("rv4200", "", f"> 5E, < 56, > 7E, < {BOOT}, -, > 01, > 02, > 5E, < AFAF, ready, < AFAF, > 5E, < 56"),
    ("rv4200", "", f"> 5E, < 56, > 7E, < {BOOT}, > 5E, < 56, > 7E, < {BOOT}, > 01, < AFAF"),
    # The special log-on wants a power cycle, and so does F1.
    ("rv4100", "power-cycle", f"> 5E, -, power, < 76, > 3C5E23, < {IDENTITY}"),
    ("rv4100", "", "> 5E, < 76, > 3C5E23, -"),
    ("rv4200", "f1-power-cycle power-cycle-after=1", "> 5E, -, @ 9600, > 5E, < 56, @ 19200, < AFAF, ready, < AFAF"),
    ("rv4200", "already-in-upgrade-mode=57600", "> 5E, -, @ 57600, ready, < AFAF"),
    # Deaf at another speed; a restart brings it back, and a speed changed right after a frame loses nothing.
    ("rv4100", COMMANDED, "ready, < AFAF, speed, @ 115200, < AFAF, ready, < AFAF, @ 19200, ready, -, "
                          "@ 115200, ready, < AFAF, > 3600C9FF, @ 19200, < 76"),
    ("rv4100", COMMANDED, "speed, late, @ 115200, -, ready, < AFAF"),
    ("rv6100", COMMANDED, "speed, < 8101AFAF, ready, < AFAF"),
    ("rv4100", COMMANDED + "ignores-speed=115200", "speed, -, ready, < AFAF"),
    ("rv4100", COMMANDED + "deaf=115200", "ready, < AFAF, speed, @ 115200, ready, -"),
    ("rv4100", "", f"> 5E, closed, late, @ 19200, -, > 7E, < {IDENTITY}"),  # nobody hears the 76
    ("rv4100", "", "> 5E, closed, @ 19200, < 76"),  # somebody comes in time
    # Changed answers.
    ("rv4100", COMMANDED + "fault@38:2=8104", "ready, < AFAF, ready, < 8104AFAF, ready, < AFAF"),
    ("rv4100", COMMANDED + "fault@38:2+=8104", "ready, < AFAF, ready, < 8104AFAF, ready, < 8104AFAF"),
    ("rv4100", COMMANDED + "fault@38:1-2=810E", "ready, < 810EAFAF, ready, < 810EAFAF, ready, < AFAF"),
    ("rv4100", COMMANDED + "busy@38=3/20", "ready, < AEAEAEAEAEAEAFAF"),
    ("rv4100", COMMANDED + "busylist@38=AEAE0003", "ready, < AEAEAEAE0003AFAF"),
    ("rv4100", COMMANDED + "corrupt@38:1", "ready, < AFB0, ready, < AFAF"),
    ("rv4100", COMMANDED + "corrupt@70", "> 70008FFF, < 4902000122C49439AFAF"),
    ("rv4100", COMMANDED + "garbage@38=00FF", "ready, < 00FFAFAF"),
    ("rv4100", COMMANDED + "reply@38=1337", "ready, < 1337"),
    ("rv4100", COMMANDED + "cut@70=5", "> 70008FFF, < 4902000122"),
    ("rv4100", COMMANDED + "silent@38:2", "ready, < AFAF, ready, -, ready, < AFAF"),
    ("rv4100", COMMANDED + "silent-after=1", "ready, < AFAF, ready, -, ready, -"),
    ("rv4100", COMMANDED + "unknown=38", "ready, < 8001AFAF"),
]


class Dialogues(unittest.TestCase):
    def step(self, radio, word, rest):
        if word == "<":
            self.assertEqual(radio.read(len(bytes.fromhex(rest))).hex().upper(), rest.upper())
        elif word == "-":
            self.assertEqual(radio.read(1, 0.2), b"")
        elif word == "@":
            radio.set_speed(int(rest))
        elif word == "power":
            radio.process.send_signal(signal.SIGUSR2)
        elif word == "closed":
            radio.close()
            time.sleep(0.5)
        elif word == "late":
            time.sleep(1.4)
        else:
            os.write(radio.port, {"ready": CONFIRM_READY, "speed": SPEED_115200}.get(word) or bytes.fromhex(rest))

    def test_what_is_said(self):
        for profile, faults, script in DIALOGUES:
            arguments = [argument for fault in faults.split() for argument in ("--fault", fault)]
            with self.subTest(faults, script=script), Radio(profile, *arguments) as radio:
                self.assertRegex(radio.first_line, r"^Radio R[VH][46][12]00 on /dev/pts/\d+")
                for step in (script + ", -").split(", "):
                    word, _, rest = step.partition(" ")
                    self.step(radio, word, rest)

    def test_answers_that_take_their_time(self):
        # Paced: 514 bytes there and 4 back, 10 bits each at 19200 bit/s, are 269.8 ms.
        for arguments, request, reply, pieces, least in (
                (["--pace"], frame("35", bytes(510)), "810FAFAF", 1, 0.2697),
                (["--fault", "delay@38=300"], CONFIRM_READY, "AFAF", 1, 0.3),
                (["--fault", "split@38=1/150"], CONFIRM_READY, "AFAF", 2, 0.15)):
            with self.subTest(arguments), commanded("rv4100", *arguments) as radio:
                begin = time.monotonic()
                os.write(radio.port, request)
                received = [radio.read(len(reply) // 2 // pieces) for _ in range(pieces)]
                self.assertEqual(b"".join(received), bytes.fromhex(reply))
                self.assertGreaterEqual(time.monotonic() - begin, least)

    def test_hang_up(self):
        with commanded("rv4100", "--fault", "hangup@38:2") as radio:
            self.assertEqual(radio.ask(CONFIRM_READY), DONE)
            os.write(radio.port, CONFIRM_READY)
            self.assertTrue(select.select([radio.port], [], [], 10)[0])
            self.assertRaises(OSError, os.write, radio.port, CONFIRM_READY)
            self.assertEqual(radio.process.wait(10), 0)
            self.assertFalse(os.path.lexists(radio.port_path))
            self.assertTrue(os.path.exists(radio.flash_path))


class Memory(unittest.TestCase):
    def test_stream_that_stops_or_breaks(self):
        stream = zlib.compress(bytes(n * n % 251 for n in range(3000)))
        pad = bytes(len(stream) % 2)
        for data, reply, status in (
                (stream[:200], "AFAF", 2),
                (stream[:-1] + bytes([stream[-1] ^ 1]) + pad, "8108AFAF", 2),
                (stream + pad + b"\0\0", "8108AFAF", 2),
                (b"\0\1\2\3", "8108AFAF", 1)):  # nothing was written
            with self.subTest(data), commanded("rh6100") as radio:
                for request, count in ((frame("40", "004A0057"), 2), (frame("32", "0001"), 2),
                                       (frame("33", "0001"), 4), (frame("3C", "00020000"), 2)):
                    self.assertEqual(radio.ask(request, count)[-2:], DONE)
                self.assertEqual(radio.ask(frame("3D", data), len(reply) // 2).hex().upper(), reply)
                radio.ask(frame("39", "0001"))
                self.assertEqual([r[-3] for r in radio.components()], [0, 0, status, 0])

    def test_refusals(self):
        with commanded("rv4200") as radio:
            for request, reply in (
                    (frame("33", "0008"), "810FAFAF"),                        # nothing authorised
                    (frame("42", "0200004A0041"), "810BAFAF"),                # no network 2
                    (frame("3A", "0100"), "810BAFAF"),
                    (frame("42", "0001004A0041"), "AFAF"),
                    (frame("3A", "0000"), "AFAF"),
                    (frame("33", "0008"), "8104AFAF"),                        # locked
                    (frame("32", "0017"), "8106AFAF"),                        # there are 23 blocks
                    (frame("32", "0016"), "AFAF"),
                    (frame("35", "0000"), "8109AFAF"),                        # no address
                    (frame("34", "00080000"), "8106AFAF"),                    # behind the last word
                    (frame("34", "0007FFFF"), "AFAF"),
                    (frame("35", "1234"), "8105AFAF"),                        # not erased
                    (frame("3D", "1234"), "8109AFAF"),                        # address for plain data
                    (frame("33", "0016"), "AEAEAFAF"),
                    (frame("34", "0007FFFF"), "AFAF"),
                    (frame("35", "12345678"), "8106AFAF"),                    # runs over the end
                    (frame("35", "1234"), "AFAF"),
                    (frame("34", "0007FFFF"), "AFAF"),
                    (frame("35", "FFFF"), "8105AFAF"),                        # written already
                    (frame("34", "00008000"), "AFAF"),
                    (frame("35", "1234"), "8104AFAF"),                        # another block, locked
                    (frame("34", "0000"), "8108AFAF"),
                    (frame("38", "0000"), "8108AFAF"),
                    (frame("41"), "8001AFAF"),
                    (bytes.fromhex("3800C7FE"), "8002AFAF"),
                    (bytes.fromhex("3801"), "8003AFAF"),                      # the frame stops
                    (CONFIRM_READY, "AFAF")):
                with self.subTest(request=request.hex()):
                    self.assertEqual(radio.ask(request, len(reply) // 2).hex().upper(), reply)
            self.assertEqual(radio.read(1, 0.1), b"")

    def test_old_radio(self):
        with commanded("rv6100") as radio:
            for code, data in (("3C", "00008000"), ("3E", ""), ("42", "0000004A0041"), ("40", "004A")):
                self.assertEqual(radio.ask(frame(code, data), 4), bytes.fromhex("8001AFAF"))
            structure = radio.ask(frame("37"), 94)
            self.assertEqual(structure[:10], bytes.fromhex("462C 00000000 00001000"))
            self.assertEqual(structure[-12:-4], bytes.fromhex("00018000 00008000"))
            # Records without an end of the product and without network and device.
            self.assertEqual(radio.components()[0][2:], "RVKB2-01".encode("utf-16-be") + bytes(6))
            # With nothing authorised the tag in the code tells what was loaded.
            tagged = bytes.fromhex("2A2F69426262456C2F2A 0000 004A 0056 0041 0032 0046 0000")
            for request, count in ((frame("32", "0008"), 2), (frame("33", "0008"), 4),
                                   (frame("34", "00008000"), 2), (frame("35", tagged), 2),
                                   (frame("39", "0008"), 2)):
                self.assertEqual(radio.ask(request, count)[-2:], DONE)
            self.assertEqual(radio.components()[2][2:12], "JVA2F".encode("utf-16-be"))


class CommandLine(unittest.TestCase):
    def run_simulator(self, *arguments):
        return subprocess.run([os.environ["RADIO_SIMULATOR"], *arguments], capture_output=True, text=True,
                              timeout=10, check=False)

    def test_link(self):
        with tempfile.TemporaryDirectory() as folder:
            link = os.path.join(folder, "radio")
            os.symlink("/dev/pts/999", link)
            self.assertEqual(self.run_simulator("--link", link, "--for", "0.1").returncode, 0)
            self.assertFalse(os.path.lexists(link))
            pathlib.Path(link).write_text("precious")
            self.assertEqual(self.run_simulator("--link", link, "--for", "0.1").returncode, 1)
            self.assertEqual(pathlib.Path(link).read_text(), "precious")


if __name__ == "__main__":
    unittest.main()
