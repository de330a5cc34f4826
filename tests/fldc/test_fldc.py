"""fldc without a radio: exit codes, JSON lines and what it says of firmware files, which are read here
once more by code that shares nothing with it.

Called with the paths of the program and of the sample firmware."""

import json
import os
import pathlib
import random
import signal
import subprocess
import sys
import tempfile
import unittest
import zlib

PROGRAM, SAMPLES = os.path.abspath(sys.argv[1]), pathlib.Path(sys.argv[2]).resolve()
RESULT_KEYS = {"type", "time", "command", "ok", "exit", "code", "message", "advice", "radio", "seconds"}
DSP = SAMPLES / "rv4200/dsp.srec"


def start(*arguments, **more):
    environment = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "FLDC_PORT")}
    environment.update(more.pop("env", {}))
    return subprocess.Popen([PROGRAM, *arguments], env=environment, **{
        "stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **more})


def checked(process, out):
    """The JSON objects of a run, whose result must be the last of them and agree with the exit code."""
    lines = [json.loads(line) for line in out.decode("utf-8").splitlines()]
    assert out.endswith(b"\n") and all(line["type"] and line["time"].endswith("Z") for line in lines)
    assert [line["type"] for line in lines].index("result") == len(lines) - 1, lines
    result = lines[-1]
    assert set(result) == RESULT_KEYS and result["radio"] == "untouched" and result["advice"], result
    assert result["exit"] == process.returncode and result["ok"] == (result["exit"] == 0), result
    return lines


def run(*arguments, **more):
    process = start(*arguments, **more)
    out, _ = process.communicate(timeout=120)
    return checked(process, out)


def of_type(lines, name):
    return [line for line in lines if line["type"] == name]


def images_of(path):
    """[[[address, bytes]...]...]: the runs of each image, with the bytes that pad odd ones."""
    images, unit = [], 2
    for line in path.read_text("latin-1").splitlines():
        if line.startswith("DW"):
            unit = int(line[2:]) // 8
        elif line.startswith("S0"):
            pads_start, runs = b"JWA2" in bytes.fromhex(line[8:-2]), []
            unit = 1 if pads_start else unit
            images.append(runs)
        elif line[:2] in ("S1", "S2", "S3"):
            digits = {"S1": 4, "S2": 6, "S3": 8}[line[:2]]
            address, data = int(line[4:4 + digits], 16), bytes.fromhex(line[4 + digits:-2])
            if not runs or runs[-1][0] + len(runs[-1][1]) // unit != address:
                if runs and len(runs[-1][1]) % 2:
                    runs[-1][1] += b"\xff"
                pad = pads_start and address % 2
                runs.append([address - pad, b"\xff" * pad])
            runs[-1][1] += data
    return images


def compressed_size(data):
    size = len(zlib.compress(data))
    return size + size % 2 if size <= len(data) else None


class CommandLine(unittest.TestCase):
    # Arguments, exit code, command, something of the message.
    CASES = [
        ([], 1, "", "No command"), (["bogus"], 1, "", "bogus"), (["--bogus"], 1, "", "--bogus"),
        (["inspect"], 1, "inspect", "FILE"), (["inspect", "--bogus", "x"], 1, "inspect", "--bogus"),
        (["--", "inspect", "x"], 1, "", "inspect"), (["report"], 1, "report", "No port"),
        (["report", "-"], 1, "report", "No port"), (["download", "p"], 1, "download", "FILE"),
        (["download", "p", "f", "--speed", "1200"], 1, "download", "1200"),
        (["report", "p", "--power-cycle-wait", "x"], 1, "report", "--power-cycle-wait"),
        (["--log", "l", "inspect", "--log", "l", DSP], 0, "inspect", "valid"),
        (["inspect", "missing"], 3, "inspect", "missing"),
        (["plan", DSP, "missing"], 3, "plan", "missing"),
        (["certificate", "missing"], 3, "certificate", "missing"),
        (["certificate", DSP], 3, "certificate", "not a certificate"),
    ]

    def test_usage(self):
        for arguments, code, command, words in self.CASES:
            for line in (["--json", *arguments], [*arguments, "--json"]):
                if "--" in arguments and line[-1] == "--json":
                    continue  # an argument there
                with self.subTest(line=line):
                    result = run(*line)[-1]
                    self.assertEqual((result["exit"], result["command"]), (code, command))
                    self.assertIn(words, result["message"])

    def test_text_for_people(self):
        for arguments in (["--help"], ["--json", "--version"], ["plan", "--json", "--help"]):
            out, error = start(*arguments).communicate(timeout=60)
            self.assertTrue(out and not out.startswith(b"{") and not error, arguments)
        process = start("inspect", "a\x1b[31m\nb")
        out, error = process.communicate(timeout=60)
        self.assertEqual(process.returncode, 3)
        self.assertNotIn(b"\x1b", out + error)
        self.assertEqual([line.split(b": ")[0] for line in error.splitlines()], [b"fldc", b"hint"])

    def test_port_of_the_environment(self):
        for arguments in (["report"], ["report", "-"], ["plan", DSP, "--port", "-"]):
            lines = run("--json", *arguments, env={"FLDC_PORT": "/none"})
            self.assertEqual(lines[0]["port"], "/none")

    def test_certificates_tell_how_far_to_trust_them(self):
        good = {"command": "download", "ok": True, "exit": 0, "written": ["T"], "confirmed": ["T"]}
        cases = [({}, 0), ({"exit": 7, "ok": False}, 7), ({"exit": 130, "ok": False}, 7),
                 ({"confirmed": []}, 7), ({"command": "erase"}, 7), ({"exit": 8, "ok": False}, 8)]
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "c.json"
            for changes, code in cases:
                file.write_text(json.dumps({"type": "certificate", "result": {**good, **changes}}))
                self.assertEqual(run("certificate", "--json", file)[-1]["exit"], code, changes)
                self.assertTrue(start("certificate", file).communicate(timeout=60)[0])


class Files(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = os.fsencode(folder.name)

    def made(self, name, content):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(content)
        return path

    def test_what_samples_hold(self):
        paths = sorted(SAMPLES.glob("*/*.[sS]rec"))
        lines = run("inspect", "--json", *paths)
        for path, file in zip(paths, of_type(lines, "file"), strict=True):
            with self.subTest(path=path):
                self.assertTrue(file["valid"] and not file["errors"])
                shown = [[(t["address"], t["bytes"], t["compressed_bytes"], int(t["crc32"], 16))
                          for t in image["tables"]] for image in file["images"]]
                self.assertEqual(shown, [[(address, len(data), compressed_size(data), zlib.crc32(data))
                                          for address, data in runs] for runs in images_of(path)])
                boots = [image["boot_application"] for image in file["images"]]
                self.assertEqual(boots, [path.parent.name == "boot"] * len(boots))

    def test_plans(self):
        for path in sorted(SAMPLES.glob("*/*.srec")):
            frames, data, line = 0, 0, 0
            for _, content in (run for runs in images_of(path) for run in runs):
                size = compressed_size(content) or len(content) + len(content) % 2
                full, rest = divmod(size, 510)
                frames += 1 + full + (rest > 0)
                data += size
                line += 8 + 2 + full * (4 + 510 + 2) + (4 + rest + 2 if rest else 0)
            plan = of_type(run("plan", "--json", path), "plan")[0]
            self.assertEqual((sum(image["frames"] for image in plan["images"]),
                              sum(image["wire_bytes"] for image in plan["images"])), (frames, data))
            self.assertEqual(set(plan["seconds"]), {"115200", "57600", "19200", "9600"})
            for baud, seconds in plan["seconds"].items():
                self.assertAlmostEqual(seconds, line * 10 / int(baud), delta=0.001)

    def test_faulty_files(self):
        lines = DSP.read_bytes().splitlines(keepends=True)

        def changed(number, change):
            return b"".join(change(line) if i == number else line for i, line in enumerate(lines, 1))

        bad_sum = {"line": 4, "expected": "B0", "found": "4F"}
        not_valid = {"line": 4}
        cases = [
            (changed(4, lambda line: line[:-4] + b"4F\r\n"), True, [bad_sum]),
            (changed(4, lambda line: line[:-4] + b"4f  \r\n"), True, [bad_sum]),
            (changed(4, lambda line: line[:-4] + b"\r\n"), False, [not_valid]),
            (changed(4, lambda line: line[:6] + b"G" + line[7:]), False, [not_valid]),
            (changed(4, lambda line: line[:20] + b"G" + line[21:]), False, [not_valid]),
            (changed(4, lambda line: b"S5" + line[2:-4] + b"B1\r\n"), False,
             [not_valid, {"line": 4, "expected": "B0", "found": "B1"}]),
            (changed(3, lambda line: b"S00G" + line[4:]), True, []),
            (changed(len(lines), lambda line: b"S8\r\n"), True, []),
            (changed(len(lines), lambda line: b""), False, [{"line": len(lines) - 1}]),
            (b"", False, [{"line": 0}]),
        ]
        for content, valid, errors in cases:
            with self.subTest(content=content[:200], errors=errors):
                file = of_type(run("inspect", "--json", self.made(b"f.srec", content)), "file")[0]
                shown = [{k: v for k, v in error.items() if k != "reason"} for error in file["errors"]]
                self.assertEqual((file["valid"], shown), (valid, errors))
                self.assertEqual(bool(file["images"]), valid)

    def test_every_wrong_checksum(self):
        record = b"S1050000ABCD00\r\n"
        path = self.made(b"f.srec", b"S0030000FC\r\n" + record * 10000 + b"S9030000FC\r\n")
        file = of_type(run("inspect", "--json", path), "file")[0]
        self.assertEqual([error["line"] for error in file["errors"]], list(range(2, 10002)))

    def test_names(self):
        os.mkfifo(os.path.join(self.folder, b"pipe"))
        good = [self.made(name, DSP.read_bytes()) for name in
                (b"-x.srec", b"[a,b]", b"\xff\\n.srec", b"\xfe\\n.srec")]
        bad = [b"pipe", b".", b"/dev/null", b""]
        lines = run("inspect", "--json", "--", *(os.path.basename(name) for name in good), *bad,
                    cwd=self.folder)
        self.assertEqual([file["valid"] for file in of_type(lines, "file")], [True] * 4 + [False] * 4)
        self.assertEqual(lines[0]["files"][2]["path"], "\ufffd\\n.srec")


class Descriptors(unittest.TestCase):
    def test_closed_ones(self):
        for closed in ((0,), (1,), (2,), (1, 2), (0, 1, 2)):
            process = start("inspect", "--json", DSP,
                            preexec_fn=lambda: [os.close(number) for number in closed])
            out, error = process.communicate(timeout=60)
            self.assertEqual((process.returncode, error), (0, b""), closed)
            self.assertTrue(1 in closed or checked(process, out))

    def test_lost_output(self):
        for arguments in (["inspect", DSP], ["--json", "inspect", DSP], ["--json", "bogus"], ["--help"]):
            reader, writer = os.pipe()
            os.close(reader)
            with open("/dev/full", "wb") as full, open(writer, "wb") as pipe:
                for output in (full, pipe):
                    process = start(*arguments, stdout=output)
                    process.communicate(timeout=60)
                    self.assertEqual(process.returncode, 141, arguments)

    def test_signals(self):
        noise = random.Random(1).randbytes(1 << 21)
        records = (b"\x25" + at.to_bytes(4, "big") + noise[at:at + 32] for at in range(0, len(noise), 32))
        with tempfile.NamedTemporaryFile() as big:
            big.write(b"DW 8\nS0030000FC\n")
            big.writelines(b"S3%s%02X\n" % (body.hex().upper().encode(), ~sum(body) & 0xFF)
                           for body in records)
            big.write(b"S70500000000FA\n")
            big.flush()
            for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
                process = start("inspect", "--json", *[big.name] * 60)
                first = process.stdout.readline()
                process.send_signal(number)
                result = checked(process, first + process.communicate(timeout=120)[0])[-1]
                self.assertEqual(result["exit"], 128 + number)
                self.assertIn(number.name, result["message"])

    def test_signal_while_nobody_reads(self):
        with tempfile.NamedTemporaryFile() as file:
            file.write(b"S0030000FC\n" + b"S1050000ABCD00\n" * 10000 + b"S9030000FC\n")
            file.flush()
            process = start("inspect", "--json", file.name)
            process.stdout.read(1)
            with self.assertRaises(subprocess.TimeoutExpired):
                process.wait(timeout=1)
            process.terminate()
            self.assertEqual(process.wait(timeout=60), 143)
            process.communicate()


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
