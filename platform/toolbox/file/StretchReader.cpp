// SPDX-License-Identifier: Apache-2.0
#include "file/StretchReader.h"

#include <algorithm>

#include "file/SoxrLibrary.h"
#include "object/Room.h"

namespace toolbox {
namespace {

// One render slice; the converter asks for its input in pieces of at most this size.
constexpr std::size_t kPieceFrames = 512;
// Converting rates outside this range would need filters of absurd length.
constexpr double kMinFileRate = 100;
constexpr double kMaxFileRate = 1000000;

struct S_SoxrCloser {
  void operator()(soxr_t pSoxr) const noexcept { SoxrFunctions()->remove(pSoxr); }
};

}  // namespace

struct C_StretchReader::S_Converter {
  std::unique_ptr<soxr, S_SoxrCloser> pSoxr;
};

C_StretchReader::C_StretchReader(std::shared_ptr<C_AudioFile> pFile, SInt64 nStartFrame,
                                 UInt64 qwFrames, double dOutputRate)
    : m_pFile(std::move(pFile)),
      m_nNextFrame(nStartFrame),
      m_qwFramesLeft(qwFrames),
      m_dwChannels(std::min<UInt32>(m_pFile->Format().mChannelsPerFrame, 2)),
      m_fileFrames(kPieceFrames * m_pFile->Format().mChannelsPerFrame),
      m_converterInput(kPieceFrames * m_dwChannels),
      m_bSameRate(m_pFile->Format().mSampleRate == dOutputRate) {
  const double dFileRate = m_pFile->Format().mSampleRate;
  if (m_bSameRate || dFileRate < kMinFileRate || dFileRate > kMaxFileRate) return;
  NeedRoom();
  const S_SoxrFunctions* pFunctions = SoxrFunctions();
  if (pFunctions == nullptr) return;
  m_pConverter = std::make_unique<S_Converter>();
  const soxr_io_spec_t io = pFunctions->io_spec(SOXR_FLOAT32_I, SOXR_FLOAT32_I);
  const soxr_quality_spec_t quality = pFunctions->quality_spec(SOXR_HQ, 0);
  soxr_error_t pError = nullptr;
  soxr_t pSoxr =
      pFunctions->create(dFileRate, dOutputRate, m_dwChannels, &pError, &io, &quality, nullptr);
  m_pConverter->pSoxr.reset(pSoxr);
  const bool bReady = pSoxr != nullptr && pFunctions->set_input_fn(pSoxr, &FeedConverter, this,
                                                                   kPieceFrames) == nullptr;
  if (!bReady) m_pConverter.reset();
}

C_StretchReader::~C_StretchReader() = default;

bool C_StretchReader::IsUsable() const noexcept { return m_bSameRate || m_pConverter != nullptr; }

std::size_t C_StretchReader::Read(std::size_t nFrames, float* pSamples) {
  if (m_pConverter != nullptr) {
    return SoxrFunctions()->output(m_pConverter->pSoxr.get(), pSamples, nFrames);
  }
  std::size_t nDone = 0;
  while (nDone < nFrames) {
    const std::size_t nRead = ReadFromFile(nFrames - nDone, pSamples + nDone * m_dwChannels);
    if (nRead == 0) break;
    nDone += nRead;
  }
  return nDone;
}

std::size_t C_StretchReader::FeedConverter(void* pThis, const void** ppData, std::size_t nFrames) {
  auto* pReader = static_cast<C_StretchReader*>(pThis);
  *ppData = pReader->m_converterInput.data();
  return pReader->ReadFromFile(nFrames, pReader->m_converterInput.data());
}

std::size_t C_StretchReader::ReadFromFile(std::size_t nFrames, float* pSamples) {
  const auto nWanted =
      static_cast<std::size_t>(std::min<UInt64>({nFrames, kPieceFrames, m_qwFramesLeft}));
  if (nWanted == 0) return 0;
  const std::size_t nRead =
      m_pFile->ReadFrames(m_nNextFrame, nWanted, m_fileFrames.data(), &m_nStatus);
  m_nNextFrame += static_cast<SInt64>(nRead);
  m_qwFramesLeft = nRead != 0 ? m_qwFramesLeft - nRead : 0;
  const UInt32 dwFileChannels = m_pFile->Format().mChannelsPerFrame;
  for (std::size_t i = 0; i < nRead; ++i) {
    std::copy_n(m_fileFrames.data() + i * dwFileChannels, m_dwChannels,
                pSamples + i * m_dwChannels);
  }
  return nRead;
}

}  // namespace toolbox
