#!/bin/sh
# Runs a Windows program: wine-run.sh PREFIX PROGRAM [ARGUMENT...]
#
# The server is started once per prefix, under a lock and with closed outputs: a service that inherited the outputs of
# the first program would keep whoever reads them through a pipe waiting. It ends by itself 60 s after the last program.

export WINEPREFIX="$1"
shift
export WINEDEBUG="${WINEDEBUG:--all}" WINEDLLOVERRIDES="mscoree,mshtml,winedbg.exe=d"
unset DISPLAY WAYLAND_DISPLAY

mkdir -p "$WINEPREFIX"
(
    flock 9
    if /usr/lib/wine/wineserver -p60 </dev/null >/dev/null 2>&1 9>&-; then
        /usr/lib/wine/wine64 wineboot </dev/null >/dev/null 2>&1 9>&-
    fi
) 9>"$WINEPREFIX.lock"

exec /usr/lib/wine/wine64 "$@"
