"""The automation interface as other programs use it: a private session bus starts the program by its
service file, radios are simulated.

Called with the paths of the simulator, the sources and the in-process example, on a bus of its own.
"""

import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree as ElementTree

import dbus
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

SIMULATOR, SOURCES, IN_PROCESS = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3]
NAME = "com.kelvane.RV4100_FLDC_EXE"
ROOT = "/com/kelvane/RV4100_FLDC_EXE"
PROGRAM = pathlib.Path(SIMULATOR).with_name("rv4100_fldc")
GLOBAL = ROOT + "/clsDLManager"
FILES = [str(SOURCES / "samples/rv4200" / name) for name in ("application.srec", "dsp.srec")]
DOWNLOAD, LOAD, REPORT = 1, 2, 3
UNKNOWN_OBJECT, INVALID = (f"org.freedesktop.DBus.Error.{name}" for name in ("UnknownObject", "InvalidArgs"))
FAILURE, BUSY = NAME + ".Error.Failure", NAME + ".Error.Busy"

# Members in interface order: arguments > results, or access and type of a property.
MANAGER = """ReportConfigurations s>ns|EraseSelected ss>ns|DownLoad s>ns|SetPort sb>n|GetLastError >is|
LoadFiles s>n|ValidFile s>|CreateNewLogFile >|RadioType readwrite i|SetUIMode b>n|ShutDownUiLessMode >|
SetBaudRate i>|FormatMessage i>s|StayConnected readwrite b|ResetRadio >i|AsyncTaskProcess is>b|
AsyncTaskBusy read b|LoadFilesEx ss>n|AccessLevel write i|FileIsOld s>b|BackupOldLogFile s>|
LoadFilesByPath ss>""".replace("\n", "").split("|")
EVENTS = ["DownloadProgressUpdate isi", "ReportConfigurationsUpdate s", "PowerCycleRequired "]


def members(interface):
    """The members of an interface element, in the form of the lists above."""
    texts = []
    for member in interface:
        taken, given = ("".join(arg.get("type") for arg in member.findall("arg") if arg.get("direction", "in") == way)
                        for way in ("in", "out"))
        types = {"method": f"{taken}>{given}", "signal": taken,
                 "property": f"{member.get('access')} {member.get('type')}"}
        if member.tag in types:
            texts.append(f"{member.get('name')} {types[member.tag]}")
    return texts


def wait_for(condition, seconds=30):
    """Serves events until the condition holds; false when it never did."""
    deadline = time.monotonic() + seconds
    while not (value := condition()) and time.monotonic() < deadline:
        GLib.MainContext.default().iteration(False) or time.sleep(0.005)
    return value


class Client:
    """A connection of its own, as another program would have, and the signals that it hears."""

    def __init__(self):
        self.bus = dbus.SessionBus(private=True)
        self.bus.set_exit_on_disconnect(False)
        self.events = []
        self.bus.add_signal_receiver(
            lambda *values, **which: self.events.append((which["member"], *values, which["path"])),
            dbus_interface=NAME + ".__clsDLManager", member_keyword="member", path_keyword="path")
        self.busy_ended = []  # managers, in the order in which their tasks ended
        self.bus.add_signal_receiver(
            lambda _, values, __, path: values.get("AsyncTaskBusy", True) or self.busy_ended.append(path),
            "PropertiesChanged", path_keyword="path")
        self.told = []  # what the session interfaces tell, and which properties have changed
        for interface in (NAME + ".Session", dbus.PROPERTIES_IFACE, NAME + ".__clsDLManager"):
            self.bus.add_signal_receiver(lambda *values, **which: self.told.append((which["member"], *values)),
                                         dbus_interface=interface, member_keyword="member")

    def create(self, name="clsDLManager"):
        return self.object(self.call(ROOT, NAME + ".Application", "CreateInstance", "s", name), name)

    def object(self, path, name="clsDLManager"):
        return Proxy(self, path, "_" + name)

    def call(self, path, interface, member, signature, *arguments):
        return self.bus.call_blocking(NAME, path, interface, member, signature, arguments, 120)

    def release(self, path):
        self.call(ROOT, NAME + ".Application", "ReleaseInstance", "o", path)

    closed = []  # a connection that still has messages to hand out must not be collected

    def leave(self):
        self.bus.close()
        self.closed.append(self.bus)


