#!/usr/bin/env python3
"""Hosts of several languages give one answer: hosts_test.py MAP HOST... -- [RUNNER...]

The digest is reckoned here once more, from the file's elements as the interpreter reads them, where the library is one
of this machine.
"""

import pathlib
import struct
import subprocess
import sys

import vkm
from vkm import byref


def fnv(digest, data):
    for byte in data:
        digest = (digest ^ byte) * 1099511628211 & 0xFFFFFFFFFFFFFFFF
    return digest


def digest_by_ctypes(library, path):
    reader = library.call("vkm_open", path.encode(), None)
    digest = 14695981039346656037
    element = vkm.POINTER(vkm.Element)()
    while library.call("vkm_next", reader, byref(element)) == 0:
        e, n = element[0], element[0].point_count
        digest = fnv(digest, struct.pack(f"=i{2 * n}d", e.layer, *e.points[: 2 * n]))
        if e.kind == 2:
            digest = fnv(digest, e.text + struct.pack("=d", e.height))
        else:
            texts = e.types + b"".join(e.codes[:n])
            digest = fnv(digest, texts + struct.pack(f"={n}i", *e.symbols[:n]) + struct.pack(f"={n}d", *e.u_values[:n]))
    library.lib.vkm_close(reader)
    return digest


split = sys.argv.index("--")
path, hosts, runner = sys.argv[1], sys.argv[2:split], sys.argv[split + 1 :]
answers = {host: int(subprocess.check_output([*runner, host, path])) for host in hosts}
library = pathlib.Path(hosts[0]).parent.parent / "lib/libvkm.so"
if library.exists():
    answers["ctypes"] = digest_by_ctypes(vkm.Library(str(library)), path)
print(answers)
sys.exit(0 if len(set(answers.values())) == 1 and 0 not in answers.values() else 1)
