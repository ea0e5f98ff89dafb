// SPDX-License-Identifier: Apache-2.0
#include "sound/HeldBytes.h"

#include "sound/WavData.h"
#include "sound/WavDataBuffer.h"

namespace vcm {

bool HoldsItsBytes(I_WavData& wavData) {
  auto* const pBuffer = dynamic_cast<C_WavDataBuffer*>(wavData.GetIWaveDataBuffer());
  return pBuffer == nullptr || wavData.GetBufferLength() <= pBuffer->GetLength();
}

bool Holds16Bits(I_WavData& wavData) {
  I_WavInfo& info = *wavData.GetWavInfo();
  return AsOurOwn(wavData) != nullptr && HoldsItsBytes(wavData) && info.GetBitsPerSample() == 16 &&
         info.GetStoreBitsPerSample() == 16 && info.IsValueSigned();
}

}  // namespace vcm
