// SPDX-License-Identifier: Apache-2.0
#include "output/CubebStream.h"

#include <chrono>
#include <cstring>
#include <exception>
#include <thread>

#include "object/Room.h"
#include "output/CubebBackend.h"
#include "output/CubebDevices.h"

namespace toolbox {
namespace {

// Of recordings on PulseAudio with 13 busy processes on two cores, 17 of 20 had gaps at 100 ms, 8
// of 44 at 200 ms and none of 44 at 300 and at 400 ms; with 30 busy processes 11 of 20 had gaps at
// 300 ms and 5 of 20 at 400 ms. A pause takes 0.35 s longer than at 100 ms. The service asks for a
// quarter of the latency at a time, or slightly more. That also suits real-time mode, whose
// callback takes up to 30 ms, however little it is asked for.
constexpr UInt32 kLatencyMs = 400;
// The service holds at most the latency; this extra time covers what the device itself still holds.
constexpr UInt32 kExtraPlayOutMs = 50;
// How much longer than the latency and this extra time a busy service may take to ask for the
// zeros.
constexpr std::chrono::seconds kPlayOutPatience{1};
constexpr std::chrono::milliseconds kPlayOutPoll{2};

std::atomic<C_CubebStream*> g_pLeftLast{nullptr};

UInt32 FramesIn(const S_OutputFormat& format, UInt32 dwMs) {
  return static_cast<UInt32>(UInt64{format.dwRate} * dwMs / 1000);
}

// The library ends the process when it cannot make its own thread.
bool CanMakeThread() {
  try {
    std::thread([] {}).join();
  } catch (const std::exception&) {
    return false;
  }
  return true;
}

}  // namespace

bool C_CubebStream::Open() {
  if (!CanMakeThread()) return false;
  NeedRoom();
  const S_CubebFunctions* pCubeb = CubebFunctions();
  if (pCubeb == nullptr) return false;
  cubeb* pContext = nullptr;
  if (pCubeb->init(&pContext, "Voxplay", CubebBackend()) != CUBEB_OK) return false;
  m_pContext.reset(pContext);
  if (m_strDevice.empty()) return OpenOn(nullptr);
  // What names a device to the service is the list's, and ends with it.
  const C_CubebDevices devices(*pCubeb, pContext);
  const cubeb_device_info* const pDevice = devices.Find(m_strDevice);
  return pDevice != nullptr && OpenOn(pDevice->devid);
}

bool C_CubebStream::OpenOn(cubeb_devid device) {
  const S_CubebFunctions* pCubeb = CubebFunctions();
  cubeb_stream_params params{};
  params.format = m_format.bFloat ? CUBEB_SAMPLE_FLOAT32NE : CUBEB_SAMPLE_S16NE;
  params.rate = m_format.dwRate;
  params.channels = m_format.dwChannels;
  params.layout = m_format.dwChannels == 1 ? CUBEB_LAYOUT_MONO : CUBEB_LAYOUT_STEREO;
  params.prefs = CUBEB_STREAM_PREF_NONE;
  cubeb_stream* pStream = nullptr;
  const int nResult =
      pCubeb->stream_init(m_pContext.get(), &pStream, "Playback", nullptr, nullptr, device, &params,
                          FramesIn(m_format, kLatencyMs), &OnData, &OnState, this);
  if (nResult != CUBEB_OK) return false;
  m_pStream.reset(pStream);
  return true;
}

// When the service has just died, starting a stream makes the library abort the process. Once the
// service has answered, or failed to answer, this class knows whether it has died.
void C_CubebStream::AskService() {
  const C_CubebDevices devices(*CubebFunctions(), m_pContext.get());
}

bool C_CubebStream::Start() {
  if (m_bFailed) return false;
  AskService();
  m_bPlayingOut = false;
  m_bCut = false;
  if (m_bFailed) return false;
  return CubebFunctions()->stream_start(m_pStream.get()) == CUBEB_OK;
}

bool C_CubebStream::Halt() {
  return !m_bFailed && CubebFunctions()->stream_stop(m_pStream.get()) == CUBEB_OK;
}

void C_CubebStream::Serve(I_DeviceClient& client) {
  const std::lock_guard lock(m_clientLock);
  if (!m_bFailed) m_pClient = &client;
}

// The drain of the audio services loses the last 2 to 25 ms, and the position that they report
// stops short of the end. So the stream is fed zeros instead: once the service has taken enough of
// them, everything before them has been played.
void C_CubebStream::PlayOut() {
  m_dwZeroFrames = 0;
  m_bPlayingOut = true;
  constexpr UInt32 kEnoughMs = kLatencyMs + kExtraPlayOutMs;
  const UInt32 dwEnough = FramesIn(m_format, kEnoughMs);
  const std::chrono::milliseconds enough(kEnoughMs);
  const auto limit = std::chrono::steady_clock::now() + enough + kPlayOutPatience;
  while (!m_bFailed && !m_bCut && m_dwZeroFrames <= dwEnough &&
         std::chrono::steady_clock::now() < limit) {
    std::this_thread::sleep_for(kPlayOutPoll);
  }
}

void C_CubebStream::LeaveBehind() { m_pLeftBefore = g_pLeftLast.exchange(this); }

bool C_CubebStream::GiveUp() {
  const bool bFirst = !m_bFailed.exchange(true);
  const std::lock_guard lock(m_clientLock);
  m_pClient = nullptr;
  return bFirst;
}

bool C_CubebStream::ShowsLife() {
  const bool bAsked = m_bAsked.exchange(false);
  return m_bServing || bAsked;
}

long C_CubebStream::OnData(cubeb_stream* /*pStream*/, void* pThis, const void* /*pInput*/,
                           void* pOutput, long nFrames) {
  static_cast<C_CubebStream*>(pThis)->Fill(pOutput, static_cast<UInt32>(nFrames));
  return nFrames;
}

void C_CubebStream::Fill(void* pOutput, UInt32 dwFrames) {
  m_bServing = true;
  m_bAsked = true;
  std::memset(pOutput, 0, dwFrames * m_format.FrameBytes());
  if (m_bFailed || m_bPlayingOut) {
    m_dwZeroFrames += dwFrames;
  } else {
    Render(pOutput, dwFrames);
  }
  m_bServing = false;
}

void C_CubebStream::Render(void* pOutput, UInt32 dwFrames) {
  const std::lock_guard lock(m_clientLock);
  if (m_pClient != nullptr) m_pClient->RenderFrames(pOutput, dwFrames);
}

void C_CubebStream::OnState(cubeb_stream* /*pStream*/, void* pThis, cubeb_state state) {
  if (state == CUBEB_STATE_ERROR) static_cast<C_CubebStream*>(pThis)->Lose();
}

void C_CubebStream::Lose() {
  if (m_bFailed.exchange(true)) return;
  const std::lock_guard lock(m_clientLock);
  if (m_pClient != nullptr) m_pClient->DeviceLost();
}

}  // namespace toolbox
