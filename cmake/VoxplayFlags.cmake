# SPDX-License-Identifier: Apache-2.0
# Voxplay::flags holds what all our targets are compiled with: language level, warnings, and the
# instrumentation that a preset asks for. Nothing is set globally.
add_library(voxplay_flags INTERFACE)
add_library(Voxplay::flags ALIAS voxplay_flags)
target_compile_features(voxplay_flags INTERFACE cxx_std_20)
target_compile_options(voxplay_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
  -Wcast-align -Wformat=2 -Wnull-dereference -Wdouble-promotion -Wimplicit-fallthrough
  # The interfaces that hand out borrowed objects have no virtual destructor by design; deleting
  # through one is still an error.
  -Wno-non-virtual-dtor -Wdelete-non-virtual-dtor)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  # Positions in files have 64 bits here, too.
  target_compile_definitions(voxplay_flags INTERFACE _FILE_OFFSET_BITS=64)
endif()
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC tells on ARM that it passed some arguments differently before GCC 7.
  target_compile_options(voxplay_flags INTERFACE -Wno-psabi)
endif()
if(VOXPLAY_WARNINGS_AS_ERRORS)
  target_compile_options(voxplay_flags INTERFACE -Werror)
endif()
if(VOXPLAY_DEBUG_STL)
  # This changes the layout of containers, so whatever exchanges them with us is built this way, too.
  target_compile_definitions(voxplay_flags INTERFACE _GLIBCXX_DEBUG _GLIBCXX_DEBUG_PEDANTIC)
endif()
if(VOXPLAY_SANITIZE)
  target_compile_options(voxplay_flags INTERFACE
    -fsanitize=${VOXPLAY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(voxplay_flags INTERFACE -fsanitize=${VOXPLAY_SANITIZE})
  # With the sanitizer's checks compiled in, GCC wrongly warns of unset values in the standard
  # library's own headers. The build without sanitizers keeps the warning.
  target_compile_options(voxplay_flags INTERFACE
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  if(VOXPLAY_SANITIZE MATCHES "undefined")
    target_compile_options(voxplay_flags INTERFACE -fsanitize=float-cast-overflow)
  endif()
endif()
if(VOXPLAY_FUZZERS)
  # This flag gives coverage guidance to every target, not only to the fuzzers. Tests need none.
  target_compile_options(voxplay_flags INTERFACE
    $<$<NOT:$<IN_LIST:voxplay_test_flags,$<TARGET_PROPERTY:LINK_LIBRARIES>>>:-fsanitize=fuzzer-no-link>)
  target_link_options(voxplay_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(VOXPLAY_FUZZERS AND NOT VOXPLAY_TESTS)
  # The name that fuzzers of all projects use for what is left out when they run. Tests of the same
  # build would miss it.
  target_compile_definitions(voxplay_flags INTERFACE FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION)
endif()
if(VOXPLAY_COVERAGE)
  target_compile_options(voxplay_flags INTERFACE --coverage)
  target_link_options(voxplay_flags INTERFACE --coverage)
endif()

# For code that only calculates. Without the optimiser, it takes up most of the time of the tests in
# a debug build. The optimiser's copies of a function each count as branches of their own, so it stays out of
# the way where branches are counted.
add_library(voxplay_arithmetic INTERFACE)
add_library(Voxplay::arithmetic ALIAS voxplay_arithmetic)
if(NOT VOXPLAY_COVERAGE)
  target_compile_options(voxplay_arithmetic INTERFACE $<$<CONFIG:Debug>:-O2>)
endif()

if(VOXPLAY_HARDENING AND NOT VOXPLAY_SANITIZE AND NOT VOXPLAY_FUZZERS)
  include(${CMAKE_CURRENT_LIST_DIR}/VoxplayHardening.cmake)
endif()

# voxplay_library(NAME): what the libraries have in common, whatever a parent project sets. Everything
# is visible in a shared library, because callers derive from its classes; sources have helpers of equal
# names, so they are not compiled together.
function(voxplay_library NAME)
  set_target_properties(${NAME} PROPERTIES
    CXX_VISIBILITY_PRESET default VISIBILITY_INLINES_HIDDEN OFF UNITY_BUILD OFF)
  target_compile_features(${NAME} PUBLIC cxx_std_20)
  if(VOXPLAY_API)
    # The shared library is made of the same objects as the archives. Nothing takes the place of a
    # function of ours at run time, so that calls need not allow for that.
    set_target_properties(${NAME} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    target_compile_options(${NAME} PRIVATE -fno-semantic-interposition)
  endif()
endfunction()
