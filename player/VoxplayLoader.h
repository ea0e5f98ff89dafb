// SPDX-License-Identifier: Apache-2.0
//
// Holds the player while one mode of the command line runs.
#pragma once

#include "I_Voxplay.h"

struct VoxplayLoader {
  using PFN_Create = int (*)(I_Voxplay** ppIVoxplay);

  // Releases the player, if there is one, and forgets how it was made.
  //
  // Kept: the pointer to the player stays, so that code that looks at the holder afterwards still
  // sees that a mode ran. Code that releases the player earlier clears it. Pinned by
  // Release_ClearsTheFactoryAndLeavesThePlayerPointer.
  void Release();

  int m_nResult = 0;  // duration in milliseconds (playing) or seconds (length)
  I_Voxplay* m_pIVoxplay = nullptr;
  PFN_Create m_pfnCreate = nullptr;
};
