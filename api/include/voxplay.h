/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Voxplay's C interface: reads and writes sound files piece by piece, with the events and marks in
 * them, and codes Kestrel frames. It is C11, and C++ programs may include it as well; voxplay.hpp
 * puts objects, exceptions and ranges on top of it.
 *
 *     voxplay_reader *reader = voxplay_reader_new();
 *     if (voxplay_reader_open_file(reader, "speech.kst", 0) != VOXPLAY_OK)
 *       complain(voxplay_reader_message(reader));
 *     else
 *       while (voxplay_reader_read_s16(reader, samples, 1024, &frames) == VOXPLAY_OK && frames > 0)
 *         play(samples, frames);
 *     voxplay_reader_free(reader);
 *
 * Frames. A frame is one sample of every channel. Buffers hold interleaved frames: sample c of
 * frame f is at index f * channels + c. Positions and lengths of sounds are frames, unless a name
 * says bytes. Rates are in Hz, bit rates in bits per second.
 *
 * Samples. int16_t and int32_t samples use their whole range, whatever the width in the file is;
 * float samples lie in -1 to 1. Wider samples lose their low bits when they are read as narrower
 * ones. float samples beyond the range are limited when they become integers, and a sample that is
 * not a number becomes 0 then. Files of floating point give and take float samples as they are,
 * those beyond the range and those that are no numbers included.
 *
 * Objects. A voxplay_..._new function makes an object, or returns NULL when there is no memory. The
 * matching ..._free function ends it and does nothing for NULL. An object may be used by one thread
 * at a time. Different objects may be used by different threads at a time; they share nothing. The
 * library has no state of its own, prints nothing and reads nothing from the environment.
 *
 * Failure. Functions return a voxplay_status. Whatever fails leaves a sentence on its object, which
 * ..._message returns: file, place and reason; notes and the objects for Kestrel frames have none.
 * Pointers that an object returns stay valid until the
 * next call that changes the object. Unless it says otherwise, a function returns
 * VOXPLAY_BAD_ARGUMENT, and does nothing, for a null pointer and for a value outside its range.
 *
 * Structures. A function that takes a structure also takes its size, as the caller was compiled
 * with: pass sizeof. Later versions may append members: those that the caller does not know are
 * taken as 0 and not written, and those that only the caller knows become 0.
 */
#ifndef VOXPLAY_H
#define VOXPLAY_H

#include <stddef.h>
#include <stdint.h>

#define VOXPLAY_VERSION_MAJOR 0
#define VOXPLAY_VERSION_MINOR 1
#define VOXPLAY_VERSION_PATCH 0

