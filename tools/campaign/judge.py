"""What must hold after a run, judged by the radio's flash and log, never by the program's word alone."""

SIGNALLED = {129, 130, 143, 141, -9}
UNCHANGED = {"untouched", "reset", "upgrade-mode", "unlocked"}


def changed(ended):
    return ended.before != ended.after


def missing(ended):
    """Files for this radio that do not stand in its flash."""
    return [file.tag for file in ended.files if file.slot and not file.is_in(ended.after)]


def unlocked(log):
    """Whether the radio has unlocked blocks at the end of its log."""
    last = [line for line in log.splitlines() if "** Unlocked" in line or "** Locked" in line or "** Restarts" in line]
    return bool(last) and "** Unlocked" in last[-1]


def cleaned_up(plan, ended):
    """What is judged also where the radio lies."""
    if ended.timed_out:
        yield f"longer than its bound of {plan.bound:.0f} s"
    for each in ended.leftovers:
        yield f"left behind: {each}"
    if plan.program == "fldc" and not plan.output and ended.code != -9:
        if not ended.result:
            yield "no result line"
        elif ended.result["exit"] != ended.code:
            yield f"exit {ended.code}, but the result says {ended.result['exit']}"
        elif not ended.result["advice"]:
            yield "no advice"
    if ended.log and plan.log != "full" and ended.code != -9 and not ended.log.rstrip().endswith(b"*" * 42):
        yield "the log has no end"
    if ended.code < 0 and ended.code != -9 and not (plan.program != "fldc" and plan.signal):
        yield f"died of signal {-ended.code}"


def truthful(plan, ended):
    """The claims of fldc against the radio."""
    result, state = ended.result, ended.result.get("radio")
    if state in UNCHANGED and changed(ended):
        yield f"says {state}, but flash has changed"
    if state == "locked" and unlocked(ended.radio_log):
        yield "says locked, but blocks are unlocked"
    confirmed = result.get("confirmed") or []
    for file in ended.files:
        if file.tag in confirmed and not (file.slot and file.is_in(ended.after)):
            yield f"confirms {file.tag}, which is not in flash"
    if ended.code in (0, 9) and plan.operation == "download" and set(confirmed) != set(result["written"]):
        yield f"exit {ended.code} without all confirmed"
    if ended.code == 0 and plan.operation == "download" and (missing(ended) or result["not_matched"]):
        yield f"exit 0 without {missing(ended)}"
    erased = "** Erased" in ended.radio_log
    if plan.operation == "download" and erased and missing(ended) and ended.code not in SIGNALLED | {7}:
        yield f"exit {ended.code} after an erase, without {missing(ended)}"
    if plan.operation in ("report", "restart", "link-test") and changed(ended):
        yield f"a {plan.operation} has changed flash"


def skips(plan):
    """Whether a radio may have passed a file over: it does not know the authorisation, or has no such component. A
    run by switches says so in no text."""
    return any(fault.startswith("unknown=") or fault.endswith("=8111") for fault in plan.faults)


def violations(plan, ended):
    found = list(cleaned_up(plan, ended))
    if not plan.lies and plan.program == "fldc" and ended.result:
        found += truthful(plan, ended)
    successful = b"Download successful" in (ended.log or b"")
    if plan.program == "rv4100_fldc" and successful and missing(ended) and not (plan.lies or skips(plan)):
        found.append(f"the log says successful without {missing(ended)}")
    if plan.program == "bus" and ended.code == 0 and not plan.lies and missing(ended):
        found.append(f"the client was told success without {missing(ended)}")
    if ended.recovery != 0 or not ended.recovered:
        found.append(f"the second download ended with {ended.recovery}")
    return found
