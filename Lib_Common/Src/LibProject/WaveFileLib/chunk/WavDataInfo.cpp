// SPDX-License-Identifier: Apache-2.0
#include "chunk/WavDataInfo.h"

unsigned int C_WavDataTextInfo::GetChunkLength() { return 4; }

bool C_WavDataTextInfo::SaveInfo([[maybe_unused]] I_RiffChunk* pChunk) { return false; }
