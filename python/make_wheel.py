"""Makes a wheel of the package and a build's libraries: make_wheel.py LIBRARY_FOLDER PLATFORM OUTPUT_FOLDER.

PLATFORM is the wheel's tag, such as manylinux_2_36_x86_64 or win_amd64. One wheel serves every Python 3: nothing is
compiled against it.
"""

from __future__ import annotations

import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
LIBRARIES = {
    "linux": (
        "libvkm.so.1",
        "libVemrado.so.1",
        "libVemradoFramework.so",
        "libzrv320.so",
        "libzrvDX320.so",
        "vkm-draw.so",
    ),
    "win": ("vkm.dll", "Vemrado.dll", "VemradoFramework.dll", "zrv320.dll", "zrvDX320.dll"),
}
OPTIONAL = {"vkm-draw.so"}


def fill(package: Path, libraries: Path, platform: str) -> None:
    """Puts the libraries and the sample symbology into a copy of the package."""
    (package / "lib").mkdir()
    for name in LIBRARIES["win" if platform.startswith("win") else "linux"]:
        if name in OPTIONAL and not (libraries / name).exists():
            continue
        shutil.copy(libraries / name, package / "lib" / name)
        if name.endswith((".so", ".1")):
            subprocess.run(["strip", "--strip-unneeded", str(package / "lib" / name)], check=True)
    symbology = HERE.parent / "data" / "symbology"
    shutil.copytree(symbology / "VKMSym", package / "symbology" / "VKMSym")


def main() -> int:
    libraries, platform, output = Path(sys.argv[1]), sys.argv[2], Path(sys.argv[3]).resolve()
    with tempfile.TemporaryDirectory() as folder:
        tree = Path(folder) / "python"
        shutil.copytree(
            HERE, tree, ignore=shutil.ignore_patterns("__pycache__", ".*", "tests", "build", "*.egg-info")
        )
        fill(tree / "vemrado", libraries, platform)
        environment = dict(os.environ, SOURCE_DATE_EPOCH=os.environ.get("SOURCE_DATE_EPOCH", "315532800"))
        setup = [sys.executable, "-c", "import setuptools; setuptools.setup()", "-q", "bdist_wheel"]
        subprocess.run(
            setup + ["--python-tag", "py3", "--plat-name", platform, "--dist-dir", str(output)],
            cwd=tree,
            env=environment,
            check=True,
        )
    return 0


if __name__ == "__main__":
    sys.exit(main())
