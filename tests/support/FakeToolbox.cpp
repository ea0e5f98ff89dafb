// SPDX-License-Identifier: Apache-2.0
#include "FakeToolbox.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

constexpr int kMaxGraphs = 8;

// What handles point at; only the addresses matter.
std::array<char, kMaxGraphs> g_graphs;
char g_file;
char g_fileUnit;
char g_outputNodeUnit;
char g_outputUnit;
char g_component;
std::string g_strUrl;
std::string g_strName;

template <typename T>
T Handle(char* pThing) {
  return reinterpret_cast<T>(pThing);
}

__attribute__((format(printf, 1, 2))) std::string Text(const char* pszFormat, ...) {
  std::array<char, 512> text{};
  std::va_list args;
  va_start(args, pszFormat);
  std::vsnprintf(text.data(), text.size(), pszFormat, args);
  va_end(args);
  return text.data();
}

std::string Code(OSType dwCode) {
  std::string strCode;
  for (int nShift = 24; nShift >= 0; nShift -= 8) {
    strCode += static_cast<char>((dwCode >> nShift) & 0xFF);
  }
  return strCode;
}

std::string Name(const void* pThing) {
  if (pThing == nullptr) return "null";
  if (pThing == &g_file) return "file";
  if (pThing == &g_fileUnit) return "fileUnit";
  if (pThing == &g_outputNodeUnit) return "outputNodeUnit";
  if (pThing == &g_outputUnit) return "outputUnit";
  for (std::size_t i = 0; i < g_graphs.size(); ++i) {
    if (pThing == &g_graphs.at(i)) return "graph" + std::to_string(i + 1);
  }
  return "unknown";
}

std::string Describe(const AudioComponentDescription& desc) {
  return "'" + Code(desc.componentType) + "' '" + Code(desc.componentSubType) + "' '" +
         Code(desc.componentManufacturer) + "' " + std::to_string(desc.componentFlags) + " " +
         std::to_string(desc.componentFlagsMask);
}

std::string DescribeFormat(const AudioStreamBasicDescription& f) {
  return Text("%.1f '%s' %u %u %u %u %u %u", f.mSampleRate, Code(f.mFormatID).c_str(),
              f.mFormatFlags, f.mBytesPerPacket, f.mFramesPerPacket, f.mBytesPerFrame,
              f.mChannelsPerFrame, f.mBitsPerChannel);
}

std::string DescribeStamp(const AudioTimeStamp& stamp) {
  return Text("flags %u time %.1f", stamp.mFlags, stamp.mSampleTime);
}

bool IsZero(const void* pData, std::size_t cbData) {
  const auto* pbyData = static_cast<const UInt8*>(pData);
  return std::all_of(pbyData, pbyData + cbData, [](UInt8 by) { return by == 0; });
}

template <typename T>
T As(const void* pData) {
  T value{};
  std::memcpy(&value, pData, sizeof value);
  return value;
}

std::string DescribeRegion(const ScheduledAudioFileRegion& region) {
  AudioTimeStamp rest = region.mTimeStamp;
  rest.mFlags = 0;
  return DescribeStamp(region.mTimeStamp) +
         Text(" file %s loop %u start %lld frames %u completion %s rest %s",
              Name(region.mAudioFile).c_str(), region.mLoopCount,
              static_cast<long long>(region.mStartFrame), region.mFramesToPlay,
              region.mCompletionProc == nullptr ? "null" : "set",
              IsZero(&rest, sizeof rest) ? "zero" : "set");
}

std::string DescribeValue(AudioUnitPropertyID dwID, const void* pData, UInt32 cbData) {
  switch (dwID) {
    case kAudioUnitProperty_StreamFormat:
      return DescribeFormat(As<AudioStreamBasicDescription>(pData));
    case kAudioUnitProperty_ScheduledFileIDs:
      return Name(As<AudioFileID>(pData)) + Text(" x%zu", cbData / sizeof(AudioFileID));
    case kAudioUnitProperty_ScheduledFileRegion:
      return DescribeRegion(As<ScheduledAudioFileRegion>(pData));
    case kAudioUnitProperty_ScheduledFilePrime:
      return std::to_string(As<UInt32>(pData));
    case kAudioUnitProperty_ScheduleStartTimeStamp:
      return DescribeStamp(As<AudioTimeStamp>(pData));
    default:
      return std::to_string(cbData) + " bytes";
  }
}

