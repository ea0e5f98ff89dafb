// SPDX-License-Identifier: Apache-2.0
//
// Modes that do what the file name says ("-3": return that result; "throw": throw), so that the
// entry point can be tested by itself. Their player prints a line when it is released.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "RunModes.h"

namespace {

class C_TellingPlayer final : public I_Voxplay {
 public:
  bool Play() override { return true; }
  bool Stop() override { return true; }
  bool Pause() override { return true; }
  void Release() override {
    std::puts("released");
    std::fflush(stdout);
  }
  int Reserved5() override { return 0; }
  int Reserved6() override { return 0; }
  int Reserved7() override { return 0; }
  int Reserved8() override { return 0; }
  int Reserved9() override { return 0; }
  int Reserved10() override { return 0; }
  int PlayRealTime(const char* /*pszFileName*/) override { return 0; }
  int Open(const char* /*pszFileName*/) override { return 0; }
  bool SetNotify(PFN_VoxplayNotify /*pfnNotify*/, unsigned int /*dwUserData*/) override {
    return true;
  }
  bool GetProgress(float* /*pfProgress*/) override { return true; }
  bool GetDuration(int* /*pnSeconds*/) override { return true; }
  bool GetDurationMs(int* /*pnMilliseconds*/) override { return true; }
  bool GetPosition(int* /*pnSeconds*/) override { return true; }
  bool GetPositionMs(int* /*pnMilliseconds*/) override { return true; }
};

int Run(VoxplayLoader& loader, const std::string& strWish) {
  static C_TellingPlayer player;
  loader.m_pIVoxplay = &player;
  if (strWish == "throw") throw std::runtime_error("AUGraphStart");
  return std::atoi(strWish.c_str());  // NOLINT(cert-err34-c): the wishes are ours
}

}  // namespace

int RunPlay(VoxplayLoader& loader, const char* pszFileName, unsigned long ulRealTime) {
  std::printf("play %lu\n", ulRealTime);
  std::fflush(stdout);
  return Run(loader, pszFileName);
}

int RunGetLength(VoxplayLoader& loader, const char* pszFileName) {
  return Run(loader, pszFileName);
}
