from __future__ import annotations

import os
import shutil
import sys
from pathlib import Path

import pytest

REPOSITORY = Path(__file__).resolve().parents[2]
DATA = Path(os.environ.get("VKM_DATA", REPOSITORY / "data"))
sys.path.append(str(REPOSITORY / "tests" / "libvkm"))

SMALL = b"""&V Lhota 740000.00 1043000.00
&R 0 0 0 0 1000 r
&D S=2024-05-01
&* one parcel with its number
&U 1
&L P 20.00 10.00 K=21900
 L 45.50 10.00 S=101 U=50
 L 45.50 38.25
 L 20.00 38.25 K=21910
 L 20.00 10.00
&U 2
&T 31.00 22.50 "114/2" K=1014
&T 31.00 25.50 "\xe8\xe1st" D=5 F=6 K=1
&K
"""


@pytest.fixture()
def town() -> Path:
    return DATA / "sample-town.vkm"


@pytest.fixture()
def town_folder(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> Path:
    """A folder, which is the current one, with the sample town and two sheets."""
    monkeypatch.chdir(tmp_path)
    shutil.copy(DATA / "sample-town.vkm", "town.vkm")
    Path("sheets").mkdir()
    for name in ("a", "b"):
        Path("sheets", f"{name}.vkm").write_bytes(SMALL)
    return tmp_path