C_FakeToolbox& Fake() { return C_FakeToolbox::Get(); }

}  // namespace

C_FakeToolbox& C_FakeToolbox::Get() {
  static C_FakeToolbox fake;
  return fake;
}

void C_FakeToolbox::Reset() {
  StopPulling();
  const std::lock_guard guard(m_lock);
  m_log.clear();
  m_calls.clear();
  m_failures.clear();
  m_notify = {};
  m_nGraphs = 0;
  m_pulled.clear();
  onStart = nullptr;
  onPause = nullptr;
  qwPacketCount = 32000;
  cbLayout = 0;
  fileFormat = {};
  startStamp = {};
  bRunning = 0;
  bComponentHasName = true;
  strComponentName = "Fakes: Some Unit";
  componentDescription = {};
  renderCallback = {};
  cbSlice = 3200;
  bySliceFill = 0;
}

std::vector<std::string> C_FakeToolbox::Log() {
  const std::lock_guard guard(m_lock);
  return m_log;
}

int C_FakeToolbox::Find(const std::string& strStart) {
  const auto log = Log();
  for (std::size_t i = 0; i < log.size(); ++i) {
    if (log[i].starts_with(strStart)) return static_cast<int>(i);
  }
  return -1;
}

int C_FakeToolbox::Count(const std::string& strStart) {
  const auto log = Log();
  return static_cast<int>(std::count_if(log.begin(), log.end(), [&](const std::string& strLine) {
    return strLine.starts_with(strStart);
  }));
}

void C_FakeToolbox::ClearLog() {
  const std::lock_guard guard(m_lock);
  m_log.clear();
}

void C_FakeToolbox::Fail(const std::string& strName, OSStatus nStatus, int nOccurrence) {
  const std::lock_guard guard(m_lock);
  m_failures[{strName, m_calls[strName] + nOccurrence}] = nStatus;
}

OSStatus C_FakeToolbox::Notify(AudioUnitRenderActionFlags dwFlags, double dSampleTime) {
  AudioTimeStamp stamp{};
  stamp.mFlags = kAudioTimeStampSampleTimeValid;
  stamp.mSampleTime = dSampleTime;
  return m_notify.inputProc(m_notify.inputProcRefCon, &dwFlags, &stamp, 0, 512, nullptr);
}

OSStatus C_FakeToolbox::Call(const std::string& strName, const std::string& strArguments) {
  const std::lock_guard guard(m_lock);
  const std::string strLine = strName + "(" + strArguments + ")";
  const bool bSamePause = strName == "usleep" && !m_log.empty() && m_log.back() == strLine;
  if (!bSamePause) m_log.push_back(strLine);
  const auto failure = m_failures.find({strName, ++m_calls[strName]});
  return failure == m_failures.end() ? noErr : failure->second;
}

std::vector<UInt8> C_FakeToolbox::Pulled() {
  const std::lock_guard guard(m_lock);
  return m_pulled;
}

void C_FakeToolbox::StartPulling() {
  m_bPulling = true;
  m_puller = std::thread([this] { Pull(); });
}

void C_FakeToolbox::StopPulling() {
  {
    const std::lock_guard guard(m_lock);
    m_bPulling = false;
  }
  if (m_puller.joinable()) m_puller.join();
}

void C_FakeToolbox::Pull() {
  for (;;) {
    std::vector<UInt8> slice(cbSlice, bySliceFill);
    AudioBufferList list{1, {{1, cbSlice, slice.data()}}};
    AudioUnitRenderActionFlags dwFlags = 0;
    const AudioTimeStamp stamp{};
    renderCallback.inputProc(renderCallback.inputProcRefCon, &dwFlags, &stamp, 0, cbSlice / 2,
                             &list);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const std::lock_guard guard(m_lock);
    m_pulled.insert(m_pulled.end(), slice.begin(), slice.end());
    if (!m_bPulling) return;
  }
}

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;

