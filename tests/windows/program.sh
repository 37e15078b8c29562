# SPDX-License-Identifier: MIT
# To be sourced by packaging/windows/check: the checks of the whole program, which run the very files
# that go into the zip, with the stand-in library beside them.

# An EventThread of the program against the library that records, with Qt from where it was built.
event_thread_works() {
  local compiler
  compiler=$(dirname "$(x86_64-w64-mingw32-g++-posix -print-file-name=libstdc++-6.dll)")
  WINEPATH="$(wine_path "$qt/bin");$(wine_path "$compiler");$(wine_path /usr/x86_64-w64-mingw32/lib)" \
    wine_run build/windows/tests/windows/bin/event_thread_test.exe
}

# Each in new cameras, whose EEPROM holds no user list yet.
with_new_cameras() {
  rm -rf "$eeproms"
  "$1"
}

check_program() {
  local stage=$out/stage program
  local library=build/windows/standin/Vorn_api_64.dll
  local incomplete=build/windows/tests/windows/bin-incomplete/Vorn_api_64.dll
  printf 'The whole program\n'
  build_quietly build/windows --preset windows "-DCMAKE_PREFIX_PATH=$qt"
  packaging/windows/stage "$stage"

  expect "the stand-in exports the 29 ordinals and no name" \
    exports_the_29_ordinals_and_no_name "$library"
  for program in VornHotpixelEditor.exe vorn-hotpixel.exe; do
    expect "$program: the import table holds the 29 ordinals and no name" \
      imports_the_29_ordinals_and_no_name "$stage/$program"
    expect "$program: the stand-in exports all of them" library_lacks "$stage/$program" "$library"
    expect "$program: does not start without the library" does_not_start "$stage/$program"
    expect "$program: Windows has to refuse it without ordinal 484" \
      library_lacks "$stage/$program" "$incomplete" 484
    expect "$program: libraries are looked for beside it and in the system folder only" \
      looks_only_beside_itself_and_in_the_system_folder "$stage/$program"
  done
  expect "events set by a thread of the library reach an EventThread" event_thread_works

  standin=$out/standin
  rm -rf "$standin"
  cp -R "$stage" "$standin"
  cp "$library" "$standin/"
  cameras=$out/cameras
  eeproms=$cameras/eeprom
  make_cameras "$cameras"
  export VORN_SIMULATED_CAMERAS VORN_SIMULATED_EEPROMS
  VORN_SIMULATED_CAMERAS=$(wine_path "$cameras/cameras.ini")
  VORN_SIMULATED_EEPROMS=$(wine_path "$eeproms")
  with_new_cameras check_companion
  with_new_cameras check_editor

  [ $failures != 0 ] || printf 'The zip is %s.\n' "$(packaging/windows/make-zip)"
}
