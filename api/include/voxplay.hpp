// SPDX-License-Identifier: Apache-2.0
//
// voxplay.h for C++20: objects that end themselves, spans, ranges and one exception. It is a header
// alone, and does nothing that voxplay.h does not do; what is said there about frames, samples,
// rates and threads holds here as well.
//
//     voxplay::Reader reader("speech.kst");
//     std::vector<float> samples(1024 * reader.info().channels);
//     while (const std::size_t frames = reader.read(std::span(samples))) play(samples, frames);
//     for (const voxplay::Event event : reader.notes().events()) show(event.frame);
//
// Objects can be moved, not copied (Notes can be copied). An object that was moved from may only be
// assigned to or destroyed. Views and the texts in records stay valid as long as voxplay.h says.
//
// Where something fails, an Error is thrown: its what() is the sentence of the object. The other
// exception is std::bad_alloc, when there is no memory for an object. Destructors throw nothing.
#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <new>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "voxplay.h"

namespace voxplay {

using Info = voxplay_info;
using Headers = voxplay_headers;
using ChunkPlace = voxplay_chunk_place;
using Format = voxplay_format;
using Event = voxplay_event;
using Range = voxplay_range;
using Cue = voxplay_cue;
using Label = voxplay_label;
using RegionText = voxplay_region_text;
using Loop = voxplay_loop;
using Sampler = voxplay_sampler;
using Chunk = voxplay_chunk;

// What could not be done, and why.
class Error : public std::runtime_error {
 public:
  Error(voxplay_status status, const char* sentence)
      : std::runtime_error(*sentence != '\0' ? sentence : voxplay_status_text(status)),
        status_(status) {}
  [[nodiscard]] voxplay_status status() const noexcept { return status_; }

 private:
  voxplay_status status_;
};

namespace detail {

inline void check(voxplay_status status, const char* sentence = "") {
  if (status == VOXPLAY_NO_MEMORY) throw std::bad_alloc();
  if (status != VOXPLAY_OK) throw Error(status, sentence);
}

struct Free {
  void operator()(voxplay_reader* object) const noexcept { voxplay_reader_free(object); }
  void operator()(voxplay_writer* object) const noexcept { voxplay_writer_free(object); }
  void operator()(voxplay_notes* object) const noexcept { voxplay_notes_free(object); }
  void operator()(voxplay_kestrel_encoder* object) const noexcept {
    voxplay_kestrel_encoder_free(object);
  }
  void operator()(voxplay_kestrel_decoder* object) const noexcept {
    voxplay_kestrel_decoder_free(object);
  }
};
template <typename Object>
using Owned = std::unique_ptr<Object, Free>;

template <typename Object>
Owned<Object> owned(Object* object) {
  if (object == nullptr) throw std::bad_alloc();
  return Owned<Object>(object);
}

// One function per kind of record: fetches the record at an index.
inline void get(const voxplay_notes* notes, voxplay_note_kind, std::size_t index, Event& out) {
  check(voxplay_notes_event(notes, index, &out, sizeof out));
}
inline void get(const voxplay_notes* notes, voxplay_note_kind kind, std::size_t index, Range& out) {
  check(voxplay_notes_range(notes, kind, index, &out, sizeof out));
}
inline void get(const voxplay_notes* notes, voxplay_note_kind, std::size_t index, Cue& out) {
  check(voxplay_notes_cue(notes, index, &out, sizeof out));
}
inline void get(const voxplay_notes* notes, voxplay_note_kind, std::size_t index, Label& out) {
  check(voxplay_notes_label(notes, index, &out, sizeof out));
}
inline void get(const voxplay_notes* notes, voxplay_note_kind, std::size_t index, RegionText& out) {
  check(voxplay_notes_region_text(notes, index, &out, sizeof out));
}
inline void get(const voxplay_notes* notes, voxplay_note_kind, std::size_t index, Loop& out) {
  check(voxplay_notes_loop(notes, index, &out, sizeof out));
}
inline void get(const voxplay_notes* notes, voxplay_note_kind, std::size_t index, Chunk& out) {
  check(voxplay_notes_chunk(notes, index, &out, sizeof out));
}

}  // namespace detail

// The records of one kind, as a range that gives them by value.
template <typename Record>
class Records {
 public:
  class iterator {
   public:
    using iterator_concept = std::random_access_iterator_tag;
    using iterator_category = std::input_iterator_tag;
    using value_type = Record;
    using difference_type = std::ptrdiff_t;
    using reference = Record;
    using pointer = void;