int usleep(useconds_t dwMicroseconds) {
  Fake().Call("usleep", std::to_string(dwMicroseconds));
  if (Fake().onPause) Fake().onPause();
  std::this_thread::sleep_for(std::chrono::microseconds(std::min(dwMicroseconds, 1000U)));
  return 0;
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* pbyBuffer,
                                                 CFIndex nBufLen, Boolean bIsDirectory) {
  g_strUrl.assign(reinterpret_cast<const char*>(pbyBuffer), static_cast<std::size_t>(nBufLen));
  const OSStatus nStatus =
      Fake().Call("CFURLCreateFromFileSystemRepresentation",
                  (allocator == nullptr ? "default" : "other") + (", " + g_strUrl) +
                      Text(", %ld, %d", nBufLen, bIsDirectory));
  return nStatus != noErr ? nullptr : reinterpret_cast<CFURLRef>(&g_strUrl);
}

void CFRelease(CFTypeRef cf) {
  const char* const pszOther = cf == &g_strName ? "name" : "other";
  Fake().Call("CFRelease", cf == &g_strUrl ? "url" : pszOther);
}

CFIndex CFStringGetLength(CFStringRef /*text*/) { return static_cast<CFIndex>(g_strName.size()); }

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex nLength, CFStringEncoding /*dwEncoding*/) {
  return Fake().Call("CFStringGetMaximumSizeForEncoding", "") == noErr ? nLength : -1;
}

Boolean CFStringGetCString(CFStringRef /*text*/, char* pszBuffer, CFIndex cbBuffer,
                           CFStringEncoding dwEncoding) {
  const OSStatus nStatus = Fake().Call("CFStringGetCString", Text("%ld, %u", cbBuffer, dwEncoding));
  const std::size_t cbName = g_strName.size() + 1;
  if (nStatus != noErr || std::cmp_less(cbBuffer, cbName)) return 0;
  std::memcpy(pszBuffer, g_strName.c_str(), cbName);
  return 1;
}

OSStatus AudioFileOpenURL(CFURLRef fileRef, AudioFilePermissions permissions,
                          AudioFileTypeID dwFileTypeHint, AudioFileID* pAudioFile) {
  const bool bOurs = reinterpret_cast<const std::string*>(fileRef) == &g_strUrl;
  const OSStatus nStatus =
      Fake().Call("AudioFileOpenURL",
                  (bOurs ? g_strUrl : "null") + Text(", %d, %u", permissions, dwFileTypeHint));
  *pAudioFile = nStatus == noErr ? Handle<AudioFileID>(&g_file) : nullptr;
  return nStatus;
}

OSStatus AudioFileClose(AudioFileID audioFile) {
  return Fake().Call("AudioFileClose", Name(audioFile));
}

OSStatus AudioFileGetPropertyInfo(AudioFileID audioFile, AudioFilePropertyID dwPropertyID,
                                  UInt32* pdwDataSize, UInt32* pdwWritable) {
  *pdwDataSize = Fake().cbLayout;
  *pdwWritable = 0;
  return Fake().Call("AudioFileGetPropertyInfo",
                     Name(audioFile) + ", '" + Code(dwPropertyID) + "'");
}

OSStatus AudioFileGetProperty(AudioFileID audioFile, AudioFilePropertyID dwPropertyID,
                              UInt32* pdwDataSize, void* pPropertyData) {
  const OSStatus nStatus =
      Fake().Call("AudioFileGetProperty",
                  Name(audioFile) + ", '" + Code(dwPropertyID) + Text("', %u", *pdwDataSize));
  if (nStatus != noErr) return nStatus;
  if (dwPropertyID == kAudioFilePropertyDataFormat) {
    std::memcpy(pPropertyData, &Fake().fileFormat, sizeof Fake().fileFormat);
  } else if (dwPropertyID == kAudioFilePropertyAudioDataPacketCount) {
    std::memcpy(pPropertyData, &Fake().qwPacketCount, sizeof Fake().qwPacketCount);
  } else {
    std::memset(pPropertyData, 0x5A, *pdwDataSize);
  }
  return noErr;
}

