# SPDX-License-Identifier: MIT
# To be sourced by packaging/windows/check: the checks that need no Qt for Windows.

# Wine, unlike Windows, starts a program whose ordinal is missing, with a stub in its place that
# ends the program when it is called.
ends_at_the_missing_ordinal() {
  local status=0
  "$wine" "$@" >"$out/missing.log" 2>&1 || status=$?
  cat "$out/missing.log"
  [ "$status" != 0 ] && grep -q 'nimplemented function Vorn_api_64.dll.484' "$out/missing.log"
}

check_binding() {
  local build=$PWD/build/windows-binding
  local test=$build/bin/binding_test.exe
  printf 'The binding\n'
  build_quietly "$build" -S tests/windows/binding -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE="$PWD/packaging/windows/mingw-toolchain.cmake" \
    -DVORN_WARNINGS_AS_ERRORS=ON
  mkdir -p "$build/bin-missing"
  cp "$test" "$build/bin-missing/"
  cp "$test" "$build/bin-incomplete/"

  expect "the 29 operations and the event object, called under Wine" wine_run "$test"
  expect "the import table holds the 29 ordinals and no name" \
    imports_the_29_ordinals_and_no_name "$test"
  expect "the library exports all of them" library_lacks "$test" "$build/bin/Vorn_api_64.dll"
  expect "without the library the program does not start" \
    does_not_start "$build/bin-missing/binding_test.exe"
  expect "without ordinal 484 Windows has to refuse the program" \
    library_lacks "$test" "$build/bin-incomplete/Vorn_api_64.dll" 484
  expect "without ordinal 484 Wine ends the program where it is called" \
    ends_at_the_missing_ordinal "$build/bin-incomplete/binding_test.exe" \
    --gtest_filter='*HotpixelCommandIsOrdinal484'
  expect "libraries are looked for beside the program and in the system folder only" \
    looks_only_beside_itself_and_in_the_system_folder "$test"
}
