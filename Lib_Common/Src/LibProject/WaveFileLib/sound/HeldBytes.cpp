// SPDX-License-Identifier: Apache-2.0
#include "sound/HeldBytes.h"

#include "sound/WavDataBuffer.h"

namespace vcm {

bool HoldsItsBytes(I_WavData& wavData) {
  auto* const pBuffer = dynamic_cast<C_WavDataBuffer*>(wavData.GetIWaveDataBuffer());
  return pBuffer == nullptr || wavData.GetBufferLength() <= pBuffer->GetLength();
}

}  // namespace vcm
