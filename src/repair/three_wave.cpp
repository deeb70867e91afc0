#include "repair/three_wave.h"

#include <cmath>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "analysis/debug_table.h"
#include "analysis/fft.h"
#include "analysis/fft_filter.h"
#include "base/common.h"
#include "base/error_log.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/legacy_math.h"
#include "base/user_interaction.h"

namespace velmora {
namespace {

constexpr const char* kModule = "bas補修形状計算";

std::string LineText(double value) { return IsNoValue(value) ? std::string() : FormatNumber(value, "0.#####"); }

std::string F6(double v) { return FormatNumber(v, "0.000000"); }

// One FFT filter pass whose failure (already logged) ends the caller's run.
void FilterPass(Session& session, std::int32_t& seq, std::int32_t iteration, std::int32_t n, double pitch, FilterKind kind,
                double longCut, double shortCut, const Array1<double>& source, WaveSeries& result,
                WaveSeries& other) {
  if (!Cal_FFTフィルタ_単体処理(session, seq, iteration, n, FftLength1(n), FftLength2(n), pitch, kind, longCut, shortCut, source,
                                result, other))
    throw LegacyError(ErrorNumber::InvalidData, "FFTフィルタの計算に失敗しました");
}

void CheckSource(std::int32_t n, double pitch, const Array1<double>& profile) {
  if (n < 2 || profile.size() < n) RaiseSubscriptOutOfRange(fmt::format("プロファイル {} / {}", n, profile.size()));
  if (!(pitch > 0)) RaiseDivisionByZero(fmt::format("ピッチ {}", pitch));
}

void WriteSplitTable(Session& session, const std::string& name, const std::string& head, const Array1<double>& profile,
                     const std::vector<const Array1<double>*>& columns) {
  std::vector<std::string> lines{head};
  for (std::ptrdiff_t i = 1; i <= profile.size(); ++i) {
    std::string line = fmt::format("{},{}", i, F6(profile[i]));
    double sum = 0;
    for (const Array1<double>* c : columns) {
      line += "," + F6((*c)[i]);
      sum += (*c)[i];
    }
    line += "," + F6(sum) + "," + F6(std::fabs(profile[i] - sum));
    lines.push_back(std::move(line));
  }
  WriteDebugTable(DebugTablesOf(session), name, lines);
}

}  // namespace

ThreeWaveForm ThreeWaveFormFromConditions(const CalcConditions& conditions) {
  ThreeWaveForm form;
  form.LongBoundary = LineText(conditions.LongBoundary);
  form.ShortBoundary = LineText(conditions.ShortBoundary);
  form.IriLength = LineText(conditions.RepairIri.IriBaseLength);
  for (int k = 1; k <= 9; ++k) form.Lines[k] = LineText(conditions.RepairBandLines.Value[k]);
  return form;
}

ThreeWaveParams ThreeWaveParamsFromConditions(const CalcConditions& conditions) {
  ThreeWaveParams params;
  params.Lines = ThreeWaveFormFromConditions(conditions).Lines;
  params.LongBoundary = conditions.LongBoundary;
  params.ShortBoundary = conditions.ShortBoundary;
  params.IriLength = conditions.RepairIri.IriBaseLength;
  return params;
}

bool getParam_補修形状検討_3波分解(Session& session, const ThreeWaveForm& form, ThreeWaveParams& params, ThreeWaveField* focus) {
  struct Check {
    const std::string& text;
    ThreeWaveField field;
    const char* emptyMessage;
    const char* numericMessage;
  };
  const Check checks[] = {
      {form.LongBoundary, ThreeWaveField::LongBoundary, "長波側境界値が指定されていません。",
       "長波側境界値は数値で指定して下さい。"},
      {form.ShortBoundary, ThreeWaveField::ShortBoundary, "短波側境界値が指定されていません。",
       "短波側境界値は数値で指定して下さい。"},
      {form.IriLength, ThreeWaveField::IriLength, "IRI算出基準長が指定されていません。",
       "IRI算出基準長は数値で指定して下さい。"},
  };
  auto fail = [&](const Check& c, const char* message) {
    session.Ui().Inform(message, "警告");
    if (focus != nullptr) *focus = c.field;
    return false;
  };
  // All boxes are first checked for emptiness, then all for numbers.
  for (const Check& c : checks)
    if (Trim(c.text).empty()) return fail(c, c.emptyMessage);
  for (const Check& c : checks)
    if (!IsNumeric(c.text)) return fail(c, c.numericMessage);
  if (focus != nullptr) *focus = ThreeWaveField::None;
  params.LongBoundary = *ParseNumber(form.LongBoundary);
  params.ShortBoundary = *ParseNumber(form.ShortBoundary);
  params.IriLength = *ParseNumber(form.IriLength);
  for (int k = 1; k <= 9; ++k) params.Lines[k] = Trim(form.Lines[k]);
  return true;
}

bool Cal_補修形状3波分解_SUB(Session& session, double longBoundary, double shortBoundary, std::int32_t n, double pitch,
                           const Array1<double>& profile, WaveSeries& L, WaveSeries& M, WaveSeries& S) {
  return Guarded(session, kModule, "Cal_補修形状3波分解_SUB", [&] {
    CheckSource(n, pitch, profile);
    WaveSeries l, m, s, other;
    std::int32_t seq = 0;
    FilterPass(session, seq, 0, n, pitch, FilterKind::HiPass, shortBoundary, 0, profile, s, other);
    FilterPass(session, seq, 0, n, pitch, FilterKind::LowPass, 0, longBoundary, profile, l, other);
    FilterPass(session, seq, 0, n, pitch, FilterKind::BandPass, longBoundary, shortBoundary, profile, m, other);
    if (DebugTablesOf(session).On)
      WriteSplitTable(session, FormatNumber(shortBoundary, "0.0000") + " ～ " + FormatNumber(longBoundary, "0.0000") + ".csv",
                      "No, Profile, 長波長, 中波長, 短波長, SUM(短中長), ABS(Prof-SUM)", profile,
                      {&l.Values, &m.Values, &s.Values});
    L = std::move(l);
    M = std::move(m);
    S = std::move(s);
  });
}

bool Cal_収束計算による波形分解_SUB(Session& session, std::int32_t iteration, std::int32_t n, double pitch,
                               std::span<const double> wavelengths, const Array1<double>& remainder,
                               std::vector<Array1<double>>& parts) {
  return Guarded(session, kModule, "Cal_収束計算による波形分解_SUB", [&] {
    CheckSource(n, pitch, remainder);
    std::vector<Array1<double>> split;
    Array1<double> rest = remainder;
    std::int32_t seq = 0;
    for (double w : wavelengths) {
      WaveSeries below, above;
      FilterPass(session, seq, iteration, n, pitch, FilterKind::HiPass, w, 0, rest, below, above);
      split.push_back(std::move(below.Values));
      rest = std::move(above.Values);
    }
    split.push_back(std::move(rest));
    if (DebugTablesOf(session).On) {
      std::string head = "No, Profile, ";
      for (std::size_t k = 0; k < wavelengths.size(); ++k)
        head += fmt::format("分割波長-{} ({}), ", k + 1, FormatNumber(wavelengths[k], "0.00"));
      std::vector<const Array1<double>*> columns;
      for (const auto& p : split) columns.push_back(&p);
      WriteSplitTable(session, "Cal_収束計算による波形分解_SUB(session, 分解後プロファイル).csv", head + " , SUM, ABS(Prof-SUM)",
                      remainder, columns);
    }
    parts = std::move(split);
  });
}

bool Cal_収束計算による波形分解(Session& session, double longBoundary, double shortBoundary, std::int32_t n, double pitch,
                           const Array1<double>& profile, std::int32_t maxCount, WaveSeries& L, WaveSeries& M,
                           WaveSeries& S) {
  return Guarded(session, kModule, "Cal_収束計算による波形分解", [&] {
    CheckSource(n, pitch, profile);
    const double wavelengths[] = {shortBoundary, longBoundary};
    std::string head = "No, Profile, ";
    for (double w : wavelengths) head += FormatNumber(w, "0.00") + ", ";
    head += "end , SUM, ABS(Prof-SUM)";
    // Running parts: short, middle, long.
    std::vector<Array1<double>> total(3, Array1<double>(static_cast<std::size_t>(n)));
    auto columns = [&] { return std::vector<const Array1<double>*>{&total[0], &total[1], &total[2]}; };
    if (DebugTablesOf(session).On) WriteSplitTable(session, "収束計算による波形分解(オリジナル).csv", head, profile, columns());

    Array1<double> remainder = profile;
    Array1<double> previousSum(static_cast<std::size_t>(n));
    for (std::int32_t k = 1; k <= maxCount; ++k) {
      session.Ui().ProgressStart("３波長分解", "収束計算中  " + std::to_string(k) + " / " + std::to_string(maxCount) + " ・・・・");
      ReportProgress(session.Ui(), CLng(static_cast<double>(k) / maxCount * 100));
      std::vector<Array1<double>> parts;
      if (!Cal_収束計算による波形分解_SUB(session, k, n, pitch, wavelengths, remainder, parts))
        throw LegacyError(ErrorNumber::InvalidData, "波形分解の計算に失敗しました");
      bool changed = false;
      for (std::int32_t i = 1; i <= n; ++i) {
        double sum = 0;
        for (std::size_t p = 0; p < 3; ++p) {
          total[p][i] += parts[p][i];
          sum += total[p][i];
        }
        if (sum != previousSum[i]) changed = true;  // exact: the loop ends only when nothing moves
        previousSum[i] = sum;
        remainder[i] = profile[i] - sum;
      }
      if (DebugTablesOf(session).On)
        WriteSplitTable(session, "収束計算による波形分解( " + std::to_string(k) + " ).csv", head, profile, columns());
      if (!changed) break;
    }
    if (DebugTablesOf(session).On)
      WriteSplitTable(session, "収束計算後の３波分解.csv", "No, Profile, 短波長, 中波長, 長波長, SUM(短中長), ABS(Prof-SUM)",
                      profile, columns());
    StoreWave(S, std::move(total[0]));
    StoreWave(M, std::move(total[1]));
    StoreWave(L, std::move(total[2]));
  });
}

void ClearRepairStudy(ProfileRecord& record) {
  record.ThreeWave = ThreeWaveSplit{};
  record.RepairStudy = RepairStudyData{};
  record.Studies.clear();
}

ThreeWaveRun PubCal_補修形状検討_3波分解(Session& session, std::span<ProfileRecord> profiles, std::span<const std::int32_t> selected,
                                   const ThreeWaveParams& params, ThreeWaveParams& stored) {
  ThreeWaveRun run;
  if (selected.empty()) return run;
  bool allSplit = true;  // a profile that cannot be split is in the log already; the others go on
  run.Ok = Guarded(session, kModule, "PubCal_補修形状検討_3波分解", [&] {
    ProgressScope display(session.Ui(), "３波長分解", "しばらくお待ちください。");
    // Doubles exactly, line texts as strings.
    if (!(params == stored)) {
      for (ProfileRecord& record : profiles) ClearRepairStudy(record);
      stored = params;
      CalcConditions& conditions = session.CurrentConditions;
      conditions.LongBoundary = params.LongBoundary;
      conditions.ShortBoundary = params.ShortBoundary;
      conditions.RepairIri.IriBaseLength = params.IriLength;
      for (int k = 1; k <= 9; ++k)
        conditions.RepairBandLines.Value[k] = ParseNumber(params.Lines[k]).value_or(kNoValue);
      run.StudyReset = true;
    }
    for (std::size_t k = 0; k < selected.size(); ++k) {
      ReportProgress(session.Ui(), CLng(static_cast<double>(k + 1) / static_cast<double>(selected.size()) * 100));
      ProfileRecord& record = profiles[static_cast<std::size_t>(selected[k] - 1)];
      ThreeWaveSplit& split = record.ThreeWave;
      if (split.Valid) continue;
      if (!Cal_補修形状3波分解_SUB(session, params.LongBoundary, params.ShortBoundary, record.WorkCount, record.Erd.StepSize,
                                   record.WorkProfile, split.LongWave, split.MiddleWave, split.ShortWave)) {
        allSplit = false;
        continue;
      }
      split.LongBoundary = params.LongBoundary;
      split.ShortBoundary = params.ShortBoundary;
      split.Valid = true;
    }
  }) && allSplit;
  if (run.StudyReset) {
    session.Ui().Inform("補修形状算出の境界値が変更されました。\r\nＭ波、Ｓ波、理想形状案のデータが初期化されます。", "確認",
                MsgIcon::Information);
    // The profiles split in this run keep their new split; everything that was built on the old
    // boundaries is gone.
    for (ProfileRecord& record : profiles) {
      record.RepairStudy = RepairStudyData{};
      record.Studies.clear();
    }
  }
  return run;
}

}  // namespace velmora
