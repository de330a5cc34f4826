"""Random firmware for the simulated radios, and what of it stands in a radio's flash."""

import dataclasses
import pathlib
import sys

sys.path.append(str(pathlib.Path(__file__).resolve().parents[2] / "samples"))
import make_samples  # noqa: E402


@dataclasses.dataclass(frozen=True)
class Slot:
    """A place of a radio that firmware can be written to. Addresses count units of `unit` bytes."""

    hardware: str
    device: int
    product: str
    network: int
    unit: int
    first: int
    end: int


SLOTS = {
    "rv4200": (Slot("RVKC4", 0, "JHA2F", 0, 2, 0x8000, 0x80000), Slot("RVKC4", 1, "JHA2A", 0, 2, 0, 0x20000)),
    "rv4100": (Slot("RVKB1", 0, "JVA1F", 0, 2, 0x8000, 0x80000), Slot("RVKC7", 0, "JHA4F", 1, 2, 0x8000, 0x80000)),
    "rv6100": (Slot("RVKB2", 0, "JVA2F", 0, 2, 0x8000, 0x18000), Slot("RVKB2", 0, "JVA2A", 0, 2, 0x18000, 0x20000)),
    "rh6100": (Slot("RHKB1", 0, "JWA2F", 0, 1, 0x20000, 0x90000), Slot("RHKB1", 1, "JWB2A", 0, 1, 0, 0x20000)),
}


@dataclasses.dataclass(frozen=True)
class Firmware:
    """One file with one image; `runs` are (address, bytes)."""

    path: pathlib.Path
    tag: str
    slot: Slot  # None for hardware that no radio has
    runs: tuple

    def is_in(self, flash):
        """Whether every byte stands at its address."""
        unit, start, content = flash[self.slot.network, self.slot.device]
        return all(content[(address - start) * unit:][:len(data)] == data for address, data in self.runs)


def make(random, folder, profile, slot, most=4000):
    """Writes a random file for the slot; None: for hardware that no radio has."""
    where = slot or SLOTS[profile][0]
    tag = f"{where.product if slot else 'JZZ9Z'}-{random.randint(3, 9)}.{random.randint(0, 99):02d}"
    count = random.choice((1, 1, 2, 3))
    step = (where.end - where.first) // count
    runs = []
    for i in range(count):
        size = random.choice((random.randint(60, most), random.randint(60, 600)))
        address = where.first + i * step + random.choice((0, 0, random.randrange(0, 512) * 2))
        fill = random.choice((make_samples.noise, make_samples.pattern))
        # What is left of a record behind its last whole unit is no data.
        data = fill(f"{tag} {random.random()}", size // where.unit * where.unit)
        runs.append((address, make_samples.with_tag(tag, 0, data) if i == 0 else data))
    eight_bits = where.unit == 1 and not tag.startswith("JWA2")
    lines = make_samples.image(tag, runs, unit=where.unit, kind=random.choice((2, 3)) if where.end <= 1 << 24 else 3,
                               targets=[(where.hardware if slot else "RVKZ9", where.device)],
                               lines=["DW 8"] if eight_bits else [], per_record=random.choice((16, 30, 32)))
    path = folder / f"{tag}-{random.randrange(1 << 32):08x}.srec"
    path.write_text("".join(line + "\r\n" for line in lines))
    return Firmware(path, tag, slot, tuple(runs))