OSStatus AudioFileReadPacketData(AudioFileID audioFile, Boolean bUseCache, UInt32* pdwNumBytes,
                                 AudioStreamPacketDescription* /*pPacketDescriptions*/,
                                 SInt64 nStartingPacket, UInt32* pdwNumPackets, void* pBuffer) {
  std::memset(pBuffer, 0x77, *pdwNumBytes);
  return Fake().Call(
      "AudioFileReadPacketData",
      Name(audioFile) + Text(", %d, packet %lld, %u", bUseCache,
                             static_cast<long long>(nStartingPacket), *pdwNumPackets));
}

AudioComponent AudioComponentFindNext(AudioComponent component,
                                      const AudioComponentDescription* pDescription) {
  const OSStatus nStatus =
      Fake().Call("AudioComponentFindNext",
                  (component == nullptr ? "null, " : "other, ") + Describe(*pDescription));
  return nStatus != noErr ? nullptr : Handle<AudioComponent>(&g_component);
}

OSStatus AudioComponentGetDescription(AudioComponent /*component*/,
                                      AudioComponentDescription* pDescription) {
  *pDescription = Fake().componentDescription;
  return Fake().Call("AudioComponentGetDescription", "component");
}

OSStatus AudioComponentCopyName(AudioComponent /*component*/, CFStringRef* pName) {
  g_strName = Fake().strComponentName;
  const OSStatus nStatus = Fake().Call("AudioComponentCopyName", "component");
  const bool bNamed = nStatus == noErr && Fake().bComponentHasName;
  *pName = bNamed ? reinterpret_cast<CFStringRef>(&g_strName) : nullptr;
  return nStatus;
}

AudioComponent AudioComponentInstanceGetComponent(AudioComponentInstance instance) {
  Fake().Call("AudioComponentInstanceGetComponent", Name(instance));
  return Handle<AudioComponent>(&g_component);
}

OSStatus AudioComponentInstanceNew(AudioComponent /*component*/,
                                   AudioComponentInstance* pInstance) {
  const OSStatus nStatus = Fake().Call("AudioComponentInstanceNew", "component");
  if (nStatus == noErr) *pInstance = Handle<AudioComponentInstance>(&g_outputUnit);
  return nStatus;
}

OSStatus AudioComponentInstanceDispose(AudioComponentInstance instance) {
  return Fake().Call("AudioComponentInstanceDispose", Name(instance));
}

OSStatus AudioUnitInitialize(AudioUnit unit) {
  return Fake().Call("AudioUnitInitialize", Name(unit));
}

OSStatus AudioUnitUninitialize(AudioUnit unit) {
  return Fake().Call("AudioUnitUninitialize", Name(unit));
}

OSStatus AudioUnitSetProperty(AudioUnit unit, AudioUnitPropertyID dwID, AudioUnitScope dwScope,
                              AudioUnitElement dwElement, const void* pData, UInt32 dwDataSize) {
  const OSStatus nStatus =
      Fake().Call("AudioUnitSetProperty",
                  Name(unit) + Text(", %u, scope %u, element %u, ", dwID, dwScope, dwElement) +
                      DescribeValue(dwID, pData, dwDataSize));
  if (nStatus == noErr && dwID == kAudioUnitProperty_SetRenderCallback) {
    Fake().renderCallback = As<AURenderCallbackStruct>(pData);
  }
  return nStatus;
}

