// SPDX-License-Identifier: Apache-2.0
#include "FileGraph.h"

#include <unistd.h>

#include <cstddef>
#include <memory>

#include "CAXException.h"
#include "DefaultOutput.h"
#include "KeptForProcess.h"

namespace {

constexpr AudioComponentDescription kFilePlayer = {kAudioUnitType_Generator,
                                                   kAudioUnitSubType_AudioFilePlayer,
                                                   kAudioUnitManufacturer_Apple, 0, 0};
constexpr useconds_t kSettleMicroseconds = 10000;
constexpr UInt32 kFirstSurroundChannels = 3;
constexpr Float64 kStartWithNextCycle = -1.0;
constexpr double kSpeechRate = 16000.0;

// A buffer for the channel layout of a file, as large as the file says.
class C_LayoutBytes {
 public:
  explicit C_LayoutBytes(UInt32 cbLayout) : m_pbyLayout(new std::byte[cbLayout]) {}
  // Kept: a platform call that fails leaves the layout allocated, because nothing of a half-built
  // graph is torn down. Pinned by ChannelLayout_IsKeptWhenALaterCallFails.
  ~C_LayoutBytes() {
    if (m_pbyLayout) KeepForProcess(m_pbyLayout.release(), "layout of a graph that failed");
  }
  C_LayoutBytes(const C_LayoutBytes&) = delete;
  C_LayoutBytes& operator=(const C_LayoutBytes&) = delete;

  [[nodiscard]] void* Data() const { return m_pbyLayout.get(); }
  void Free() { m_pbyLayout.reset(); }

 private:
  std::unique_ptr<std::byte[]> m_pbyLayout;
};

AUNode AddNode(AUGraph graph, const AudioComponentDescription& description) {
  AUNode node = 0;
  XThrowIfError(AUGraphAddNode(graph, &description, &node), "AUGraphAddNode");
  return node;
}

AudioUnit UnitOfNode(AUGraph graph, AUNode node) {
  AudioUnit unit = nullptr;
  XThrowIfError(AUGraphNodeInfo(graph, node, nullptr, &unit), "AUGraphNodeInfo");
  return unit;
}

void SetUpFilePlayer(const CAAudioUnit& fileUnit, const AudioStreamBasicDescription& format,
                     AudioFileID audioFile) {
  XThrowIfError(fileUnit.SetNumberChannels(kAudioUnitScope_Output, 0, format.mChannelsPerFrame),
                "SetNumberChannels");
  XThrowIfError(fileUnit.SetSampleRate(kAudioUnitScope_Output, 0, format.mSampleRate),
                "SetSampleRate");
  // NOLINTNEXTLINE(bugprone-sizeof-expression): a list of one identifier, which is a pointer
  constexpr UInt32 cbList = sizeof audioFile;
  XThrowIfError(fileUnit.SetProperty(kAudioUnitProperty_ScheduledFileIDs, kAudioUnitScope_Global, 0,
                                     &audioFile, cbList),
                "SetScheduleFile");
}

// Hands the file's channel layout, if it has one, to the output.
void PassChannelLayout(AUGraph graph, AUNode outputNode, AudioFileID audioFile) {
  UInt32 cbLayout = 0;
  UInt32 dwWritable = 0;
  XThrowIfError(
      AudioFileGetPropertyInfo(audioFile, kAudioFilePropertyChannelLayout, &cbLayout, &dwWritable),
      "kAudioFilePropertyChannelLayout");
  if (cbLayout == 0) return;
  C_LayoutBytes layout(cbLayout);
  XThrowIfError(
      AudioFileGetProperty(audioFile, kAudioFilePropertyChannelLayout, &cbLayout, layout.Data()),
      "Get Layout From AudioFile");
  const AudioUnit output = UnitOfNode(graph, outputNode);
  XThrowIfError(AudioUnitSetProperty(output, kAudioUnitProperty_AudioChannelLayout,
                                     kAudioUnitScope_Input, 0, layout.Data(), cbLayout),
                "kAudioUnitProperty_AudioChannelLayout");
  layout.Free();
}

UInt64 ReadPacketCount(AudioFileID audioFile) {
  UInt64 qwPackets = 0;
  UInt32 cbPackets = sizeof qwPackets;
  XThrowIfError(AudioFileGetProperty(audioFile, kAudioFilePropertyAudioDataPacketCount, &cbPackets,
                                     &qwPackets),
                "kAudioFilePropertyAudioDataPacketCount");
  return qwPackets;
}

void ScheduleWholeFile(const CAAudioUnit& fileUnit, const S_FileSchedule& schedule,
                       AudioFileID audioFile) {
  ScheduledAudioFileRegion region{};
  region.mTimeStamp.mFlags = kAudioTimeStampSampleTimeValid;
  region.mAudioFile = audioFile;
  region.mFramesToPlay = schedule.dwFramesPerPacket * static_cast<UInt32>(schedule.qwPacketCount);
  XThrowIfError(fileUnit.SetProperty(kAudioUnitProperty_ScheduledFileRegion, kAudioUnitScope_Global,
                                     0, &region, sizeof region),
                "kAudioUnitProperty_ScheduledFileRegion");
}

void PrimeAndSetStart(const CAAudioUnit& fileUnit) {
  const UInt32 dwDefaultAmount = 0;
  XThrowIfError(fileUnit.SetProperty(kAudioUnitProperty_ScheduledFilePrime, kAudioUnitScope_Global,
                                     0, &dwDefaultAmount, sizeof dwDefaultAmount),
                "kAudioUnitProperty_ScheduledFilePrime");
  AudioTimeStamp start{};
  start.mFlags = kAudioTimeStampSampleTimeValid;
  start.mSampleTime = kStartWithNextCycle;
  XThrowIfError(fileUnit.SetProperty(kAudioUnitProperty_ScheduleStartTimeStamp,
                                     kAudioUnitScope_Global, 0, &start, sizeof start),
                "kAudioUnitProperty_ScheduleStartTimeStamp");
}

}  // namespace

