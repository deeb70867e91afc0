#include "profile/profile_export.h"

#include <algorithm>
#include <filesystem>

#include "base/file_helpers.h"
#include "base/legacy_format.h"
#include "base/path_helpers.h"
#include "base/session.h"
#include "base/settings.h"
#include "base/text_encoding.h"
#include "profile/erd_file.h"
#include "profile/profile_list.h"

namespace velmora {
namespace {

std::ptrdiff_t SampleCount(const ErdRecord& rec) {
  return std::clamp<std::ptrdiff_t>(rec.NumSamples, 0, rec.Elevation.size());
}

}  // namespace

std::vector<std::string> ProfileCsvLines(const std::vector<const ErdRecord*>& records) {
  std::vector<std::vector<std::string>> headers;
  std::ptrdiff_t longest = 0;
  for (const ErdRecord* rec : records) {
    headers.push_back(ErdHeaderLines(*rec));
    longest = std::max(longest, SampleCount(*rec));
  }
  std::vector<std::string> lines;
  lines.reserve(static_cast<std::size_t>(longest) + 11);
  for (std::size_t row = 0; row < 11; ++row) {
    std::string line;
    for (std::size_t c = 0; c < headers.size(); ++c) {
      if (c > 0) line += ',';
      line += uQuote(headers[c][row]);
    }
    lines.push_back(std::move(line));
  }
  for (std::ptrdiff_t i = 1; i <= longest; ++i) {
    std::string line;
    for (std::size_t c = 0; c < records.size(); ++c) {
      if (c > 0) line += ',';
      if (i <= SampleCount(*records[c])) line += FormatNumber(records[c]->Elevation[i], "0.00000000");
    }
    lines.push_back(std::move(line));
  }
  return lines;
}

std::vector<std::string> WriteProfileCsv(Session& session, const std::string& path, const std::vector<const ErdRecord*>& records) {
  // The limit keeps a file within what a spreadsheet opens comfortably; rather than drop profiles,
  // the rest go on into further files.
  const std::size_t limit = session.Settings.CsvProfileLimit > 0 ? static_cast<std::size_t>(session.Settings.CsvProfileLimit)
                                                           : records.size();
  std::vector<std::string> written;
  for (std::size_t first = 0; first < records.size(); first += limit) {
    const std::size_t last = std::min(records.size(), first + limit);
    const std::vector<const ErdRecord*> part(records.begin() + static_cast<std::ptrdiff_t>(first),
                                             records.begin() + static_cast<std::ptrdiff_t>(last));
    std::string target = path;
    if (first > 0) {
      const std::filesystem::path p(path);
      target = (p.parent_path() / uFreeName(p.parent_path().string(), p.stem().string(), flGetExtension(path))).string();
    }
    WriteSystemTextFile(target, ProfileCsvLines(part));
    written.push_back(target);
  }
  return written;
}

std::vector<std::string> ExportProfilesAsErd(const std::string& folder, const std::vector<const ProfileRecord*>& profiles) {
  std::vector<std::string> written;
  for (const ProfileRecord* profile : profiles) {
    const std::string path = flAddDirSep(folder) + uFreeName(folder, ProfileList::NameOf(*profile), "ERD");
    WriteERD(path, profile->Erd);
    written.push_back(path);
  }
  return written;
}

}  // namespace velmora
