// SPDX-License-Identifier: Apache-2.0
//
// The temporary files of the Heron encoder have the expected names, are private, and are removed
// whatever happens.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <stdexcept>

#include "FileSizeLimit.h"
#include "HeronBytes.h"
#include "InChild.h"
#include "TempFolder.h"
#include "TempWatch.h"

namespace {

using heron::test::Encoded;

// 40 frames, so that a progress record arrives while the files exist.
C_SoundPtr SoundWithEvents() {
  C_SoundPtr sound = MonoSound(TestVoice(40 * 80), 4000);
  sound->GetEventTagMgr()->AddEventBySamplePos(1, 2, 100, "", 0);
  return sound;
}

bool Encode(PFN_CodecProgress pfnProgress = nullptr) {
  return Encoded(*SoundWithEvents(), 35, pfnProgress).has_value();
}

int g_nCallsUntilThrow = 0;
void Throw(const S_CodecProgress*) {
  if (--g_nCallsUntilThrow == 0) throw std::runtime_error("from the callback");
}

bool ThrowsInCall(int nCall) {
  g_nCallsUntilThrow = nCall;
  try {
    Encode(Throw);
    return false;
  } catch (const std::runtime_error&) {
    return true;
  }
}

std::set<std::string> g_prefixes;
bool g_bPrivate = true;
void LookAtFiles(const S_CodecProgress*) {
  for (const auto& entry : std::filesystem::directory_iterator(P_tmpdir)) {
    const std::string strName = entry.path().filename().string();
    struct stat status {};
    if (!strName.starts_with("temp_e") || stat(entry.path().c_str(), &status) != 0) continue;
    g_prefixes.insert(strName.substr(0, 8));
    g_bPrivate = g_bPrivate && (status.st_mode & 07777) == 0600 && S_ISREG(status.st_mode);
  }
}

TEST(HeronTemp, TwoPrivateFilesWhileEncoding_AreGoneAfterwards) {
  const auto use = WatchTemp([] {
    return Encode(LookAtFiles) && g_bPrivate &&
           g_prefixes == std::set<std::string>{"temp_enc", "temp_evt"};
  });
  EXPECT_TRUE(use.bResult);
  EXPECT_GE(use.nCreated, 2);
  EXPECT_EQ(use.nLeft, 0);
}

TEST(HeronTemp, TempFiles_AreGoneAfterACallbackThatThrows) {
  const auto use = WatchTemp([] { return ThrowsInCall(1) && ThrowsInCall(2); });
  EXPECT_TRUE(use.bResult);
  EXPECT_GE(use.nCreated, 4);
  EXPECT_EQ(use.nLeft, 0);
}

TEST(HeronTemp, TempFiles_AreGoneAfterEveryKindOfRefusal) {
  const auto use = WatchTemp([] {
    return Encoded(*SoundWithEvents(), 37).has_value() ||
           Encoded(*MonoSound(TestVoice(10), 3999), 32).has_value() ||
           Encoded(*MonoSound({}, 8000), 32).has_value();
  });
  EXPECT_FALSE(use.bResult);
  EXPECT_GE(use.nCreated, 6);
  EXPECT_EQ(use.nLeft, 0);
}

TEST(HeronTemp, DiskFullAtAnyByte_IsFalseAndLeavesNothing) {
  const auto use = WatchTemp([] {
    const std::size_t cbStream = Encoded(*SoundWithEvents(), 35)->size();
    for (std::size_t cbLimit = 0; cbLimit < cbStream; cbLimit += cbLimit < 16 ? 1 : 31) {
      const C_FileSizeLimit limit(cbLimit);
      if (Encode()) return true;
    }
    const C_FileSizeLimit limit(cbStream - 1);
    return Encode();
  });
  EXPECT_FALSE(use.bResult);
  EXPECT_GE(use.nCreated, 40);
  EXPECT_EQ(use.nLeft, 0);
  const C_FileSizeLimit limit(Encoded(*SoundWithEvents(), 35)->size());
  EXPECT_TRUE(Encode());
}

int g_nRecords = 0;
void CountRecord(const S_CodecProgress*) { ++g_nRecords; }

// Blocks are written while the next ones are encoded, so a long sound is not encoded in vain.
TEST(HeronTemp, DiskThatFillsUp_EndsEncodingEarly) {
  const C_SoundPtr sound = MonoSound(TestVoice(10 * heron::BlockLength(4000)), 4000);
  g_nRecords = 0;
  const std::size_t cbStream = Encoded(*sound, 35, CountRecord)->size();
  EXPECT_GT(g_nRecords, 8);
  for (const std::size_t cbLimit : {std::size_t{0}, cbStream / 4}) {
    const C_FileSizeLimit limit(cbLimit);
    g_nRecords = 0;
    EXPECT_FALSE(Encoded(*sound, 35, CountRecord));
    EXPECT_LT(g_nRecords, 6) << cbLimit;
  }
}

TEST(HeronTemp, WithoutATemporaryDirectory_EncodingIsFalse) {
  const C_TempFolder emptyRoot;
  EXPECT_TRUE(InChildAs(0, [&] { return chroot(emptyRoot.Path().c_str()) == 0 && !Encode(); }));
}

TEST(HeronTemp, Decoding_NeedsNoFile) {
  const auto use = WatchTemp([] {
    return heron::test::Decoded(*Encoded(*SoundWithEvents(), 35), 4000).has_value() &&
           !heron::test::Decoded({1, 2, 3, 4}, 4000);
  });
  EXPECT_TRUE(use.bResult);
  EXPECT_EQ(use.nCreated, 2);
  EXPECT_EQ(use.nLeft, 0);
}

}  // namespace