    iterator() = default;
    Record operator*() const { return records_[static_cast<std::size_t>(index_)]; }
    Record operator[](difference_type n) const { return *(*this + n); }
    iterator& operator++() { return *this += 1; }
    iterator& operator--() { return *this -= 1; }
    iterator operator++(int) { return std::exchange(*this, *this + 1); }
    iterator operator--(int) { return std::exchange(*this, *this - 1); }
    iterator& operator+=(difference_type n) {
      index_ += n;
      return *this;
    }
    iterator& operator-=(difference_type n) { return *this += -n; }
    friend iterator operator+(iterator it, difference_type n) { return it += n; }
    friend iterator operator+(difference_type n, iterator it) { return it += n; }
    friend iterator operator-(iterator it, difference_type n) { return it -= n; }
    friend difference_type operator-(const iterator& a, const iterator& b) {
      return a.index_ - b.index_;
    }
    friend bool operator==(const iterator& a, const iterator& b) { return a.index_ == b.index_; }
    friend auto operator<=>(const iterator& a, const iterator& b) { return a.index_ <=> b.index_; }

   private:
    friend class Records;
    iterator(const Records& records, difference_type index) : records_(records), index_(index) {}

    Records records_;
    difference_type index_ = 0;
  };

  Records() = default;
  Records(const voxplay_notes* notes, voxplay_note_kind kind) : notes_(notes), kind_(kind) {}

  [[nodiscard]] std::size_t size() const noexcept { return voxplay_notes_count(notes_, kind_); }
  [[nodiscard]] bool empty() const noexcept { return size() == 0; }
  // Throws Error for an index outside the range.
  [[nodiscard]] Record operator[](std::size_t index) const {
    Record record{};
    detail::get(notes_, kind_, index, record);
    return record;
  }
  [[nodiscard]] iterator begin() const { return iterator(*this, 0); }
  [[nodiscard]] iterator end() const {
    return iterator(*this, static_cast<std::ptrdiff_t>(size()));
  }

 private:
  const voxplay_notes* notes_ = nullptr;
  voxplay_note_kind kind_ = VOXPLAY_NOTE_EVENT;
};

// Notes that belong to somebody else. Without any, all ranges are empty.
class NotesView {
 public:
  NotesView() = default;
  explicit NotesView(const voxplay_notes* notes) : notes_(notes) {}

  [[nodiscard]] const voxplay_notes* get() const noexcept { return notes_; }
  [[nodiscard]] Records<Event> events() const { return {notes_, VOXPLAY_NOTE_EVENT}; }
  [[nodiscard]] Records<Range> silence() const { return {notes_, VOXPLAY_NOTE_SILENCE}; }
  [[nodiscard]] Records<Range> regions() const { return {notes_, VOXPLAY_NOTE_REGION}; }
  [[nodiscard]] Records<Cue> cues() const { return {notes_, VOXPLAY_NOTE_CUE}; }
  [[nodiscard]] Records<Label> labels() const { return {notes_, VOXPLAY_NOTE_LABEL}; }
  [[nodiscard]] Records<RegionText> region_texts() const {
    return {notes_, VOXPLAY_NOTE_REGION_TEXT};
  }
  [[nodiscard]] Records<Loop> loops() const { return {notes_, VOXPLAY_NOTE_LOOP}; }
  [[nodiscard]] Records<Chunk> chunks() const { return {notes_, VOXPLAY_NOTE_CHUNK}; }
  [[nodiscard]] Sampler sampler() const {
    Sampler sampler{};
    if (notes_ != nullptr) {
      detail::check(voxplay_notes_sampler(notes_, &sampler, sizeof sampler));
    }
    return sampler;
  }

