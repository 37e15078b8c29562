# SPDX-License-Identifier: MIT
# To be sourced by packaging/windows/check: the companion with the stand-in library, in text.

# companion ARGUMENT...: runs vorn-hotpixel.exe where everything lies beside it.
companion() { (cd "$standin" && wine_run ./vorn-hotpixel.exe "$@"); }

# fails_with STATUS TEXT COMMAND...: the command ends with the status and says the text.
fails_with() {
  local expected=$1 text=$2 status=0 said
  shift 2
  said=$("$@" 2>&1) || status=$?
  printf '%s\nstatus %s\n' "$said" "$status"
  [ "$status" = "$expected" ] && [[ $said == *"$text"* ]]
}

lists_the_cameras() {
  diff <(companion cameras | sed -E 's/ +/ /g; s/ $//') - <<'END'
Cam Dev Model SerNo Status
1 1 Dark 5100000001 free
2 2 Scene 5100000002 free
3 3 Held 5100000003 in use
END
}

# The hotpixels as a list file holds them on Windows.
expected_list() { printf '%s\n' "$hot_pixels" | sed 's/$/ 1\r/'; }

# The user list in an EEPROM file.
user_list() { sed -n '/^user /,/^sha256 /p' "$1" | grep -E '^[0-9]+ [0-9]+$'; }

detects_and_writes() {
  companion detect 1 --clear --threshold 40 --out "$(wine_path "$cameras/detected.txt")" --write --yes &&
    cmp "$cameras/detected.txt" <(expected_list) &&
    diff <(user_list "$eeproms/5100000001.eeprom") <(printf '%s\n' "$hot_pixels")
}

# The scene is not dark, so the command itself fails.
speaks_utf8() { { companion detect 2 || true; } | grep -F "1280 × 960 pixels"; }

reads_back() {
  companion read 5100000001 --out "$(wine_path "$cameras/read.txt")" &&
    cmp "$cameras/read.txt" <(expected_list)
}

writes_a_list_file() {
  printf '7 9 1\r\n' >"$cameras/one.txt"
  companion write 1 "$(wine_path "$cameras/one.txt")" --yes &&
    [ "$(user_list "$eeproms/5100000001.eeprom")" = "7 9" ]
}

check_companion() {
  expect "vorn-hotpixel.exe lists the stand-in's cameras" lists_the_cameras
  expect "it finds the ten hotpixels, saves them and writes them into the EEPROM" detects_and_writes
  expect "it reads them back in a process of its own" reads_back
  expect "it writes a list file into the EEPROM" writes_a_list_file
  expect "it writes its text in UTF-8" speaks_utf8
  expect "it refuses a scene that is not dark" \
    fails_with 1 "completely obscured" companion detect 2
  expect "it refuses a camera that another program holds" \
    fails_with 1 "in use by another program" companion read 3
  expect "it knows nothing of covers" fails_with 2 "cover" companion detect 1 --cover
}
