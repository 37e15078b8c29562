# SPDX-License-Identifier: MIT
# The library Vorn_api_64.dll that records the calls that reach it, and the same without its last
# ordinal. They bear one name, so each lies in a folder of its own, bin/ and bin-incomplete/.
set(recorder_folder "${CMAKE_CURRENT_LIST_DIR}")
set(recorder_def "${recorder_folder}/Recorder.def")
set(incomplete_def "${CMAKE_CURRENT_BINARY_DIR}/RecorderIncomplete.def")
file(READ "${recorder_def}" incomplete)
string(REPLACE "    ordinal_484 @484 NONAME\n" "" incomplete "${incomplete}")
file(CONFIGURE OUTPUT "${incomplete_def}" CONTENT "${incomplete}" @ONLY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${recorder_def}")

function(vorn_recorder target folder def)
  add_library(${target} SHARED "${recorder_folder}/Recorder.cpp" "${def}")
  vorn_target_defaults(${target})
  target_link_options(${target} PRIVATE -static)
  set_target_properties(
    ${target}
    PROPERTIES AUTOMOC OFF
               AUTOUIC OFF
               AUTORCC OFF
               PREFIX ""
               OUTPUT_NAME Vorn_api_64
               RUNTIME_OUTPUT_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/${folder}"
               # Nothing links it: the import library is made from the program's own list.
               ARCHIVE_OUTPUT_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/${target}")
endfunction()

vorn_recorder(vorn_recorder bin "${recorder_def}")
vorn_recorder(vorn_recorder_incomplete bin-incomplete "${incomplete_def}")
