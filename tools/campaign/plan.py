"""What is played in one run: a plan, made from nothing but its seed."""

import dataclasses
import random

import faults
import firmware

OPERATIONS = {"download": 62, "report": 9, "erase": 11, "restart": 9, "link-test": 9}
PROGRAMS = {"fldc": 86, "rv4100_fldc": 9, "bus": 5}
STARTS = {"running": 80, "half-written": 10, "boot-application": 10}
SIGNALS = ("SIGINT", "SIGTERM", "SIGHUP", "SIGKILL", "SIGSTOP")


@dataclasses.dataclass
class Plan:
    seed: str
    profile: str
    operation: str = "download"
    program: str = "fldc"
    start: str = "running"
    options: tuple = ()
    faults: tuple = ()
    bound: float = 0  # seconds
    signal: str = ""  # or "unplug": the device goes
    signal_after: int = 0  # lines of output, or tenths of a second for a program without any
    trigger: tuple = ()  # (event, number): the signal is sent once the radio has heard that
    returns: bool = False  # the device comes back after a hang-up
    output: str = ""  # "closed" behind that many lines, or "full"
    log: str = ""  # "", "file" or "full"

    @property
    def lies(self):
        return any(faults.kind_of(fault) in faults.LIES for fault in self.faults)

    def random(self, purpose):
        return random.Random(f"{self.seed} {purpose}")


def weighted(dice, table):
    return dice.choices(list(table), list(table.values()))[0]


def bounded(plan, waits):
    """The bound of a run: what it takes without faults on a loaded machine, and the faults' waits."""
    usual = {"download": 60, "erase": 60}.get(plan.operation, 45)
    plan.bound = usual + 1.5 * sum(waits)
    return plan


def options_of(dice, operation):
    options = ["--power-cycle-wait", "3"]
    if operation == "download":
        options += ["--speed", dice.choice(("auto", "auto", "auto", "115200", "57600", "19200"))]
        options += ["--compression", dice.choice(("standard", "standard", "best"))]
        options += ["--certificate", "certificates"] if dice.random() < 0.4 else []
    if operation == "link-test":
        options += ["--rounds", str(dice.randint(1, 40))]
    return tuple(options)


def make(seed):
    dice = random.Random(f"{seed} plan")
    operation = weighted(dice, OPERATIONS)
    program = weighted(dice, PROGRAMS) if operation == "download" else "fldc"
    chosen = [faults.choose(dice) for _ in range(dice.randint(1, 4))] if dice.random() < 0.92 else []
    plan = Plan(seed, dice.choice(list(firmware.SLOTS)), operation, program, weighted(dice, STARTS),
                options_of(dice, operation), tuple(fault for fault, _ in chosen))
    if program != "bus" and dice.random() < 0.2:  # there it would be the bus that is ended
        plan.signal, plan.signal_after = dice.choice(SIGNALS), dice.randint(1, 14)
    plan.returns = dice.random() < 0.5
    plan.output = dice.choice(("closed", "full")) if program == "fldc" and dice.random() < 0.06 else ""
    plan.log = dice.choice(("", "", "", "file", "file", "full"))
    return bounded(plan, [seconds for _, seconds in chosen])


def sweep_of(profile, operation, exchanges):
    """One plan for every kind of fault and signal at every exchange, and for each that holds for a whole run.
    `exchanges`: (event, number)."""
    options = options_of(random.Random(0), operation)
    for kind in faults.WHOLE:
        fault, seconds = faults.choose(random.Random(kind), kind)
        yield bounded(Plan(f"sweep/{profile}/{operation}/{fault}", profile, operation, options=options,
                           faults=(fault,)), [seconds])
    for (before, number_before), (event, number) in zip([("", 0), *exchanges], exchanges):
        single = [f"{kind}@{event}:{number}{value}" for kind, value in (
            ("fault", "=8103"), ("fault", "=8002"), ("busy", "=3/20"), ("corrupt", ""), ("garbage", "=00FF13"),
            ("cut", "=1"), ("delay", "=300"), ("silent", ""), ("hangup", ""), ("reply", "=1337AFAF"),
            ("busylist", "=AEAE0003")) if event in faults.TAKES.get(kind, (event,))]
        for fault in single:
            seed = f"sweep/{profile}/{operation}/{fault}"
            yield bounded(Plan(seed, profile, operation, options=options, faults=(fault,)), [faults.patience(event)])
        for name in ("SIGTERM", "SIGKILL", "unplug"):
            for moment in ("before", "within", "after"):
                trigger = (before, number_before) if moment == "before" else (event, number)
                delay = (f"delay@{event}:{number}=100",) if moment == "within" else ()
                seed = f"sweep/{profile}/{operation}/{name}-{moment}@{event}:{number}"
                if trigger[0]:
                    yield bounded(Plan(seed, profile, operation, options=options, signal=name, trigger=trigger,
                                       faults=delay), [faults.patience(event)])