 private:
  const voxplay_notes* notes_ = nullptr;
};

// Notes of the program's own.
class Notes {
 public:
  Notes() : notes_(detail::owned(voxplay_notes_new())) {}
  // Copies; a view of nothing gives empty notes.
  explicit Notes(const NotesView& notes)
      : notes_(detail::owned(notes.get() != nullptr ? voxplay_notes_copy(notes.get())
                                                    : voxplay_notes_new())) {}
  Notes(const Notes& other) : Notes(other.view()) {}
  Notes& operator=(const Notes& other) {
    if (this != &other) notes_ = Notes(other).notes_;
    return *this;
  }
  Notes(Notes&&) noexcept = default;
  Notes& operator=(Notes&&) noexcept = default;
  ~Notes() = default;

  [[nodiscard]] NotesView view() const noexcept { return NotesView(notes_.get()); }
  // The same, where a view is wanted.
  operator NotesView() const noexcept { return view(); }  // NOLINT(google-explicit-constructor)

  void add(const Event& event) {
    detail::check(voxplay_notes_add_event(notes_.get(), &event, sizeof event));
  }
  void add(const Cue& cue) {
    detail::check(voxplay_notes_add_cue(notes_.get(), &cue, sizeof cue));
  }
  void add(const Label& label) {
    detail::check(voxplay_notes_add_label(notes_.get(), &label, sizeof label));
  }
  void add(const RegionText& text) {
    detail::check(voxplay_notes_add_region_text(notes_.get(), &text, sizeof text));
  }
  void add(const Loop& loop) {
    detail::check(voxplay_notes_add_loop(notes_.get(), &loop, sizeof loop));
  }
  void add(const Chunk& chunk) {
    detail::check(voxplay_notes_add_chunk(notes_.get(), &chunk, sizeof chunk));
  }
  void add_silence(const Range& range) { add_range(VOXPLAY_NOTE_SILENCE, range); }
  void add_region(const Range& range) { add_range(VOXPLAY_NOTE_REGION, range); }
  void set_sampler(const Sampler& sampler) {
    detail::check(voxplay_notes_set_sampler(notes_.get(), &sampler, sizeof sampler));
  }
  void remove(voxplay_note_kind kind, std::size_t index) {
    detail::check(voxplay_notes_remove(notes_.get(), kind, index));
  }
  void clear(voxplay_note_kind kind) { detail::check(voxplay_notes_clear(notes_.get(), kind)); }

 private:
  void add_range(voxplay_note_kind kind, const Range& range) {
    detail::check(voxplay_notes_add_range(notes_.get(), kind, &range, sizeof range));
  }

  detail::Owned<voxplay_notes> notes_;
};

// Samples that readers and writers exchange.
template <typename T>
concept Sample =
    std::same_as<T, std::int16_t> || std::same_as<T, std::int32_t> || std::same_as<T, float>;

// An open sound.
class Reader {
 public:
  // A file.
  explicit Reader(const std::string& path, std::uint32_t flags = 0) {
    check(voxplay_reader_open_file(reader_.get(), path.c_str(), flags));
    channels_ = info().channels;
  }
  // Bytes in memory, which must outlive the object.
  explicit Reader(std::span<const std::byte> bytes, std::uint32_t flags = 0) {
    check(voxplay_reader_open_memory(reader_.get(), bytes.data(), bytes.size(), flags));
    channels_ = info().channels;
  }
  // Functions, whose user pointer must outlive the object. They must not throw.
  explicit Reader(const voxplay_input& input, std::uint32_t flags = 0) {
    check(voxplay_reader_open_input(reader_.get(), &input, flags));
    channels_ = info().channels;
  }

  [[nodiscard]] Info info() const {
    Info info{};
    check(voxplay_reader_info(reader_.get(), &info, sizeof info));
    return info;
  }
  [[nodiscard]] Headers headers() const {
    Headers headers{};
    check(voxplay_reader_headers(reader_.get(), &headers, sizeof headers));
    return headers;
  }
  // Where the chunks of a RIFF file stand, in its order; none for files of other containers.
  [[nodiscard]] std::vector<ChunkPlace> chunk_places() const {
    std::vector<ChunkPlace> places(voxplay_reader_chunk_count(reader_.get()));
    for (std::size_t n = 0; n < places.size(); ++n) {
      check(voxplay_reader_chunk(reader_.get(), n, &places[n], sizeof places[n]));
    }
    return places;
  }
  // The reader's own.
  [[nodiscard]] NotesView notes() const noexcept {
    return NotesView(voxplay_reader_notes(reader_.get()));
  }

