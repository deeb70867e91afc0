#include "repair/m_wave.h"

#include <algorithm>
#include <cmath>
#include <string>

#include <fmt/format.h>

#include "analysis/debug_table.h"
#include "base/error_log.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/legacy_math.h"
#include "repair/study_debug.h"

namespace velmora {
namespace {

constexpr const char* kModule = "bas補修形状計算";

MWaveSign SignOf(double d) {
  if (std::fabs(d) < 1e-9) return MWaveSign::Equal;
  return d > 0 ? MWaveSign::Plus : MWaveSign::Minus;
}

// The legacy arrays run 0..n with slot 0 never written, so a crest index of 0 ("none found") reads 0.
double Slot(const Array1<double>& a, std::ptrdiff_t i) { return i == 0 ? 0.0 : a[i]; }

std::string Num(double v) { return FormatNumber(v, "0.0000000000"); }

std::string SignText(MWaveSign s) { return s == MWaveSign::None ? std::string() : std::string(1, static_cast<char>(s)); }

void WriteStraighteningTable(Session& session, const Array1<double>& m, const Array1<MWaveRow>& rows, const Array1<double>& out) {
  std::vector<std::string> lines{
      "M波, 判定(↓), 判定(↑), M波頂部, カウント(↓), カウント(↑), 始点高さ, 終点高さ, 高低差, 直線化（M'波）"};
  for (std::ptrdiff_t i = 1; i <= m.size(); ++i) {
    const MWaveRow& r = rows[i];
    lines.push_back(fmt::format("{}, {}, {}, {}, {}, {}, {}, {}, {}, {}", Num(m[i]), SignText(r.JudgeDown),
                                SignText(r.JudgeUp), Num(r.Crest), r.CountDown, r.CountUp, Num(r.StartHeight),
                                Num(r.EndHeight), Num(r.Rise), Num(out[i])));
  }
  WriteDebugTable(DebugTablesOf(session), "補修形状_M波の直線化.csv", lines);
}

void WriteExtremaTable(Session& session, const char* name, const std::vector<MWaveExtremum>& points) {
  std::vector<std::string> lines{"No, Index, M波値"};
  for (std::size_t k = 0; k < points.size(); ++k)
    lines.push_back(fmt::format("{}, {}, {}", k + 1, points[k].Index, Num(points[k].Value)));
  WriteDebugTable(DebugTablesOf(session), name, lines);
}

}  // namespace

Array1<MWaveRow> BuildMWaveRows(const Array1<double>& m, std::int32_t withTroughs) {
  const std::ptrdiff_t n = m.size();
  Array1<MWaveRow> rows(static_cast<std::size_t>(n));
  for (std::ptrdiff_t i = 1; i <= n; ++i) {
    MWaveRow& r = rows[i];
    if (i > 1) r.JudgeDown = SignOf(m[i] - m[i - 1]);
    if (i < n) r.JudgeUp = SignOf(m[i] - m[i + 1]);
    const bool crest = r.JudgeDown == MWaveSign::Plus && r.JudgeUp == MWaveSign::Plus;
    const bool trough = withTroughs == 1 && r.JudgeDown == MWaveSign::Minus && r.JudgeUp == MWaveSign::Minus;
    if (crest || trough) r.Crest = m[i];
    if (i > 1) {
      if (r.Crest != MWaveSeed) {
        r.CountDown = 0;
        r.StartHeight = r.Crest;
      } else {
        const MWaveRow& prev = rows[i - 1];
        r.CountDown = prev.CountDown < 0 ? -1 : prev.CountDown + 1;
        r.StartHeight = prev.StartHeight;
      }
    }
  }
  for (std::ptrdiff_t i = n - 1; i >= 1; --i) {
    MWaveRow& r = rows[i];
    if (r.Crest != MWaveSeed) {
      r.CountUp = 0;
      r.EndHeight = r.Crest;
    } else {
      const MWaveRow& next = rows[i + 1];
      r.CountUp = next.CountUp < 0 ? -1 : next.CountUp + 1;
      r.EndHeight = next.EndHeight;
    }
  }
  return rows;
}

Array1<double> JoinCrests(const Array1<double>& m, Array1<MWaveRow>& rows) {
  Array1<double> out(static_cast<std::size_t>(m.size()));
  for (std::ptrdiff_t i = 1; i <= m.size(); ++i) {
    MWaveRow& r = rows[i];
    r.Rise = (r.StartHeight != MWaveSeed && r.EndHeight != MWaveSeed) ? r.EndHeight - r.StartHeight : MWaveSeed;
    if (std::fabs(r.Rise) < 1e-16) {
      out[i] = r.StartHeight;
    } else if (r.Rise == MWaveSeed) {
      out[i] = m[i];
    } else {
      out[i] = r.StartHeight + r.CountDown * r.Rise / (r.CountDown + r.CountUp);
    }
  }
  return out;
}

Array1<double> ApplyPlanRange(const Array1<double>& m, const Array1<MWaveRow>& rows, const Array1<double>& joined,
                              const PlanIndices& plan) {
  const std::ptrdiff_t n = m.size();
  const std::ptrdiff_t s = plan.S, e = plan.E;
  // A crest sitting on S or E itself is found too, which makes the run-in or run-out zero long.
  std::ptrdiff_t firstCrest = 0, lastCrest = 0;
  for (std::ptrdiff_t i = s; i <= n; ++i)
    if (rows[i].Crest != MWaveSeed) {
      firstCrest = i;
      break;
    }
  for (std::ptrdiff_t i = std::min(e, n); i >= s + 1; --i)
    if (rows[i].Crest != MWaveSeed) {
      lastCrest = i;
      break;
    }

  // Index 0 stands for "no crest found"; it is kept as the zero slot of the old 0..n arrays.
  Array1<double> result(static_cast<std::size_t>(n + 1));  // result[k + 1] holds index k
  auto put = [&](std::ptrdiff_t i, double v) { result[i + 1] = v; };
  for (std::ptrdiff_t i = 1; i <= n; ++i) put(i, m[i]);

  if (plan.StartGiven) {
    if (firstCrest == s)
      RaiseDivisionByZero(fmt::format("補修計画範囲の起点 (インデックス {}) がM波の頂部に一致し、"
                                      "擦り付け区間の長さが 0 です", s));
    const double slope = (Slot(m, firstCrest) - m[s]) / static_cast<double>(firstCrest - s);
    for (std::ptrdiff_t i = s; i <= firstCrest; ++i) put(i, m[s] + static_cast<double>(i - s) * slope);
  } else {
    for (std::ptrdiff_t i = 1; i <= firstCrest; ++i) put(i, joined[i]);
  }
  for (std::ptrdiff_t i = firstCrest + 1; i <= lastCrest - 1; ++i) put(i, joined[i]);
  if (plan.EndGiven) {
    if (lastCrest == e)
      RaiseDivisionByZero(fmt::format("補修計画範囲の終点 (インデックス {}) がM波の頂部に一致し、"
                                      "擦り付け区間の長さが 0 です", e));
    const double slope = (m[e] - Slot(m, lastCrest)) / static_cast<double>(e - lastCrest);
    for (std::ptrdiff_t i = lastCrest; i <= e; ++i)
      put(i, Slot(m, lastCrest) + static_cast<double>(i - lastCrest) * slope);
  } else {
    for (std::ptrdiff_t i = std::max<std::ptrdiff_t>(lastCrest, 1); i <= n; ++i) put(i, joined[i]);
  }

  Array1<double> out(static_cast<std::size_t>(n));
  for (std::ptrdiff_t i = 1; i <= n; ++i) out[i] = result[i + 1];
  return out;
}

PlanIndices PlanRangeIndices(std::int32_t n, const PlanRange& plan) {
  PlanIndices out;
  out.E = n;
  if (!plan.Use) return out;
  double start = plan.StartKp, end = plan.EndKp;
  bool startGiven = start != MWaveSeed, endGiven = end != MWaveSeed;
  // A missing end is pushed far outside, so that the cut below brings it to the profile's end.
  if (!startGiven) start = -1e30;
  if (!endGiven) end = 1e30;
  if (start > end) {
    std::swap(start, end);
    std::swap(startGiven, endGiven);
  }
  const double pitch = plan.KpSign == 1 ? -plan.PitchM : plan.PitchM;
  const double lastKp = plan.FirstKp + (n - 1) * pitch / 1000.0;
  const double low = std::min(plan.FirstKp, lastKp), high = std::max(plan.FirstKp, lastKp);
  auto cut = [&](double& kp, bool& given) {
    if (kp < low || kp > high) {
      kp = std::clamp(kp, low, high);
      given = false;
    }
  };
  cut(start, startGiven);
  cut(end, endGiven);
  auto index = [&](double kp) { return CLng((kp - plan.FirstKp) * 1000.0 / pitch) + 1; };
  out.S = index(start);
  out.E = index(end);
  out.StartGiven = startGiven;
  out.EndGiven = endGiven;
  // On a falling KP the lower KP lies at the far end of the profile.
  if (out.S > out.E) {
    std::swap(out.S, out.E);
    std::swap(out.StartGiven, out.EndGiven);
  }
  return out;
}

namespace {
PlanIndices PlanIndicesLogged(Session& session, std::int32_t n, const PlanRange& plan) {
  if (plan.Use && plan.PitchM == 0) RaiseDivisionByZero("補修計画範囲: ピッチが 0 です");
  const PlanIndices indices = PlanRangeIndices(n, plan);
  detail::StudyDebugLine(session, fmt::format("[set補修計画範囲情報] 補修計画範囲で指定された起終点インデックス : {} , {}",
                                     indices.S, indices.E));
  return indices;
}
}  // namespace

bool set補修計画範囲情報(Session& session, std::int32_t n, const PlanRange& plan, PlanIndices& indices) {
  return Guarded(session, kModule, "set補修計画範囲情報", [&] { indices = PlanIndicesLogged(session, n, plan); });
}

bool Cal_補修形状_M波の直線化(Session& session, std::int32_t n, const Array1<double>& m, std::int32_t withTroughs,
                              const PlanRange& plan, WaveSeries& out) {
  return Guarded(session, kModule, "Cal_補修形状_M波の直線化", [&] {
    if (m.size() < n) RaiseSubscriptOutOfRange(fmt::format("M波 {} / {}", n, m.size()));
    Array1<double> wave(std::vector<double>(m.begin(), m.begin() + n));
    Array1<MWaveRow> rows = BuildMWaveRows(wave, withTroughs);
    Array1<double> result = JoinCrests(wave, rows);
    if (plan.Use) {
      result = ApplyPlanRange(wave, rows, result, PlanIndicesLogged(session, n, plan));
    }
    if (DebugTablesOf(session).On) WriteStraighteningTable(session, wave, rows, result);
    StoreWave(out, std::move(result));
  });
}

bool Cal_補修形状_M波の山谷情報(Session& session, std::int32_t n, const Array1<double>& m, std::vector<MWaveExtremum>& crests,
                                std::vector<MWaveExtremum>& troughs) {
  return Guarded(session, kModule, "Cal_補修形状_M波の山谷情報", [&] {
    if (m.size() < n) RaiseSubscriptOutOfRange(fmt::format("M波 {} / {}", n, m.size()));
    crests.clear();
    troughs.clear();
    for (std::int32_t i = 2; i <= n - 1; ++i) {
      const MWaveSign down = SignOf(m[i] - m[i - 1]), up = SignOf(m[i] - m[i + 1]);
      if (down == MWaveSign::Plus && up == MWaveSign::Plus) crests.push_back({i, m[i]});
      if (down == MWaveSign::Minus && up == MWaveSign::Minus) troughs.push_back({i, m[i]});
    }
    if (DebugTablesOf(session).On) {
      WriteExtremaTable(session, "補修形状_M波の直線化_山情報.csv", crests);
      WriteExtremaTable(session, "補修形状_M波の直線化_谷情報.csv", troughs);
    }
  });
}

Array1<double> RebuildFromPoints(const Array1<double>& m, std::vector<StudyPoint> points) {
  std::erase_if(points, [](const StudyPoint& p) { return p.Value == MWaveSeed; });
  std::stable_sort(points.begin(), points.end(),
                   [](const StudyPoint& a, const StudyPoint& b) { return a.Index < b.Index; });
  Array1<double> out = m;
  for (std::size_t k = 1; k < points.size(); ++k) {
    const StudyPoint& a = points[k - 1];
    const StudyPoint& b = points[k];
    const std::int32_t span = b.Index - a.Index;
    if (span == 0) RaiseDivisionByZero(fmt::format("調整点のインデックス {} が重複しています", a.Index));
    const double y1 = a.Value + a.Adjust, y2 = b.Value + b.Adjust;
    const double slope = (y2 - y1) / span;
    for (std::int32_t k2 = 0; k2 <= span; ++k2) out.at(a.Index + k2) = y1 + k2 * slope;
  }
  return out;
}

bool Cal_補修形状_M波の再計算(Session& session, const Array1<double>& m, const std::vector<StudyPoint>& points, StudyTarget& target) {
  return Guarded(session, kModule, "Cal_補修形状_M波の再計算", [&] {
    StoreWave(target.Outcome.MPrime.Wave, RebuildFromPoints(m, points));
    target.Recalculated = true;
  });
}

}  // namespace velmora
