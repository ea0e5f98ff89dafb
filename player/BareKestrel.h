// SPDX-License-Identifier: Apache-2.0
//
// Kestrel streams that come without the header that names their format.
#pragma once

#include "TempFile.h"

// Copies a file to a temporary ".kst" name and puts the header of a 16 kHz Kestrel stream at the
// start of the copy. The caller owns the copy. The result has no path when the file cannot be
// copied; nothing was created then.
vcm::C_RemovedAtEnd CopyAsKestrel(const char* pszFileName);
