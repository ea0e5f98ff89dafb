// SPDX-License-Identifier: Apache-2.0
#include "FakePlayer.h"

#include <cstdio>
#include <stdexcept>

S_FakePlayer g_player;

namespace {

class C_FakePlayer final : public I_Voxplay {
 public:
  bool Play() override {
    Note("Play");
    if (g_player.bPlayThrows) throw std::runtime_error("AUGraphStart");
    return g_player.bPlay;
  }
  bool Stop() override { return Note("Stop"); }
  bool Pause() override { return Note("Pause"); }
  void Release() override {
    Note("Release");
    --g_player.nAlive;
    delete this;
    if (g_player.bReleaseThrows) throw std::runtime_error("AUGraphStop");
  }
  int Reserved5() override { return 0; }
  int Reserved6() override { return 0; }
  int Reserved7() override { return 0; }
  int Reserved8() override { return 0; }
  int Reserved9() override { return 0; }
  int Reserved10() override { return 0; }
  int PlayRealTime(const char* pszFileName) override {
    Note(std::string("PlayRealTime ") + pszFileName);
    return g_player.nPlayRealTime;
  }
  int Open(const char* pszFileName) override {
    Note(std::string("Open ") + pszFileName);
    return g_player.nOpen;
  }
  bool SetNotify(PFN_VoxplayNotify /*pfnNotify*/, unsigned int /*dwUserData*/) override {
    return Note("SetNotify");
  }
  bool GetProgress(float* pfProgress) override {
    *pfProgress = 0;
    return Note("GetProgress");
  }
  bool GetDuration(int* pnSeconds) override {
    *pnSeconds = g_player.nDuration;
    return Note("GetDuration");
  }
  bool GetDurationMs(int* pnMilliseconds) override {
    *pnMilliseconds = g_player.nDurationMs;
    return Note("GetDurationMs");
  }
  bool GetPosition(int* pnSeconds) override {
    *pnSeconds = 0;
    return Note("GetPosition");
  }
  bool GetPositionMs(int* pnMilliseconds) override {
    auto& positions = g_player.positionsMs;
    *pnMilliseconds = positions.front();
    if (positions.size() > 1) positions.erase(positions.begin());
    return Note("GetPositionMs");
  }

 private:
  static bool Note(const std::string& strCall) {
    g_player.calls.push_back(strCall);
    return true;
  }
};

}  // namespace

int CreateVoxplay(I_Voxplay** ppIVoxplay) {
  if (g_player.nCreate != 0) return g_player.nCreate;
  *ppIVoxplay = new C_FakePlayer;
  ++g_player.nAlive;
  return 0;
}
