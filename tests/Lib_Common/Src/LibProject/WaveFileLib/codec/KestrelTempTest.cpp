// SPDX-License-Identifier: Apache-2.0
//
// The temporary files of the codec are made at the right moment, are private, and are removed
// whatever happens.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

#include "FileSizeLimit.h"
#include "InChild.h"
#include "KestrelBytes.h"
#include "TempFolder.h"
#include "TempWatch.h"
#include "TestSound.h"
#include "codec/KestrelCodec.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

bool Encode(PFN_CodecProgress pfnProgress = nullptr) {
  C_KestrelCodec codec;
  codec.LoadCodec(0);
  unsigned char* pbyEncData = nullptr;
  unsigned int dwEncDataLen = 0;
  const bool bRet =
      codec.Encode(MonoSound(TestVoice(700)).get(), 16000, &pbyEncData, &dwEncDataLen, pfnProgress);
  delete[] pbyEncData;
  return bRet;
}

bool Decode(const Bytes& stream, PFN_DecodedData pfnData = nullptr) {
  C_KestrelCodec codec;
  codec.LoadCodec(0);
  const C_SoundPtr sound(new C_WavData);
  return codec.Decode(stream.data(), static_cast<unsigned int>(stream.size()), sound.get(),
                      pfnData);
}

constexpr std::size_t kThreeFramesPcm = 1920;
Bytes ThreeFrames() { return C_KestrelBytes(16000).Voice(3).Take(); }

int g_nCallsUntilThrow = 0;

void ThrowInTime() {
  if (--g_nCallsUntilThrow == 0) throw std::runtime_error("from the callback");
}
void ThrowingProgress(const S_CodecProgress*) { ThrowInTime(); }
void ThrowingPiece(void*, unsigned int) { ThrowInTime(); }

// True when the step throws in call nCall of its callback.
template <typename Step>
bool Throws(int nCall, const Step& step) {
  g_nCallsUntilThrow = nCall;
  try {
    step();
    return false;
  } catch (const std::runtime_error&) {
    return true;
  }
}

TEST(KestrelEncodeTemp, TempFile_IsGoneAfterSuccess) {
  const auto use = WatchTemp([] { return Encode(); });
  EXPECT_TRUE(use.bResult);
  EXPECT_GE(use.nCreated, 1);
  EXPECT_EQ(use.nLeft, 0);
}

TEST(KestrelEncodeTemp, TempFile_IsGoneAfterACallbackThatThrows) {
  const auto use = WatchTemp([] {
    return Throws(2, [] { Encode(ThrowingProgress); }) &&
           Throws(4, [] { Encode(ThrowingProgress); });
  });
  EXPECT_TRUE(use.bResult);
  EXPECT_GE(use.nCreated, 2);
  EXPECT_EQ(use.nLeft, 0);
}

TEST(KestrelEncodeTemp, DiskFullAtEveryByte_IsFalseAndLeavesNothing) {
  constexpr std::size_t cbStream = 6 + 3 * 40;
  const auto use = WatchTemp([] {
    for (std::size_t cbLimit = 0; cbLimit < cbStream; ++cbLimit) {
      const C_FileSizeLimit limit(cbLimit);
      if (Encode()) return true;
    }
    return false;
  });
  EXPECT_FALSE(use.bResult);
  EXPECT_GE(use.nCreated, static_cast<int>(cbStream));
  EXPECT_EQ(use.nLeft, 0);
  const C_FileSizeLimit limit(cbStream);
  EXPECT_TRUE(Encode());
}

TEST(KestrelEncodeTemp, WithoutATemporaryDirectory_IsFalse) {
  const C_TempFolder emptyRoot;
  EXPECT_TRUE(InChildAs(0, [&] { return chroot(emptyRoot.Path().c_str()) == 0 && !Encode(); }));
}

bool g_bPrivateFile = false;

void LookAtTemporaryFile(void*, unsigned int) {
  for (const auto& entry : std::filesystem::directory_iterator(P_tmpdir)) {
    struct stat status {};
    if (entry.path().filename().string().size() == 10 && stat(entry.path().c_str(), &status) == 0) {
      g_bPrivateFile = (status.st_mode & 07777) == 0600 && S_ISREG(status.st_mode);
    }
  }
}

TEST(KestrelDecodeTemp, TempFile_IsPrivateWhileItExistsAndGoneAfterwards) {
  const auto use =
      WatchTemp([] { return Decode(ThreeFrames(), LookAtTemporaryFile) && g_bPrivateFile; });
  EXPECT_TRUE(use.bResult);
  EXPECT_GE(use.nCreated, 1);
  EXPECT_EQ(use.nLeft, 0);
}

TEST(KestrelDecodeTemp, TempFile_IsMadeBeforeTheStreamIsLookedAt) {
  const auto use = WatchTemp([] { return Decode({}) || Decode({0, 0, 0}); });
  EXPECT_FALSE(use.bResult);
  EXPECT_GE(use.nCreated, 2);
  EXPECT_EQ(use.nLeft, 0);
}

TEST(KestrelDecodeTemp, TempFile_IsGoneAfterACallbackThatThrows) {
  const auto use = WatchTemp([] {
    return Throws(1, [] { Decode(ThreeFrames(), ThrowingPiece); }) &&
           Throws(3, [] { Decode(ThreeFrames(), ThrowingPiece); });
  });
  EXPECT_TRUE(use.bResult);
  EXPECT_GE(use.nCreated, 2);
  EXPECT_EQ(use.nLeft, 0);
}

TEST(KestrelDecodeTemp, TempFile_IsGoneAfterEveryKindOfFailure) {
  const auto use = WatchTemp([] {
    return Decode(C_KestrelBytes(16000).Voice(3).Claim(2 + 120 + 2).Take()) ||
           Decode(C_KestrelBytes(7300).Voice(1).Take()) ||
           Decode(C_KestrelBytes(16000).Claim(0).Take()) ||
           Decode(C_KestrelBytes(16000).Claim(0xFFFFFFFF).Take());
  });
  EXPECT_FALSE(use.bResult);
  EXPECT_GE(use.nCreated, 4);
  EXPECT_EQ(use.nLeft, 0);
}

TEST(KestrelDecodeTemp, DiskFullAtAnyPoint_IsFalseAndLeavesNothing) {
  const auto use = WatchTemp([] {
    for (std::size_t cbLimit = 0; cbLimit < kThreeFramesPcm; cbLimit += 13) {
      const C_FileSizeLimit limit(cbLimit);
      if (Decode(ThreeFrames())) return true;
    }
    return false;
  });
  EXPECT_FALSE(use.bResult);
  EXPECT_GE(use.nCreated, static_cast<int>(kThreeFramesPcm / 13));
  EXPECT_EQ(use.nLeft, 0);
  const C_FileSizeLimit limit(kThreeFramesPcm);
  EXPECT_TRUE(Decode(ThreeFrames()));
}

TEST(KestrelDecodeTemp, WithoutATemporaryDirectory_IsFalse) {
  const C_TempFolder emptyRoot;
  const Bytes stream = ThreeFrames();
  EXPECT_TRUE(
      InChildAs(0, [&] { return chroot(emptyRoot.Path().c_str()) == 0 && !Decode(stream); }));
}

}  // namespace