  // Reads as many whole frames as fit in samples, and returns their number; 0 only at the end, and
  // when not even one fits. When it throws, the frames before the place of the failure are lost to
  // the caller; voxplay.h tells them.
  template <Sample T>
  std::size_t read(std::span<T> samples) {
    std::size_t done = 0;
    check(read(samples.data(), samples.size() / channels_, &done));
    return done;
  }
  void seek(std::uint64_t frame) { check(voxplay_reader_seek(reader_.get(), frame)); }
  [[nodiscard]] std::uint64_t tell() const noexcept { return voxplay_reader_tell(reader_.get()); }

  [[nodiscard]] voxplay_reader* get() const noexcept { return reader_.get(); }

 private:
  void check(voxplay_status status) const {
    detail::check(status, voxplay_reader_message(reader_.get()));
  }
  voxplay_status read(std::int16_t* samples, std::size_t count, std::size_t* done) {
    return voxplay_reader_read_s16(reader_.get(), samples, count, done);
  }
  voxplay_status read(std::int32_t* samples, std::size_t count, std::size_t* done) {
    return voxplay_reader_read_s32(reader_.get(), samples, count, done);
  }
  voxplay_status read(float* samples, std::size_t count, std::size_t* done) {
    return voxplay_reader_read_f32(reader_.get(), samples, count, done);
  }

  detail::Owned<voxplay_reader> reader_ = detail::owned(voxplay_reader_new());
  std::size_t channels_ = 1;
};

// A sound that is being written. Without finish() it is abandoned at the end.
class Writer {
 public:
  // Is told the frames that are done and the frames of all, 0 while that is not known. False
  // cancels. It must not throw, nor call functions of the writer.
  using Progress = std::function<bool(std::uint64_t done, std::uint64_t all)>;

  Writer(const std::string& path, const Format& format) : Writer(format) {
    check(voxplay_writer_open_file(writer_.get(), path.c_str(), &format, sizeof format));
  }
  // Functions, whose user pointer must outlive the object. They must not throw.
  Writer(const voxplay_output& output, const Format& format) : Writer(format) {
    check(voxplay_writer_open_output(writer_.get(), &output, &format, sizeof format));
  }

  void on_progress(Progress progress) {
    auto next = std::make_unique<Progress>(std::move(progress));
    check(voxplay_writer_on_progress(writer_.get(), *next ? &call_progress : nullptr, next.get()));
    progress_ = std::move(next);
  }
  void set_notes(const NotesView& notes) {
    check(voxplay_writer_set_notes(writer_.get(), notes.get()));
  }
  // samples holds whole frames.
  template <typename T>
    requires Sample<std::remove_const_t<T>>
  void write(std::span<T> samples) {
    if (samples.size() % channels_ != 0) detail::check(VOXPLAY_BAD_ARGUMENT);
    check(write(samples.data(), samples.size() / channels_));
  }
  // Lets the sound appear.
  void finish() { check(voxplay_writer_finish(writer_.get())); }
  // After that: the sentences on notes that it does not hold.
  [[nodiscard]] std::vector<std::string> lost() const {
    std::vector<std::string> lost;
    for (std::size_t n = 0; n < voxplay_writer_lost_count(writer_.get()); ++n) {
      lost.emplace_back(voxplay_writer_lost(writer_.get(), n));
    }
    return lost;
  }
  void abandon() noexcept { voxplay_writer_abandon(writer_.get()); }

  [[nodiscard]] voxplay_writer* get() const noexcept { return writer_.get(); }

 private:
  explicit Writer(const Format& format)
      : writer_(detail::owned(voxplay_writer_new())),
        channels_(format.channels == 0 ? 1 : format.channels) {}

