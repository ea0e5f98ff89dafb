// SPDX-License-Identifier: Apache-2.0
#include "CubebDevice.h"

#include <cubeb/cubeb.h>

#include <atomic>
#include <cstring>
#include <future>
#include <thread>

namespace toolbox {
namespace {

// Shorter ones underrun under load: at the least that the service offers, sound was lost in about
// one run of five.
constexpr UInt32 kLatencyPerSecond = 10;
// The service holds at most the latency; the rest covers what the device itself still holds.
constexpr UInt32 kExtraPlayOutPerSecond = 20;
constexpr std::chrono::seconds kMaxPlayOut{1};
constexpr std::chrono::milliseconds kPlayOutPoll{2};

struct S_ContextCloser {
  void operator()(cubeb* pContext) const noexcept { cubeb_destroy(pContext); }
};
struct S_StreamCloser {
  void operator()(cubeb_stream* pStream) const noexcept { cubeb_stream_destroy(pStream); }
};

class C_CubebStream {
 public:
  C_CubebStream(const S_OutputFormat& format, I_DeviceClient& client) noexcept
      : m_format(format), m_client(client) {}

  bool Open();
  bool Start();
  void Stop();

 private:
  void AskService();
  static long OnData(cubeb_stream* pStream, void* pThis, const void* pInput, void* pOutput,
                     long nFrames);
  static void OnState(cubeb_stream* pStream, void* pThis, cubeb_state state);
  void Fill(void* pOutput, UInt32 dwFrames);

  const S_OutputFormat m_format;
  I_DeviceClient& m_client;
  // The client is called only after the first start: a stream that was given up while it was being
  // opened may come to life, and fail, when its client is long gone.
  std::atomic<bool> m_bStarted{false};
  std::atomic<bool> m_bFailed{false};
  // While this is set the stream is fed zeros, and they are counted.
  std::atomic<bool> m_bPlayingOut{true};
  std::atomic<UInt32> m_dwZeroFrames{0};
  // The stream is closed before its context.
  std::unique_ptr<cubeb, S_ContextCloser> m_pContext;
  std::unique_ptr<cubeb_stream, S_StreamCloser> m_pStream;
};

bool C_CubebStream::Open() {
  cubeb* pContext = nullptr;
  if (cubeb_init(&pContext, "Voxplay", nullptr) != CUBEB_OK) return false;
  m_pContext.reset(pContext);
  cubeb_stream_params params{};
  params.format = m_format.bFloat ? CUBEB_SAMPLE_FLOAT32NE : CUBEB_SAMPLE_S16NE;
  params.rate = m_format.dwRate;
  params.channels = m_format.dwChannels;
  params.layout = m_format.dwChannels == 1 ? CUBEB_LAYOUT_MONO : CUBEB_LAYOUT_STEREO;
  params.prefs = CUBEB_STREAM_PREF_NONE;
  cubeb_stream* pStream = nullptr;
  const int nResult =
      cubeb_stream_init(pContext, &pStream, "Playback", nullptr, nullptr, nullptr, &params,
                        m_format.dwRate / kLatencyPerSecond, &OnData, &OnState, this);
  if (nResult != CUBEB_OK) return false;
  m_pStream.reset(pStream);
  return true;
}

// Starting a stream whose service has just died aborts the process inside the library. After an
// answer, or the lack of one, its death is known here.
void C_CubebStream::AskService() {
  cubeb_device_collection devices{};
  if (cubeb_enumerate_devices(m_pContext.get(), CUBEB_DEVICE_TYPE_OUTPUT, &devices) == CUBEB_OK) {
    cubeb_device_collection_destroy(m_pContext.get(), &devices);
  }
}

bool C_CubebStream::Start() {
  AskService();
  m_bStarted = true;
  m_bPlayingOut = false;
  if (m_bFailed) return false;
  return cubeb_stream_start(m_pStream.get()) == CUBEB_OK;
}

// The drain of the audio services loses the last 2 to 25 ms, and their position stops short of the
// end. Zeros that have been taken over prove that everything before them has left.
void C_CubebStream::Stop() {
  m_dwZeroFrames = 0;
  m_bPlayingOut = true;
  const UInt32 dwEnough =
      m_format.dwRate / kLatencyPerSecond + m_format.dwRate / kExtraPlayOutPerSecond;
  const auto limit = std::chrono::steady_clock::now() + kMaxPlayOut;
  while (!m_bFailed && m_dwZeroFrames <= dwEnough && std::chrono::steady_clock::now() < limit) {
    std::this_thread::sleep_for(kPlayOutPoll);
  }
  if (!m_bFailed) cubeb_stream_stop(m_pStream.get());
}

long C_CubebStream::OnData(cubeb_stream* /*pStream*/, void* pThis, const void* /*pInput*/,
                           void* pOutput, long nFrames) {
  static_cast<C_CubebStream*>(pThis)->Fill(pOutput, static_cast<UInt32>(nFrames));
  return nFrames;
}

void C_CubebStream::Fill(void* pOutput, UInt32 dwFrames) {
  std::memset(pOutput, 0, dwFrames * m_format.FrameBytes());
  if (m_bFailed || m_bPlayingOut) {
    m_dwZeroFrames += dwFrames;
  } else {
    m_client.RenderFrames(pOutput, dwFrames);
  }
}

void C_CubebStream::OnState(cubeb_stream* /*pStream*/, void* pThis, cubeb_state state) {
  auto* pStream = static_cast<C_CubebStream*>(pThis);
  if (state != CUBEB_STATE_ERROR || pStream->m_bFailed.exchange(true)) return;
  if (pStream->m_bStarted) pStream->m_client.DeviceLost();
}

class C_CubebDevice final : public I_OutputDevice {
 public:
  explicit C_CubebDevice(std::shared_ptr<C_CubebStream> pStream) noexcept
      : m_pStream(std::move(pStream)) {}
  bool Start() override { return m_pStream->Start(); }
  void Stop() override { m_pStream->Stop(); }

 private:
  std::shared_ptr<C_CubebStream> m_pStream;
};

}  // namespace

// Opening can wait for ever on a service that does not answer, so it happens on a thread that can
// be left behind. That thread shares the stream: whenever it comes back, it closes what it has
// opened.
std::unique_ptr<I_OutputDevice> OpenCubebDevice(const S_OutputFormat& format,
                                                I_DeviceClient& client,
                                                std::chrono::milliseconds limit) {
  auto pStream = std::make_shared<C_CubebStream>(format, client);
  auto pOpened = std::make_shared<std::promise<bool>>();
  auto opened = pOpened->get_future();
  std::thread([pStream, pOpened]() mutable {
    const bool bOpen = pStream->Open();
    pStream.reset();
    pOpened->set_value(bOpen);
  }).detach();
  if (opened.wait_for(limit) != std::future_status::ready || !opened.get()) return nullptr;
  return std::make_unique<C_CubebDevice>(std::move(pStream));
}

}  // namespace toolbox