#ifdef __cplusplus
extern "C" {
#endif

/* The version of the library that the program runs with, "0.1.0". */
const char* voxplay_version(void);

/* ---- Failure -------------------------------------------------------------------------------- */

typedef enum voxplay_status {
  VOXPLAY_OK = 0,
  VOXPLAY_NO_MEMORY = 1,    /* memory was refused */
  VOXPLAY_BAD_ARGUMENT = 2, /* a null pointer, or a value outside its range */
  VOXPLAY_WRONG_STATE = 3,  /* the object is not open, or already finished */
  VOXPLAY_CANNOT_OPEN = 4,  /* no such file, no permission, or not a regular file */
  VOXPLAY_CANNOT_READ = 5,  /* the input cannot be read here; never the mere end of it */
  VOXPLAY_CANNOT_WRITE = 6, /* the target cannot be written: a full disk, for instance */
  VOXPLAY_CANNOT_SEEK = 7,  /* an input or output that only goes forward would have to go back */
  VOXPLAY_UNKNOWN = 8,      /* the bytes are none of the formats that this library reads */
  VOXPLAY_UNSUPPORTED = 9,  /* the format is known, but not this kind of it */
  VOXPLAY_DAMAGED = 10,     /* the bytes contradict themselves */
  VOXPLAY_TOO_LARGE = 11,   /* the sound is too large, for its container or its codec */
  VOXPLAY_CANCELLED = 12,   /* a progress function asked to stop */
  VOXPLAY_INTERNAL = 13     /* none of these: a mistake in the library */
} voxplay_status;

/* One text per value, "the input cannot be read"; "unknown status" for any other number. */
const char* voxplay_status_text(voxplay_status status);

/* ---- What a sound is ------------------------------------------------------------------------ */

/* How a file is built. */
typedef enum voxplay_container {
  VOXPLAY_CONTAINER_NONE = 0,
  VOXPLAY_CONTAINER_WAV = 1,  /* RIFF of the form "WAVE"; also RF64 */
  VOXPLAY_CONTAINER_VEMD = 2, /* RIFF of the form "VEMD", otherwise like WAV */
  VOXPLAY_CONTAINER_VEF = 3,  /* RIFF of the form "VEFF": PCM and, beside it, a coded stream */
  VOXPLAY_CONTAINER_SP = 4,   /* an SP header of 48 bytes and a coded stream */
  VOXPLAY_CONTAINER_HEAD = 5, /* a codec head of 6 bytes and a coded stream */
  VOXPLAY_CONTAINER_BARE = 6  /* a coded stream alone */
} voxplay_container;

/* How its samples are coded. Sounds of all codecs but the first two are refused with
 * VOXPLAY_TOO_LARGE when they have 2,147,483,648 samples or more: 4 GiB as int16_t. */
typedef enum voxplay_codec {
  VOXPLAY_CODEC_NONE = 0,
  VOXPLAY_CODEC_PCM = 1,   /* integers of 8 (unsigned), 16, 24 or 32 bits */
  VOXPLAY_CODEC_FLOAT = 2, /* floating point of 32 or 64 bits */
  VOXPLAY_CODEC_MULAW = 3, /* read only, as are the next four */
  VOXPLAY_CODEC_ALAW = 4,
  VOXPLAY_CODEC_MS_ADPCM = 5,
  VOXPLAY_CODEC_DVI4 = 6,     /* DVI ADPCM of 4 bits, format tag 11 */
  VOXPLAY_CODEC_DVI3 = 7,     /* the same of 3 bits */
  VOXPLAY_CODEC_KESTREL = 14, /* speech at 7,200 to 32,000 bit/s, made for 16 kHz */
  VOXPLAY_CODEC_HERON = 32    /* 2 to 6 bits per sample, 4 to 48 kHz */
} voxplay_codec;

/* ---- Inputs --------------------------------------------------------------------------------- */

/* An input of the caller's own. All functions get user. They are called from within the functions
 * of the reader only. They must not call functions of that reader, and must not throw. */
typedef struct voxplay_input {
  /* Reads up to size bytes from the present position, and moves it. Returns their number, which is
   * 0 only at the end of the input, and -1 when they cannot be read. */
  int64_t (*read)(void* user, void* bytes, size_t size);
  /* Moves to a position from the start of the input, which may be its end. Returns 0, or -1 when it
   * cannot. NULL for an input that only goes forward. */
  int (*seek)(void* user, uint64_t position);
  /* The present position, or -1. May be NULL: then reading begins at position 0. Otherwise the
   * sound begins at the position that this returns when the reader is opened. */
  int64_t (*tell)(void* user);
  /* The length of the input in bytes from position 0, or -1 when it is not known. May be NULL.
   * Where it does not tell, an input that can go back is read to its end once when it is opened. */
  int64_t (*size)(void* user);
  void* user;
} voxplay_input;

/* ---- Reader --------------------------------------------------------------------------------- */

/* Opens any of the formats above, and reads it piece by piece. The memory that this takes does not
 * grow with the length of the sound. It does with the number of marks and the size of the chunks
 * beside the samples: all of them are in memory. No temporary file is made. */
typedef struct voxplay_reader voxplay_reader;

/* For the flags of the open functions. */
enum {
  /* Of a VEF file that has both, read the coded stream and not the PCM beside it. A VEF file
   * without a stream does not open then. */
  VOXPLAY_READ_STREAM = 1,
  /* Open only what says what it is. Without this, bytes that have no header and can be a Kestrel
   * stream are taken for one, as the player takes them. */
  VOXPLAY_READ_NO_BARE = 2
};

voxplay_reader* voxplay_reader_new(void);
void voxplay_reader_free(voxplay_reader* reader);

/* Opens a sound. What the reader had open before is closed first. After a failure nothing is open,
 * and the message says why. Of formats that are none of ours it says which tests they failed.
 *
 * A file is opened by name and must be a regular file. */
voxplay_status voxplay_reader_open_file(voxplay_reader* reader, const char* path, uint32_t flags);
/* The bytes stay the caller's, and must stay as they are until the reader is closed. They must not
 * be those of a chunk of this reader. */
voxplay_status voxplay_reader_open_memory(voxplay_reader* reader, const void* bytes, size_t size,
                                          uint32_t flags);
/* The record is copied. An input that only goes forward opens as well, but seeks only forward, and
 * knows no marks that come after the samples. Heron and Kestrel inside VEF need to go back. */
voxplay_status voxplay_reader_open_input(voxplay_reader* reader, const voxplay_input* input,
                                         uint32_t flags);
/* Closes what is open, if anything. */
void voxplay_reader_close(voxplay_reader* reader);

/* What went wrong in the last call that failed: "speech.kst: SP header: identifier 7 is not a codec
 * of this library". Empty when nothing has. Never NULL. */
const char* voxplay_reader_message(const voxplay_reader* reader);

typedef struct voxplay_info {
  uint32_t container; /* voxplay_container */
  uint32_t codec;     /* voxplay_codec; of the samples that are read */
  uint32_t sample_rate;
  uint32_t channels;
  /* All frames of the sound, UINT64_MAX while an input that only goes forward does not tell. Of a
   * damaged sound it may turn out smaller while it is read. */
  uint64_t frames;
  /* Of PCM and FLOAT: 8, 12, 16 ..., which are the high bits of stored_bits; of Heron: 2 to 6;
   * otherwise 0. */
  uint32_t bits_per_sample;
  uint32_t stored_bits; /* of PCM and FLOAT: the room of a sample in the file; otherwise 0 */
  uint32_t bit_rate;    /* of Kestrel; otherwise bits per second of the coded samples, or 0 */
  /* 1 for a VEF file with PCM and a stream, whichever is read, when the stream is whole and not
   * empty. An input that only goes forward does not tell what comes after the samples. */
  uint32_t has_stream;
  /* Of the frames that were read so far: those whose bytes are damaged or missing, so that
   * something else stands in their place. Such a frame counts when reading first goes beyond it, so
   * frames that are read twice count once. Frames that a seek passed over are not counted. What
   * G.711 and ADPCM lack counts nowhere, because the sound ends there. */
  uint64_t damaged_frames;
  /* How many frames a stream of KESTREL or HERON says that it has, of which frames are there; 0 for
   * other codecs. */
  uint64_t claimed_frames;
  /* 1 when something is missing at the end: the input is shorter than its sizes say, by samples or
   * by more than 8 bytes after them, or frames has turned out smaller than claimed_frames. An input
   * that only goes forward, or does not tell its length, does not tell this before its end. */
  uint32_t is_cut;
  uint32_t reserved; /* 0 */
} voxplay_info;

/* Fills *info as far as size. */
voxplay_status voxplay_reader_info(const voxplay_reader* reader, voxplay_info* info, size_t size);

/* The fields of the headers that stand before streams. A header that a file does not have is all
 * zeros. */
typedef struct voxplay_headers {
  uint32_t has_sp;     /* 1 for a file with an SP header */
  uint32_t has_head;   /* 1 for a file with a codec head */
  uint32_t has_vafm;   /* 1 for a VEF file with a "vafm" chunk; see has_stream for inputs that only
                        * go forward */
  uint32_t sp_version; /* 254 or 255 */
  uint32_t sp_identifier;
  uint32_t sp_format;
  uint32_t sp_sample_rate;
  uint32_t sp_value_30; /* fields without a meaning, named by their place in the header */
  uint32_t sp_value_34;
  uint32_t sp_value_36;
  uint32_t sp_value_37;
  uint32_t head_type; /* codec head: the same numbers as sp_identifier */
  uint32_t head_sample_rate;
  uint32_t head_version;
  uint32_t vafm_version;
  uint32_t vafm_type;
  uint32_t vafm_sample_rate; /* the low 16 bits of it */
  uint32_t vafm_bit_rate;
  uint32_t vafm_channels;
  uint32_t vafm_platform;
} voxplay_headers;

voxplay_status voxplay_reader_headers(const voxplay_reader* reader, voxplay_headers* headers,
                                      size_t size);

/* Where a chunk of a RIFF file stands. Positions count from where the sound begins in its input. */
typedef struct voxplay_chunk_place {
  char id[4];
  uint64_t offset; /* of its content, which begins after identifier and size */
  /* Of its content, in bytes, as the file claims. Of RF64, what "ds64" says counts; of samples
   * whose number was not known when they were written, those that are there. */
  uint64_t size;
  uint64_t held; /* of these bytes, those that are there: fewer where the end of the file cuts it */
} voxplay_chunk_place;

/* How many chunks a RIFF file has beside each other, in its order, "fmt " and "data" included; 0
 * for files of other containers, and when nothing is open. Of an input that only goes forward,
 * those up to "data" count, and where it does not tell its length, all of a chunk is taken to be
 * there. */
size_t voxplay_reader_chunk_count(const voxplay_reader* reader);
/* index counts from 0; an index outside the list is a VOXPLAY_BAD_ARGUMENT. */
voxplay_status voxplay_reader_chunk(const voxplay_reader* reader, size_t index,
                                    voxplay_chunk_place* place, size_t size);

/* Reads up to count frames from the present position on, and moves it. *done is their number; it is
 * 0 only at the end of the sound. When it fails, *done says how many frames before the place of the
 * failure were read. The buffer has room for count * channels samples. */
voxplay_status voxplay_reader_read_s16(voxplay_reader* reader, int16_t* samples, size_t count,
                                       size_t* done);
voxplay_status voxplay_reader_read_s32(voxplay_reader* reader, int32_t* samples, size_t count,
                                       size_t* done);
voxplay_status voxplay_reader_read_f32(voxplay_reader* reader, float* samples, size_t count,
                                       size_t* done);

/* Moves to a frame; frame is at most the number of frames. The same samples follow as if everything
 * before them had been read. Codecs have to decode some of it: all of it, the first time, in
 * Kestrel, though in a way that takes a fraction of the time.
 *
 * An input that only goes forward goes back, if at all, only to what is still in memory; otherwise
 * the result is VOXPLAY_CANNOT_SEEK, and the position stays. An input that only goes forward and
 * does not tell its length may be read to its end by a seek beyond that: the result is
 * VOXPLAY_BAD_ARGUMENT, and the position is then the end of the sound, or unchanged where the file
 * says itself how long it is. */
voxplay_status voxplay_reader_seek(voxplay_reader* reader, uint64_t frame);
/* The present position; 0 when nothing is open. */
uint64_t voxplay_reader_tell(const voxplay_reader* reader);

/* ---- Notes ---------------------------------------------------------------------------------- */

/* All that a file may hold beside its samples: events, silence, regions, cue points, labels, texts,
 * loops and other chunks. A reader has the notes of its file; a writer takes notes. Notes that a
 * program makes or copies are its own and can be changed.
 *
 * Lists are read by index from 0; an index outside the list is a VOXPLAY_BAD_ARGUMENT. Texts are
 * bytes as the file has them, usually UTF-8 or Windows-1252, ended by a zero. */
typedef struct voxplay_notes voxplay_notes;

typedef enum voxplay_note_kind {
  VOXPLAY_NOTE_EVENT = 0,
  VOXPLAY_NOTE_SILENCE = 1, /* a range of silence */
  VOXPLAY_NOTE_REGION = 2,  /* a range that is kept uncompressed */
  VOXPLAY_NOTE_CUE = 3,
  VOXPLAY_NOTE_LABEL = 4,       /* a label or a note of a cue point */
  VOXPLAY_NOTE_REGION_TEXT = 5, /* a range that begins at a cue point */
  VOXPLAY_NOTE_LOOP = 6,
  VOXPLAY_NOTE_CHUNK = 7
} voxplay_note_kind;

typedef struct voxplay_event {
  uint64_t frame;
  uint16_t main_command;
  uint16_t sub_command;
  uint32_t data;
  const char* description; /* may be NULL when it is added; never NULL when it is read */
} voxplay_event;

/* Silence and regions. */
typedef struct voxplay_range {
  uint64_t first; /* frame */
  uint64_t count; /* of frames */
} voxplay_range;

/* A cue point as WAV files have it. Events, silence and regions are stored as cue points, too;
 * those are not listed here. */
typedef struct voxplay_cue {
  uint32_t id;
  uint32_t position;      /* frame, or place in a play list */
  char chunk[4];          /* "data" */
  uint32_t chunk_start;   /* bytes */
  uint32_t block_start;   /* bytes */
  uint32_t sample_offset; /* frame, within the block */
} voxplay_cue;

/* In WAV and VEMD files, a label whose text has the characters "u", "_" and "_", or "e" and "_", in
 * this order but with anything between them, is read as an event as well, and kept as a label:
 * "take_1", for instance. Only the first 64 characters count. */
typedef struct voxplay_label {
  uint32_t cue_id;
  char type[4]; /* "labl" or "note" */
  const char* text;
} voxplay_label;

typedef struct voxplay_region_text {
  uint32_t cue_id;
  uint32_t count;  /* of frames */
  char purpose[4]; /* "rgn " */
  uint16_t country;
  uint16_t language;
  uint16_t dialect;
  uint16_t code_page;
  const char* text; /* "" when there is none */
} voxplay_region_text;

typedef struct voxplay_loop {
  uint32_t id;
  uint32_t type;  /* 0 forward, 1 forth and back, 2 backward */
  uint32_t first; /* frame */
  uint32_t last;  /* frame; it is played */
  uint32_t fraction;
  uint32_t play_count; /* 0 for ever */
} voxplay_loop;

/* What stands before the loops in a "smpl" chunk. */
typedef struct voxplay_sampler {
  uint32_t manufacturer;
  uint32_t product;
  uint32_t sample_period; /* nanoseconds */
  uint32_t midi_unity_note;
  uint32_t midi_pitch_fraction;
  uint32_t smpte_format;
  uint32_t smpte_offset;
  const void* data; /* bytes for the sampler alone */
  size_t data_size;
} voxplay_sampler;

/* A chunk that this library gives no meaning, kept byte for byte: INFO lists, "bext", "vevt" and
 * whatever else. What has a meaning is written anew from it: bytes after the zero that ends a label
 * or a text, after the last cue point, and after the data of a sampler are not kept. Nor is a chunk
 * that the end of the file cuts. */
typedef struct voxplay_chunk {
  char id[4];
  const void* data;
  size_t size; /* in bytes, without a pad byte; below 4 GiB */
} voxplay_chunk;

/* The notes of what is open, as far as they have been read; NULL when nothing is open. They are the
 * reader's, and stay valid until it is closed. */
const voxplay_notes* voxplay_reader_notes(const voxplay_reader* reader);

voxplay_notes* voxplay_notes_new(void);
/* NULL for NULL, and when there is no memory. */
voxplay_notes* voxplay_notes_copy(const voxplay_notes* notes);
void voxplay_notes_free(voxplay_notes* notes);

/* How many there are; 0 for NULL. */
size_t voxplay_notes_count(const voxplay_notes* notes, voxplay_note_kind kind);
voxplay_status voxplay_notes_event(const voxplay_notes* notes, size_t index, voxplay_event* event,
                                   size_t size);
/* kind is VOXPLAY_NOTE_SILENCE or VOXPLAY_NOTE_REGION. */
voxplay_status voxplay_notes_range(const voxplay_notes* notes, voxplay_note_kind kind, size_t index,
                                   voxplay_range* range, size_t size);
voxplay_status voxplay_notes_cue(const voxplay_notes* notes, size_t index, voxplay_cue* cue,
                                 size_t size);
voxplay_status voxplay_notes_label(const voxplay_notes* notes, size_t index, voxplay_label* label,
                                   size_t size);
voxplay_status voxplay_notes_region_text(const voxplay_notes* notes, size_t index,
                                         voxplay_region_text* text, size_t size);
voxplay_status voxplay_notes_loop(const voxplay_notes* notes, size_t index, voxplay_loop* loop,
                                  size_t size);
voxplay_status voxplay_notes_chunk(const voxplay_notes* notes, size_t index, voxplay_chunk* chunk,
                                   size_t size);
/* All zeros when there is no sampler record. */
voxplay_status voxplay_notes_sampler(const voxplay_notes* notes, voxplay_sampler* sampler,
                                     size_t size);

/* Each of these copies what it is given. Events are kept in order of their frames, after those of
 * the same frame; ranges in order of their first frames; everything else in the order of adding. */
voxplay_status voxplay_notes_add_event(voxplay_notes* notes, const voxplay_event* event,
                                       size_t size);
voxplay_status voxplay_notes_add_range(voxplay_notes* notes, voxplay_note_kind kind,
                                       const voxplay_range* range, size_t size);
voxplay_status voxplay_notes_add_cue(voxplay_notes* notes, const voxplay_cue* cue, size_t size);
voxplay_status voxplay_notes_add_label(voxplay_notes* notes, const voxplay_label* label,
                                       size_t size);
voxplay_status voxplay_notes_add_region_text(voxplay_notes* notes, const voxplay_region_text* text,
                                             size_t size);
voxplay_status voxplay_notes_add_loop(voxplay_notes* notes, const voxplay_loop* loop, size_t size);
voxplay_status voxplay_notes_add_chunk(voxplay_notes* notes, const voxplay_chunk* chunk,
                                       size_t size);
voxplay_status voxplay_notes_set_sampler(voxplay_notes* notes, const voxplay_sampler* sampler,
                                         size_t size);
/* Takes one out. The time that it takes grows with the number of notes of this kind, so use
 * voxplay_notes_clear to take out many. */
voxplay_status voxplay_notes_remove(voxplay_notes* notes, voxplay_note_kind kind, size_t index);
/* Takes all of them out, and with VOXPLAY_NOTE_LOOP the sampler record, too. */
voxplay_status voxplay_notes_clear(voxplay_notes* notes, voxplay_note_kind kind);

/* ---- Writer --------------------------------------------------------------------------------- */

/* Writes a sound piece by piece. A file appears under its name, whole, when the writer is finished:
 * until then it stands beside that name, and what had the name before is as it was. A file that is
 * not finished never appears. The memory that this takes does not grow with the length of the
 * sound.
 *
 * Until it is finished, a Heron sound also holds its samples in a private temporary file, because
 * its coder looks at them twice, and a VEF file with a stream holds the stream in one. Outputs that
 * only go forward hold in another what has to be corrected before it is sent: Heron, and VEF with a
 * stream. These files stand in the C library's folder for temporary files, usually /tmp. When that
 * is full, writing fails with VOXPLAY_CANNOT_WRITE. */
typedef struct voxplay_writer voxplay_writer;

typedef struct voxplay_format {
  uint32_t container;       /* voxplay_container */
  uint32_t codec;           /* voxplay_codec; see the table at voxplay_format_check */
  uint32_t sample_rate;     /* 1 to 4,294,967,295, but see there */
  uint32_t channels;        /* of the frames that will be written, 1 to 64 */
  uint32_t bits_per_sample; /* PCM: 8, 16, 24, 32; FLOAT: 32; Heron: 2 to 6; otherwise 0 */
  uint32_t bit_rate;        /* Kestrel: 7200, 9600, 12000, 14400, 16000, 20000, 24000 or 32000;
                             * 0 means 16000. Otherwise 0 */
  uint32_t flags;           /* VOXPLAY_WRITE_... */
  uint32_t reserved;        /* 0 */
  /* How many frames will be written, if that is known; 0 if not. Progress needs it, and so do
   * outputs that only go forward. Another number may still be written, except to those. */
  uint64_t frames;
} voxplay_format;

/* For the flags of voxplay_format. */
enum {
  /* WAV: leave room, so that the file can become an RF64 file when it grows beyond 4 GiB. Without
   * this, only a sound that is announced to be so long becomes one; others fail with
   * VOXPLAY_TOO_LARGE. */
  VOXPLAY_WRITE_RF64 = 1
};

/* Whether a sound of this format can be written: VOXPLAY_OK or, for everything else, members
 * outside their ranges included, VOXPLAY_UNSUPPORTED. Text, as far as text_size, gets a sentence
 * that says why not, or "". It may be NULL when text_size is 0. The functions that open a writer
 * refuse the same formats with the same status and sentence.
 *
 *   container  codec                    notes it holds
 *   WAV        PCM, FLOAT               all, but data and description of events
 *   VEMD       PCM                      the same
 *   VEF        PCM                      all, but silence, regions and descriptions of events
 *   VEF        KESTREL, HERON           the same; PCM of 16 bits stands beside the stream
 *   SP         KESTREL, HERON 4, 5, 6   none; Heron keeps the low bytes of the commands of events,
 *                                       and their places to 640 ms, but readers pass over them.
 *                                       2 and 3 bits would not be recognised again
 *   HEAD       KESTREL, HERON           the same
 *   BARE       KESTREL, HERON           the same, and no sample rate. BARE HERON is for programs
 *                                       that put a header before it: no reader takes it without one
 *
 * KESTREL and HERON are mono: the mean of all channels is coded. HERON takes rates of 4,000 to
 * 48,000 Hz; HEAD and VEF with a stream take rates of up to 65,535 Hz. */
voxplay_status voxplay_format_check(const voxplay_format* format, size_t size, char* text,
                                    size_t text_size);

/* An output of the caller's own; what is said at voxplay_input about its functions holds here. */
typedef struct voxplay_output {
  /* Writes all bytes at the present position and moves it. Returns 0, or -1 when it cannot. */
  int (*write)(void* user, const void* bytes, size_t size);
  /* Moves to a position from where the output began. Returns 0, or -1 when it cannot. NULL for an
   * output that only goes forward. */
  int (*seek)(void* user, uint64_t position);
  void* user;
} voxplay_output;

/* Called with the number of frames that are done, of all. Until the sound is finished, all is the
 * number that was announced; it is 0 when none was, and when more are written. While
 * voxplay_writer_finish works, it is the number that was written. Returns 0 to go on; anything else
 * ends the writing with VOXPLAY_CANCELLED. Of Heron, writing the frames is the first half, and
 * coding them, in voxplay_writer_finish, the second. It must not call functions of that writer,
 * which would only give VOXPLAY_WRONG_STATE, and must not throw. */
typedef int (*voxplay_progress)(void* user, uint64_t done, uint64_t all);

voxplay_writer* voxplay_writer_new(void);
/* Abandons what is not finished. */
void voxplay_writer_free(voxplay_writer* writer);

/* Begins a sound. What was not finished before is abandoned first. After a failure nothing is open,
 * and nothing was changed under the name. A link to a file stays a link. Of several writers of one
 * name, even a new one, that which finishes last wins. */
voxplay_status voxplay_writer_open_file(voxplay_writer* writer, const char* path,
                                        const voxplay_format* format, size_t size);
/* The record is copied. Outputs that only go forward need voxplay_format.frames, and notes that are
 * set before the first frame. */
voxplay_status voxplay_writer_open_output(voxplay_writer* writer, const voxplay_output* output,
                                          const voxplay_format* format, size_t size);
/* As for a reader. */
const char* voxplay_writer_message(const voxplay_writer* writer);

/* Sets the function that hears of the progress; NULL for none. */
voxplay_status voxplay_writer_on_progress(voxplay_writer* writer, voxplay_progress progress,
                                          void* user);

/* Notes to be written; they are copied, and replace those of an earlier call. NULL for none. May be
 * called at any time after the writer is opened and before it is finished; otherwise the result is
 * VOXPLAY_WRONG_STATE. */
voxplay_status voxplay_writer_set_notes(voxplay_writer* writer, const voxplay_notes* notes);

/* Writes count interleaved frames. After a failure the sound can only be abandoned. */
voxplay_status voxplay_writer_write_s16(voxplay_writer* writer, const int16_t* samples,
                                        size_t count);
voxplay_status voxplay_writer_write_s32(voxplay_writer* writer, const int32_t* samples,
                                        size_t count);
voxplay_status voxplay_writer_write_f32(voxplay_writer* writer, const float* samples, size_t count);

/* Writes what is left, and lets the file appear. A stream of KESTREL or HERON has at least one
 * frame: without any the result is VOXPLAY_UNSUPPORTED. After a failure nothing is open, and what
 * had the name before is as it was. */
voxplay_status voxplay_writer_finish(voxplay_writer* writer);
/* Removes what was written to a file; what was sent to an output stays there. */
void voxplay_writer_abandon(voxplay_writer* writer);

/* The notes that the last finished sound could not hold, or that readers take for something else,
 * one sentence each: "event 2 at frame 4800: an SP header holds no events". Notes are counted from
 * 1 in these sentences, unlike indexes. The count is 0 before voxplay_writer_finish. NULL for an
 * index outside the list. */
size_t voxplay_writer_lost_count(const voxplay_writer* writer);
const char* voxplay_writer_lost(const voxplay_writer* writer, size_t index);

/* ---- Probe ---------------------------------------------------------------------------------- */

typedef struct voxplay_kind {
  uint32_t container; /* VOXPLAY_CONTAINER_NONE when the bytes are none of ours */
  uint32_t codec;     /* VOXPLAY_CODEC_NONE when these bytes do not tell */
  uint32_t supported; /* 1 when this kind can be read, as far as these bytes tell */
} voxplay_kind;

/* Which format a file has whose first bytes are given; 4,096 of them are enough for all files but
 * WAV files with a large chunk before their format. Text gets one line for each test: what it
 * looked for, and what it found. Its length without the final zero is *length, whatever fits in
 * text_size; length may be NULL, and text may be NULL when text_size is 0. */
voxplay_status voxplay_probe(const void* bytes, size_t size, voxplay_kind* kind, size_t kind_size,
                             char* text, size_t text_size, size_t* length);

/* ---- Kestrel frames ------------------------------------------------------------------------- */

/* For streams without files: a frame is 20 ms of 16 kHz mono sound. Its words are numbers; files
 * have the low byte of each first. Encoders and decoders allocate nothing after they have been
 * made. */
#define VOXPLAY_KESTREL_FRAME 320 /* samples */
#define VOXPLAY_KESTREL_MAX_WORDS 40

typedef struct voxplay_kestrel_encoder voxplay_kestrel_encoder;
typedef struct voxplay_kestrel_decoder voxplay_kestrel_decoder;

/* The 16-bit words of a frame: bit_rate / 800. 0 for a rate that is not a multiple of 800 between
 * 4,800 and 32,000. */
size_t voxplay_kestrel_words(uint32_t bit_rate);

/* NULL for such a rate, too. */
voxplay_kestrel_encoder* voxplay_kestrel_encoder_new(uint32_t bit_rate);
void voxplay_kestrel_encoder_free(voxplay_kestrel_encoder* encoder);
/* Forgets the frames before. */
void voxplay_kestrel_encoder_reset(voxplay_kestrel_encoder* encoder);
/* Encodes 320 samples to voxplay_kestrel_words words. What is decoded lags by one frame: the second
 * frame of words gives the first frame of samples. */
voxplay_status voxplay_kestrel_encode(voxplay_kestrel_encoder* encoder, const int16_t* samples,
                                      uint16_t* words);

voxplay_kestrel_decoder* voxplay_kestrel_decoder_new(uint32_t bit_rate);
void voxplay_kestrel_decoder_free(voxplay_kestrel_decoder* decoder);
void voxplay_kestrel_decoder_reset(voxplay_kestrel_decoder* decoder);
/* Decodes the words of a frame to 320 samples. NULL words stand for a frame that was lost. In place
 * of a frame that was lost or is damaged, the last good one is repeated once, and after that there
 * is silence; the result is VOXPLAY_DAMAGED for a damaged one, and VOXPLAY_OK for a lost one. A
 * frame that the encoder had to cut off at its end may count as damaged, too. */
voxplay_status voxplay_kestrel_decode(voxplay_kestrel_decoder* decoder, const uint16_t* words,
                                      int16_t* samples);

#ifdef __cplusplus
}
#endif

#endif /* VOXPLAY_H */
