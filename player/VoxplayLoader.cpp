// SPDX-License-Identifier: Apache-2.0
#include "VoxplayLoader.h"

void VoxplayLoader::Release() {
  if (m_pIVoxplay != nullptr) m_pIVoxplay->Release();
  m_pfnCreate = nullptr;
}
