#include "analysis/psd_view.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "analysis/psd.h"
#include "base/error_log.h"
#include "base/legacy_error.h"
#include "base/legacy_math.h"
#include "base/user_interaction.h"
#include "profile/profile_record.h"

namespace velmora {
namespace {

bool IsCurrent(const PsdResult& psd, std::int32_t windowKind, bool mirrorFill) {
  return psd.Calculated && psd.WindowKind == windowKind && psd.MirrorFill == mirrorFill;
}

std::vector<PsdPair> RawCurve(const ProfileRecord& record) {
  const PsdResult& psd = record.Analysis.Psd;
  std::vector<PsdPair> points;
  points.reserve(static_cast<std::size_t>(psd.PsdCount));
  for (std::int32_t i = 1; i <= psd.PsdCount; ++i)
    points.push_back(PsdPair{(i - 1) / (psd.PsdCount * record.Erd.StepSize), psd.PsdValues[i]});
  return points;
}

// The stored spectrum smoothed: the same numbers PsdSmooth gives, without a second transform.
std::vector<PsdPair> SmoothedCurve(const DebugTables& debug, const ProfileRecord& record, std::int32_t bandsPerOctave) {
  return SmoothPsdValues(debug, record.Analysis.Psd.PsdValues, record.WorkCount, record.Erd.StepSize, bandsPerOctave);
}

// Gain of the smoothed compared spectrum over the smoothed base, row by row on the compared rows.
// Rows the base does not have are left out.
std::vector<PsdPair> SmoothedGain(const std::vector<PsdPair>& base, const std::vector<PsdPair>& compared) {
  std::vector<PsdPair> gain;
  const std::size_t rows = std::min(base.size(), compared.size());
  for (std::size_t i = 0; i < rows; ++i) {
    if (base[i].Val == 0) RaiseDivisionByZero("PSD ratio: the base spectrum is 0 at row " + std::to_string(i + 1));
    gain.push_back(PsdPair{compared[i].Wn, std::sqrt(compared[i].Val / base[i].Val)});
  }
  return gain;
}

}  // namespace

bool CalcStoredPsd(Session& session, std::span<ProfileRecord> profiles, std::int32_t windowKind, bool mirrorFill) {
  const bool allCurrent = std::all_of(profiles.begin(), profiles.end(), [&](const ProfileRecord& r) {
    return IsCurrent(r.Analysis.Psd, windowKind, mirrorFill);
  });
  if (allCurrent) return true;
  ProgressScope display(session.Ui(), "パワースペクトル計算", "しばらくお待ちください。");
  bool ok = true;
  for (std::size_t p = 0; p < profiles.size() && ok; ++p) {
    ProfileRecord& record = profiles[p];
    PsdResult& psd = record.Analysis.Psd;
    if (!IsCurrent(psd, windowKind, mirrorFill)) {
      Array1<double> values;
      ok = PsdCalc(session, record.WorkCount, record.WorkProfile, record.Erd.StepSize, windowKind, mirrorFill, values);
      if (ok) {
        psd.PsdCount = static_cast<std::int32_t>(values.size());
        psd.PsdValues = std::move(values);
        psd.WindowKind = windowKind;
        psd.MirrorFill = mirrorFill;
        psd.Calculated = true;
      }
    }
    ReportProgress(session.Ui(), CLng(static_cast<double>(p + 1) / static_cast<double>(profiles.size()) * 100));
  }
  return ok;
}

bool Redraw_PSD(Session& session, std::span<ProfileRecord> profiles, std::span<const std::size_t> selected,
                const PsdTabOptions& options, std::vector<PsdCurve>& curves) {
  curves.clear();
  if (options.BandsPerOctave < 1) {
    session.Ui().Inform("BandsPerOctave値はゼロより大きく指定してください。", "警告");
    return false;
  }
  if (!CalcStoredPsd(session, profiles, options.WindowKind, options.MirrorFill)) return false;
  return Guarded(session, "frmTop", "Redraw_PSD", [&] {
    const DebugTables debug = DebugTablesOf(session);
    std::vector<PsdCurve> out;
    for (std::size_t index : selected)
      if (index >= profiles.size())
        RaiseSubscriptOutOfRange("PSD: profile " + std::to_string(index + 1) + " of " +
                                 std::to_string(profiles.size()));
    if (!options.Ratio) {
      for (std::size_t index : selected) {
        const ProfileRecord& record = profiles[index];
        out.push_back({index, options.Smooth ? SmoothedCurve(debug, record, options.BandsPerOctave) : RawCurve(record)});
      }
    } else if (!selected.empty()) {
      const ProfileRecord& base = profiles[selected.front()];
      const std::vector<PsdPair> baseSmoothed =
          options.Smooth ? SmoothedCurve(debug, base, options.BandsPerOctave) : std::vector<PsdPair>{};
      for (std::size_t s = 1; s < selected.size(); ++s) {
        const ProfileRecord& compared = profiles[selected[s]];
        PsdCurve curve{selected[s], {}};
        if (options.Smooth) {
          curve.Points = SmoothedGain(baseSmoothed, SmoothedCurve(debug, compared, options.BandsPerOctave));
        } else {
          std::int32_t count = 0;
          if (!PsdRatioRaw(session, base.Analysis.Psd.PsdCount, base.Analysis.Psd.PsdValues, compared.Analysis.Psd.PsdCount,
                           compared.Analysis.Psd.PsdValues, compared.Erd.StepSize, count, curve.Points))
            throw LegacyError(ErrorNumber::DivisionByZero, "PSD ratio of " + compared.FileName + " (see the log)");
        }
        out.push_back(std::move(curve));
      }
    }
    curves = std::move(out);
  });
}

}  // namespace velmora
