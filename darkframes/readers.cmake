# SPDX-License-Identifier: MIT
# The readers of frames that need a library of their own. Where it is missing the build goes on, and
# the program says of what it was made without.
# What is installed here is of no use to a program for another system.
set(default_with ON)
if(CMAKE_CROSSCOMPILING)
  set(default_with OFF)
endif()
option(VORN_WITH_FITS "Read FITS files, with CFITSIO and zlib where they are installed" ${default_with})
option(VORN_WITH_RAW "Read camera raw files, with LibRaw where it is installed" ${default_with})

if(VORN_WITH_FITS)
  find_path(CFITSIO_INCLUDE_DIR fitsio.h PATH_SUFFIXES cfitsio)
  find_library(CFITSIO_LIBRARY cfitsio)
  find_package(ZLIB QUIET)
  if(CFITSIO_INCLUDE_DIR AND CFITSIO_LIBRARY AND ZLIB_FOUND)
    target_sources(vorn_darkframes PRIVATE FitsHeader.cpp FitsReader.cpp GzipFile.cpp
                                           RiceStream.cpp)
    target_include_directories(vorn_darkframes SYSTEM PRIVATE "${CFITSIO_INCLUDE_DIR}")
    target_link_libraries(vorn_darkframes PRIVATE "${CFITSIO_LIBRARY}" ZLIB::ZLIB)
    target_compile_definitions(vorn_darkframes PUBLIC VORN_HAS_CFITSIO)
    set(VORN_HAS_CFITSIO ON PARENT_SCOPE)
  else()
    message(STATUS "CFITSIO (libcfitsio-dev, zlib1g-dev) is not installed; no FITS files are read")
  endif()
endif()

if(VORN_WITH_RAW)
  find_path(LIBRAW_INCLUDE_DIR libraw/libraw.h)
  # The variant whose functions may be called on several threads.
  find_library(LIBRAW_LIBRARY NAMES raw_r raw)
  if(LIBRAW_INCLUDE_DIR AND LIBRAW_LIBRARY)
    target_sources(vorn_darkframes PRIVATE RawReader.cpp)
    target_include_directories(vorn_darkframes SYSTEM PRIVATE "${LIBRAW_INCLUDE_DIR}")
    target_link_libraries(vorn_darkframes PRIVATE "${LIBRAW_LIBRARY}")
    target_compile_definitions(vorn_darkframes PUBLIC VORN_HAS_LIBRAW)
    set(VORN_HAS_LIBRAW ON PARENT_SCOPE)
  else()
    message(STATUS "LibRaw (libraw-dev) is not installed; no camera raw files are read")
  endif()
endif()
