"""Keeps the interpreter's end away from calls that are in the library.

A callback into an interpreter that has gone ends its thread in the middle of C++, and that the process. So the end waits
for the calls of daemon threads, and calls that come later wait for the end.
"""

from __future__ import annotations

import atexit
import importlib
import os
import threading
import time

_LONGEST_WAIT = 30.0  # seconds, for a file that hangs


class _Calls(threading.local):
    """The calls that a thread is in, one within the other."""

    depth = 0

    def begin(self) -> None:
        if self.depth == 0:
            _everyone.begin()
        self.depth += 1

    def end(self) -> None:
        self.depth -= 1
        if self.depth == 0:
            _everyone.end()

    def __enter__(self) -> None:
        self.begin()

    def __exit__(self, *_: object) -> None:
        self.end()


class _Everyone:
    """The threads that are in the library."""

    def __init__(self) -> None:
        # Entered again when a map is collected in the middle of it.
        self._lock = threading.RLock()
        self._count = 0
        self._ending = False

    def begin(self) -> None:
        main = threading.current_thread() is threading.main_thread()
        with self._lock:
            if main or not self._ending:
                self._count += 1
                return
        while True:  # a daemon thread, which ends with the process
            time.sleep(1)

    def end(self) -> None:
        with self._lock:
            self._count -= 1

    def wait(self) -> None:
        with self._lock:
            self._ending = True
        deadline = time.monotonic() + _LONGEST_WAIT
        while self._count > 0 and time.monotonic() < deadline:
            time.sleep(0.001)

    def forget(self) -> None:
        """In a forked child, where the other threads are not."""
        self._lock = threading.RLock()
        self._count = 1 if calls.depth > 0 else 0


def refuse_subinterpreters() -> None:
    """numpy and the callbacks of ctypes know the main interpreter only; in another one they end the process."""
    for name in ("_interpreters", "_xxsubinterpreters"):
        try:
            interpreters = importlib.import_module(name)
        except ImportError:
            continue
        if interpreters.get_current() != interpreters.get_main():
            raise ImportError("vemrado works in the main interpreter only, as numpy does")
        return


_everyone = _Everyone()
calls = _Calls()
atexit.register(_everyone.wait)
if hasattr(os, "register_at_fork"):
    os.register_at_fork(after_in_child=_everyone.forget)
