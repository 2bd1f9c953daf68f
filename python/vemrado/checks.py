"""What is wrong with a map, and what changed between two states of one."""

from __future__ import annotations

import json
from collections import Counter
from ctypes import byref, c_char_p, sizeof
from dataclasses import asdict, dataclass, fields
from typing import TYPE_CHECKING, Any, Callable, Generic, Iterable, Optional, TypeVar, Union

from . import _library
from ._library import lib
from ._source import Source, several
from .errors import Call, _text
from .map import Map, opened_map

if TYPE_CHECKING:
    import pandas

Item = TypeVar("Item")


@dataclass(frozen=True)
class Finding:
    """One thing that is wrong with a map.

    Attributes
    ----------
    rule : str
        Its short name, such as ``"number-cut"``; docs/check.md explains it.
    severity : str
        ``"error"``, ``"warning"`` or ``"note"``.
    file : str
    line, column : int
        From 1, the column in bytes; 0 where the finding is of the map as a whole.
    message : str
    field : str or None
        The text of the field.
    point : tuple of float or None
        The place on the map, as in the file.
    """

    rule: str
    severity: str
    file: str
    line: int
    column: int
    message: str
    field: Optional[str]
    point: Optional[tuple[float, float]]


@dataclass(frozen=True)
class Change:
    """One difference between two states of a map.

    Attributes
    ----------
    change : str
        ``"added"``, ``"removed"``, ``"changed"`` or ``"moved"``.
    kind : str
        ``"line"``, ``"text"`` or ``"symbol"``.
    layer : int
    old, new : dict or None
        What it was and is.
    old_line, new_line : int or None
        Lines of the files.
    """

    change: str
    kind: str
    layer: int
    old: Any
    new: Any
    old_line: Optional[int]
    new_line: Optional[int]


class Records(list[Item], Generic[Item]):
    """A list with a table of its entries."""

    def __init__(self, kind: type[Any], items: Iterable[Item] = ()) -> None:
        super().__init__(items)
        self._kind = kind

    def to_pandas(self) -> pandas.DataFrame:
        """A row for each entry, a column for each attribute."""
        import pandas

        columns = [field.name for field in fields(self._kind)]
        return pandas.DataFrame([asdict(item) for item in self], columns=columns)

    def counts(self, attribute: str) -> Counter[str]:
        """How many entries there are of each value of an attribute, such as ``"rule"``."""
        return Counter(getattr(item, attribute) for item in self)

    def _repr_html_(self) -> str:
        return str(self.to_pandas().to_html(max_rows=10))


def _guarded(call: Call, take: Callable[[Any], None]) -> Callable[[Any, Any], int]:
    """A callback that stops the library when ours fails; the call raises what it raised."""

    def callback(_: Any, item: Any) -> int:
        try:
            take(item.contents)
        except BaseException as error:
            call.raised = error
            return 1
        return 0

    return callback


def _strings(values: Iterable[str]) -> Any:
    encoded = [value.encode() for value in several(values, "rules")]
    return (c_char_p * len(encoded))(*encoded)


def check(
    source: Union[Source, Map],
    *,
    only: Optional[Iterable[str]] = None,
    ignore: Optional[Iterable[str]] = None,
    **options: Any,
) -> Records[Finding]:
    """Looks for what is wrong with a map, as the command ``vkm check`` does.

    Parameters
    ----------
    source : path, bytes, file object or Map
    only, ignore : iterable of str, optional
        Names of the rules to look for, or to leave out.
    **options
        As for `open`.
    """
    wanted = _library.CheckOptions(size=sizeof(_library.CheckOptions))
    lib.vkm_check_options_init(byref(wanted))
    if only is not None:
        rules = _strings(only)
        wanted.only, wanted.only_count = rules, len(rules)
    if ignore is not None:
        rules = _strings(ignore)
        wanted.ignore, wanted.ignore_count = rules, len(rules)
    findings = Records[Finding](Finding)

    def take(finding: _library.Finding) -> None:
        findings.append(
            Finding(
                _text(finding.rule),
                _library.SEVERITIES[finding.severity],
                _text(finding.file),
                finding.line,
                finding.column,
                _text(finding.message),
                None if finding.field is None else _text(finding.field),
                (finding.point[0], finding.point[1]) if finding.has_point else None,
            )
        )

    with opened_map(source, **options) as opened, opened._using() as reader, Call() as call:
        callback = _library.OnFinding(_guarded(call, take))
        call.check(lib.vkm_check(reader, byref(wanted), callback, None, call.error))
    return findings


def diff(
    old: Union[Source, Map], new: Union[Source, Map], *, tolerance: float = 0.05, **options: Any
) -> Records[Change]:
    """Compares two states of a map, as the command ``vkm diff`` does.

    Parameters
    ----------
    old, new : path, bytes, file object or Map
    tolerance : float
        Metres by which a text may have moved and still be the same.
    **options
        As for `open`.
    """
    wanted = _library.DiffOptions(size=sizeof(_library.DiffOptions))
    lib.vkm_diff_options_init(byref(wanted))
    wanted.tolerance = tolerance
    changes = Records[Change](Change)

    def take(change: _library.Change) -> None:
        changes.append(
            Change(
                _text(change.change),
                _text(change.kind),
                change.layer,
                json.loads(change.old_json) if change.old_json else None,
                json.loads(change.new_json) if change.new_json else None,
                change.old_line or None,
                change.new_line or None,
            )
        )

    with opened_map(old, **options) as before, opened_map(new, **options) as after:
        with before._using() as one, after._using() as other, Call() as call:
            callback = _library.OnChange(_guarded(call, take))
            call.check(lib.vkm_diff(one, other, byref(wanted), callback, None, call.error))
    return changes
