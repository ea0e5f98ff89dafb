// SPDX-License-Identifier: Apache-2.0
#pragma once

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VOXPLAY_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VOXPLAY_SANITIZED 1
#endif
#endif

// True in builds with a sanitizer. They are slow, so tests that repeat the same steps very often
// repeat them less there.
#ifdef VOXPLAY_SANITIZED
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif
