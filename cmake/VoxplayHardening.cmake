# SPDX-License-Identifier: Apache-2.0
# Release builds are harder to attack: these protections turn an error in memory, which a damaged file
# might lead to, into the end of the program. scripts/check-hardening.sh looks for them in what was
# built.
#
# Each costs less than 1 % of the instructions of encoding, decoding, loading and changing sounds.
# Sanitizers bring checks of their own, which these would hide.
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)
include(CheckLinkerFlag)
set(IN_RELEASE "$<CONFIG:Release,RelWithDebInfo,MinSizeRel>")

# The last two are for x86 and for 64-bit ARM.
foreach(FLAG -fstack-protector-strong -fstack-clash-protection -fcf-protection=full
    -mbranch-protection=standard)
  string(MAKE_C_IDENTIFIER "VOXPLAY_HAS${FLAG}" HAS_FLAG)
  check_cxx_compiler_flag(${FLAG} ${HAS_FLAG})
  if(${HAS_FLAG})
    target_compile_options(voxplay_flags INTERFACE $<${IN_RELEASE}:${FLAG}>)
  endif()
endforeach()
# Packagers may ask for another level in the flags that they pass.
if(NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE")
  target_compile_definitions(voxplay_flags INTERFACE $<${IN_RELEASE}:_FORTIFY_SOURCE=2>)
endif()

# The standard library checks indexes and the like, but not in the frame coders, where this would cost
# 13 to 21 % of the instructions. Their indexes are checked by the preset debug-stl, the sanitizers and
# the fuzzers.
target_compile_definitions(voxplay_flags INTERFACE $<${IN_RELEASE}:_GLIBCXX_ASSERTIONS>)
target_compile_options(voxplay_arithmetic INTERFACE $<${IN_RELEASE}:-U_GLIBCXX_ASSERTIONS>)

foreach(FLAG relro now)
  check_linker_flag(CXX "LINKER:-z,${FLAG}" VOXPLAY_LINKER_HAS_${FLAG})
  if(VOXPLAY_LINKER_HAS_${FLAG})
    target_link_options(voxplay_flags INTERFACE $<${IN_RELEASE}:LINKER:-z,${FLAG}>)
  endif()
endforeach()
# Most compilers make programs that can be loaded at any address. The others are told to; code for
# shared libraries can be loaded anywhere already.
check_cxx_source_compiles("#ifndef __PIE__\n#error\n#endif\nint main() {}" VOXPLAY_PIE_IS_THE_RULE)
if(NOT VOXPLAY_PIE_IS_THE_RULE)
  set(IS_SHARED "$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>")
  set(IS_ANYWHERE "$<OR:${IS_SHARED},$<BOOL:$<TARGET_PROPERTY:POSITION_INDEPENDENT_CODE>>>")
  target_compile_options(voxplay_flags INTERFACE $<$<AND:${IN_RELEASE},$<NOT:${IS_ANYWHERE}>>:-fPIE>)
  target_link_options(voxplay_flags INTERFACE
    $<$<AND:${IN_RELEASE},$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>>:-pie>)
endif()
