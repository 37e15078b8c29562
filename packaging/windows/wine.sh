# SPDX-License-Identifier: MIT
# To be sourced: a Wine of our own, in the build folder. What runs in it sees an empty Windows.
#
#   wine_start    makes the prefix where there is none; call once
#   wine_run      runs a Windows program and gives back its output, without CR, and its status
#   wine_path     how a Windows program calls a file
#   wine_stop     ends what is left running in this prefix

wine=$(command -v wine64 || true)
wine=${wine:-/usr/lib/wine/wine64}
export WINEPREFIX=$PWD/build/wine
# Without Wine's debugger: it would end a program that crashed, with a status of chance, often 0.
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml,winedbg.exe="

wine_start() {
  # Wine complains about its 32-bit part, which is not needed here.
  [ -f "$WINEPREFIX/system.reg" ] || { mkdir -p "$WINEPREFIX"; "$wine" wineboot -i; } >/dev/null 2>&1
}

wine_run() { "$wine" "$@" | tr -d '\r'; return "${PIPESTATUS[0]}"; }

wine_path() { printf 'Z:%s' "$(realpath -m "$1")"; }

wine_stop() {
  local server
  server=$(command -v wineserver || printf /usr/lib/wine/wineserver)
  { "$server" -k && "$server" -w; } >/dev/null 2>&1 || true
}
