#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Breaks the rules of the tree one by one in a copy, and expects scripts/check-tree.sh to say so.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
copy=$(mktemp -d)
trap 'rm -rf "$copy"' EXIT
tar -C "$root" --exclude=./build --exclude=./.git --exclude=./tests/data -cf - . | tar -C "$copy" -xf -
cd "$copy"
wave=Lib_Common/Src/LibProject/WaveFileLib
failed=0

check() { scripts/check-tree.sh 2>&1; }

# expect WHAT TEXT FILE...: after "breaking", the check fails and its output holds TEXT. The files
# named are then put back, or removed where the tree has none of that name.
expect() {
  local what=$1 text=$2 output file
  shift 2
  if output=$(check) || ! grep -qF "$text" <<<"$output"; then
    printf 'check-tree-test: %s was not found; the check said:\n%s\n' "$what" "$output"
    failed=1
  fi
  for file in "$@"; do
    if [[ -e $root/$file ]]; then cp -p "$root/$file" "$file"; else rm -r "$file"; fi
  done
}

if ! output=$(check); then
  printf 'check-tree-test: the tree itself does not pass:\n%s\n' "$output"
  exit 1
fi

echo '#include "file/WavFile.h"' >>"$wave/sound/WavInfo.cpp"
expect "an include that goes up" "an include goes up: $wave/sound/" "$wave/sound/WavInfo.cpp"

echo '#include "annotation/EventTag.h"' >>"$wave/chunk/PcmFormat.cpp"
expect "an include of another room on the same floor" "an include goes up: $wave/chunk/" "$wave/chunk/PcmFormat.cpp"

echo '#include "file/SpHeader.h"' >>platform/CAXException.cpp
expect "a platform that knows the library" "the platform knows the library" platform/CAXException.cpp

echo '#include "WavInfos.h"' >>"$wave/sound/WavInfo.cpp"
expect "an include of a file that does not exist" '"WavInfos.h" is no file of ours' "$wave/sound/WavInfo.cpp"

printf '// SPDX-License-Identifier: Apache-2.0\n' >tests/common/LostTest.cpp
expect "a test that no program has" "tests/common/LostTest.cpp is listed in no CMakeLists.txt" tests/common/LostTest.cpp

mkdir "$wave/attic"
printf '// SPDX-License-Identifier: Apache-2.0\n#pragma once\n' >"$wave/attic/Old.h"
expect "a room that is not in the table" "$wave/attic/ is not in the table of floors" "$wave/attic"

sed -i 's|`common/`|`common/`, `cellar/`|' docs/ARCHITECTURE.md
expect "a listed room without sources" "lists cellar/, where no source stands" docs/ARCHITECTURE.md

rm "$wave/annotation/EventTag.cpp"
expect "a class family without its pair" "annotation/EventTag.cpp belong together" "$wave/annotation/EventTag.cpp"

printf '\nclass SoundThing {};\n' >>"$wave/sound/WavInfo.h"
expect "a class without its prefix" "not named as an interface" "$wave/sound/WavInfo.h"

sed -i 's/Pinned by [A-Za-z0-9_]*/Pinned by NoSuch_Test/' "$wave/sound/WavData.cpp"
expect "a kept oddity that no test pins" "no test is called NoSuch_Test" "$wave/sound/WavData.cpp"

cat >>tests/common/VCMTest.cpp <<'CODE'
TEST(VCM, NameWithoutAnOutcome) { EXPECT_EQ(1, VCM_strncpy(nullptr, nullptr, 0) == nullptr); }
CODE
expect "a test name without an outcome" "NameWithoutAnOutcome" tests/common/VCMTest.cpp
cat >>tests/common/VCMTest.cpp <<'CODE'
TEST(VCM, Order_OfValues) { EXPECT_EQ(1, VCM_strncpy(nullptr, nullptr, 0) == nullptr); }
CODE
expect "an expected value in front" "expects the constant first" tests/common/VCMTest.cpp

printf 'inline void Loop() {\n  for (int i = 0; i < 3; ++i)\n    Loop();\n}\n' >>common/CheckedSize.h
expect "a body on its own line without braces" "a body on its own line has no braces" common/CheckedSize.h
printf 'inline void Loop() {\n  for (int i = 0; i < 3; ++i) {\n    Loop();\n  }\n}\n' >>common/CheckedSize.h
expect "a short body on its own line" "this body fits on the line above" common/CheckedSize.h

exit "$failed"