  static int call_progress(void* user, std::uint64_t done, std::uint64_t all) {
    return (*static_cast<Progress*>(user))(done, all) ? 0 : 1;
  }
  void check(voxplay_status status) const {
    detail::check(status, voxplay_writer_message(writer_.get()));
  }
  voxplay_status write(const std::int16_t* samples, std::size_t count) {
    return voxplay_writer_write_s16(writer_.get(), samples, count);
  }
  voxplay_status write(const std::int32_t* samples, std::size_t count) {
    return voxplay_writer_write_s32(writer_.get(), samples, count);
  }
  voxplay_status write(const float* samples, std::size_t count) {
    return voxplay_writer_write_f32(writer_.get(), samples, count);
  }

  std::unique_ptr<Progress> progress_;  // outlives the writer, which calls it
  detail::Owned<voxplay_writer> writer_;
  std::size_t channels_;
};

// What first bytes of a file are.
struct Probe {
  voxplay_kind kind{};
  std::string text;  // one line per test
};
inline Probe probe(std::span<const std::byte> bytes) {
  Probe result;
  std::size_t length = 0;
  detail::check(voxplay_probe(bytes.data(), bytes.size(), &result.kind, sizeof result.kind, nullptr,
                              0, &length));
  result.text.resize(length);
  detail::check(voxplay_probe(bytes.data(), bytes.size(), &result.kind, sizeof result.kind,
                              result.text.data(), length + 1, &length));
  return result;
}

// Why a format cannot be written; empty when it can.
inline std::string problem(const Format& format) {
  char text[256] = "";
  static_cast<void>(voxplay_format_check(&format, sizeof format, text, sizeof text));
  return text;
}

namespace kestrel {

inline constexpr std::size_t kFrame = VOXPLAY_KESTREL_FRAME;  // samples

// Encodes frames of a stream.
class Encoder {
 public:
  // Throws Error for a rate that is not a multiple of 800 between 4,800 and 32,000.
  explicit Encoder(std::uint32_t bit_rate) : words_(voxplay_kestrel_words(bit_rate)) {
    if (words_ == 0) detail::check(VOXPLAY_BAD_ARGUMENT);
    encoder_ = detail::owned(voxplay_kestrel_encoder_new(bit_rate));
  }
  [[nodiscard]] std::size_t words() const noexcept { return words_; }
  // frame has room for words() words.
  void encode(std::span<const std::int16_t, kFrame> samples, std::span<std::uint16_t> frame) {
    if (frame.size() < words_) detail::check(VOXPLAY_BAD_ARGUMENT);
    detail::check(voxplay_kestrel_encode(encoder_.get(), samples.data(), frame.data()));
  }
  void reset() noexcept { voxplay_kestrel_encoder_reset(encoder_.get()); }

 private:
  std::size_t words_;
  detail::Owned<voxplay_kestrel_encoder> encoder_;
};

// Decodes frames of a stream.
class Decoder {
 public:
  explicit Decoder(std::uint32_t bit_rate) : words_(voxplay_kestrel_words(bit_rate)) {
    if (words_ == 0) detail::check(VOXPLAY_BAD_ARGUMENT);
    decoder_ = detail::owned(voxplay_kestrel_decoder_new(bit_rate));
  }
  [[nodiscard]] std::size_t words() const noexcept { return words_; }
  // False for a damaged frame, which is concealed. frame holds words() words.
  bool decode(std::span<const std::uint16_t> frame, std::span<std::int16_t, kFrame> samples) {
    if (frame.size() < words_) detail::check(VOXPLAY_BAD_ARGUMENT);
    const voxplay_status status =
        voxplay_kestrel_decode(decoder_.get(), frame.data(), samples.data());
    if (status == VOXPLAY_DAMAGED) return false;
    detail::check(status);
    return true;
  }
  // Conceals a frame that was lost.
  void decode_lost(std::span<std::int16_t, kFrame> samples) {
    detail::check(voxplay_kestrel_decode(decoder_.get(), nullptr, samples.data()));
  }
  void reset() noexcept { voxplay_kestrel_decoder_reset(decoder_.get()); }

 private:
  std::size_t words_;
  detail::Owned<voxplay_kestrel_decoder> decoder_;
};

}  // namespace kestrel
}  // namespace voxplay
