// SPDX-License-Identifier: Apache-2.0
//
// VoxplaySampleCode <FileName> <PlayType>: plays one file, or prints its length.
#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "RunModes.h"
#include "StandardStreams.h"

namespace {

constexpr unsigned long kPlayTypeGetLength = 2;
constexpr int kExitFailed = -1;

struct S_Message {
  int nResult;
  const char* pszText;
};

// Kept: kResultLoadFailed has a message although no mode returns it now; the message is part of
// what users of the program are promised. Pinned by EveryFailure_HasItsMessageAndExitCode255.
constexpr std::array<S_Message, 4> kMessages = {{
    {kResultPlayFailed, "Play input file failed !!"},
    {kResultLoadFailed, "Load Voxplay.dll failed !!"},
    {kResultDecodeFailed, "Decode input file failed !!"},
    {kResultNotSupported, "The input file is not supported format !!"},
}};

// Kept: "Example:" and the example are on one line, and "(Default)" does not make the play type
// optional. The programs that wrap this one compare the text byte for byte. Pinned by
// WrongArgumentCount_PrintsTheUsage.
void PrintUsage() {
  std::puts("\nUsage: VoxplaySampleCode <FileName> <PlayType>");
  std::putchar('\n');
  std::puts("    <FileName> : the file to be played.");
  std::puts("    <PlayType> : 0 -> Normal Mode (Default).");
  std::puts("                 1 -> Real Time Play (Support Kestrel only).");
  std::puts("                 2 -> Get length.");
  std::putchar('\n');
  std::fputs("Example:", stdout);
  std::puts("    VoxplaySampleCode Test.kst 0");
  std::putchar('\n');
}

// Prints the message for a result of RunPlay, if there is one, and returns the exit code.
int Report(int nResult) {
  const auto* const pMessage =
      std::find_if(kMessages.begin(), kMessages.end(),
                   [nResult](const S_Message& message) { return message.nResult == nResult; });
  if (pMessage == kMessages.end()) return 0;
  std::puts(pMessage->pszText);
  return kExitFailed;
}

// The play type is an unsigned long throughout: 4294967298 is not 2, and 4294967296 is not 0.
int RunMode(VoxplayLoader& loader, const char* pszFileName, const char* pszPlayType) {
  const unsigned long ulPlayType = std::strtoul(pszPlayType, nullptr, 10);
  if (ulPlayType != kPlayTypeGetLength) return Report(RunPlay(loader, pszFileName, ulPlayType));
  // Kept: a length query always exits with 0; a failure shows only as a negative length. Pinned by
  // LengthOfAMissingFile_IsMinusOneWithExitCode0.
  std::printf("Length:%d\n", RunGetLength(loader, pszFileName));
  return 0;
}

}  // namespace

int main(int argc, char* argv[]) {
  FillStandardStreams();
  if (argc != 3) {
    PrintUsage();
    return kExitFailed;
  }
  // With the signal ignored, writing beyond a limit on the size of files fails as it does on a full
  // disk, and the unfinished file is removed. Otherwise the signal would end the program and leave
  // that file behind.
  static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
  VoxplayLoader loader;
  int nExitCode = 0;
  try {
    nExitCode = RunMode(loader, argv[1], argv[2]);
  } catch (...) {
    loader.Release();
    throw;
  }
  loader.Release();
  return nExitCode;
}
