// SPDX-License-Identifier: Apache-2.0
//
// The time and the memory that one operation takes on a sound of a given size. bench/growth.sh runs
// it for many sizes.
//
//   growth                  prints the names of the operations and what their size counts
//   growth NAME SIZE FILE   prints milliseconds of processor time and the most memory in KiB, both
//                           of the operation without what prepares it. FILE is written over and
//                           left
#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "Annotations.h"
#include "WavFileFormat.h"
#include "file/SpHeader.h"
#include "sound/WavData.h"

namespace {

constexpr unsigned int kRate = 16000;

struct S_Job {
  C_WavDataPtr sound;
  unsigned int dwSize = 0;
  std::string strPath;
};

void Require(bool bDone) {
  if (bDone) return;
  std::fputs("growth: an operation failed\n", stderr);
  std::exit(1);
}

I_EventTagMgr& Events(S_Job& job) { return *job.sound->GetEventTagMgr(); }

// A humming sound with pauses.
void Seconds(S_Job& job) {
  const unsigned int dwSamples = job.dwSize * kRate;
  unsigned char* pbyPcm = job.sound->AllocBuffer(dwSamples * 2);
  unsigned int dwNoise = 1;
  for (unsigned int i = 0; i < dwSamples; ++i) {
    dwNoise = dwNoise * 1664525U + 1013904223U;
    const unsigned int dwLoud = i / kRate % 4 == 0 ? 0 : 12;
    const unsigned int dwHum = (i % 128 < 64 ? i % 64 : 63 - i % 64) << dwLoud >> 4;
    const unsigned int dwSample = dwHum + (dwNoise >> 28);
    *pbyPcm++ = static_cast<unsigned char>(dwSample);
    *pbyPcm++ = static_cast<unsigned char>(dwSample >> 8);
  }
  job.sound->SetWavInfoData(kRate, dwSamples * 2, 1, 16, 16, true);
}
void OneSecond(S_Job& job) {
  const unsigned int dwSize = job.dwSize;
  job.dwSize = 1;
  Seconds(job);
  job.dwSize = dwSize;
}

void SaveAs(S_Job& job, tagAudioFileType eType, bool bStream) {
  Require(job.sound->Convert(eType, job.strPath.c_str(), bStream, false, nullptr, true, 0));
}
template <tagAudioFileType eType, bool bStream>
void Save(S_Job& job) {
  SaveAs(job, eType, bStream);
}
constexpr auto SaveWave = Save<AUDIO_FILE_WAVE, false>;
constexpr auto SaveVemd = Save<AUDIO_FILE_VEMD, false>;
constexpr auto SaveKestrel = Save<AUDIO_FILE_KESTREL, true>;
constexpr auto SaveHeron = Save<AUDIO_FILE_HERON_4BIT, true>;
constexpr auto SaveContainer = Save<AUDIO_FILE_KESTREL, false>;
constexpr auto SaveHeronContainer = Save<AUDIO_FILE_HERON_4BIT, false>;

// A bare stream is loaded only after an SP header.
template <tagAudioFileType eType>
void PutHeader(S_Job& job) {
  C_SpHeader header;
  header.SetID(eType);
  header.SetFreq(kRate);
  Require(PrependSpHeader(header, job.strPath.c_str()));
}

// Ends the sound that is in the file now, so that its memory does not count.
void Forget(S_Job& job) { job.sound.reset(); }

template <bool bStoredPcm>
void LoadFile(S_Job& job) {
  C_WavFileFormat format;
  I_WavFile* pIFile = format.CreateWavFile(job.strPath.c_str(), true, bStoredPcm, nullptr, nullptr);
  Require(pIFile != nullptr);
  pIFile->Release();
}
constexpr auto Load = LoadFile<true>;
// Containers: from the stream, not from the samples beside it.
constexpr auto Decode = LoadFile<false>;

// Runs steps in turn.
using Step = void (*)(S_Job& job);
template <Step... kSteps>
void Do(S_Job& job) {
  (kSteps(job), ...);
}

template <Step kOne>
void Repeat(S_Job& job) {
  const unsigned int dwSize = job.dwSize;
  for (job.dwSize = 0; job.dwSize < dwSize; ++job.dwSize) kOne(job);
}

template <void (*pfnAdd)(I_WavData& sound, unsigned int dwNumber)>
void Add(S_Job& job) {
  pfnAdd(*job.sound, job.dwSize);
}
constexpr auto AddEvent = Add<annotations::AddEvent>;
constexpr auto AddSegment = Add<annotations::AddSegment>;
constexpr auto AddRegion = Add<annotations::AddRegion>;
constexpr auto AddCue = Add<annotations::AddCue>;
constexpr auto AddLabel = Add<annotations::AddLabel>;
constexpr auto AddChunk = Add<annotations::AddChunk>;

void AddEventInFront(S_Job& job) {
  Events(job).AddEventBySamplePos(1, 2, 1000000U - job.dwSize, "", 0);
}
void AddEventAtAMoment(S_Job& job) {
  if (job.dwSize == 0) Events(job).AddEventBySamplePos(1, 2, 9, "", 0);
  Events(job).AddEventBySamplePos(1, 2, 5, "", 0);
}
void FindEvent(S_Job& job) { Events(job).GetEventsBySamplePos(job.dwSize); }
void RemoveFirst(S_Job& job) {
  I_EventTag* pTag = Events(job).GetEventList()->GetItemByIndex(0);
  Require(Events(job).RemoveEvent(0));
  delete pTag;
}
// Every second one. The tags are lost, as nobody needs them.
void RemoveByCommand(S_Job& job) { Events(job).RemoveEventsByCommand(1, 1); }

struct S_Operation {
  const char* pszName;
  const char* pszCounts;
  Step pfnPrepare;  // is not measured
  Step pfnRun;
};
const S_Operation kOperations[] = {
    {"save", "seconds", Seconds, SaveWave},
    {"load", "seconds", Do<Seconds, SaveWave, Forget>, Load},
    {"vemd-save", "seconds", Seconds, SaveVemd},
    {"vemd-load", "seconds", Do<Seconds, SaveVemd, Forget>, Load},
    {"kestrel-save", "seconds", Seconds, SaveKestrel},
    {"kestrel-load", "seconds", Do<Seconds, SaveKestrel, PutHeader<AUDIO_FILE_KESTREL>, Forget>,
     Load},
    {"kestrel-container-save", "seconds", Seconds, SaveContainer},
    {"kestrel-container-load", "seconds", Do<Seconds, SaveContainer, Forget>, Load},
    {"kestrel-container-decode", "seconds", Do<Seconds, SaveContainer, Forget>, Decode},
    {"heron2-save", "seconds", Seconds, Save<AUDIO_FILE_HERON_2BIT, true>},
    {"heron3-save", "seconds", Seconds, Save<AUDIO_FILE_HERON_3BIT, true>},
    {"heron4-save", "seconds", Seconds, SaveHeron},
    {"heron5-save", "seconds", Seconds, Save<AUDIO_FILE_HERON_5BIT, true>},
    {"heron6-save", "seconds", Seconds, Save<AUDIO_FILE_HERON_6BIT, true>},
    {"heron4-load", "seconds", Do<Seconds, SaveHeron, PutHeader<AUDIO_FILE_HERON_4BIT>, Forget>,
     Load},
    {"heron4-container-save", "seconds", Seconds, SaveHeronContainer},
    {"heron4-container-load", "seconds", Do<Seconds, SaveHeronContainer, Forget>, Load},
    {"heron4-container-decode", "seconds", Do<Seconds, SaveHeronContainer, Forget>, Decode},
    {"put-sp-header", "seconds", Do<Seconds, SaveKestrel, Forget>, PutHeader<AUDIO_FILE_KESTREL>},
    {"add-events", "events", OneSecond, Repeat<AddEvent>},
    {"add-events-in-front", "events", OneSecond, Repeat<AddEventInFront>},
    {"add-events-at-one-moment", "events", OneSecond, Repeat<AddEventAtAMoment>},
    {"find-each-event", "events", Do<OneSecond, Repeat<AddEvent>>, Repeat<FindEvent>},
    {"remove-first-events", "events", Do<OneSecond, Repeat<AddEvent>>, Repeat<RemoveFirst>},
    {"remove-events-by-command", "events", Do<OneSecond, Repeat<AddEvent>>, RemoveByCommand},
    {"save-events", "events", Do<OneSecond, Repeat<AddEvent>>, SaveWave},
    {"load-events", "events", Do<OneSecond, Repeat<AddEvent>, SaveWave, Forget>, Load},
    {"save-events-in-container", "events", Do<OneSecond, Repeat<AddEvent>>, SaveContainer},
    {"load-events-of-container", "events", Do<OneSecond, Repeat<AddEvent>, SaveContainer, Forget>,
     Load},
    {"add-segments", "segments", OneSecond, Repeat<AddSegment>},
    {"save-segments", "segments", Do<OneSecond, Repeat<AddSegment>>, SaveWave},
    {"load-segments", "segments", Do<OneSecond, Repeat<AddSegment>, SaveWave, Forget>, Load},
    {"add-regions", "regions", OneSecond, Repeat<AddRegion>},
    {"save-regions", "regions", Do<OneSecond, Repeat<AddRegion>>, SaveWave},
    {"load-regions", "regions", Do<OneSecond, Repeat<AddRegion>, SaveWave, Forget>, Load},
    {"add-cues", "cues", OneSecond, Repeat<AddCue>},
    {"add-labels", "labels", OneSecond, Repeat<AddLabel>},
    {"add-chunks", "chunks", OneSecond, Repeat<AddChunk>},
    {"save-cues-in-container", "cues", Do<OneSecond, Repeat<AddCue>>, SaveContainer},
    {"load-cues-of-container", "cues", Do<OneSecond, Repeat<AddCue>, SaveContainer, Forget>, Load},
    {"save-labels-in-container", "labels", Do<OneSecond, Repeat<AddLabel>>, SaveContainer},
    {"load-labels-of-container", "labels", Do<OneSecond, Repeat<AddLabel>, SaveContainer, Forget>,
     Load},
    {"save-chunks", "chunks", Do<OneSecond, Repeat<AddChunk>>, SaveWave},
    {"load-chunks", "chunks", Do<OneSecond, Repeat<AddChunk>, SaveWave, Forget>, Load},
};

double Milliseconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto In = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
  };
  return In(usage.ru_utime) + In(usage.ru_stime);
}

// Lets the highest memory be that from now on; the system knows no other way.
void ForgetPeak() {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
      std::fopen("/proc/self/clear_refs", "w"),
      [](std::FILE* pFile) { return std::fclose(pFile); });
  Require(file && std::fputs("5", file.get()) >= 0);
}

long PeakKiB() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

void Measure(const S_Operation& operation, unsigned int dwSize, const char* pszPath) {
  S_Job job{C_WavDataPtr(new C_WavData), dwSize, pszPath};
  operation.pfnPrepare(job);
  job.dwSize = dwSize;
  ForgetPeak();
  const double dBefore = Milliseconds();
  operation.pfnRun(job);
  std::printf("%.3f %ld\n", Milliseconds() - dBefore, PeakKiB());
}

}  // namespace

int main(int argc, char** argv) {
  for (const S_Operation& operation : kOperations) {
    if (argc == 1) std::printf("%s %s\n", operation.pszName, operation.pszCounts);
    if (argc == 4 && std::strcmp(argv[1], operation.pszName) == 0) {
      Measure(operation, static_cast<unsigned int>(std::strtoul(argv[2], nullptr, 10)), argv[3]);
      return 0;
    }
  }
  return argc == 1 ? 0 : 2;
}
