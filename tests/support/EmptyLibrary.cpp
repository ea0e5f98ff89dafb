// SPDX-License-Identifier: Apache-2.0
//
// A library without any of the functions that are looked for.
extern const int g_nEmptyLibrary = 1;
