#pragma once
// A profile file as road profilers write it: one to three wheel paths side by side (left, right, and
// sometimes centre), heights and distances in the profiler's units. The readers (erd_channels.h,
// pro_file.h) give every channel in mm and the pitch in m, so that each channel can be registered as
// an ordinary one-channel profile. This path is separate from the program's own ERD reader, which
// stays as it is.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/legacy_error.h"
#include "base/session.h"
#include "profile/profile_list.h"
#include "profile/profile_record.h"

namespace velmora {

struct ChannelFile {
  std::string Path;
  std::string Format;                     // "ERD" or "PRO"
  std::string Title;                      // the run's title as the file gives it; may be empty
  std::vector<std::string> ChannelNames;  // as the file names them ("LElev.", "L"); one per channel
  std::vector<std::string> HeightUnits;   // as written, one per channel
  std::string DistanceUnit;               // as written
  double Pitch = 0;                       // m
  std::int32_t ChannelLine = 0;           // the line that declares the channels, for errors about them
  std::vector<std::vector<double>> Heights;  // mm, [channel][sample], all of one length
  std::vector<std::pair<std::string, std::string>> Info;  // other header lines: key, value

  std::int32_t ChannelCount() const { return static_cast<std::int32_t>(Heights.size()); }
  std::int32_t SampleCount() const { return Heights.empty() ? 0 : static_cast<std::int32_t>(Heights[0].size()); }
  double Length() const { return SampleCount() > 1 ? (SampleCount() - 1) * Pitch : 0.0; }  // m
  // The header values whose key starts with "IRI" (IRILWP, IRIRWP, ...), in file order.
  std::vector<std::pair<std::string, std::string>> HeaderIris() const;
};

// What is wrong with a profile file, where. `Problem` is the engine's (Japanese) text.
class ChannelFileError : public LegacyError {
 public:
  ChannelFileError(std::string path, std::int32_t line, std::string problem);
  const std::string& Path() const { return path_; }
  std::int32_t Line() const { return line_; }
  const std::string& Problem() const { return problem_; }

 private:
  std::string path_;
  std::int32_t line_;
  std::string problem_;
};

// Millimetres per height unit and metres per distance unit; nothing for a unit not known. Known:
// ft (feet, f), in (inch, inches, i), mil (mils, 0.001 in), mm, cm, m; case is ignored.
std::optional<double> MillimetresPer(std::string_view unit);
std::optional<double> MetresPer(std::string_view unit);

// "L", "R" or "C" when a channel's name says which wheel path it is ("LElev.", "Left", "R", "CWP"),
// else empty.
std::string WheelPath(std::string_view channelName);

// The lines of a file's bytes; CR LF, LF and a lone CR each end a line.
std::vector<std::string_view> FileLines(std::string_view bytes);
// The sample values of one data line: fields split at blanks, tabs and commas.
std::vector<std::string_view> DataFields(std::string_view line);
// One field as a finite number, else a ChannelFileError at `line` ("is not a number", "is not finite").
double ParseField(std::string_view field, const std::string& path, std::int32_t line);

enum class ChannelFormat { None, Erd, Pro };
// The format by the file's first line: "ERDFILEV2.00" or a Texas-style "HEAD" line. Unreadable or
// neither: None.
ChannelFormat DetectChannelFormat(const std::string& path);

// Reads a file of a recognised format. Raises ChannelFileError (file, line, what) for bad content and
// LegacyError for a file that cannot be read.
ChannelFile ReadChannelFile(const std::string& path);

// The channels to register, 1-based: all (no `channel`) or the one asked for; a channel the file
// does not have raises ChannelFileError at the line that declares them.
std::vector<std::int32_t> ChosenChannels(const ChannelFile& file, std::optional<std::int32_t> channel);

// Channel `channel` (1-based) as the program's one-channel record: mm, m, the source in the title.
ErdRecord ChannelRecord(const ChannelFile& file, std::int32_t channel);
// The profile's name: the file's name with "_L", "_R" or "_C" when the channel names say so and
// tell the channels apart, else with "_1", "_2", ... by position.
std::string ChannelProfileName(const ChannelFile& file, std::int32_t channel);

// Writes each chosen channel as an ERD file into TempPath under its profile name, made free of the
// names in `list` and of those written before in the same call; the paths in order.
std::vector<std::string> WriteChannelProfiles(Session& session, const std::vector<ChannelFile>& files,
                                              const std::vector<std::vector<std::int32_t>>& channels,
                                              const ProfileList& list);

}  // namespace velmora
