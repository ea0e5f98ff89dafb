// SPDX-License-Identifier: Apache-2.0
//
// Where lines and branches are counted, a process that ends without its handlers must write its
// counters first.
#pragma once

// Null where nothing is counted.
[[gnu::weak]] void KeepCounters();
