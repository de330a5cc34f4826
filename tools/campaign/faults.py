"""Faults of the simulated radio by kind, each with the seconds that it may cost a run at most."""

COMMANDS = ("30", "31", "32", "33", "34", "35", "36", "37", "38", "39", "3A", "3C", "3D", "3E", "40", "42")
EVENTS = COMMANDS + ("start", "logon", "boot")

# How long the program waits for an answer, in seconds; a command is tried three times at most.
PATIENCE = {"31": 25, "33": 20, "start": 9, "logon": 3, "boot": 3}
EVERYWHERE = 60  # what a fault costs that holds for every answer


def patience(event):
    return 3 * PATIENCE.get(event, 5)


def when(random, events):
    event = random.choice(events)
    count = random.choice((":1", ":1", ":2", ":3", f":{random.randint(1, 12)}", ":2+", ":1-3", ""))
    return event, f"@{event}{count}"


def of_event(text, events=EVENTS, seconds=None):
    """A kind that holds for one event: `text` is its value, made anew each time."""
    def make(random):
        event, at = when(random, events)
        return at + "=" * bool(value := text(random)) + value, patience(event) if seconds is None else seconds
    return make


def whole(text, seconds=EVERYWHERE):
    return lambda random: (text(random), seconds)


KINDS = {
    "fault": of_event(lambda r: r.choice(("8002", "8003", "8103", "8104", "8106", "8109", "810F", "8111")), COMMANDS),
    "busy": of_event(lambda r: f"{r.randint(1, 8)}/{r.choice((5, 40))}"),
    "busylist": of_event(lambda r: r.choice(("AEAE0003", "AEAE", "0001")), ("32", "33", "39")),
    "corrupt": of_event(lambda r: "", COMMANDS),
    "garbage": of_event(lambda r: r.choice(("00", "1337", "00FF13", "AEAE", "52"))),
    "reply": of_event(lambda r: r.choice(("1337AFAF", "AFAF", "8103AFAF", "52"))),
    "cut": of_event(lambda r: str(r.randint(0, 9))),
    "split": whole(lambda r: f"={r.randint(1, 4)}/{r.randint(1, 8)}"),
    "delay": of_event(lambda r: str(r.choice((20, 300, 800, 2500)))),
    "silent": of_event(lambda r: ""),
    "hangup": of_event(lambda r: ""),
    "silent-after": whole(lambda r: f"={r.randint(0, 30)}", patience("31") + patience("33")),
    "unknown": whole(lambda r: "=" + r.choice(("3C", "3E", "42", "40", "3A", "30")), 20),
    "deaf": whole(lambda r: "=" + r.choice(("115200", "57600")), 20),
    "ignores-speed": whole(lambda r: "=" + r.choice(("115200", "57600", "19200")), 20),
    "answers-at": whole(lambda r: "=9600", 20),
    "power-cycle": whole(lambda r: "", 20),
    "f1-power-cycle": whole(lambda r: "", 20),
    "power-cycle-after": whole(lambda r: f"={r.choice((1, 2, 4))}", patience("31")),
    "already-in-upgrade-mode": whole(lambda r: "=" + r.choice(("9600", "19200", "57600")), 20),
}

WHOLE = [kind for kind in KINDS if kind.startswith(("split", "silent-after", "unknown", "deaf", "ignores", "answers",
                                                      "power", "f1", "already"))]
# Kinds that not every event has.
TAKES = {"fault": COMMANDS, "corrupt": COMMANDS, "busylist": ("32", "33", "39")}

# The radio says another thing than it does: only the bound and the cleaning up can be judged.
LIES = ("reply",)


def choose(random, kind=None):
    """(text for --fault, most seconds)."""
    kind = kind or random.choice(list(KINDS))
    value, seconds = KINDS[kind](random)
    return kind + value, seconds


def kind_of(fault):
    return fault.split("@")[0].split("=")[0]
