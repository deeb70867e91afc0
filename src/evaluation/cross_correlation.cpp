#include "evaluation/cross_correlation.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>

#include <fmt/format.h>

#include "analysis/iri.h"
#include "analysis/prepare_profile.h"
#include "analysis/psd.h"
#include "base/error_log.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/legacy_math.h"
#include "base/text_encoding.h"
#include "base/user_interaction.h"
#include "evaluation/correlation_tables.h"
#include "evaluation/profile_extent.h"
#include "profile/erd_file.h"

namespace velmora {
namespace {

constexpr const char* kModule = "frmTop";
constexpr const char* kCrLf = "\r\n";

void Warn(Session& session, const std::string& text) {
  session.Ui().Message(text, "警告", MsgIcon::Exclamation, MsgButtons::Ok, MsgAnswer::Ok);
}

// "12" -> "１２", "-3" -> "－３".
std::string FullWidthDigits(std::int32_t value) {
  static constexpr std::array<const char*, 10> kDigits = {"０", "１", "２", "３", "４", "５", "６", "７", "８", "９"};
  std::string text;
  for (char c : std::to_string(value)) text += c == '-' ? "－" : kDigits[static_cast<std::size_t>(c - '0')];
  return text;
}

std::vector<std::int32_t> InListOrder(std::span<const std::int32_t> rows) {
  std::vector<std::int32_t> ordered(rows.begin(), rows.end());
  std::sort(ordered.begin(), ordered.end());
  return ordered;
}

// The series a profile is compared with: the aligned elevations, or their IRI filter series.
std::vector<double> SeriesInUse(const DebugTables& debug, const std::vector<double>& aligned, double pitch, bool iriFilter,
                                const IriParams& iri) {
  if (!iriFilter) return aligned;
  AnalysisBlock block;
  PrepareAnalysis(debug, block, static_cast<std::int32_t>(aligned.size()), Array1<double>(aligned), pitch);
  CalcIriFilter(debug, block, iri);
  const auto& wave = block.Iri.IriFilterWave.Values;
  return std::vector<double>(wave.begin(), wave.begin() + block.Iri.IriFilterCount);
}

// Arithmetic mean of the raw PSD of the series over the whole transform length.
double PsdValueOf(Session& session, const std::vector<double>& series, double pitch, const CorrelationPsdOptions& psd) {
  Array1<double> spectrum;
  if (!PsdCalc(session, static_cast<std::int32_t>(series.size()), Array1<double>(series), pitch, psd.WindowKind,
               psd.MirrorFill, spectrum))
    throw LegacyError(ErrorNumber::InvalidData, "PSD の計算に失敗しました。");
  double sum = 0;
  for (double v : spectrum) sum += v;
  return sum / static_cast<double>(spectrum.size());
}

}  // namespace

bool CheckCorrelationOptions(Session& session, const ProfileList& list, std::span<const std::int32_t> selectedRows,
                             CorrelationOptions& options, CorrelationSelection& selection) {
  selection = {};
  for (std::int32_t row : InListOrder(selectedRows)) {
    selection.ListIndices.push_back(row);
    selection.Names.push_back(ProfileList::NameOf(list.Items.at(row)));
  }
  selection.ProfileCount = static_cast<std::int32_t>(selection.ListIndices.size());

  for (std::size_t k = 1; k < selection.ListIndices.size(); ++k) {
    const ProfileRecord& previous = list.Items.at(selection.ListIndices[k - 1]);
    const ProfileRecord& current = list.Items.at(selection.ListIndices[k]);
    if (previous.Erd.StepSize != current.Erd.StepSize) {
      Warn(session, std::string("対象プロファイルのサンプルピッチは全て同じにしてください。") + kCrLf +
           selection.Names[k - 1] + " ： " + FormatNumber(previous.Erd.StepSize, "0.0000") + kCrLf +
           selection.Names[k] + " ： " + FormatNumber(current.Erd.StepSize, "0.0000") + kCrLf +
           "確認してください。");
      return false;
    }
  }

  if (options.Alignment == 2) {
    bool first = true;
    double pitch = 0;
    for (std::int32_t row : selection.ListIndices) {
      const KpExtent extent = ProfileKpExtent(list.Items.at(row));
      selection.CommonKpStart = first ? extent.Start : std::max(selection.CommonKpStart, extent.Start);
      selection.CommonKpEnd = first ? extent.End : std::min(selection.CommonKpEnd, extent.End);
      pitch = extent.PitchKm;  // the last profile's pitch; all are equal by now
      first = false;
    }
    selection.CommonCount = first || selection.CommonKpEnd <= selection.CommonKpStart
                                ? 0
                                : CLng((selection.CommonKpEnd - selection.CommonKpStart) / pitch + 1);
  } else {
    for (std::size_t k = 0; k < selection.ListIndices.size(); ++k) {
      const std::int32_t n = list.Items.at(selection.ListIndices[k]).WorkCount;
      selection.CommonCount = k == 0 ? n : std::min(selection.CommonCount, n);
    }
  }
  if (selection.CommonCount <= 0) {
    Warn(session, std::string("全プロファイルで共通なプロファイル部がありませんでした。") + kCrLf + kCrLf +
         "確認してください。");
    return false;
  }

  if (options.MaxShiftMode == 1) {
    const std::optional<double> value = ParseNumber(options.MaxShiftText);
    const std::int32_t limit = selection.CommonCount - 2;
    const bool whole = value && *value == std::floor(*value) && std::abs(*value) < 2e9;
    if (!whole || *value <= 0 || *value > limit) {
      Warn(session, "０ < [最大ずらし量] <= " + FullWidthDigits(limit) + "　の範囲で指定してください");
      selection.SelectMaxShiftText = true;
      return false;
    }
    options.MaxShiftCount = static_cast<std::int32_t>(*value);
  }
  return true;
}

std::vector<double> AlignedSamples(const ProfileRecord& profile, const CorrelationOptions& options,
                                   const CorrelationSelection& selection) {
  const std::int32_t n = profile.WorkCount;
  std::vector<double> samples(profile.WorkProfile.begin(), profile.WorkProfile.begin() + n);
  std::int32_t first = 1;
  if (options.Alignment == 1) {
    first = (n == selection.CommonCount ? 0 : CLng((n - selection.CommonCount) / 2.0)) + 1;
  } else if (options.Alignment == 2) {
    const KpExtent extent = ProfileKpExtent(profile);
    // A downward profile is compared from its lower end, so its samples run the other way.
    if (extent.Downward) std::reverse(samples.begin(), samples.end());
    first = CLng((selection.CommonKpStart - extent.Start) / extent.PitchKm + 1);
  }
  if (first < 1 || first + selection.CommonCount - 1 > n)
    RaiseSubscriptOutOfRange(fmt::format("{}: samples {}..{} of {}", ProfileList::NameOf(profile), first,
                                         first + selection.CommonCount - 1, n));
  const auto begin = samples.begin() + (first - 1);
  return std::vector<double>(begin, begin + selection.CommonCount);
}

std::int32_t MaxShiftFor(const CorrelationOptions& options, std::size_t size) {
  return options.MaxShiftMode == 0 ? CLng(static_cast<double>(size) / 2.0) : options.MaxShiftCount;
}

std::vector<std::vector<double>> ComparedSeries(Session& session, const ProfileList& list,
                                                const CorrelationResults& results, const IriParams& iri) {
  std::vector<std::vector<double>> series;
  for (std::int32_t row : results.Selection.ListIndices) {
    const ProfileRecord& profile = list.Items.at(row);
    series.push_back(SeriesInUse(DebugTablesOf(session), AlignedSamples(profile, results.Options, results.Selection),
                                 profile.Erd.StepSize, results.UsedIriFilter, iri));
  }
  return series;
}

bool RunCrossCorrelation(Session& session, const ProfileList& list, std::span<const std::int32_t> selectedRows,
                         const CorrelationOptions& options, const IriParams& iri, CorrelationResults& results,
                         bool withoutFilter, const CorrelationPsdOptions& psd) {
  bool done = false;
  Guarded(session, kModule, "cmdGO相互相関", [&] {
    CorrelationResults fresh;
    fresh.Options = options;
    if (!CheckCorrelationOptions(session, list, selectedRows, fresh.Options, fresh.Selection)) return;
    // The save's second run is always without the filter, whatever the control says.
    fresh.UsedIriFilter = fresh.Options.FilterMode == 1 && !withoutFilter;
    const CorrelationSelection& selection = fresh.Selection;
    const std::int32_t count = selection.ProfileCount;

    const std::vector<std::vector<double>> series = ComparedSeries(session, list, fresh, iri);
    for (std::size_t k = 0; k < series.size(); ++k) {
      const std::vector<double>& s = series[k];
      const double pitch = list.Items.at(selection.ListIndices[k]).Erd.StepSize;
      // The quarter-car model runs on the series in use, also when that is already its response.
      fresh.IriValues.push_back(IriOfArray(static_cast<std::int32_t>(s.size()), s, pitch, iri));
      fresh.PsdValues.push_back(PsdValueOf(session, s, pitch, psd));
    }

    ProgressScope progress(session.Ui(), "相互相関値の集計中です", "しばらくお待ちください。");
    fresh.Matrix.assign(static_cast<std::size_t>(count) * static_cast<std::size_t>(count), CorrelationCell{});
    auto fileOf = [&](std::int32_t k) {
      return list.Items.at(selection.ListIndices[static_cast<std::size_t>(k - 1)]).FileName;
    };
    const long total = static_cast<long>(count) * (count + 1) / 2;
    long pairs = 0;
    for (std::int32_t i = 1; i <= count; ++i) {
      for (std::int32_t j = i; j <= count; ++j) {
        const auto& a = series[static_cast<std::size_t>(i - 1)];
        const auto& b = series[static_cast<std::size_t>(j - 1)];
        const std::int32_t maxShift = MaxShiftFor(fresh.Options, a.size());
        const auto n = static_cast<std::int32_t>(std::min(a.size(), b.size()));
        try {
          fresh.Cell(i, j) = CrossCorrelatePair(n, a, b, maxShift);
        } catch (const std::exception& error) {
          // A flat profile, or a pair too long for memory: say which pair.
          throw NamingFiles(fileOf(i) + " / " + fileOf(j), error);
        }
        ReportProgress(session.Ui(), static_cast<int>(++pairs * 100 / total));
      }
    }
    fresh.Valid = true;
    results = std::move(fresh);
    done = true;
  });
  return done;
}

std::string ShiftedProfileName(const std::string& name, std::int32_t shift) {
  return name + (shift < 0 ? "+" : "-") + std::to_string(std::abs(shift)) + "P";
}

std::string ShiftedTitleSuffix(std::int32_t shift) {
  return (shift >= 0 ? "(-" : "(+") + std::to_string(std::abs(shift)) + "P)";
}


std::vector<std::string> RegisterShiftedProfiles(Session& session, ProfileList& list, const CorrelationResults& results) {
  return RegisterShiftedProfiles(session, list, results,
                                 [&session, &list](const std::vector<std::string>& paths) { return AddProfileList(session, list, paths, true); });
}

std::vector<std::string> RegisterShiftedProfiles(Session& session, 
    const ProfileList& list, const CorrelationResults& results,
    const std::function<bool(const std::vector<std::string>& paths)>& registerFiles) {
  std::vector<std::string> names;
  if (!results.Valid) return names;
  Guarded(session, kModule, "cmd精度検証ずらし量登録", [&] {
    std::vector<std::string> paths;
    std::vector<std::string> made;
    for (std::int32_t j = 2; j <= results.Selection.ProfileCount; ++j) {
      const std::int32_t shift = results.Cell(1, j).Peak(CorrelationRow::Rho).Shift;
      if (shift == 0) continue;
      const ProfileRecord& source = list.Items.at(results.Selection.ListIndices[static_cast<std::size_t>(j - 1)]);
      ErdRecord copy = source.Erd;
      // An unset KP counts as 0, so the copy always carries the KP that lines it up.
      copy.KpStart = KpStartKm(source) - shift * (source.Erd.StepSize / 1000.0);
      copy.Title += ShiftedTitleSuffix(shift);
      const std::string name = ShiftedProfileName(ProfileList::NameOf(source), shift);
      std::filesystem::create_directories(ProjectProfileFolder(session));
      const std::string path = ProjectProfileFolder(session) + "/" + name + ".ERD";
      WriteERD(path, copy);
      paths.push_back(path);
      made.push_back(name);
    }
    if (!paths.empty() && registerFiles(paths)) names = std::move(made);
  });
  return names;
}

}  // namespace velmora
