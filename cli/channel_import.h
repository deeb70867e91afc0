#pragma once
// velmora import of files as road profilers write them (multi-channel ERD, Texas .PRO): one profile
// per wheel path, in mm and m, written to -o. A folder imports all such files in it at once.
#include <string>

#include "command_registry.h"

namespace velmora::cli {

// True for a folder, and for a file whose content is a profiler's ERD or .PRO file (the delimited
// text import takes every other file).
bool IsChannelImport(const std::string& argument);

// Reads every file first (any fault stops the run before anything is registered), prints one line
// per file (channels, units, pitch, length, header IRIs), then registers the channels asked for by
// `channel` ("all" or a number from 1). The exit status.
int RunChannelImport(const CommonOptions& common, const std::string& argument, const std::string& channel);

}  // namespace velmora::cli
