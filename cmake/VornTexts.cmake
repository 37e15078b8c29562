# SPDX-License-Identifier: MIT
# The target vorn_texts: lupdate writes what a translator gets, all texts of the programs with the
# classes they belong to, into texts/vorn.ts of the build folder. There is none where lupdate is not
# installed; nothing else needs it.

find_program(VORN_LUPDATE NAMES lupdate lupdate-qt6
             HINTS "${QT6_INSTALL_PREFIX}/${QT6_INSTALL_BINS}" /usr/lib/qt6/bin NO_CMAKE_FIND_ROOT_PATH)
mark_as_advanced(VORN_LUPDATE)
if(NOT VORN_LUPDATE)
  message(STATUS "lupdate (qt6-l10n-tools) is not installed; there is no target vorn_texts")
  return()
endif()

set(VORN_TEXTS_FILE "${PROJECT_BINARY_DIR}/texts/vorn.ts")
# The folders whose libraries are linked into a program.
set(VORN_TEXTS_FOLDERS app camera cli darkframes detection hotpixel res simulator support view widgets)

# It is made anew each time: what is not in the sources any more is not kept.
add_custom_target(
  vorn_texts
  COMMAND ${CMAKE_COMMAND} -E rm -f "${VORN_TEXTS_FILE}"
  COMMAND ${CMAKE_COMMAND} -E make_directory "${PROJECT_BINARY_DIR}/texts"
  COMMAND "${VORN_LUPDATE}" -silent -locations relative -I "${PROJECT_SOURCE_DIR}"
          ${VORN_TEXTS_FOLDERS} -ts "${VORN_TEXTS_FILE}"
  WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"
  COMMENT "Collecting the texts of the programs in ${VORN_TEXTS_FILE}"
  VERBATIM)
