"""The manual pages against the programs' --help, and the completions as a person at a shell meets them."""

import os
import pty
import re
import select
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

BIN, DIST = (Path(name).resolve() for name in sys.argv[1:3])


def help_of(*words):
    return subprocess.run([BIN / words[0], *words[1:], "--help"], capture_output=True, text=True, check=True).stdout


def options(text):
    return set(re.findall(r"^  (?:-h,)?(--[a-z-]+)", text, re.MULTILINE))


def described(text):
    return {"-" + name for name in re.findall(r"\bFl (-[a-z-]+)", text)}


class Pages(unittest.TestCase):
    def test_every_option_is_described_where_it_belongs_and_no_other(self):
        sections = dict(re.findall(r"^\.S[sh] ([^\n]+)\n(.*?)(?=^\.S[sh] |\Z)", (DIST / "man/fldc.1").read_text(), re.M | re.S))
        general = options(help_of("fldc"))
        self.assertEqual(described(sections["OPTIONS"]), general)
        for command in re.findall(r"^  ([a-z-]+) ", help_of("fldc").split("Subcommands:")[1], re.M):
            with self.subTest(command):
                self.assertEqual(described(sections[command]), options(help_of("fldc", command)) - general)
        simulator, told = (DIST / "man/radio_simulator.1").read_text(), help_of("radio_simulator")
        self.assertEqual(described(simulator), options(told))
        self.assertEqual(re.findall(r"^\.It Cm (\S+)$", simulator, re.M), re.findall(r"^  (\S+)$", told.split("\nFaults")[1], re.M))

    def test_they_are_well_formed(self):
        lint = ["mandoc", "-T", "lint", "-W", "warning", *sorted((DIST / "man").iterdir())]
        self.assertEqual(subprocess.run(lint, capture_output=True, text=True).stdout, "")


# What is typed, with the key Tab, and the arguments that the program then gets.
TYPED = [
    ("fldc dow\t", "download"),
    ("fldc download COM7\t", "download COM71"),
    ("fldc plan --comp\tbe\tra\t", "plan --compression best radio.srec"),
    ("fldc report --boot-files bo\t", "report --boot-files boot"),
    ("radio_simulator --prof\trh\t --fault silent-a\t", "--profile rh6100 --fault silent-after="),
    ("rv4100_fldc /f ra\t", "/f radio.srec"),
]
SHELLS = {
    "bash --noprofile --norc -i": f". /usr/share/bash-completion/bash_completion; for c in {DIST}/completions/bash/*; do . $c; done",
    "zsh -f -i": f"fpath=({DIST}/completions/zsh $fpath); autoload -Uz compinit; compinit -u -d dump",
    "fish --no-config -i": f"for c in {DIST}/completions/fish/*; source $c; end",
}


class Completion(unittest.TestCase):
    def test_tab_completes_commands_options_ports_and_files_in_every_shell(self):
        for shell, preparation in SHELLS.items():
            with self.subTest(shell), tempfile.TemporaryDirectory() as folder:
                self.type_into(shell.split(), preparation, Path(folder))

    def type_into(self, command, preparation, folder):
        for name in ("radio.srec", "radio.txt", "boot/JHA2U.Srec"):
            (folder / name).parent.mkdir(exist_ok=True)
            (folder / name).touch()
        # What a completion asks for is the program's business; what it is run with is kept.
        for program in ("fldc", "radio_simulator", "rv4100_fldc"):
            (folder / program).write_text(f'#!/bin/sh\ncase "$*" in *--help | *--json*) exec "{BIN}/{program}" "$@" ;; esac\n'
                                          f'echo "$@" > "{folder}/new"; mv "{folder}/new" "{folder}/arguments"\n')
            (folder / program).chmod(0o755)
        port = os.ttyname(os.openpty()[1])
        pid, terminal = pty.fork()
        if pid == 0:
            os.chdir(folder)
            os.environ.update(HOME=str(folder), XDG_CONFIG_HOME=str(folder), XDG_DATA_HOME=str(folder), TERM="dumb", LC_ALL="C.UTF-8",
                              PATH=f"{folder}:/usr/bin:/bin", RV4100_FLDC_PORTS=f"COM71={port}")
            os.execvp(command[0], command)
        for typed, expected in [(preparation + "; fldc ready", "ready"), *TYPED]:
            os.write(terminal, (typed + "\n").encode())
            self.assertEqual(self.arguments(terminal, folder / "arguments"), expected, typed)
        os.close(terminal)
        os.waitpid(pid, 0)

    def arguments(self, terminal, kept):
        shown, end = b"", time.monotonic() + 60
        while not kept.exists():
            self.assertLess(time.monotonic(), end, shown.decode(errors="replace"))
            if select.select([terminal], [], [], 0.05)[0]:
                shown += os.read(terminal, 4096)
        got = kept.read_text().replace("boot/", "boot").strip()
        kept.unlink()
        return got


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
