// SPDX-License-Identifier: Apache-2.0
#include "info/InfoJson.h"

#include <array>

#include "base/TimeText.h"
#include "info/FormatTests.h"
#include "marks/FourCharacters.h"
#include "sound/FormatText.h"
#include "sound/HeaderFields.h"

namespace tool {
namespace {

void Put(C_Json& json, const char* pszKey, std::uint64_t qwValue) {
  if (qwValue != 0) json[pszKey] = qwValue;
}

void PutLength(C_Json& json, std::uint64_t qwFrames, std::uint32_t dwRate) {
  if (qwFrames == kFramesUnknown) return;
  json["frames"] = qwFrames;
  json["seconds"] = SecondsOf(qwFrames, dwRate);
  json["length"] = ClockText(qwFrames, dwRate);
}

void PutFormat(C_Json& json, const S_SoundInfo& info) {
  json["format"] = info.strFormat;
  if (!info.ours) return;
  json["container"] = ContainerKey(info.ours->container);
  json["codec"] = CodecKey(info.ours->codec);
  Put(json, "bits_per_sample", info.ours->bits_per_sample);
  Put(json, "stored_bits", info.ours->stored_bits);
  Put(json, "bit_rate", info.ours->bit_rate);
}

C_Json StreamJson(const voxplay::Info& stream) {
  C_Json json;
  json["format"] = FormatText(stream);
  json["codec"] = CodecKey(stream.codec);
  Put(json, "bits_per_sample", stream.bits_per_sample);
  Put(json, "bit_rate", stream.bit_rate);
  json["sample_rate"] = stream.sample_rate;
  json["channels"] = stream.channels;
  PutLength(json, stream.frames, stream.sample_rate);
  return json;
}

C_Json HeadersJson(const voxplay::Headers& headers) {
  C_Json json = C_Json::object();
  for (const S_HeaderFields& header : HeaderFieldsOf(headers)) {
    for (const auto& field : header.fields) json[header.strKey][field.strKey] = field.dwValue;
  }
  return json;
}

C_Json ChunksJson(const std::vector<voxplay::ChunkPlace>& chunks) {
  C_Json json = C_Json::array();
  for (const voxplay::ChunkPlace& chunk : chunks) {
    json.push_back({{"id", FourCharacters(chunk.id)},
                    {"offset", chunk.offset},
                    {"size", chunk.size},
                    {"held", chunk.held}});
  }
  return json;
}

C_Json RowsOfKind(const C_Json& rows, const char* pszKind) {
  C_Json json = C_Json::array();
  for (const C_Json& row : rows) {
    if (row.at("kind") == pszKind) json.push_back(row);
  }
  return json;
}

void PutMarks(C_Json& json, const C_Json& rows) {
  struct S_List {
    const char* pszKey;
    const char* pszKind;
  };
  constexpr std::array kLists = {S_List{"events", "event"},   S_List{"silence", "silence"},
                                 S_List{"regions", "region"}, S_List{"cue_points", "cue"},
                                 S_List{"labels", "label"},   S_List{"notes", "note"},
                                 S_List{"texts", "text"},     S_List{"loops", "loop"}};
  for (const S_List& list : kLists) json[list.pszKey] = RowsOfKind(rows, list.pszKind);
}

C_Json SamplerJson(const voxplay::Sampler& sampler) {
  return {{"manufacturer", sampler.manufacturer},
          {"product", sampler.product},
          {"sample_period", sampler.sample_period},
          {"midi_unity_note", sampler.midi_unity_note},
          {"midi_pitch_fraction", sampler.midi_pitch_fraction},
          {"smpte_format", sampler.smpte_format},
          {"smpte_offset", sampler.smpte_offset},
          {"data_size", sampler.data_size}};
}

bool IsThere(const voxplay::Sampler& sampler) {
  return sampler.manufacturer != 0 || sampler.product != 0 || sampler.sample_period != 0 ||
         sampler.midi_unity_note != 0 || sampler.midi_pitch_fraction != 0 ||
         sampler.smpte_format != 0 || sampler.smpte_offset != 0 || sampler.data_size != 0;
}

C_Json Begin(const std::string& strPath) { return {{"schema", kJsonSchema}, {"file", strPath}}; }

}  // namespace

C_Json InfoJson(const S_SoundReport& report) {
  const S_SoundInfo& info = report.info;
  C_Json json = Begin(report.strPath);
  if (report.qwBytes) json["bytes"] = *report.qwBytes;
  PutFormat(json, info);
  json["sample_rate"] = info.dwRate;
  json["channels"] = info.dwChannels;
  PutLength(json, info.qwFrames, info.dwRate);
  if (report.qwDamaged) json["damaged_frames"] = *report.qwDamaged;
  json["cut"] = report.bCut;
  json["has_stream"] = info.ours && info.ours->has_stream != 0;
  if (report.stream) json["stream"] = StreamJson(*report.stream);
  json["headers"] = HeadersJson(info.headers.value_or(voxplay::Headers{}));
  PutMarks(json, report.marks);
  if (IsThere(report.sampler)) json["sampler"] = SamplerJson(report.sampler);
  json["chunks"] = ChunksJson(info.chunks);
  return json;
}

C_Json InfoJsonOfFailure(const std::string& strPath, const std::string& strWhy) {
  C_Json json = Begin(strPath);
  json["error"] = strWhy;
  const auto lines = FormatTests(strPath);
  if (!lines.empty()) json["tests"] = lines;
  return json;
}

}  // namespace tool
