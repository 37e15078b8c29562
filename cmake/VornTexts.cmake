# SPDX-License-Identifier: MIT
# The target vorn_texts: what a translator gets, in texts/vorn.ts of the build folder. There is none
# where lupdate is not installed; nothing else needs it.
find_program(VORN_LUPDATE lupdate HINTS "${QT6_INSTALL_PREFIX}/${QT6_INSTALL_BINS}"
                                        "${QT6_INSTALL_PREFIX}/lib/qt6/bin")
find_program(VORN_BASH bash)
mark_as_advanced(VORN_LUPDATE VORN_BASH)
if(NOT VORN_LUPDATE OR NOT VORN_BASH)
  message(STATUS "lupdate (qt6-l10n-tools) is not installed; there is no target vorn_texts")
  return()
endif()

add_custom_target(
  vorn_texts
  COMMAND "${VORN_BASH}" "${VORN_ROOT}/tools/collect-texts" "${VORN_LUPDATE}"
          "${PROJECT_BINARY_DIR}/texts/vorn.ts"
  COMMENT "Collecting the texts of the programs in ${PROJECT_BINARY_DIR}/texts/vorn.ts"
  VERBATIM)
