# SPDX-License-Identifier: Apache-2.0
# The libraries that programs link: libvoxplay.so, which shows the functions of voxplay.h and nothing
# else, and libvoxplay.a, which also holds the classes. Both are made of the objects of the libraries
# that the tests link, whichever kind those are.
file(STRINGS ${PROJECT_SOURCE_DIR}/api/include/voxplay.h NUMBERS
  REGEX "^#define VOXPLAY_VERSION_(MAJOR|MINOR|PATCH) [0-9]+$")
list(TRANSFORM NUMBERS REPLACE "^.* " "")
list(JOIN NUMBERS "." HEADER_VERSION)
if(NOT HEADER_VERSION VERSION_EQUAL PROJECT_VERSION)
  message(FATAL_ERROR "voxplay.h has the version ${HEADER_VERSION}, project() has ${PROJECT_VERSION}")
endif()

set(VOXPLAY_OBJECTS)
foreach(LIBRARY voxplay_rooms WaveFileLib KestrelFrameCoder HeronFrameCoder voxplay_common)
  list(APPEND VOXPLAY_OBJECTS $<TARGET_OBJECTS:${LIBRARY}>)
endforeach()

set(VOXPLAY_MAP ${PROJECT_SOURCE_DIR}/cmake/voxplay.map)
add_library(voxplay SHARED ${VOXPLAY_OBJECTS})
# docs/RELEASING.md says when the number in the name moves, and with it the first version of that name.
set(VOXPLAY_COMPATIBLE_SINCE 0.1)
set_target_properties(voxplay PROPERTIES
  VERSION ${PROJECT_VERSION} SOVERSION 0 LINKER_LANGUAGE CXX LINK_DEPENDS ${VOXPLAY_MAP})
target_link_libraries(voxplay PRIVATE $<BUILD_INTERFACE:voxplay_flags>)
target_link_options(voxplay PRIVATE LINKER:--version-script=${VOXPLAY_MAP} LINKER:--as-needed)
if(NOT VOXPLAY_SANITIZE AND NOT VOXPLAY_FUZZERS)
  # The functions of the sanitizers are in the program.
  target_link_options(voxplay PRIVATE LINKER:--no-undefined)
endif()

add_library(voxplay_static STATIC ${VOXPLAY_OBJECTS})
set_target_properties(voxplay_static PROPERTIES OUTPUT_NAME voxplay LINKER_LANGUAGE CXX)
target_link_libraries(voxplay_static PRIVATE $<BUILD_INTERFACE:voxplay_flags>)

foreach(LIBRARY voxplay voxplay_static)
  target_sources(${LIBRARY} PUBLIC FILE_SET HEADERS
    BASE_DIRS ${PROJECT_SOURCE_DIR}/api/include FILES ${VOXPLAY_HEADERS})
  add_library(Voxplay::${LIBRARY} ALIAS ${LIBRARY})
endforeach()
