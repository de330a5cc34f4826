#!/usr/bin/env python3
"""Makes the sample firmware and boot files for the simulated radios, beside this script.

The files are always the same, byte for byte. They hold no code: their contents are a readable
pattern where they are to compress well and hash output where they are not to compress at all.

Addresses count units of the image: 16-bit words, or bytes in an 8-bit image. The first address of
every image lies in the block where its radio has its old component (radio_simulator --list-profiles).
"""

import hashlib
import pathlib

FOLDER = pathlib.Path(__file__).resolve().parent
# By which the simulated radio knows that it has a boot application whole.
BOOT_END = b"END OF BOOT APPLICATION\n"
TAG_MARKER = bytes.fromhex("2A2F69426262456C2F2A")


def pattern(text, size):
    """Bytes that compress to about a third, as code does, and differ from place to place."""
    lines = (f"{text}, line {n:04d}: " + noise(text + str(n), 6).hex() + "\n" for n in range(size // 16))
    return "".join(lines).encode("ascii")[:size]


def noise(text, size):
    """Bytes that don't compress."""
    blocks = (hashlib.sha256(f"{text} {n}".encode()).digest() for n in range(size // 32 + 1))
    return b"".join(blocks)[:size]


def with_tag(tag, offset, data):
    """`data` with a 16-bit component tag in it: marker, a zero word, one word per character, zero."""
    words = TAG_MARKER + b"\0\0" + tag.encode("utf-16-be") + b"\0\0"
    assert offset % 2 == 0 and offset + len(words) <= len(data)
    return data[:offset] + words + data[offset + len(words):]


def record(kind, address_digits, address, data):
    """One S-record line: type, count, address, data, checksum (ones' complement of the sum)."""
    body = bytes.fromhex(f"{address:0{address_digits}X}") + data
    body = bytes([len(body) + 1]) + body
    return f"S{kind}{body.hex().upper()}{~sum(body) & 0xFF:02X}"


def image(header, runs, *, unit=2, kind=3, targets=(), lines=(), per_record=32):
    """The lines of one image. `runs`: (start address, data); `targets`: (hardware, device)."""
    digits = 2 + 2 * kind
    out = list(lines)
    out += [f'MD "{hardware}",{device}' for hardware, device in targets]
    out.append(record(0, 4, 0, header.encode("ascii")))
    for start, data in runs:
        for offset in range(0, len(data), per_record):
            out.append(record(kind, digits, start + offset // unit, data[offset:offset + per_record]))
    out.append(record(10 - kind, digits, runs[0][0], b""))
    return out


def write(name, *images):
    path = FOLDER / name
    path.parent.mkdir(exist_ok=True)
    path.write_bytes("".join(line + "\r\n" for lines in images for line in lines).encode("ascii"))


def make_rv4200():
    # Two runs: the second crosses from one flash block (up to FFFF) into the next.
    application = with_tag("JHA2F-2.03", 64, pattern("RV4200 application", 5000))
    write("rv4200/application.srec",
          image("HEAD APPLICATION", [(0x8000, application), (0xFE00, pattern("RV4200 texts", 1600))],
                targets=[("RVKC4", 0)], lines=["// Sample application for the head of an RV4200"]))
    write("rv4200/dsp.srec",
          image("JHA2A-1.10", [(0x0000, noise("RV4200 DSP", 3000))], kind=2, targets=[("RVKC4", 1)],
                lines=["// Sample DSP code for an RV4200: does not compress"]))


def make_rv4100():
    write("rv4100/shared_application.srec",
          image("SHARED", [(0x8000, with_tag("JVA1F-1.09", 128, pattern("RV4100 application", 4000)))],
                targets=[("RVKB1", 0), ("RVKC7", 0)],
                lines=["// One application for torso and head"]))
    write("rv4100/fpga.srec",
          image("JVA1G-1.07", [(0x0000, noise("RV4100 FPGA", 2048))], targets=[("RVKB1", 1)],
                lines=["// FPGA image: loading it asks a question first"]))
    write("rv4100/bundle.srec",
          image("JHA4B-1.02", [(0x0000, pattern("RV4100 head boot", 1500))], targets=[("RVKC7", 0)],
                lines=["// Two images in one file"]),
          image("CONFIGURATION", [(0x7000, with_tag("SHA4A-1.01", 32, noise("RV4100 tables", 1200)))],
                targets=[("RVKC7", 0)], lines=["DW 16"]))


def make_rv6100():
    write("rv6100/application.srec",
          image("JVA2F-1.01", [(0x8000, with_tag("JVA2F-1.01", 16, pattern("RV6100 application", 3000)))],
                kind=1, per_record=16, lines=["// No targets: written to whatever radio is connected"]))
    write("rv6100/dsp.srec",
          image("RV6100 DSP", [(0x18000, with_tag("JVA2A-1.02", 0, noise("RV6100 DSP", 1200)))],
                kind=2, targets=[("RVKB2", 0)], lines=["DW 16"]))


def make_rh6100():
    # 8-bit, known by JWA2 in its header. It begins at an odd address and its first run has an even
    # number of bytes, so that with the byte filled in before it the run is odd and another is filled in
    # behind it. The second run is odd and last.
    write("rh6100/application.srec",
          image("JWA2F-1.05", [(0x20001, pattern("RH6100 application", 3000)),
                               (0x2FF00, pattern("RH6100 texts", 701))],
                unit=1, kind=2, per_record=30, targets=[("RHKB1", 0)]))
    write("rh6100/dsp.srec",
          image("JWB2A-1.01", [(0x0000, noise("RH6100 DSP", 1535))],
                unit=1, kind=1, targets=[("RHKB1", 1)], lines=["DW 8"]))


def make_boot_files():
    for name in ("JHA2U", "JHA4U", "JVA2U", "JVA3U", "JWA1U"):
        write(f"boot/{name}.Srec",
              image(f"{name}-1.00", [(0x0000, pattern(f"{name} boot application", 976) + BOOT_END)], kind=1))


if __name__ == "__main__":
    make_rv4200()
    make_rv4100()
    make_rv6100()
    make_rh6100()
    make_boot_files()
