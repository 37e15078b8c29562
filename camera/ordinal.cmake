# SPDX-License-Identifier: MIT
# Vorn::ordinal: the camera maker's library behind CameraSdk. An executable links it to be the
# program for real cameras. Windows only.
#
# vorn_ordinal_binding is the same without what it tells the rest of the program through Qt.

# The import library is made here, from the ordinals, so the maker's own is not needed.
set(vorn_api_def "${CMAKE_CURRENT_LIST_DIR}/Vorn_api_64.def")
set(vorn_api_import
    "${CMAKE_CURRENT_BINARY_DIR}/${CMAKE_IMPORT_LIBRARY_PREFIX}Vorn_api_64${CMAKE_IMPORT_LIBRARY_SUFFIX}"
)
if(MSVC)
  set(vorn_api_command "${CMAKE_AR}" /nologo /machine:x64 "/def:${vorn_api_def}"
                       "/out:${vorn_api_import}")
else()
  set(vorn_api_command "${CMAKE_DLLTOOL}" --input-def "${vorn_api_def}" --output-lib
                       "${vorn_api_import}")
endif()
add_custom_command(
  OUTPUT "${vorn_api_import}"
  COMMAND ${vorn_api_command}
  DEPENDS "${vorn_api_def}"
  COMMENT "Making the import library of Vorn_api_64.dll"
  VERBATIM)
add_custom_target(vorn_api_import DEPENDS "${vorn_api_import}")

add_library(vorn_ordinal_binding STATIC "${CMAKE_CURRENT_LIST_DIR}/OrdinalCameraSdk.cpp")
vorn_target_defaults(vorn_ordinal_binding)
target_include_directories(vorn_ordinal_binding PUBLIC "${VORN_ROOT}")
target_link_libraries(vorn_ordinal_binding PUBLIC "${vorn_api_import}")
add_dependencies(vorn_ordinal_binding vorn_api_import)

if(TARGET vorn_camera)
  add_library(vorn_ordinal STATIC "${CMAKE_CURRENT_LIST_DIR}/OrdinalSdkExtras.cpp")
  vorn_target_defaults(vorn_ordinal)
  target_link_libraries(vorn_ordinal PUBLIC vorn_ordinal_binding Vorn::camera)
  add_library(Vorn::ordinal ALIAS vorn_ordinal)
endif()
