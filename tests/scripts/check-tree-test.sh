#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Breaks each rule of the tree in a copy of it, and expects scripts/check-tree.sh to say so of each.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
copy=$(mktemp -d)
trap 'rm -rf "$copy"' EXIT
tar -C "$root" --exclude=./build --exclude=./.git --exclude=./tests/data -cf - . | tar -C "$copy" -xf -
cd "$copy"
wave=Lib_Common/Src/LibProject/WaveFileLib
failed=0

check() { scripts/check-tree.sh 2>&1; }

declare -A texts
# expect WHAT TEXT: what was just broken must bring this text into what the check says.
expect() { texts[$1]=$2; }

if ! output=$(check); then
  printf 'check-tree-test: the tree itself does not pass:\n%s\n' "$output"
  exit 1
fi

echo '#include "file/WavFile.h"' >>"$wave/sound/WavInfo.cpp"
expect "an include that goes up" "an include goes up: $wave/sound/"

echo '#include "annotation/EventTag.h"' >>"$wave/chunk/PcmFormat.cpp"
expect "an include of another room on the same floor" "an include goes up: $wave/chunk/"

# include FILE LINE: appends the line; it is not written plainly.
include() {
  echo "$2" >>"$1"
  expect "the line $2" "$1:$(wc -l <"$1"): this include is not written plainly"
}
include "$wave/sound/WavDataGain.cpp" '#include "../file/WavFile.h"'
include "$wave/sound/WavDataWidth.cpp" '#include WHAT'
include "$wave/sound/MonoMix.cpp" '/**/ #include "file/WavFile.h"'

cp "$wave/sound/WavInfo.h" common/Copied.h && mkdir platform/sound && mv common/Copied.h platform/sound/WavInfo.h
expect "an include that could mean two files" '"sound/WavInfo.h" could be'

echo '#include "file/SpHeader.h"' >>platform/CAXException.cpp
expect "a platform that knows the library" "the platform knows the library"

echo '#include "WavInfos.h"' >>"$wave/sound/WavInfo.cpp"
expect "an include of a file that does not exist" '"WavInfos.h" is no file of ours'

printf '// SPDX-License-Identifier: Apache-2.0\n' >tests/common/LostTest.cpp
expect "a test that no program has" "tests/common/LostTest.cpp is listed in no CMakeLists.txt"

cp docs/pictures/speech.png docs/pictures/old.png
expect "a picture that is nowhere" "docs/pictures/old.png is shown in no document"

mkdir "$wave/attic"
printf '// SPDX-License-Identifier: Apache-2.0\n#pragma once\n' >"$wave/attic/Old.h"
expect "a room that is not in the table" "$wave/attic/ is not in the table of floors"

mkdir wing
printf '// SPDX-License-Identifier: Apache-2.0\n' >wing/Wing.cpp
expect "a new top folder" "wing/ is not in the table of floors"
mkdir "$wave/flac"
printf '// SPDX-License-Identifier: Apache-2.0\n#pragma once\nclass NoPrefix {};\n' >"$wave/flac/Flac.h"
sed -i 's|`WaveFileLib/chunk/`|`WaveFileLib/chunk/`, `WaveFileLib/flac/`|' docs/ARCHITECTURE.md
expect "a class without its prefix in a new room" "class NoPrefix {};: not named as an interface"
printf '// SPDX-License-Identifier: Apache-2.0\n' >common/Odd.hpp
expect "a file with another suffix" "sources end in .cpp and .h"

sed -i 's|`common/`|`common/`, `cellar/`|' docs/ARCHITECTURE.md
expect "a listed room without sources" "lists cellar/, where no source stands"

rm "$wave/annotation/EventTag.cpp"
expect "a class family without its pair" "annotation/EventTag.cpp belong together"

printf '\nclass SoundThing {};\n' >>"$wave/sound/WavInfo.h"
expect "a class without its prefix" "class SoundThing {};: not named as an interface"

echo '// Kept: nobody says which test shows it.' >>"$wave/sound/WavData.cpp"
expect "a kept oddity that names no test" "times Pinned by"

echo '// Kept: a test that is gone showed it. Pinned by NoSuch_Test.' >>"$wave/sound/WavInfo.cpp"
expect "a kept oddity that no test pins" "no test is called NoSuch_Test"

cat >>tests/common/VCMTest.cpp <<'CODE'
TEST(VCM, NameWithoutAnOutcome) { EXPECT_EQ(VCM_strncpy(nullptr, nullptr, 0), nullptr); }
CODE
expect "a test name without an outcome" "the test name NameWithoutAnOutcome does not have the form"
cat >>tests/common/VCMTest.cpp <<'CODE'
TEST(VCM, Order_OfValues) { EXPECT_EQ(1, VCM_strncpy(nullptr, nullptr, 0) == nullptr); }
CODE
expect "an expected value in front" "expects the constant first"

printf 'inline void Loop() {\n  for (int i = 0; i < 3; ++i)\n    Loop();\n}\n' >>common/CheckedSize.h
expect "a body on its own line without braces" "a body on its own line has no braces"
printf 'inline void Loop() {\n  for (int i = 0; i < 3; ++i) {\n    Loop();\n  }\n}\n' >>common/CheckedSize.h
expect "a short body on its own line" "this body fits on the line above"

if output=$(check); then
  echo "check-tree-test: the check passes a broken tree"
  failed=1
fi
for what in "${!texts[@]}"; do
  grep -qF "${texts[$what]}" <<<"$output" && continue
  echo "check-tree-test: $what was not found (no \"${texts[$what]}\")"
  failed=1
done
exit "$failed"
