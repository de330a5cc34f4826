#!/usr/bin/python3
"""Downloads firmware through the automation interface and follows it by its events to their end.

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
E_FILES_LEFT_OUT = 37


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
    outcomes = []

    def on_progress(percentage, file_name, index):
        print(f"{index}: {file_name} {percentage} %", flush=True)

    def on_completed(*outcome):
        outcomes.append(outcome)
        loop.quit()

    manager.connect_to_signal("DownloadProgressUpdate", on_progress, dbus_interface=NAME + ".__clsDLManager")
    manager.connect_to_signal("ReportConfigurationsUpdate", reports.append, dbus_interface=NAME + ".__clsDLManager")
    manager.connect_to_signal("PowerCycleRequired", lambda: print("Power-cycle the radio.", flush=True),
                              dbus_interface=NAME + ".__clsDLManager")
    # The last that happens to an operation. Its code is this manager's own; GetLastError is shared.
    manager.connect_to_signal("Completed", on_completed, dbus_interface=NAME + ".Session")
    if not manager.AsyncTaskProcess(E_DOWNLOAD, ""):
        sys.exit("The manager is busy.")
    loop.run()

    [(code, message, state)] = outcomes
    if code not in (0, E_FILES_LEFT_OUT):
        print(properties.Get(NAME + ".Session", "Advice"), file=sys.stderr)
        sys.exit(f"Error {code}: {message} (the radio is {state})")
    for configuration in reports[0].split("\t"):
        product, status, network = configuration.split("|")
        print(f"{product:20} status {status}, network {network}")
    if code == E_FILES_LEFT_OUT:  # the rest of the message names those that suit no component
        sys.exit(f"Not downloaded: {', '.join(message.splitlines()[1:])}")
    application.ReleaseInstance(path)


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    main(sys.argv[1], sys.argv[2:])
