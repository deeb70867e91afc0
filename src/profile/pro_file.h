#pragma once
// Texas-style profile files (.PRO, as Dynatest profilers write them for TxDOT): five header lines,
//   HEAD3,<date>,...            run identification
//   CMET3,<profiler>,...        the instrument
//   <maker>,<height unit>,<channel letters>,<interval>,<interval unit>   e.g. "Dynatest,mil,LR,3,i"
//   <GPS line>
//   <comment>
// then one line per sample: one height per channel, then a flag and, on some lines, GPS fields.
#include <string>
#include <string_view>

#include "profile/channel_file.h"

namespace velmora {

// Reads the .PRO text in `bytes`, the content of `path`: heights in mm, the pitch (the interval) in m,
// one channel per letter of the channel field ("LR": left, right). Raises ChannelFileError naming the
// line: a short header, 0 or more than 3 channels, an unknown unit, an interval not above 0, a data
// line with fewer values than channels, or a value that is not a finite number.
ChannelFile ReadProFile(const std::string& path, std::string_view bytes);

}  // namespace velmora