OSStatus AudioUnitGetProperty(AudioUnit unit, AudioUnitPropertyID dwID, AudioUnitScope dwScope,
                              AudioUnitElement dwElement, void* pData, UInt32* pdwDataSize) {
  const OSStatus nStatus = Fake().Call(
      "AudioUnitGetProperty",
      Name(unit) + Text(", %u, scope %u, element %u, %u", dwID, dwScope, dwElement, *pdwDataSize));
  if (nStatus != noErr) return nStatus;
  if (dwID == kAudioUnitProperty_ScheduleStartTimeStamp) {
    std::memcpy(pData, &Fake().startStamp, sizeof Fake().startStamp);
  } else {
    std::memset(pData, 0, *pdwDataSize);
  }
  return noErr;
}

OSStatus AudioOutputUnitStart(AudioUnit unit) {
  const OSStatus nStatus = Fake().Call("AudioOutputUnitStart", Name(unit));
  if (nStatus == noErr) Fake().StartPulling();
  return nStatus;
}

OSStatus AudioOutputUnitStop(AudioUnit unit) {
  const OSStatus nStatus = Fake().Call("AudioOutputUnitStop", Name(unit));
  Fake().StopPulling();
  return nStatus;
}

OSStatus NewAUGraph(AUGraph* pGraph) {
  const OSStatus nStatus = Fake().Call("NewAUGraph", "");
  if (nStatus == noErr) {
    *pGraph = Handle<AUGraph>(&g_graphs.at(static_cast<std::size_t>(Fake().NewGraph())));
  }
  return nStatus;
}

OSStatus DisposeAUGraph(AUGraph graph) { return Fake().Call("DisposeAUGraph", Name(graph)); }

OSStatus AUGraphAddNode(AUGraph graph, const AudioComponentDescription* pDescription,
                        AUNode* pNode) {
  *pNode = pDescription->componentType == kAudioUnitType_Output ? 1 : 2;
  return Fake().Call("AUGraphAddNode", Name(graph) + ", " + Describe(*pDescription));
}

OSStatus AUGraphOpen(AUGraph graph) { return Fake().Call("AUGraphOpen", Name(graph)); }

OSStatus AUGraphClose(AUGraph graph) { return Fake().Call("AUGraphClose", Name(graph)); }

OSStatus AUGraphNodeInfo(AUGraph graph, AUNode node, AudioComponentDescription* /*pDescription*/,
                         AudioUnit* pUnit) {
  *pUnit = Handle<AudioUnit>(node == 1 ? &g_outputNodeUnit : &g_fileUnit);
  return Fake().Call("AUGraphNodeInfo", Name(graph) + ", node " + std::to_string(node));
}

OSStatus AUGraphConnectNodeInput(AUGraph graph, AUNode sourceNode, UInt32 dwSourceOutput,
                                 AUNode destNode, UInt32 dwDestInput) {
  return Fake().Call("AUGraphConnectNodeInput",
                     Name(graph) + Text(", node %d output %u to node %d input %u", sourceNode,
                                        dwSourceOutput, destNode, dwDestInput));
}

OSStatus AUGraphInitialize(AUGraph graph) { return Fake().Call("AUGraphInitialize", Name(graph)); }

OSStatus AUGraphUninitialize(AUGraph graph) {
  return Fake().Call("AUGraphUninitialize", Name(graph));
}

OSStatus AUGraphAddRenderNotify(AUGraph graph, AURenderCallback callback, void* pRefCon) {
  Fake().SetNotify(callback, pRefCon);
  return Fake().Call("AUGraphAddRenderNotify", Name(graph));
}

OSStatus AUGraphStart(AUGraph graph) {
  const OSStatus nStatus = Fake().Call("AUGraphStart", Name(graph));
  if (nStatus == noErr && Fake().onStart) Fake().onStart();
  return nStatus;
}

OSStatus AUGraphStop(AUGraph graph) { return Fake().Call("AUGraphStop", Name(graph)); }

OSStatus AUGraphIsRunning(AUGraph graph, Boolean* pbIsRunning) {
  *pbIsRunning = Fake().bRunning;
  return Fake().Call("AUGraphIsRunning", Name(graph));
}
}
