// SPDX-License-Identifier: Apache-2.0
#include "play/PlayCommand.h"

#include <algorithm>
#include <memory>

#include "base/Failure.h"
#include "base/TimeText.h"
#include "play/PlayedFile.h"
#include "sound/SoundInput.h"

namespace tool {
namespace {

struct S_PlayOptions {
  std::vector<std::string> files;
  std::string strDevice;
  std::string strFrom = "0";
  std::string strTo;
  bool bListDevices = false;
  bool bSilent = false;
  bool bLoop = false;
  bool bQuiet = false;
  bool bVerbose = false;
};

constexpr const char* kDescription =
    "Plays sound files one after another, each at its own rate and for its true length. On a "
    "terminal, a line shows the position, and keys control it: space pauses and goes on, left and "
    "right move 5 seconds, up and down 30 seconds, n and p go to the next and the previous file, q "
    "ends, and ? lists the keys.\n\n"
    "Without an output device the files are played in silence, which takes as long. What a key "
    "does is heard up to 0.4 seconds later, because the device holds that much sound; q, n "
    "and p are heard at once.\n\n"
    "A sound with one channel is heard on both sides. Of three to eight channels, those in front "
    "and behind are mixed to their side, those in the middle to both, and the one for the lowest "
    "frequencies is left out; of more channels, the odd ones are heard on the left and the even "
    "ones on the right.\n\n"
    "Times are seconds, m:ss or h:mm:ss with decimals, or frames as in 32000s.";

std::string CheckTime(const std::string& strText) {
  return C_Time::Parse(strText) ? "" : strText + " is no time: " + C_Time::kForms;
}

S_PlayedFile FileOf(const S_PlayOptions& options, std::size_t nIndex, const C_Console& console) {
  const std::size_t nFiles = options.files.size();
  S_PlayedFile file;
  file.strPath = options.files[nIndex];
  if (nFiles > 1) file.strPlace = std::to_string(nIndex + 1) + "/" + std::to_string(nFiles) + " ";
  file.from = C_Time::Parse(options.strFrom);
  if (!options.strTo.empty()) file.to = C_Time::Parse(options.strTo);
  file.bAgain = options.bLoop && nFiles == 1;
  file.bShowLine = console.ShowsErrors() && !options.bQuiet;
  file.bShowMarks = options.bVerbose;
  return file;
}

int ListDevices(C_Console& console) {
  const std::string strText = DeviceListText();
  if (strText.empty()) console.Complain("no output device");
  console.Print(strText);
  return 0;
}

// Which file is played after one; the number of files for the end.
std::size_t IndexAfter(std::size_t nIndex, tagAfter eAfter, std::size_t nFiles, bool bLoop) {
  if (eAfter == tagAfter::END) return nFiles;
  if (eAfter == tagAfter::PREVIOUS) return nIndex > 0 ? nIndex - 1 : 0;
  return bLoop ? (nIndex + 1) % nFiles : nIndex + 1;
}

class C_PlayList {
 public:
  C_PlayList(const S_PlayOptions& options, C_Console& console)
      : m_options(options),
        m_console(console),
        m_devices(console, options.strDevice, options.bSilent),
        m_keys(console.ShowsErrors()) {}

  int Play() {
    const std::size_t nFiles = m_options.files.size();
    std::size_t nFailedInTurn = 0;
    bool bFailed = false;
    // What cannot be played at all is not tried for ever.
    for (std::size_t n = 0; n < nFiles && nFailedInTurn < nFiles;) {
      const auto after = PlayOne(n);
      bFailed = bFailed || !after;
      nFailedInTurn = after ? 0 : nFailedInTurn + 1;
      n = IndexAfter(n, after.value_or(tagAfter::NEXT), nFiles, m_options.bLoop);
    }
    return bFailed ? 1 : 0;
  }

 private:
  // None when the file could not be played.
  std::optional<tagAfter> PlayOne(std::size_t nIndex) {
    try {
      return PlayFile(FileOf(m_options, nIndex, m_console), m_console, m_keys, m_devices);
    } catch (const std::runtime_error& failure) {
      m_console.Complain(failure.what());
      return std::nullopt;
    }
  }

  const S_PlayOptions& m_options;
  C_Console& m_console;
  C_PlayDevices m_devices;
  C_KeyTerminal m_keys;
};

void CheckOptions(const S_PlayOptions& options) {
  if (options.files.empty()) throw C_UsageFailure("no file is named");
  if (std::ranges::count(options.files, std::string(kStandardStream)) > 1) {
    throw C_UsageFailure("standard input: it can be named only once");
  }
  const auto to = C_Time::Parse(options.strTo);
  if (to && *to < *C_Time::Parse(options.strFrom)) throw C_UsageFailure("--to is before --from");
}

int RunPlay(const S_PlayOptions& options, C_Console& console) {
  if (options.bListDevices) return ListDevices(console);
  CheckOptions(options);
  return C_PlayList(options, console).Play();
}

void AddOptions(CLI::App& table, S_PlayOptions& options) {
  AddOption(table, "FILE", options.files, "what to play; \"-\" is standard input").TypeName("FILE");
  AddOption(table, "--from", options.strFrom, "begin at this time")
      .TypeName("TIME")
      .Check(CheckTime);
  AddOption(table, "--to", options.strTo, "end at this time").TypeName("TIME").Check(CheckTime);
  AddFlag(table, "-l,--loop", options.bLoop, "play again and again");
  AddFlag(table, "-q,--quiet", options.bQuiet, "show no position");
  AddFlag(table, "-v,--verbose", options.bVerbose, "print events and cue points as they pass");
  AddOption(table, "--device", options.strDevice,
            "play on this output: its name, or a part of it that no other has")
      .TypeName("NAME");
  AddFlag(table, "--list-devices", options.bListDevices, "print the outputs, and play nothing");
  AddFlag(table, "--null", options.bSilent, "use no output: take the time in silence");
}

}  // namespace

void AddPlayCommand(C_CommandLine& commandLine) {
  const auto pOptions = std::make_shared<S_PlayOptions>();
  CLI::App& table = commandLine.Add({
      "play",
      "play sound files",
      kDescription,
      {{"voxtool play speech.kst", "play a file"},
       {"voxtool play --from 1:30 --to 2:00 --loop talk.wav", "hear half a minute again and again"},
       {"voxtool play -v prompts/*.vef", "play a folder and see the events in the files"},
       {"ssh host cat speech.kst | voxtool play -", "play what another program sends"}},
      [pOptions](C_Console& console) { return RunPlay(*pOptions, console); },
  });
  AddOptions(table, *pOptions);
}

}  // namespace tool
