# SPDX-License-Identifier: MIT
# To be sourced: what the import and export tables of Windows files hold.

ordinals=$(printf '%s\n' 3 5 17 23 36 38 55 56 57 58 68 69 70 205 213 215 221 231 233 237 239 247 271 \
  273 299 312 335 441 484)

# The rows of a file's import table for the camera library: "8000000000000003 000000003 <none>" for
# an ordinal, "d3c0 283 DeleteCriticalSection" for a name.
import_rows() {
  x86_64-w64-mingw32-objdump -p "$1" |
    awk '/DLL Name: Vorn_api_64.dll/ { inside = 1; getline; next }
         inside && NF == 0 { exit }
         inside { print }'
}

imported_ordinals() {
  import_rows "$1" | awk '{ print $2 }' |
    while read -r hexadecimal; do printf '%d\n' "0x$hexadecimal"; done | sort -n
}

exported_ordinals() {
  x86_64-w64-mingw32-objdump -p "$1" |
    sed -nE 's/.*\+base\[ *([0-9]+)\] [0-9a-f]+ Export RVA.*/\1/p' | sort -n
}

imports_the_29_ordinals_and_no_name() {
  import_rows "$1"
  [ -z "$(import_rows "$1" | grep -vE '^[[:space:]]80000000')" ] &&
    diff <(printf '%s\n' "$ordinals") <(imported_ordinals "$1")
}

exports_the_29_ordinals_and_no_name() {
  [ -n "$(x86_64-w64-mingw32-objdump -p "$1" |
    grep -E 'Name Pointer/Ordinal\] Table[[:space:]]+0+$')" ] &&
    diff <(printf '%s\n' "$ordinals") <(exported_ordinals "$1")
}

# library_lacks PROGRAM LIBRARY [ORDINAL...]: of what the program imports, the library exports all
# but these. Windows compares the two before a program's first instruction, and refuses the program
# when anything is missing.
library_lacks() {
  local program=$1 library=$2
  shift 2
  diff <([ $# = 0 ] || printf '%s\n' "$@") \
    <(comm -23 <(imported_ordinals "$program" | sort) <(exported_ordinals "$library" | sort))
}

looks_only_beside_itself_and_in_the_system_folder() {
  [ "$(packaging/windows/set-load-config --show "$1")" = a00 ]
}
