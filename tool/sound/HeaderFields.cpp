// SPDX-License-Identifier: Apache-2.0
#include "sound/HeaderFields.h"

namespace tool {

std::vector<S_HeaderFields> HeaderFieldsOf(const voxplay::Headers& headers) {
  std::vector<S_HeaderFields> list;
  if (headers.has_sp != 0) {
    list.push_back({"SP header",
                    "sp",
                    {{"version", headers.sp_version},
                     {"identifier", headers.sp_identifier},
                     {"format", headers.sp_format},
                     {"sample_rate", headers.sp_sample_rate},
                     {"value_30", headers.sp_value_30},
                     {"value_34", headers.sp_value_34},
                     {"value_36", headers.sp_value_36},
                     {"value_37", headers.sp_value_37}}});
  }
  if (headers.has_head != 0) {
    list.push_back({"codec head",
                    "codec_head",
                    {{"type", headers.head_type},
                     {"sample_rate", headers.head_sample_rate},
                     {"version", headers.head_version}}});
  }
  if (headers.has_vafm != 0) {
    list.push_back({"vafm chunk",
                    "vafm",
                    {{"version", headers.vafm_version},
                     {"type", headers.vafm_type},
                     {"sample_rate", headers.vafm_sample_rate},
                     {"bit_rate", headers.vafm_bit_rate},
                     {"channels", headers.vafm_channels},
                     {"platform", headers.vafm_platform}}});
  }
  return list;
}

}  // namespace tool
