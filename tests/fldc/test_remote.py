"""fldc over a line of another machine: a simulated radio behind ser2net, and between that and the program a proxy
that delays, cuts, stalls, breaks up, doubles and rewrites what goes by. What a run says of the radio is compared
with the radio's flash. Called with the paths of fldc, the other program, the simulator and the samples."""

import collections
import concurrent.futures
import contextlib
import json
import pathlib
import random
import signal
import socket
import subprocess
import sys
import threading
import time
import unittest

sys.path.append(str(pathlib.Path(__file__).resolve().parent.parent / "end_to_end"))
from workbench import Workbench, lost_records  # noqa: E402

PROGRAM, OTHER_PROGRAM, SIMULATOR = sys.argv[1:4]
SAMPLES = pathlib.Path(sys.argv[4]).resolve()
APPLICATION = SAMPLES / "rv4200/application.srec"
DOWNLOAD = f"download PORT {APPLICATION}"
SUSPEND, RESUME = bytes.fromhex("FFFA2C6CFFF0"), bytes.fromhex("FFFA2C6DFFF0")
ASK_115200, ASK_57600 = bytes.fromhex("FFFA2C010001C200FFF0"), bytes.fromhex("FFFA2C010000E100FFF0")


class Proxy:
    """Listens in front of `upstream`. delay: seconds each way; piece: most bytes at once; double: what comes from
    the server comes twice, from the first `at` on; rewrite: (what, by what); at: bytes from the
    client upon which the connection is cut, stalled or (flow) its data suspended for half a second."""

    def __init__(self, upstream, delay=0.0, piece=65536, at=None, then="cut", rewrite=None):
        self.upstream, self.delay, self.piece, self.at, self.then = upstream, delay, piece, at, then
        self.rewrite, self.accepted, self.early = rewrite, 0, 0
        self.stalled = self.doubling = self.suspended = False
        self.listener = socket.create_server((upstream[0], 0))
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self.accept, daemon=True).start()

    def close(self):
        with contextlib.suppress(OSError):
            self.listener.shutdown(socket.SHUT_RDWR)  # or the thread would take one more
        self.listener.close()

    def accept(self):
        while True:
            try:
                client, _ = self.listener.accept()
            except OSError:
                return
            self.accepted += 1
            deadline = time.monotonic() + 10
            while True:
                try:
                    server = socket.create_connection(self.upstream)
                    break
                except ConnectionRefusedError:
                    assert time.monotonic() < deadline, "no ser2net"
                    time.sleep(0.02)
            for source, sink in ((client, server), (server, client)):
                source.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
                queue = collections.deque()
                ready = threading.Semaphore(0)
                threading.Thread(target=self.read, args=(source, client, queue, ready), daemon=True).start()
                threading.Thread(target=self.write, args=(sink, queue, ready), daemon=True).start()

    def read(self, source, client, queue, ready):
        from_client = source is client
        while True:
            try:
                data = source.recv(65536)
            except OSError:
                data = b""
            if from_client and self.at and self.at in data and not self.stalled:
                self.act(client)
            elif from_client and self.suspended:
                self.early += len(data)
            if self.rewrite:
                data = data.replace(*self.rewrite)
            queue.append((time.monotonic() + self.delay, data * 2 if self.doubling and not from_client else data))
            ready.release()
            if not data:
                return

    def act(self, client):
        if self.then == "cut":
            self.stalled = True
            client.shutdown(socket.SHUT_RDWR)
        self.stalled |= self.then == "stall"
        self.doubling |= self.then == "double"
        if self.then == "flow":
            self.at = None
            client.sendall(SUSPEND)
            threading.Timer(0.1, setattr, (self, "suspended", True)).start()
            threading.Timer(0.6, self.resume, (client,)).start()

    def resume(self, client):
        self.suspended = False
        client.sendall(RESUME)

    def write(self, sink, queue, ready):
        while True:
            ready.acquire()
            due, data = queue.popleft()
            time.sleep(max(0, due - time.monotonic()))
            try:
                for i in range(0, len(data), self.piece):
                    if not self.stalled:
                        sink.sendall(data[i:i + self.piece])
                if not data:
                    sink.shutdown(socket.SHUT_RDWR)
                    return
            except OSError:
                return