void MakeFileGraph(AUGraph* pGraph, CAAudioUnit* pFileUnit,
                   const AudioStreamBasicDescription& format, AudioFileID audioFile) {
  XThrowIfError(NewAUGraph(pGraph), "NewAUGraph");
  KeepForProcess(*pGraph, "graph: closed at the end, never disposed of");
  const AUNode outputNode = AddNode(*pGraph, kDefaultOutput);
  const AUNode fileNode = AddNode(*pGraph, kFilePlayer);
  XThrowIfError(AUGraphOpen(*pGraph), "AUGraphOpen");
  *pFileUnit = CAAudioUnit(fileNode, UnitOfNode(*pGraph, fileNode));
  SetUpFilePlayer(*pFileUnit, format, audioFile);
  XThrowIfError(AUGraphConnectNodeInput(*pGraph, fileNode, 0, outputNode, 0),
                "AUGraphConnectNodeInput");
  XThrowIfError(AUGraphInitialize(*pGraph), "AUGraphInitialize");
  usleep(kSettleMicroseconds);
  // Kept: the player's own description has two channels, so the player never gets here. A caller
  // with more channels has the layout passed on. Pinned by
  // ChannelLayout_GoesToTheOutputFromThreeChannelsOn.
  if (format.mChannelsPerFrame >= kFirstSurroundChannels) {
    PassChannelLayout(*pGraph, outputNode, audioFile);
  }
}

double PrepareFileUnit(S_FileSchedule* pSchedule, const CAAudioUnit& fileUnit,
                       const AudioStreamBasicDescription& format, AudioFileID audioFile) {
  pSchedule->qwPacketCount = ReadPacketCount(audioFile);
  pSchedule->dwFramesPerPacket = format.mFramesPerPacket;
  pSchedule->dSampleRate = format.mSampleRate;
  ScheduleWholeFile(fileUnit, *pSchedule, audioFile);
  PrimeAndSetStart(fileUnit);
  // Kept: the divisor is the rate of decoded speech, whatever the rate of the file. The code that
  // polls for the end relies on the same number. Pinned by
  // Duration_DividesBySixteenThousandForEveryRate.
  return static_cast<double>(pSchedule->dwFramesPerPacket * pSchedule->qwPacketCount) / kSpeechRate;
}
