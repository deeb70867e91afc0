#include "report/result_files.h"

#include <functional>
#include <string>

#include "base/file_export_name.h"
#include "base/legacy_error.h"
#include "base/path_helpers.h"
#include "base/settings_io.h"
#include "base/text_encoding.h"
#include "profile/erd_file.h"
#include "profile/profile_list.h"
#include "report/profile_summary.h"

namespace velmora {
namespace {

// Names and writes the files of one request into one folder, keeping the paths in order.
class Writer {
 public:
  Writer(Session& session, const ResultFileRequest& request, const std::tm& now, std::string folder,
         std::vector<std::string>& files)
      : request_(request), now_(now), folder_(std::move(folder)), files_(files),
        pattern_(FileExportPattern(session, ExportSection(request.Kind))) {}

  std::string Name(const std::string& profileName, std::vector<NameMacro> macros) const {
    macros.push_back({"$(出力種別)$", ExportKindWord(request_.Kind)});
    return FileExportName(pattern_, BuiltInExportPattern(request_.Kind), profileName, macros, now_);
  }

  // The lines `write` gives go straight into the file, which replaces its target when complete.
  void Csv(const std::string& name, const std::function<void(const LineOut&)>& write) {
    const std::string path = flAddDirSep(folder_) + name + ".CSV";
    SystemTextWriter file(path);
    write([&file](std::string_view line) { file.Line(line); });
    file.Commit();
    files_.push_back(path);
  }
  void Csv(const std::string& name, const std::vector<std::string>& lines) {
    Csv(name, [&lines](const LineOut& out) {
      for (const std::string& line : lines) out(line);
    });
  }

  void Erd(const std::string& name, const ProfileRecord& record, Array1<double> values) {
    ErdRecord erd = record.Erd;
    erd.NumSamples = static_cast<std::int32_t>(values.size());
    erd.NumSamplesHeader = erd.NumSamples;
    erd.Elevation = std::move(values);
    const std::string path = flAddDirSep(folder_) + name + ".ERD";
    WriteERD(path, erd);
    files_.push_back(path);
  }

 private:
  const ResultFileRequest& request_;
  const std::tm& now_;
  std::string folder_;
  std::vector<std::string>& files_;
  std::string pattern_;
};

void WriteAll(Session& session, const ResultFileRequest& request, const PositionAxis& axis,
              const std::vector<ProfileRecord*>& profiles, Writer& writer) {
  const ExportKind kind = request.Kind;
  if (kind == ExportKind::IriWhole) {
    std::vector<const ProfileRecord*> all(profiles.begin(), profiles.end());
    writer.Csv(writer.Name(ProfileList::NameOf(*profiles.front()), {{"$(IRI種別)$", "全区間"}}), IriWholeLines(all));
    return;
  }
  if (kind == ExportKind::PsdRatio) {
    const ProfileRecord& base = *profiles.front();
    for (std::size_t i = 1; i < profiles.size(); ++i) {
      const std::string pair = ProfileList::NameOf(base) + "_vs_" + ProfileList::NameOf(*profiles[i]);
      writer.Csv(writer.Name(pair, {}), PsdRatioLines(session, base, *profiles[i], request.Options));
    }
    return;
  }
  const double evalLength = session.CurrentConditions.Iri.IriBaseLength;
  for (ProfileRecord* record : profiles) {
    const std::string name = ProfileList::NameOf(*record);
    switch (kind) {
      case ExportKind::Profile: {
        const std::vector<NameMacro> macros{{"$(CUTOFF)$", FilterWord(record->Analysis.Filter.Request)}};
        if (request.Erd)
          writer.Erd(writer.Name(name, macros), *record, PointKindValues(kind, *record));
        else
          writer.Csv(writer.Name(name, macros), [&](const LineOut& out) { WritePointKindCsv(out, kind, *record, axis); });
        break;
      }
      case ExportKind::OctaveBand:
      case ExportKind::BandOne:
        for (int octave : request.Options.Octaves) {
          const std::string file = writer.Name(name, {{"$(OctaveNum)$", std::to_string(octave)}});
          if (request.Erd)
            writer.Erd(file, *record, PointKindValues(kind, *record, octave));
          else
            writer.Csv(file, [&](const LineOut& out) { WritePointKindCsv(out, kind, *record, axis, octave); });
        }
        break;
      case ExportKind::OctaveAll:
      case ExportKind::OctaveSum:
      case ExportKind::OctaveLong:
      case ExportKind::OctaveShort:
      case ExportKind::BandAll:
      case ExportKind::BandSum:
      case ExportKind::BandLong:
      case ExportKind::BandShort:
        if (request.Erd)
          writer.Erd(writer.Name(name, {}), *record, PointKindValues(kind, *record));
        else
          writer.Csv(writer.Name(name, {}), [&](const LineOut& out) { WritePointKindCsv(out, kind, *record, axis); });
        break;
      case ExportKind::PsdRaw: writer.Csv(writer.Name(name, {}), PsdRawLines(*record)); break;
      case ExportKind::PsdSmoothed: writer.Csv(writer.Name(name, {}), PsdSmoothedLines(session, *record, request.Options)); break;
      case ExportKind::IriContinuous:
        writer.Csv(writer.Name(name, {{"$(IRI種別)$", IriKindWord(kind, evalLength, 0)}}),
                   [&](const LineOut& out) {
                     WriteIriContinuousCsv(out, *record, axis, evalLength, request.Options.WithBands);
                   });
        break;
      case ExportKind::IriFixed:
        writer.Csv(writer.Name(name, {{"$(IRI種別)$", IriKindWord(kind, evalLength, request.Options.Interval)}}),
                   IriFixedLines(*record, axis, request.Options.Interval));
        break;
      default: break;
    }
  }
}

}  // namespace

void WriteResultFiles(Session& session, const ResultFileRequest& request, const PositionAxis& axis,
                      const std::vector<ProfileRecord*>& profiles, const std::string& folder, const std::tm& now,
                      std::vector<std::string>& written) {
  Writer writer(session, request, now, folder, written);
  WriteAll(session, request, axis, profiles, writer);
}

void WriteRepairResultFiles(Session& session, RepairExportKind kind, bool erd, const PositionAxis& axis,
                            const IriParams& iri, const std::vector<const ProfileRecord*>& profiles,
                            const std::string& folder, const std::tm& now, std::vector<std::string>& written) {
  const std::string pattern = FileExportPattern(session, kRepairExportSection);
  for (const ProfileRecord* record : profiles) {
    const std::string name = FileExportName(pattern, BuiltInRepairPattern(kind), ProfileList::NameOf(*record),
                                            {{"$(出力種別)$", RepairKindWord(kind)}}, now);
    const std::string path = flAddDirSep(folder) + name + (erd ? ".ERD" : ".CSV");
    if (erd) {
      ErdRecord copy = record->Erd;
      copy.Elevation = RepairKindValues(kind, *record);
      copy.NumSamples = static_cast<std::int32_t>(copy.Elevation.size());
      copy.NumSamplesHeader = copy.NumSamples;
      if (!WriteERD(path, copy)) RaiseFileError(ErrorNumber::PermissionDenied, path, "ERDファイルを書き込めません");
    } else {
      SystemTextWriter file(path);
      WriteRepairKindCsv([&file](std::string_view line) { file.Line(line); }, session, kind, *record, axis, iri);
      file.Commit();
    }
    written.push_back(path);
  }
}

}  // namespace velmora
