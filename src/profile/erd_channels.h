#pragma once
// ERD files as profilers write them (the public ERDFILEV2.00 layout): one to three channels side by
// side on each data line, heights and distances in the units of UNITSNAM and XUNITS, an optional
// SCALFACT per channel, and the profiler's own header lines (DATE, IRILWP, ...) kept as information.
#include <string>
#include <string_view>

#include "profile/channel_file.h"

namespace velmora {

// Reads the text ERD (format code 5) in `bytes`, the content of `path`. Heights come out in mm
// (value × SCALFACT × unit), the pitch in m. Raises ChannelFileError naming the line and what is
// wrong: a channel count outside 1-3, another format code, a pitch not above 0, an unknown unit, a
// line whose values do not match the channels, a value that is not a finite number, or a sample
// count on line 2 that disagrees with the data.
ChannelFile ReadErdChannels(const std::string& path, std::string_view bytes);

}  // namespace velmora
