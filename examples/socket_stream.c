/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Sends speech through a pair of sockets, frame by frame, as a telephone does. Every tenth packet
 * is lost on the way; the decoder bridges the gap.
 *
 *     cc socket_stream.c $(pkg-config --cflags --libs voxplay) -o socket_stream && ./socket_stream
 */
#define _POSIX_C_SOURCE 200809L
#include <stdio.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <voxplay.h>

enum { BIT_RATE = 16000, FRAMES = 100 };

static int send_speech(int out) {
  voxplay_kestrel_encoder *encoder = voxplay_kestrel_encoder_new(BIT_RATE);
  const size_t bytes = voxplay_kestrel_words(BIT_RATE) * sizeof(uint16_t);
  int failed = encoder == NULL;
  for (int frame = 0; frame < FRAMES && !failed; ++frame) {
    int16_t samples[VOXPLAY_KESTREL_FRAME];
    uint16_t words[VOXPLAY_KESTREL_MAX_WORDS];
    for (int i = 0; i < VOXPLAY_KESTREL_FRAME; ++i) /* a triangle of 200 Hz */
      samples[i] = (int16_t)((i % 80 < 40 ? i % 40 : 40 - i % 40) * 400 - 8000);
    const size_t sent = frame % 10 == 9 ? 0 : bytes; /* no bytes: a lost packet */
    failed = voxplay_kestrel_encode(encoder, samples, words) != VOXPLAY_OK ||
             send(out, words, sent, 0) != (ssize_t)sent;
  }
  voxplay_kestrel_encoder_free(encoder);
  return failed;
}

static int hear_speech(int in) {
  voxplay_kestrel_decoder *decoder = voxplay_kestrel_decoder_new(BIT_RATE);
  int failed = decoder == NULL, lost = 0;
  for (int frame = 0; frame < FRAMES && !failed; ++frame) {
    int16_t samples[VOXPLAY_KESTREL_FRAME];
    uint16_t words[VOXPLAY_KESTREL_MAX_WORDS];
    const ssize_t got = recv(in, words, sizeof words, 0);
    const uint16_t *heard = got == 0 ? NULL : words;
    lost += got == 0;
    failed = got < 0 || voxplay_kestrel_decode(decoder, heard, samples) != VOXPLAY_OK;
  }
  if (!failed) printf("heard %d frames, %d of them lost\n", FRAMES, lost);
  voxplay_kestrel_decoder_free(decoder);
  return failed;
}

int main(void) {
  int ends[2];
  int result = 1;
  if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) != 0) return 1;
  const pid_t child = fork();
  if (child == 0) _exit(send_speech(ends[0]));
  close(ends[0]);
  if (child < 0 || hear_speech(ends[1]) != 0 || waitpid(child, &result, 0) != child) return 1;
  return result != 0;
}
