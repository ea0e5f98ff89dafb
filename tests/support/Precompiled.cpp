// SPDX-License-Identifier: Apache-2.0
//
// The precompiled header needs a source to belong to.
#include "Precompiled.h"
