# SPDX-License-Identifier: MIT
# What makes a program of this project a Windows program.

# _vorn_windows_search_path(TARGET): the libraries that the program imports are looked for beside
# the executable and in the system folder, nowhere else.
function(_vorn_windows_search_path target)
  set(windows "${VORN_ROOT}/packaging/windows")
  if(MSVC)
    target_link_options(${target} PRIVATE /DEPENDENTLOADFLAG:0xA00)
  else()
    target_sources(${target} PRIVATE "${windows}/LoadConfig.cpp")
    add_custom_command(
      TARGET ${target}
      POST_BUILD
      COMMAND ${CMAKE_COMMAND} -E env "BINUTILS_PREFIX=${_CMAKE_TOOLCHAIN_PREFIX}" bash
              "${windows}/set-load-config" "$<TARGET_FILE:${target}>"
      VERBATIM)
  endif()
endfunction()

# _vorn_windows_program(TARGET): the search path, and the icon and the version that Explorer shows.
function(_vorn_windows_program target)
  _vorn_windows_search_path(${target})

  set(VORN_PROGRAM_FILE "${target}.exe")
  set(VORN_ICON_LINE "")
  if(EXISTS "${VORN_ROOT}/res/Vorn.ico")
    set(VORN_ICON_LINE "1 ICON \"${VORN_ROOT}/res/Vorn.ico\"")
  endif()
  set(resources "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc")
  configure_file("${VORN_ROOT}/packaging/windows/program.rc.in" "${resources}" @ONLY)
  target_sources(${target} PRIVATE "${resources}")
endfunction()
