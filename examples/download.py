#!/usr/bin/python3
"""Downloads firmware through the automation interface and follows it by its events.

    download.py PORT FILE...        for example: download.py COM1: radio.srec dsp.srec

Needs the Debian packages python3-dbus and python3-gi, and the service installed (or its build folder's
share/ in XDG_DATA_DIRS of the session bus). Exit code 0 when every file was written.
"""

import os
import sys

import dbus
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

NAME = "com.kelvane.RV4100_FLDC_EXE"
E_DOWNLOAD = 1  # enmAsyncTaskID


def main(port, files):
    DBusGMainLoop(set_as_default=True)
    bus = dbus.SessionBus()
    application = dbus.Interface(bus.get_object(NAME, "/com/kelvane/RV4100_FLDC_EXE"), NAME + ".Application")
    # The bus starts the program; the manager lives until this script ends or releases it.
    path = application.CreateInstance("clsDLManager")
    manager = dbus.Interface(bus.get_object(NAME, path), NAME + "._clsDLManager")
    properties = dbus.Interface(manager, dbus.PROPERTIES_IFACE)

    def check(code):
        if code != 0:
            sys.exit(f"Error {code}: {manager.GetLastError()[1]}")

    check(manager.SetPort(port, False))
    # Reading files takes a while; a call may take 25 s unless it is told otherwise.
    manager.LoadFilesByPath("|".join(os.path.abspath(file) for file in files), "|", timeout=300)
    check(manager.GetLastError()[0])

    loop = GLib.MainLoop()
    reports = []

    def on_progress(percentage, file_name, index):
        print(f"{index}: {file_name} {percentage} %", flush=True)

    def on_report(report):
        reports.append(report)
        loop.quit()

    manager.connect_to_signal("DownloadProgressUpdate", on_progress, dbus_interface=NAME + ".__clsDLManager")
    manager.connect_to_signal("ReportConfigurationsUpdate", on_report, dbus_interface=NAME + ".__clsDLManager")
    manager.connect_to_signal("PowerCycleRequired", lambda: print("Power-cycle the radio.", flush=True),
                              dbus_interface=NAME + ".__clsDLManager")
    if not manager.AsyncTaskProcess(E_DOWNLOAD, ""):
        sys.exit("The manager is busy.")
    loop.run()

    assert not properties.Get(NAME + "._clsDLManager", "AsyncTaskBusy")
    check(manager.GetLastError()[0])
    for configuration in reports[0].split("\t"):
        product, status, network = configuration.split("|")
        print(f"{product:20} status {status}, network {network}")
    # Files that suit no component of the radio: the rest of the message names them.
    left_out = manager.FormatMessage(37).split("\r\n")[1:-1]
    if left_out:
        sys.exit(f"Not downloaded: {', '.join(left_out)}")
    application.ReleaseInstance(path)


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    main(sys.argv[1], sys.argv[2:])
