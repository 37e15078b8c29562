# SPDX-License-Identifier: MIT
# To be sourced by packaging/windows/check: the editor with the stand-in library, under Wine and Xvfb,
# driven with the mouse and the keyboard. Positions are those of the window as it is at its first
# start, which takes up 800 × 600 pixels.

display_processes=()
editor=
window=

start_display() {
  local number=$out/display
  rm -f "$number"
  Xvfb -displayfd 9 -screen 0 1024x768x24 9>"$number" >/dev/null 2>&1 &
  display_processes+=($!)
  within 30 test -s "$number" || return 1
  DISPLAY=:$(cat "$number")
  export DISPLAY
  openbox >/dev/null 2>&1 &
  display_processes+=($!)
  within 30 window_manager_runs
}

stop_display() {
  local process
  for process in ${editor:+"$editor"} "${display_processes[@]}"; do
    kill "$process" 2>/dev/null || true
  done
  editor=
  display_processes=()
}

window_manager_runs() { xprop -root _NET_SUPPORTING_WM_CHECK | grep 'window id'; }

# within SECONDS COMMAND...: waits until the command succeeds.
within() {
  local end=$((SECONDS + $1))
  shift
  until "$@" >/dev/null 2>&1; do
    [ $SECONDS -lt $end ] || { printf 'not within the time: %s\n' "$*"; return 1; }
    sleep 0.2
  done
}

windows_named() { xdotool search --onlyvisible --name "^$1\$" 2>/dev/null; }
count_windows() { [ "$(windows_named "$1" | wc -l)" "$2" "$3" ]; }
screenshot() { import -window root "$shots/$1.png"; }

# What the window shows right of its docks, without scroll bars, as a picture of its own.
image_area() { import -window "$window" -crop 380x360+380+90 +repage "$1"; }
colours() { image_area "$out/area.png" && identify -format '%k' "$out/area.png"; }
shows_an_image() { [ "$(colours)" -gt 1 ]; }
shows_a_scene() { [ "$(colours)" -gt 40 ]; }
shows_no_image() { [ "$(colours)" = 1 ]; }
image_moves() {
  image_area "$out/before.png" && sleep 0.5 && image_area "$out/area.png" &&
    ! compare -metric AE "$out/before.png" "$out/area.png" null:
}

click() { xdotool mousemove --window "$window" "$1" "$2" click "${@:3}" 1; }

# Repeats what a busy machine may have missed; each does nothing when it has been done.
opens_row() { click 80 "$1" --repeat 2 --delay 100 && within 5 shows_an_image; }
closes() { click 55 39 && within 5 shows_no_image; }

starts() {
  # An earlier run has left its window layout.
  wine_run reg delete 'HKCU\Software\QEM' /f || true
  (cd "$standin" && exec "$wine" ./VornHotpixelEditor.exe) >"$out/editor.log" 2>&1 &
  editor=$!
  within 120 windows_named VornHotpixelEditor || { screenshot 1-not-started; return 1; }
  window=$(windows_named VornHotpixelEditor | head -n 1)
  within 60 shows_no_image && screenshot 1-camera-list
}

row_of_dark=116
row_of_scene=139

# Opened twice, since only the second opening meets panels that have a range already.
shows_live_frames() {
  within 60 opens_row $row_of_scene && within 60 closes && within 60 opens_row $row_of_scene &&
    within 60 shows_a_scene && within 60 image_moves || { screenshot 2-live-failed; return 1; }
  screenshot 2-live
  within 60 closes
}

asks_for_detection() { click 123 39 && within 5 count_windows "Hotpixel detection" -gt 0; }
# Without the row of its buttons, of which the default one pulses.
dialogue_picture() {
  import -window "$(windows_named "Hotpixel detection" | head -n 1)" "$1" &&
    mogrify -gravity south -chop 0x50 "$1"
}
# Escape would stop a detection, so it waits until the dialogue does not change any more.
detection_ends() {
  dialogue_picture "$out/before.png" && sleep 3 && dialogue_picture "$out/area.png" &&
    compare -metric AE "$out/before.png" "$out/area.png" null:
}
detection_closes() {
  xdotool key Escape && within 2 count_windows "Hotpixel detection" = 0 && sleep 1 &&
    count_windows "Hotpixel detection" = 0
}

detects() {
  within 60 opens_row $row_of_dark && within 60 asks_for_detection || return 1
  screenshot 3-before-detection
  xdotool key Return
  sleep 1
  screenshot 4-detection
  within 120 detection_ends || { screenshot 5-detected; return 1; }
  screenshot 5-detected
  within 60 detection_closes
}

asks_before_writing() { click 155 39 && within 5 count_windows VornHotpixelEditor -gt 1; }
eeprom_holds_the_hotpixels() {
  diff <(user_list "$eeproms/5100000001.eeprom") <(printf '%s\n' "$hot_pixels")
}

writes() {
  ! eeprom_holds_the_hotpixels >/dev/null || return 1
  within 60 asks_before_writing || return 1
  screenshot 6-before-writing
  xdotool key alt+y
  within 30 eeprom_holds_the_hotpixels
  screenshot 7-written
  eeprom_holds_the_hotpixels
}

editor_has_ended() { ! kill -0 "$editor"; }
# Escape closes a menu that an earlier try has left open.
exits() { xdotool key Escape Escape alt+f x && within 10 editor_has_ended; }

quits() {
  local status=0
  within 60 exits || return 1
  wait "$editor" || status=$?
  editor=
  [ $status = 0 ]
}

check_editor() {
  local tool
  for tool in Xvfb openbox xdotool xprop import compare; do
    if ! command -v $tool >/dev/null; then
      printf '  skipped VornHotpixelEditor.exe: %s is missing\n' $tool
      return
    fi
  done
  shots=$out/screenshots
  rm -rf "$shots"
  mkdir -p "$shots"
  # A Wine that has begun without a display stays without.
  wine_stop
  if ! start_display; then
    expect "a display for the editor" false
    return
  fi
  expect "VornHotpixelEditor.exe starts, with the list of cameras" starts
  expect "it opens a camera and shows its live frames" shows_live_frames
  expect "it detects in dark frames" detects
  expect "it writes the ten hotpixels into the EEPROM" writes
  expect "it quits with status 0" quits
  printf '  Screenshots are in %s.\n' "${shots#"$PWD/"}"
}
