// SPDX-License-Identifier: Apache-2.0
#include "sound/SampleChanges.h"

#include <algorithm>
#include <vector>

#include "base/Interrupt.h"
#include "sound/ChannelMix.h"
#include "sound/Resampler.h"
#include "sound/ScaledFrames.h"

namespace tool {
namespace {

constexpr std::size_t kPieceSamples = 16384;
constexpr std::uint32_t kShortBits = 16;

bool MixesChannels(const S_SoundInfo& info, const S_SampleChanges& changes) {
  return changes.bMono && !changes.dwChannel && info.dwChannels > 1;
}
bool ChangesRate(const S_SoundInfo& info, const S_SampleChanges& changes) {
  return ChangedRate(info, changes) != info.dwRate;
}
bool KeepsSamples(const S_SoundInfo& info, const S_SampleChanges& changes) {
  return changes.dGain == 1.0 && !MixesChannels(info, changes) && !ChangesRate(info, changes);
}

// Hands on one channel, or all.
template <typename Sample>
class C_ChannelChoice {
 public:
  C_ChannelChoice(const S_SoundInfo& info, const S_SampleChanges& changes)
      : m_dwChannels(info.dwChannels), m_dwChannel(changes.dwChannel) {}

  std::span<const Sample> operator()(std::span<const Sample> frames) {
    if (!m_dwChannel) return frames;
    m_mono.resize(frames.size() / m_dwChannels);
    PickChannel(frames, m_dwChannels, *m_dwChannel, m_mono);
    return m_mono;
  }

 private:
  std::uint32_t m_dwChannels;
  std::optional<std::uint32_t> m_dwChannel;
  std::vector<Sample> m_mono;
};

template <typename Sample, typename Work>
std::uint64_t ForEachPiece(I_SoundInput& input, const PFN_FramesRead& fnRead, Work&& fnWork) {
  const std::size_t nChannels = input.Info().dwChannels;
  std::vector<Sample> piece(std::max<std::size_t>(kPieceSamples / nChannels, 1) * nChannels);
  std::uint64_t qwRead = 0;
  while (const std::size_t nFrames = input.Read(std::span(piece))) {
    ThrowIfInterrupted();
    fnWork(std::span<const Sample>(piece).first(nFrames * nChannels));
    qwRead += nFrames;
    if (fnRead) fnRead(qwRead);
  }
  return qwRead;
}

template <typename Sample>
std::uint64_t CopySamples(I_SoundInput& input, const S_SampleChanges& changes, I_SampleSink& sink,
                          const PFN_FramesRead& fnRead) {
  C_ChannelChoice<Sample> choice(input.Info(), changes);
  return ForEachPiece<Sample>(input, fnRead, [&](auto frames) { sink.Take(choice(frames)); });
}

std::uint64_t CopyExactly(I_SoundInput& input, const S_SampleChanges& changes, I_SampleSink& sink,
                          const PFN_FramesRead& fnRead) {
  const std::uint32_t dwBits = input.Info().dwBits;
  if (dwBits == 0) return CopySamples<float>(input, changes, sink, fnRead);
  if (dwBits <= kShortBits) return CopySamples<std::int16_t>(input, changes, sink, fnRead);
  return CopySamples<std::int32_t>(input, changes, sink, fnRead);
}

// Channels come first, because fewer of them are quicker to convert.
class C_FloatChanges {
 public:
  C_FloatChanges(const S_SoundInfo& info, const S_SampleChanges& changes, I_SampleSink& sink)
      : m_choice(info, changes),
        m_dwChannels(info.dwChannels),
        m_bMixes(MixesChannels(info, changes)),
        m_fGain(static_cast<float>(changes.dGain)),
        m_sink(sink) {
    if (ChangesRate(info, changes)) {
      m_resampler.emplace(info.dwRate, changes.dwRate, ChangedChannels(info, changes));
    }
  }

  void Put(std::span<const float> frames) {
    const std::span<const float> chosen = Mixed(m_choice(frames));
    if (!m_resampler) return Louder(chosen);
    m_resampler->Put(chosen, [this](auto samples) { Louder(samples); });
  }
  void End() {
    if (m_resampler) m_resampler->End([this](auto samples) { Louder(samples); });
  }

 private:
  std::span<const float> Mixed(std::span<const float> frames) {
    if (!m_bMixes) return frames;
    m_mono.resize(frames.size() / m_dwChannels);
    MixChannels(frames, m_dwChannels, m_mono);
    return m_mono;
  }
  void Louder(std::span<const float> samples) {
    if (m_fGain == 1.0F) return m_sink.Take(samples);
    m_louder.assign(samples.begin(), samples.end());
    for (float& fSample : m_louder) fSample *= m_fGain;
    m_sink.Take(std::span<const float>(m_louder));
  }

  C_ChannelChoice<float> m_choice;
  std::uint32_t m_dwChannels;
  bool m_bMixes;
  float m_fGain;
  I_SampleSink& m_sink;
  std::optional<C_Resampler> m_resampler;
  std::vector<float> m_mono;
  std::vector<float> m_louder;
};

}  // namespace

std::uint32_t ChangedChannels(const S_SoundInfo& info, const S_SampleChanges& changes) {
  return changes.bMono || changes.dwChannel ? 1 : info.dwChannels;
}

std::uint32_t ChangedRate(const S_SoundInfo& info, const S_SampleChanges& changes) {
  return changes.dwRate == 0 ? info.dwRate : changes.dwRate;
}

std::uint64_t ChangedFrames(const S_SoundInfo& info, const S_SampleChanges& changes) {
  if (info.qwFrames == kFramesUnknown) return kFramesUnknown;
  return ScaledFrames(info.qwFrames, info.dwRate, ChangedRate(info, changes));
}

std::uint64_t ChangeSamples(I_SoundInput& input, const S_SampleChanges& changes, I_SampleSink& sink,
                            const PFN_FramesRead& fnRead) {
  if (KeepsSamples(input.Info(), changes)) return CopyExactly(input, changes, sink, fnRead);
  C_FloatChanges chain(input.Info(), changes, sink);
  const std::uint64_t qwRead =
      ForEachPiece<float>(input, fnRead, [&](auto frames) { chain.Put(frames); });
  chain.End();
  return qwRead;
}

}  // namespace tool