class Depot(Workbench):
    """A workbench whose radio hangs on a server."""

    def __init__(self, pace=False, **faults):
        super().__init__(PROGRAM, SIMULATOR, SAMPLES, "rv4200", pace=pace)
        place = (f"127.{random.randint(1, 254)}.{random.randint(0, 254)}.{random.randint(2, 254)}", 20217)
        (self.folder / "ser2net.yaml").write_text(
            f"connection: &radio\n  accepter: telnet(rfc2217),tcp,{place[0]},{place[1]}\n"
            f"  connector: serialdev,{self.folder}/radio,9600n81,local\n")
        self.server = subprocess.Popen(["/usr/sbin/ser2net", "-n", "-c", self.folder / "ser2net.yaml",
                                        "-P", self.folder / "ser2net.pid"], stderr=subprocess.DEVNULL)
        self.proxy = Proxy(place, **faults)
        self.line = f"rfc2217://{place[0]}:{self.proxy.port}"

    def environment(self, **more):
        return super().environment(RV4100_FLDC_PORTS=f"COM1={self.line}", **more)

    def __exit__(self, *_):
        self.proxy.close()
        self.server.kill()
        self.server.wait()
        super().__exit__()

    def run(self, arguments):
        words = arguments.replace("PORT", self.line).split()
        run = subprocess.Popen([PROGRAM, "--json", *words], env=self.environment(), stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        out, err = run.communicate(timeout=120)
        return run.returncode, json.loads(out.splitlines()[-1]), out[-1500:] + err


# What happens on the way, the command, and the result: exit code, the component's code.
LATER = {"at": bytes.fromhex("3DFF")}  # the first data frame
RUNS = [
    ({}, "report PORT", 0, 0),
    ({"piece": 1}, DOWNLOAD, 0, 0),
    ({"delay": 0.025, "piece": 7}, DOWNLOAD, 0, 0),  # 50 ms there and back
    ({"delay": 0.35}, "report PORT", 0, 0),  # longer than the shortest wait for an answer, there and back
    ({**LATER, "then": "flow"}, DOWNLOAD, 0, 0),
    ({**LATER, "then": "cut"}, DOWNLOAD, 7, 15),
    ({**LATER, "then": "stall"}, DOWNLOAD, 7, 42),
    ({**LATER, "then": "double"}, DOWNLOAD, None, None),
    ({"at": bytes.fromhex("3202")}, DOWNLOAD, 5, 15),  # unlock
    ({"at": bytes.fromhex("3302")}, DOWNLOAD, 7, 15),  # erase
    ({"at": bytes.fromhex("3902")}, DOWNLOAD, 7, 15),  # lock
    ({"at": bytes.fromhex("3600C9")}, DOWNLOAD, 8, None),  # restart
    ({"at": b"\x5e"}, "report PORT", 5, None),  # reset
    ({"rewrite": (b"\xff\xfd\x00", b"\xff\xfe\x00")}, "report PORT", 4, 15),  # no binary transmission
    ({"rewrite": (b"\xff\xfd\x2c", b"")}, "report PORT", 4, 15),  # no word of the COM port option
    ({"rewrite": (ASK_115200, ASK_57600)}, "link-test PORT --rounds 2", None, None),
    ({"rewrite": (bytes.fromhex("FFFA2C7001FFF0"), b"")}, "report PORT", 0, 0),  # purges are not answered
    ({"rewrite": (bytes.fromhex("FFFA2C01"), bytes.fromhex("FFFA2C00"))}, "report PORT", 4, 15),  # nor speeds
]


def run_case(case):
    faults, arguments, code, error = case
    with Depot(**faults) as bench:
        found, result, text = bench.run(arguments)
        problems = [] if code is None or found == code else [f"exit {found}"]
        if error is not None and result["code"] != error:
            problems.append(f"code {result['code']}")
        if result.get("best", 57600) != 57600:  # the server has set another speed
            problems.append(f"best {result['best']}")
        if bench.proxy.early:
            problems.append("sent to a server that had suspended")
        if arguments == DOWNLOAD:
            lost = lost_records(APPLICATION, bench.flash()[0])
            if lost and (found in (0, 8) or result["written"] or result["ok"]):
                problems.append(f"told as written: {lost[:3]}")
        return (found, result["code"], result["radio"], result["seconds"]), problems + ([text] if problems else [])


class Runs(unittest.TestCase):
    def test_results(self):
        with concurrent.futures.ThreadPoolExecutor(6) as pool:
            for case, (found, problems) in zip(RUNS, pool.map(run_case, RUNS)):
                if "-v" in sys.argv:
                    print(case, found)
                with self.subTest(case=case):
                    self.assertFalse(problems, "\n".join(problems))


    def test_a_port_in_use_or_missing(self):
        with Depot() as bench:
            with socket.create_connection(bench.proxy.listener.getsockname()) as first:
                self.assertTrue(first.recv(1))  # the server speaks: the line is this client's
                code, result, text = bench.run("report PORT")
                self.assertEqual((code, result["code"], result["radio"]), (4, 12, "untouched"), text)
                self.assertIn("in use", text.splitlines()[-2].lower())
            bench.proxy.close()
            code, result, text = bench.run("report PORT")
            self.assertEqual((code, result["code"], result["radio"]), (4, 11, "untouched"), text)
            self.assertEqual(bench.run("doctor rfc2217://depot")[0], 4)

    def test_nobody_is_asked_by_who_only_looks(self):
        with Depot() as bench:
            run = subprocess.run([PROGRAM, "--json", "ports"], env=bench.environment(), timeout=60,
                                 capture_output=True, text=True)
            (port,) = (json.loads(line) for line in run.stdout.splitlines() if '"type":"port"' in line)
            self.assertEqual((port["name"], port["device"], port["state"]), ("COM1", bench.line, "unknown"))
            self.assertEqual(bench.run("doctor PORT")[0], 0)
            self.assertEqual(bench.proxy.accepted, 0)

    def test_a_signal_ends_the_wait_for_a_server_that_says_nothing(self):
        with Depot() as bench, socket.create_server(("127.0.0.1", 0)) as mute:
            line = f"rfc2217://127.0.0.1:{mute.getsockname()[1]}"
            run = subprocess.Popen([PROGRAM, "--json", "report", line], env=bench.environment(),
                                   stdout=subprocess.PIPE, text=True)
            client, _ = mute.accept()
            with client:
                client.recv(1)
                start = time.monotonic()
                run.send_signal(signal.SIGINT)
                out, _ = run.communicate(timeout=60)
            self.assertLess(time.monotonic() - start, 4.5, "the wait went on to its end")
            result = json.loads(out.splitlines()[-1])
            self.assertEqual((run.returncode, result["radio"]), (130, "untouched"), out)

    def test_the_other_program_has_it_by_its_number(self):
        """From switches and over the bus, as the settings name it."""
        with Depot(piece=100) as bench:
            bench.program = OTHER_PROGRAM
            (bench.folder / "settings.conf").write_text(f"[General]\nDebug=True\n[Ports]\nCOM1={bench.line}\n")
            bench.environment = lambda **more: {k: v for k, v in Depot.environment(bench, **more).items()
                                                if k != "RV4100_FLDC_PORTS"}
            self.assertEqual(bench.download(APPLICATION)[0], 0)
            self.assertEqual(bench.outcome(), "Download successful")
            self.assertEqual(bench.erase_over_the_bus("5|"), 0)
            self.assertFalse(lost_records(APPLICATION, bench.flash()[0]))
            self.assertRegex((bench.folder / "flash.map").read_text(), "status=1 .*JHA2A-1.02")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], warnings="ignore")
