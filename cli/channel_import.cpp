#include "channel_import.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <optional>

#include <fmt/format.h>

#include "base/path_helpers.h"
#include "command_session.h"
#include "messages.h"
#include "profile/channel_file.h"

namespace velmora::cli {
namespace {

namespace fs = std::filesystem;

// The recognised files of a folder in name order, or the one file named.
std::vector<std::string> ChannelFilesOf(const std::string& argument) {
  if (!fs::is_directory(argument)) return {argument};
  std::vector<std::string> found;
  std::error_code ec;
  for (const auto& entry : fs::directory_iterator(argument, ec))
    if (entry.is_regular_file() && DetectChannelFormat(entry.path().string()) != ChannelFormat::None)
      found.push_back(entry.path().string());
  std::sort(found.begin(), found.end());
  return found;
}

std::string Joined(const std::vector<std::string>& items, const char* separator) {
  std::string text;
  for (const std::string& item : items) text += (text.empty() ? "" : separator) + item;
  return text;
}

std::string HeaderIriText(const ChannelFile& file) {
  std::vector<std::string> iris;
  for (const auto& [key, value] : file.HeaderIris()) iris.push_back(key + " " + value);
  return iris.empty() ? "-" : Joined(iris, ", ");
}

void PrintFoundTable(const RunContext& run, const std::vector<ChannelFile>& files) {
  run.Say(Tr("file\tformat\tchannels\theight units\tdistance unit\tpitch (m)\tsamples\tlength (m)\theader IRI"));
  for (const ChannelFile& file : files)
    run.Say(fmt::format("{}\t{}\t{}\t{}\t{}\t{:.6f}\t{}\t{:.3f}\t{}", file.Path, file.Format,
                        Joined(file.ChannelNames, " "), Joined(file.HeightUnits, " "), file.DistanceUnit, file.Pitch,
                        file.SampleCount(), file.Length(), HeaderIriText(file)));
}

std::optional<std::int32_t> ChannelNumber(const std::string& text) {
  std::int32_t number = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (ec != std::errc() || end != text.data() + text.size() || number < 1) return std::nullopt;
  return number;
}

}  // namespace

bool IsChannelImport(const std::string& argument) {
  return fs::is_directory(argument) || DetectChannelFormat(argument) != ChannelFormat::None;
}

int RunChannelImport(const CommonOptions& common, const std::string& argument, const std::string& channel) {
  RunContext& run = *common.Run;
  std::optional<std::int32_t> chosen;
  if (channel != "all") {
    chosen = ChannelNumber(channel);
    if (!chosen) {
      PrintProblem(run, "--channel", Tr("must be \"all\" or a channel number from 1"));
      return kExitUsage;
    }
  }
  const std::vector<std::string> paths = ChannelFilesOf(argument);
  if (paths.empty()) {
    PrintProblem(run, argument, Tr("no ERD or PRO profile file in this folder"));
    return kExitFailed;
  }
  run.Inputs = paths;
  std::vector<ChannelFile> files;
  std::vector<std::vector<std::int32_t>> channels;
  for (const std::string& path : paths) {
    try {
      files.push_back(ReadChannelFile(path));
      channels.push_back(ChosenChannels(files.back(), chosen));
    } catch (const ChannelFileError& error) {
      PrintProblem(run, fmt::format("{}:{}", error.Path(), error.Line()), TrEngine(error.Problem()));
      return kExitFailed;
    } catch (const LegacyError& error) {  // a file that cannot be read: the text names it
      PrintProblem(run, "", TrEngine(error.what()));
      return kExitFailed;
    }
  }
  PrintFoundTable(run, files);

  auto session = OpenSession(common, {}, workbench::tab::Profile);
  if (!session) return kExitFailed;
  run.Inputs = paths;  // again: the session set the inputs to the files it registered, none
  const std::vector<std::string> written = WriteChannelProfiles(session->Engine, files, channels, session->Bench.List());
  if (!session->Bench.RegisterFiles(written, false)) return kExitFailed;
  std::size_t next = 0;
  for (std::size_t f = 0; f < files.size(); ++f)
    for (std::int32_t c : channels[f]) {
      const std::string& file = written[next++];
      nlohmann::json header = nlohmann::json::object();
      for (const auto& [key, value] : files[f].Info) header[key] = value;
      run.Result({{"file", flGetFileName(file)}, {"source", files[f].Path}, {"channel", c},
                  {"channel_name", files[f].ChannelNames[c - 1]}, {"samples", files[f].SampleCount()},
                  {"pitch_m", files[f].Pitch}, {"header", header}});
      // The profiles were written into the scratch tree's Temp: a move within the tree.
      fs::rename(file, run.Staging() / flGetFileName(file));
    }
  return kExitOk;
}

}  // namespace velmora::cli
