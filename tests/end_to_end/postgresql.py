"""A PostgreSQL server of a test's own."""

import glob
import os
import pathlib
import pwd
import shutil
import subprocess
import tempfile
import uuid

SERVER = sorted(glob.glob("/usr/lib/postgresql/*/bin"))[-1]


class PostgreSql:
    """A server that only this test's user can reach; it refuses to run as root."""

    def __enter__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="fldc-pg-"))
        self.user = {"user": pwd.getpwnam("nobody").pw_uid, "group": pwd.getpwnam("nobody").pw_gid,
                     "extra_groups": []} if os.getuid() == 0 else {}
        if self.user:
            os.chown(self.folder, self.user["user"], self.user["group"])
        self.run("initdb", "-D", "data", "-U", "fldc", "-A", "trust", "--no-sync", "-E", "UTF8", "--locale=C")
        self.start()
        return self

    def __exit__(self, *_):
        self.stop()
        shutil.rmtree(self.folder)

    def run(self, program, *arguments):
        subprocess.run([f"{SERVER}/{program}", *arguments], cwd=self.folder, check=True, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, timeout=100, **self.user)

    def start(self):
        self.run("pg_ctl", "-D", "data", "-l", "log", "-w", "-o",
                 f"-c listen_addresses= -c fsync=off -c max_connections=60 -k {self.folder}", "start")

    def stop(self):
        self.run("pg_ctl", "-D", "data", "-m", "immediate", "-w", "stop")

    def store(self):
        """A new database."""
        name = f"db{uuid.uuid4().hex}"
        self.run("createdb", "-h", str(self.folder), "-U", "fldc", name)
        return f"postgresql://fldc@/{name}?host={self.folder}"
