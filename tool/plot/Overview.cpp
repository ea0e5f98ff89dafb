// SPDX-License-Identifier: Apache-2.0
#include "plot/Overview.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "base/Interrupt.h"

namespace tool {
namespace {

constexpr std::size_t kPiece = 16384;  // samples of all channels

std::size_t PieceFrames(std::uint32_t dwChannels) {
  return std::max<std::size_t>(kPiece / dwChannels, 1);
}

// What is no number is drawn as silence; what is beyond any scale, as the loudest.
float Drawable(float fSample) {
  constexpr float kMost = 1e6F;
  return std::isnan(fSample) ? 0.0F : std::clamp(fSample, -kMost, kMost);
}

class C_Measuring {
 public:
  C_Measuring(I_SoundInput& input, const S_Measured& measured)
      : m_input(input),
        m_measured(measured),
        m_nAll(input.Info().dwChannels),
        m_samples(PieceFrames(input.Info().dwChannels) * m_nAll),
        m_channel(PieceFrames(input.Info().dwChannels)) {
    const C_Columns columns(measured.part.qwCount, measured.nColumns);
    m_overview.channels.resize(measured.channels.size());
    for (S_ChannelOverview& channel : m_overview.channels) {
      if (measured.bWaves) channel.wave.emplace(columns, input.Info().dwBits);
      if (measured.nSpectrumRows > 0) {
        channel.spectrum.emplace(columns, measured.nSpectrumRows, input.Info().dwRate);
      }
    }
  }

  S_Overview Run(const PFN_FramesDone& fnDone) {
    const bool bSpectra = m_measured.nSpectrumRows > 0;
    const std::uint64_t qwReach = bSpectra ? C_SpectrumMeter::Reach(m_input.Info().dwRate) : 0;
    const std::uint64_t qwBefore = std::min(qwReach, m_measured.part.qwFirst);
    m_input.Seek(m_measured.part.qwFirst - qwBefore);
    ReadBefore(qwBefore);
    m_overview.qwFrames = ReadPart(fnDone);
    ReadAfter(qwReach);
    for (S_ChannelOverview& channel : m_overview.channels) {
      if (channel.spectrum) channel.spectrum->Finish();
    }
    return std::move(m_overview);
  }

 private:
  // Reads at most so many frames into m_samples.
  std::size_t ReadPiece(std::uint64_t qwMost) {
    ThrowIfInterrupted();
    const std::size_t nFrames =
        static_cast<std::size_t>(std::min<std::uint64_t>(qwMost, m_channel.size()));
    return nFrames == 0 ? 0 : m_input.Read(std::span(m_samples).first(nFrames * m_nAll));
  }
  std::span<const float> Channel(std::uint32_t dwChannel, std::size_t nFrames) {
    for (std::size_t n = 0; n < nFrames; ++n) {
      m_channel[n] = Drawable(m_samples[n * m_nAll + dwChannel]);
    }
    return std::span(m_channel).first(nFrames);
  }

  // They are collected first, because spectra want them in one piece.
  void ReadBefore(std::uint64_t qwFrames) {
    std::vector<std::vector<float>> before(m_measured.channels.size());
    while (const std::size_t nFrames = ReadPiece(qwFrames)) {
      for (std::size_t n = 0; n < before.size(); ++n) {
        const auto samples = Channel(m_measured.channels[n], nFrames);
        before[n].insert(before[n].end(), samples.begin(), samples.end());
      }
      qwFrames -= nFrames;
    }
    for (std::size_t n = 0; n < before.size(); ++n) {
      auto& spectrum = m_overview.channels[n].spectrum;
      if (spectrum) spectrum->AddBefore(before[n]);
    }
  }
  std::uint64_t ReadPart(const PFN_FramesDone& fnDone) {
    const std::uint64_t qwAll = m_measured.part.qwCount;
    std::uint64_t qwDone = 0;
    while (const std::size_t nFrames = ReadPiece(qwAll - qwDone)) {
      for (std::size_t n = 0; n < m_overview.channels.size(); ++n) {
        const auto samples = Channel(m_measured.channels[n], nFrames);
        S_ChannelOverview& channel = m_overview.channels[n];
        if (channel.wave) channel.wave->Add(samples);
        if (channel.spectrum) channel.spectrum->Add(samples);
      }
      qwDone += nFrames;
      fnDone(qwDone, qwAll);
    }
    return qwDone;
  }
  void ReadAfter(std::uint64_t qwFrames) {
    while (const std::size_t nFrames = ReadPiece(qwFrames)) {
      for (std::size_t n = 0; n < m_overview.channels.size(); ++n) {
        auto& spectrum = m_overview.channels[n].spectrum;
        if (spectrum) spectrum->Add(Channel(m_measured.channels[n], nFrames));
      }
      qwFrames -= nFrames;
    }
  }

  I_SoundInput& m_input;
  const S_Measured& m_measured;
  std::size_t m_nAll;
  std::vector<float> m_samples;
  std::vector<float> m_channel;
  S_Overview m_overview;
};

}  // namespace

S_Overview Measure(I_SoundInput& input, const S_Measured& measured, const PFN_FramesDone& fnDone) {
  if (measured.part.qwCount == 0) return {};
  return C_Measuring(input, measured).Run(fnDone);
}

std::uint64_t FramesOf(I_SoundInput& input) {
  if (input.Info().qwFrames != kFramesUnknown) return input.Info().qwFrames;
  std::vector<std::int16_t> samples(PieceFrames(input.Info().dwChannels) * input.Info().dwChannels);
  std::uint64_t qwFrames = 0;
  while (const std::size_t nFrames = input.Read(std::span(samples))) {
    ThrowIfInterrupted();
    qwFrames += nFrames;
  }
  return qwFrames;
}

}  // namespace tool
