// SPDX-License-Identifier: Apache-2.0
//
// The player: one object that opens and plays a file, or plays a Kestrel file while it is being
// decoded. It is used from one thread only.
#pragma once

// Called on every change of state; its result is ignored.
using PFN_VoxplayNotify = int (*)(int nState, unsigned int dwUserData);

// Operations that drive the platform's audio services throw CAXException where their comments say
// so. The trailing numbers are the slots of the virtual table. There is no virtual destructor:
// Release ends the object.
class I_Voxplay {
 public:
  static constexpr int kStopped = 0;
  static constexpr int kPaused = 1;
  static constexpr int kPlaying = 2;
  static constexpr int kNothingOpened = 3;

  // Results of Open.
  static constexpr int kOpened = 0;
  // The platform refused, or a stream that was given a header could not be opened again.
  static constexpr int kPlatformFailed = 1;
  static constexpr int kDecodeFailed = 2;
  static constexpr int kNotSupported = 3;

  // Starts or resumes. Does nothing when nothing is opened or it is already playing. False when the
  // machine lacks the memory or the threads to play; throws.
  virtual bool Play() = 0;   // 1
  virtual bool Stop() = 0;   // 2, true; throws
  virtual bool Pause() = 0;  // 3, true; throws
  // Tears down and deletes the object. When a platform call fails it throws, and the object stays.
  virtual void Release() = 0;    // 4
  virtual int Reserved5() = 0;   // 5, 0
  virtual int Reserved6() = 0;   // 6, 0
  virtual int Reserved7() = 0;   // 7, 0
  virtual int Reserved8() = 0;   // 8, 0
  virtual int Reserved9() = 0;   // 9, 0
  virtual int Reserved10() = 0;  // 10, 0
  // Plays a Kestrel file while it is being decoded. Returns when playback has ended: 0, or 1 when
  // there is no output.
  virtual int PlayRealTime(const char* pszFileName) = 0;  // 11
  // Prepares a file for Play. Returns kOpened (0) or one of the failures above. Never throws. When
  // a file was open before, the position stays where that file ended until the first render cycle
  // of the new one.
  virtual int Open(const char* pszFileName) = 0;  // 12
  // Before a file is opened it stores nothing and returns true. After that it returns false for
  // null. Throws.
  virtual bool SetNotify(PFN_VoxplayNotify pfnNotify, unsigned int dwUserData) = 0;  // 13
  // All of these return true. The duration is 0 until a file is opened, the position until it is
  // played. The progress is position divided by duration: it is not a number, or is infinite, while
  // the duration is 0.
  virtual bool GetProgress(float* pfProgress) = 0;      // 14
  virtual bool GetDuration(int* pnSeconds) = 0;         // 15
  virtual bool GetDurationMs(int* pnMilliseconds) = 0;  // 16
  virtual bool GetPosition(int* pnSeconds) = 0;         // 17
  virtual bool GetPositionMs(int* pnMilliseconds) = 0;  // 18

 protected:
  ~I_Voxplay() = default;
};

// Makes a player, which the caller ends with Release. Returns 0 on success, and 1 when memory is
// missing.
int CreateVoxplay(I_Voxplay** ppIVoxplay);
