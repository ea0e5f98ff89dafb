# SPDX-License-Identifier: Apache-2.0
#
# Makes of the plain comments of voxplay.h and voxplay.hpp what Doxygen looks for: a comment before
# a declaration describes it, one after it on its line describes it, too, and the first one of a
# header describes the header. Lines that are set in by three spaces or more stay as they are laid out.

# The licence line and the headings of sections describe nothing.
FNR == 1 || /^\/[\/*] ----/ { print; next }

# The header as a whole.
!described && /^\/\*$/ { print "/** @file"; described = in_comment = 1; next }
!described && /^\/\/$/ { print "/** @file"; described = in_cpp_head = 1; next }
in_cpp_head && /^\/\// { sub(/^\/\//, " *"); show($0); next }
in_cpp_head { print " */"; in_cpp_head = 0 }

in_comment { in_comment = !/\*\//; show($0); next }
/^ *\/\* / { sub(/\/\*/, "/**"); in_comment = !/\*\//; show($0); next }
/[;,{0-9] +\/\* / { sub(/\/\*/, "/**<"); in_comment = !/\*\//; print; next }
/^ *\/\/( |$)/ { sub(/\/\//, "///") }
/[;,{)] +\/\/ / { sub(/\/\//, "///<") }
{ print }

# Prints a line of a comment, and before it the begin or the end of what is laid out.
function show(line,   inner) {
  inner = line ~ /^ *\*   +[^ ]/ || (laid_out && line ~ /^ *\*$/)
  if (inner && !laid_out) print " * @verbatim"
  if (!inner && laid_out) print " @endverbatim"
  laid_out = inner
  if (inner) sub(/^ *\*/, " ", line)
  print line
}