class Proxy:
    """An object; each member is called with its signature and arguments."""

    def __init__(self, client, path, interface):
        self.client, self.path, self.interface = client, path, f"{NAME}.{interface}"

    def __getattr__(self, member):
        return lambda signature="", *arguments: self.client.call(
            self.path, self.interface, member, signature, *arguments)

    def property(self, member, signature, *arguments):
        return self.client.call(self.path, dbus.PROPERTIES_IFACE, member, signature, self.interface, *arguments)

    def get(self, name):
        return self.property("Get", "ss", name)

    def set(self, name, value):
        self.property("Set", "ssv", name, value)

    def introspect(self):
        return ElementTree.fromstring(self.client.call(self.path, dbus.INTROSPECTABLE_IFACE, "Introspect", ""))

    def start(self, member, signature, *arguments):
        """Calls without waiting; returns a list that receives the results or the error."""
        outcome = []
        self.client.bus.call_async(NAME, self.path, self.interface, member, signature, arguments,
                                   lambda *results: outcome.extend(results), outcome.append, 120)
        return outcome

    def events(self, member=None):
        return [event[:-1] if member is None else event[1:-1] for event in self.client.events
                if event[-1] == self.path and member in (None, event[0])]


class Automation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        DBusGMainLoop(set_as_default=True)
        cls.daemon = dbus.SessionBus()
        # On a bus of its own, where nobody calls it.
        cls.unattended = subprocess.Popen(["dbus-run-session", "--", "timeout", "20", PROGRAM, "--automation"])

    def setUp(self):
        self._folder = tempfile.TemporaryDirectory(prefix="fldc-")
        self.addCleanup(self._folder.cleanup)
        self.folder = pathlib.Path(self._folder.name)
        for boot in (SOURCES / "samples/boot").iterdir():
            (self.folder / boot.name).write_bytes(boot.read_bytes())
        (self.folder / "settings.conf").write_text("[General]\nDebug=True\n")
        environment = {"RV4100_FLDC_PORTS": f"COM1={self.folder}/radio1;COM2={self.folder}/radio2",
                       "RV4100_FLDC_SETTINGS": str(self.folder / "settings.conf"),
                       "RV4100_FLDC_HOME": str(self.folder), "RV4100_FLDC_POWER_CYCLE_S": "100"}
        os.environ.update(environment)
        self.daemon.call_blocking("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                  "UpdateActivationEnvironment", "a{ss}", (environment,))
        self.addCleanup(self.end_service)
        self.client = self.new_client()

    def new_client(self):
        client = Client()
        self.addCleanup(client.leave)
        return client

    def running(self):
        return self.daemon.name_has_owner(NAME)

    def service_id(self):
        return self.daemon.call_blocking("org.freedesktop.DBus", "/", "org.freedesktop.DBus",
                                         "GetConnectionUnixProcessID", "s", (NAME,))

    def end_service(self):
        if self.running():
            os.kill(self.service_id(), signal.SIGTERM)
        self.assertTrue(wait_for(lambda: not self.running()), "the service does not end on SIGTERM")

    def radio(self, number, *arguments, profile="rv4200"):
        link = self.folder / f"radio{number}"
        process = subprocess.Popen([SIMULATOR, "--profile", profile, "--link", link, *arguments],
                                   stdout=subprocess.DEVNULL)
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)
        self.assertTrue(wait_for(link.exists))
        return process

    def manager(self, client, port="COM1:", files=True):
        manager = client.create()
        self.assertEqual(manager.SetPort("sb", port, False), 0)
        if files:
            self.assertEqual(manager.LoadFilesEx("ss", "|".join(FILES), ","), 0)
        return manager

    def assert_error(self, name, call, *arguments):
        with self.assertRaises(dbus.DBusException) as caught:
            call(*arguments)
        self.assertEqual(caught.exception.get_dbus_name(), name)
        return caught.exception.get_dbus_message()

    def assert_failure(self, number, call, *arguments):
        self.assertRegex(self.assert_error(FAILURE, call, *arguments), f"^{number}: ")

    def end_and_check_log(self):
        """The name goes first, then the managers with their logs."""
        self.end_service()

        def marks():
            log = (self.folder / "0_Download.log").read_text("latin-1")
            return log.count("START LOG"), log.count("END LOG")
        wait_for(lambda: len(set(marks())) == 1)
        self.assertEqual(*marks())
        self.assertNotEqual(marks()[0], 0)

    def test_what_is_published(self):
        radio = self.client.create("clsRadio")
        blocks = self.client.object(radio.get("FlashBlocks"), "colFlashBlocks")
        configurations = self.client.object(radio.get("Configurations"), "colConfigurations")
        published = {interface.get("name"): members(interface) for interface in ElementTree.parse(
            SOURCES / "src/automation" / (NAME + ".xml")).getroot()}
        served = {}
        for item in (self.client.object(ROOT), self.client.object(GLOBAL), self.client.create(), radio, blocks,
                     configurations, self.client.create("colDataBlocks"), self.client.create("clsDataBlock"),
                     self.client.object(blocks.Add("nsss", 0, "0", "1", ""), "clsFlashBlock"),
                     self.client.object(configurations.Add("ss", "0" * 28, ""), "clsConfiguration")):
            for interface in item.introspect().findall("interface"):
                served[interface.get("name")] = members(interface)
        for name in ("Introspectable", "Peer", "Properties"):
            del served["org.freedesktop.DBus." + name]
        for name in ("_colDefTables", "_clsDefinitionTable"):  # nothing hands them to a client
            served[f"{NAME}.{name}"] = published[f"{NAME}.{name}"]
        self.assertEqual(served, published)
        self.assertEqual(self.client.object(GLOBAL).introspect().find(
            ".//method[@name='ResetRadio']/annotation").get("value"), "Restarts the radio on the open port.")
        self.assertEqual(served[NAME + ".Application"], ["CreateInstance s>o", "ReleaseInstance o>"])
        self.assertEqual(served[NAME + "._clsDLManager"], MANAGER)
        self.assertEqual(served[NAME + ".__clsDLManager"], EVENTS)

    def test_a_download_as_a_task(self):
        self.radio(1)
        manager, other = self.manager(self.client), self.client.create()
        self.assertTrue(manager.AsyncTaskProcess("is", DOWNLOAD, ""))
        self.assertFalse(manager.AsyncTaskProcess("is", REPORT, ""), "a second task")
        self.assertTrue(manager.get("AsyncTaskBusy"))
        busy_at_end = []
        self.client.bus.add_signal_receiver(lambda _: busy_at_end.append(manager.get("AsyncTaskBusy")),
                                            "ReportConfigurationsUpdate", path=manager.path)
        progress_in_time = wait_for(lambda: manager.events("DownloadProgressUpdate"))
        self.assertTrue(progress_in_time and manager.get("AsyncTaskBusy"), "progress before the end")
        self.assertTrue(wait_for(lambda: busy_at_end))
        self.assertEqual(busy_at_end, [False])
        *progress, end = manager.events()
        self.assertEqual(end[0], "ReportConfigurationsUpdate")
        self.assertIn("JHA2F-2.03|0|0", end[1].split("\t"))
        self.assertEqual({event[0] for event in progress}, {"DownloadProgressUpdate"})
        steps = [(index, percentage) for _, percentage, _, index in progress]
        self.assertEqual([steps.pop(0), steps.pop()], [(0, 0), (0, 0)], "reading the configuration")
        self.assertEqual(steps, sorted(set(steps)))
        self.assertEqual([step for step in steps if step[1] == 100], [(1, 100), (2, 100)])
        self.assertEqual(manager.GetLastError(), (0, "Success"))
        self.assertTrue(wait_for(lambda: self.client.told[-1][0] == "Completed"))
        told = [one for one in self.client.told if one[0] != "DownloadProgressUpdate"]
        session = self.client.object(manager.path)
        session.interface = NAME + ".Session"
        self.assertEqual(told[-5][1:3], (NAME + "._clsDLManager", {"AsyncTaskBusy": False}))
        self.assertEqual([told[-4][0], told[-3][2]["Holder"], told[-1]],
                         ["ReportConfigurationsUpdate", "", ("Completed", 0, "Success", "restarted")])
        kinds = [one[1]["type"] for one in told if one[0] == "Event" and one[1]["type"] != "progress"]
        target = ["target", "blocks", "blocks", "table", "blocks"]
        self.assertEqual(kinds, ["started", "result", "started", "radio", "boot-application", "speed", "configuration", *target[:3], "table",
                                 *target[3:], *target, "configuration", "restarted",
                                 "result"])
        values = session.property("GetAll", "s")
        self.assertEqual([values[key] for key in ("State", "Percentage", "SecondsLeft", "Operation", "LastResult")],
                         ["restarted", 100.0, -1.0, "", 0])
        changes = [one[2] for one in told if one[0] == "PropertiesChanged"]
        self.assertIn({"Operation": "download", "Holder": self.client.bus.get_unique_name()}, changes)
        # Nothing was run a second time; the other manager sent nothing.
        self.assertFalse(wait_for(lambda: len(manager.events()) > len(progress) + 1, 0.5))
        self.assertEqual(other.events(), [])
        self.end_and_check_log()

    def test_texts_by_reference_and_reports(self):
        early = self.client.create()
        self.assertEqual(early.SetPort("sb", "COM1:", False), 11)
        self.radio(1)
        self.assertEqual(early.SetPort("sb", "COM1:", False), 0, "plugged in after the list was read")
        self.client.release(early.path)
        manager = self.manager(self.client)
        code, report = manager.ReportConfigurations("s", "")
        self.assertEqual((code, report.split("\t")[0]), (0, "RVKC4-02|0|0"))
        self.assertEqual(manager.SetUIMode("b", True), 0)
        self.assertEqual(manager.ReportConfigurations("s", "as it was"), (0, "as it was"))
        self.assertEqual(manager.EraseSelected("ss", "", "as it was"), (0, "as it was"))
        self.assertEqual(manager.SetUIMode("b", False), 0)
        code, report_after = manager.EraseSelected("ss", "", "")
        self.assertEqual((code, report_after), (0, report))
        # None for the erasures; what was sent before the last answer has arrived with it.
        wait_for(lambda: len(manager.events("ReportConfigurationsUpdate")) > 2, 0.2)
        self.assertEqual(manager.events("ReportConfigurationsUpdate"), [(report,), ("as it was",)])
        # A window that nobody can see holds nothing.
        manager.SetUIMode("b", True)
        self.client.leave()
        self.assertTrue(wait_for(lambda: not self.running()))

    def test_garbage(self):
        manager, blocks = self.manager(self.client, "1", files=False), self.client.create("colDataBlocks")
        huge = "x" * 2**20
        for name in ("", "clsConfiguration", huge):
            self.assert_error(INVALID, self.client.create, name)
        for path in ("/", ROOT, ROOT + "/clsDLManager/99", ROOT + "/clsRadio", GLOBAL):
            self.assert_error(UNKNOWN_OBJECT, self.client.release, path)
        self.assert_error(UNKNOWN_OBJECT, self.client.object(ROOT + "/clsDLManager/_1").GetLastError)
        self.assert_error(UNKNOWN_OBJECT, self.client.object(ROOT + "/clsRadio/7").introspect)
        self.assert_error("org.freedesktop.DBus.Error.UnknownMethod", manager.ReleaseWindow)
        for signature, values in (("", ()), ("i", (1,)), ("ss", ("COM1:", "x")), ("sbs", ("COM1:", True, "x"))):
            self.assert_error(INVALID, manager.SetPort, signature, *values)
        for number in (3, -1, -2**31, 2**31 - 1):
            self.assert_failure(5, manager.FormatMessage, "i", number)
        self.assertEqual(manager.FormatMessage("i", 33), "File does not exist")
        self.assertEqual(manager.SetPort("sb", huge, False), 11)
        self.assertEqual(manager.LoadFilesEx("ss", huge, huge), 33)
        # Properties: one can only be written, one only be read.
        self.assertEqual(manager.property("GetAll", "s"),
                         {"RadioType": 0, "StayConnected": False, "AsyncTaskBusy": False})
        self.assert_error("org.freedesktop.DBus.Error.AccessDenied", manager.get, "AccessLevel")
        self.assert_error("org.freedesktop.DBus.Error.PropertyReadOnly", manager.set, "AsyncTaskBusy", True)
        self.assert_error("org.freedesktop.DBus.Error.UnknownProperty", manager.get, "UIDisplay")
        self.assert_failure(13, manager.set, "RadioType", "x")
        self.assert_failure(6, manager.set, "RadioType", dbus.Int64(2**40))
        for index in (-1, 0, 2**31 - 1):
            self.assert_failure(5, blocks.Item, "i", index)
        self.assert_failure(13, blocks.Add, "s", "0G")
        # A member without a failure trap, and without its window.
        manager.ShutDownUiLessMode()
        self.assert_failure(91, manager.set, "StayConnected", True)

    def test_supporting_classes(self):
        radio = self.client.create("clsRadio")
        configurations = self.client.object(radio.get("Configurations"), "colConfigurations")
        first = configurations.Add("ss", "004100420031" + "0000" + "0001A000" + "0001" + "02" + "03", "")
        values = self.client.object(first, "clsConfiguration").property("GetAll", "s")
        self.assertEqual([values[name] for name in ("ProductID", "ConfigurationAddress", "NetWorkID", "DeviceID")],
                         ["AB1", 0x1A000, 2, 3])
        self.assertEqual(configurations.Item("v", 1), first)
        self.assert_failure(5, configurations.Item, "v", 2)
        blocks = self.client.object(radio.get("FlashBlocks"), "colFlashBlocks")
        paths = [blocks.Add("nsss", 7, "00001000", "800", "Boot"), blocks.Add("nsss", 8, "1800", "800", "")]
        self.assertEqual([blocks.FindBlock("i", address) for address in (0x1000, 0x17FF, 0x1800, -1)], [7, 7, 8, -1])
        self.assertEqual([blocks.Item("v", "BOOT"), blocks.Item("v", 2), blocks.NewEnum()], [*paths, paths])
        self.client.object(paths[0], "clsFlashBlock").set("ID", -9)
        self.client.release(paths[0])  # handed out three times: added, found, enumerated
        self.assertEqual(self.client.object(paths[0], "clsFlashBlock").get("ID"), -9)
        blocks.Remove("v", 2)
        self.assertEqual([blocks.get("Count"), blocks.FindBlock("i", 0x1000)], [1, -9])
        # Another radio's list in place of its own; a list of another class is refused.
        other = self.client.create("clsRadio")
        other.set("FlashBlocks", dbus.ObjectPath(blocks.path))
        self.assertEqual(other.get("FlashBlocks"), blocks.path)
        self.assert_failure(13, other.set, "FlashBlocks", dbus.ObjectPath(first))

    def test_two_managers(self):
        self.radio(1, "--pace")
        self.radio(2)
        client = self.new_client()
        one, two = self.manager(self.client), self.manager(client, "COM2:")
        last, third = client.create(), client.create()
        outcome = one.start("DownLoad", "s", "")
        two.get("RadioType")  # arrives together with the call before it
        self.assertEqual(wait_for(lambda: outcome, 0.1), [], "held up until the end")
        self.assertTrue(wait_for(lambda: one.events("DownloadProgressUpdate")))
        for member, *arguments in (("ReportConfigurations", "s", ""), ("EraseSelected", "ss", "1", ""),
                                   ("DownLoad", "s", ""), ("ResetRadio",), ("LoadFilesEx", "ss", FILES[0], ","),
                                   ("SetPort", "sb", "COM1:", False), ("SetUIMode", "b", False)):
            self.assert_error(BUSY, getattr(two, member), *arguments)
        self.assertIn(self.client.bus.get_unique_name(), self.assert_error(BUSY, two.ResetRadio))
        self.assert_error(BUSY, two.set, "StayConnected", True)
        self.assert_error(BUSY, two.set, "AccessLevel", 10)
        self.assert_error(BUSY, one.ReportConfigurations, "s", "")
        self.assertFalse(one.AsyncTaskProcess("is", REPORT, ""), "would end with the running operation")
        self.assertTrue(two.AsyncTaskProcess("is", DOWNLOAD, ""), "waits for the running operation")
        for task in (third, last):
            self.assertTrue(task.AsyncTaskProcess("is", LOAD, FILES[0]))
        self.assertEqual(outcome, [], "the download has ended too early for this test")
        self.assertTrue(wait_for(lambda: outcome and two.events("ReportConfigurationsUpdate"), 60))
        self.assertEqual(outcome[0], 0)
        self.assertIn("JHA2F-2.03|0|0", outcome[1])
        self.assertIn("JHA2F-2.03|0|0", two.events("ReportConfigurationsUpdate")[0][0])
        self.assertTrue(wait_for(lambda: len(client.busy_ended) == 3))
        self.assertEqual(client.busy_ended, [two.path, third.path, last.path], "in the order of acceptance")

    def test_a_client_killed_in_its_download(self):
        self.radio(1, "--pace")
        self.radio(2)
        bystander = self.manager(self.client, "COM2:")
        with subprocess.Popen([SOURCES / "examples/download.py", "COM1:", *FILES], stdout=subprocess.PIPE,
                              text=True) as victim:
            self.addCleanup(victim.kill)
            self.assertTrue(wait_for(lambda: self.client.events), "no download")
            path = self.client.events[-1][-1]
            self.assert_error(BUSY, bystander.ReportConfigurations, "s", "")
            victim.kill()
        # Its operation ends, its object goes, and the port and logs are closed.
        self.assertTrue(wait_for(lambda: not self.client.object(ROOT).introspect().findall(
            "node[@name='clsDLManager']/node") and self.error_of(
                self.client.object(path).GetLastError) == UNKNOWN_OBJECT))
        self.client.events.clear()
        self.assertEqual(bystander.DownLoad("s", "")[0], 0)
        descriptors = pathlib.Path(f"/proc/{self.service_id()}/fd").iterdir()
        self.assertNotIn((self.folder / "radio1").resolve(), [link.resolve() for link in descriptors])
        self.client.leave()
        self.assertTrue(wait_for(lambda: not self.running()), "the service outlives its last client")
        self.end_and_check_log()

    def error_of(self, call, *arguments):
        try:
            call(*arguments)
        except dbus.DBusException as error:
            return error.get_dbus_name()
        return None

    def test_a_power_cycle_that_nobody_makes(self):
        self.radio(1, "--fault", "power-cycle")
        visitor = self.new_client()
        for caller, end in ((self.client, lambda: manager.ShutDownUiLessMode()), (visitor, visitor.leave),
                            (self.client, lambda: self.client.release(manager.path))):
            manager = self.manager(self.client)
            manager.set("AccessLevel", 10)
            caller.events.clear()
            outcome = caller.object(manager.path).start("DownLoad", "s", "")
            self.assertTrue(wait_for(lambda: caller.events and caller.events[-1][0] == "PowerCycleRequired"))
            end()
            if caller is visitor:  # which holds nothing, and hears nothing any more
                self.assertTrue(wait_for(lambda: self.error_of(manager.CreateNewLogFile) != BUSY))
                self.assertEqual(manager.GetLastError()[0], 1)
            else:
                self.assertTrue(wait_for(lambda: outcome))
                self.assertEqual(outcome[0], 1)
        self.end_and_check_log()

    @staticmethod
    def read_into(pieces, descriptor):
        try:
            pieces.append(os.read(descriptor, 1000))
        except BlockingIOError:
            pass
        return b"".join(pieces)

    def test_a_question_ends_with_its_operation(self):
        ours, theirs = os.openpty()  # where somebody could answer
        os.set_blocking(ours, False)
        service = subprocess.Popen([PROGRAM, "--automation"], stdin=theirs, stdout=theirs, stderr=theirs)
        self.addCleanup(service.wait)
        self.addCleanup(service.terminate)
        self.assertTrue(wait_for(self.running))
        bystander = self.manager(self.new_client(), "2", files=False)
        visitor = self.new_client()
        for caller, end in ((self.client, lambda: manager.ShutDownUiLessMode()), (visitor, visitor.leave)):
            manager = self.manager(self.client, "1", files=False)
            self.assertEqual(manager.LoadFilesEx("ss", str(SOURCES / "samples/rv4100/fpga.srec"), ","), 0)
            outcome = caller.object(manager.path).start("DownLoad", "s", "")
            asked = []
            self.assertTrue(wait_for(lambda: self.read_into(asked, ours).endswith(b"[y/N] ")), asked)
            bystander.ShutDownUiLessMode()  # its own operation does not run
            self.assert_error(BUSY, bystander.CreateNewLogFile)
            self.assertEqual(outcome, [])
            end()
            self.assertTrue(wait_for(lambda: self.error_of(bystander.CreateNewLogFile) != BUSY, 5))
            self.assertEqual(manager.GetLastError()[0], 1)
        for end in (ours, theirs):
            os.close(end)

    def test_the_global_object_and_the_end_of_the_process(self):
        self.assertFalse(self.running())
        glob = self.client.object(GLOBAL)
        glob.introspect()
        glob.set("RadioType", 4)
        second = self.new_client()
        self.assertEqual(second.object(GLOBAL).get("RadioType"), 4, "one object for all")
        self.assertEqual(second.create().get("RadioType"), 0)
        second.leave()
        self.client.leave()
        time.sleep(2)
        third = self.new_client()
        self.assertEqual(third.object(GLOBAL).get("RadioType"), 4, "kept for the next client of a script")
        third.release(GLOBAL)
        self.assertTrue(wait_for(lambda: not self.running(), 20))
        self.assertEqual(self.unattended.wait(20), 0, "nobody called")

    def test_the_page(self):
        self.radio(1)
        page = (SOURCES / "docs/automation.md").read_text()
        environment = {**os.environ, "FIRMWARE": " ".join(FILES)}
        blocks = re.findall(r"^```(sh|python)\n(.*?)^```", page, re.S | re.M)
        self.assertGreater(len(blocks), 2)
        for language, text in blocks:
            with self.subTest(text):
                command = ["bash", "-euc", text] if language == "sh" else ["/usr/bin/python3", "-c", text]
                run = subprocess.run(command, capture_output=True, text=True, timeout=60, env=environment)
                self.assertEqual(run.returncode, 0, run.stdout + run.stderr)

    def test_the_examples(self):
        for command in ([SOURCES / "examples/download.py", "COM1:"], [SOURCES / "examples/download.sh", "COM1:"],
                        [IN_PROCESS, "COM1:"]):
            with self.subTest(command[0]):
                radio = self.radio(1)
                run = subprocess.run([*command, *FILES], capture_output=True, text=True, timeout=60)
                self.assertEqual((run.returncode, run.stderr), (0, ""), run.stdout)
                self.assertIn("JHA2F-2.03", run.stdout)
                radio.terminate()
                radio.wait()
        failed = subprocess.run([SOURCES / "examples/download.sh", "COM1:", *FILES], capture_output=True, text=True)
        self.assertEqual((failed.returncode, failed.stderr), (1, "Error 11: Serial port does not exist\n"))


if __name__ == "__main__":
    del sys.argv[1:4]
    unittest.main(verbosity=2)
