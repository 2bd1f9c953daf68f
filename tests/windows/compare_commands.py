#!/usr/bin/env python3
"""Compares what the command line writes on both systems: compare_commands.py LINUX_VKM DATA_DIRECTORY -- WINDOWS_VKM...

Both run every command that reads on the samples, and "dump" on a hundred generated files, hostile ones among them.
The output, line ends aside, and the exit code must be the same, and so must be what a reader sees that goes away early.
"""

import os
import pathlib
import random
import subprocess
import sys
import tempfile

NUMBERS = [b"0", b"-0", b"12.5", b"1e300", b"1e309", b"-1e-330", b"4.9e-324", b"0.1", b"123456789012345678901234567890",
           b"9007199254740993", b"1.7976931348623157e308", b"inf", b"nan", b"0x1p3", b".5", b"5.", b"-", b"+7", b"1,5",
           b"2147483648", b"-2147483649", b"99999999999", b"1e", b"1e+", b"abc", b""]
LETTERS = b"VRDULTKGS*QXv&"


def number(chance):
    if chance.random() < 0.2:
        return chance.choice(NUMBERS)
    return repr(chance.uniform(-1e6, 1e6)).encode() if chance.random() < 0.5 else str(chance.randint(-99, 9999)).encode()


def keys(chance):
    text = b""
    for key in chance.sample(b"KMRSUXHDF", chance.randint(0, 5)):
        blanks = b" " * chance.randint(0, 2)
        text += b" " + bytes([key]) + blanks + b"=" + blanks + number(chance)
    return text


def quoted(chance):
    quote = chance.choice(b"\"'`%")
    length = chance.choice([0, 1, 5, 20, 254, 255, 256, 400])
    letters = bytes(chance.choice(b"abcXYZ 0189\x8a\x9e\xe1\xec\xf8\xff\x81\x98\\\"<>") for _ in range(length))
    closing = b"" if chance.random() < 0.1 else bytes([quote])
    return bytes([quote]) + letters.replace(bytes([quote]), b"_") + closing


def record(chance):
    letter = bytes([chance.choice(LETTERS if chance.random() < 0.2 else b"LLLTTUVR")])
    line = b"&" + letter + b" "
    if letter == b"L":
        line += bytes([chance.choice(b"CKLPRZ")]) + b" " + number(chance) + b" " + number(chance) + keys(chance)
    elif letter == b"T":
        line += number(chance) + b" " + number(chance) + b" " + quoted(chance) + keys(chance)
    elif letter == b"R":
        line += b"0 0 0 0 " + chance.choice([b"1000", b"2000", b"0", b"-5", b"x"]) + chance.choice([b" a", b" r", b""])
    else:
        line += b" ".join(number(chance) for _ in range(chance.randint(0, 4)))
    lines = [line]
    for _ in range(chance.randint(0, 6) if letter == b"L" else chance.randint(0, 1)):
        lines.append(bytes([chance.choice(b"CKLPRx")]) + b" " + number(chance) + b" " + number(chance) + keys(chance))
    return lines


def well_formed(chance):
    lines = [b"&V 1 100 200", b"&R 0 0 0 0 1000 " + chance.choice([b"a", b"r"]), b"&U 7"]
    for _ in range(chance.randint(1, 200)):
        lines += record(chance)
    end = chance.choice([b"\n", b"\r\n"])
    return end.join(lines + ([b"&K"] if chance.random() < 0.8 else [])) + end


def hostile(chance):
    """A well-formed file spoiled in one way."""
    data = bytearray(well_formed(chance))
    at = chance.randrange(len(data))
    kind = chance.randrange(6)
    if kind == 0:
        del data[at:]
    elif kind == 1:
        for _ in range(20):
            data[chance.randrange(len(data))] = chance.randrange(256)
    elif kind == 2:
        data[at:at] = chance.choice([b"\0", b"\x1a", b"\r", b"\r\r\n", b"\n\n", b"\0\n", b"\x1a\n"])
    elif kind == 3:
        data[at:at] = b"&L L " + b"1234567890 " * chance.choice([93, 94, 200, 3000])
    elif kind == 4:
        data = bytearray(chance.randbytes(5000))
    else:
        data[at:at] = b"\n" * 5000
    return bytes(data)


def place_files(data, folder):
    """Puts what the commands read into the folder; returns the commands."""
    commands = []
    for sample in sorted(data.glob("*.vkm")):
        (folder / sample.name).symlink_to(sample)
        commands += [[*command, sample.name] for command in (["dump"], ["info"], ["info", "--json"])]
    (folder / "symbology").symlink_to(data / "symbology")
    commands.append(["symbology", "symbology"])
    for shapes in sorted(data.glob("symbology/VKMSym/*.ksh")):
        commands.append(["shapes", "unpack", f"symbology/VKMSym/{shapes.name}"])
    chance = random.Random(20)
    for i in range(100):
        name = f"generated-{i}.vkm"
        (folder / name).write_bytes((hostile if i % 2 else well_formed)(chance))
        commands.append(["dump", name])
    return commands


def run(program, command, folder):
    done = subprocess.run([*program, *command], cwd=folder, capture_output=True, timeout=120)
    return done.returncode, done.stdout.replace(b"\r\n", b"\n")


def leave_early(program, folder):
    """Reads the first line of a long output and goes away; returns the exit code and what was said."""
    process = subprocess.Popen([*program, "dump", "sample-town.vkm"], cwd=folder, stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE)
    process.stdout.readline()
    process.stdout.close()
    return process.stderr.read(), process.wait(120)


def main():
    divider = sys.argv.index("--")
    linux, data = [os.path.abspath(sys.argv[1])], pathlib.Path(sys.argv[2]).resolve()
    windows = sys.argv[divider + 1:]
    if not os.access(linux[0], os.X_OK):
        sys.exit(f"{linux[0]} is not there: build the release preset first")
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        commands = place_files(data, folder)
        different, size = [], 0
        for command in commands:
            ours, theirs = run(linux, command, folder), run(windows, command, folder)
            size += len(ours[1])
            if ours != theirs or (ours[0] != 0 and not command[-1].startswith("generated")):
                different.append(f"{' '.join(command)}: exit codes {ours[0]} and {theirs[0]}, "
                                 f"{len(ours[1])} and {len(theirs[1])} bytes")
        for program in (linux, windows):
            left = leave_early(program, folder)
            if left != (b"", 0):
                different.append(f"{program[-1]} after its reader had gone: exit code {left[1]}, {left[0]!r}")
    print(f"{len(commands)} commands, {size} bytes of output")
    print("\n".join(different) or "no differences")
    sys.exit(1 if different or len(commands) < 108 or size < 1000000 else 0)


main()
