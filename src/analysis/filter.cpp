#include "analysis/filter.h"

#include <filesystem>
#include <utility>

#include "analysis/fft_filter.h"
#include "analysis/iri.h"
#include "analysis/moving_average.h"
#include "analysis/slope_filter.h"
#include "base/error_log.h"
#include "base/legacy_error.h"
#include "base/user_interaction.h"
#include "profile/profile_record.h"

namespace velmora {
namespace {

constexpr std::string_view kModule = "basFilter";
constexpr std::string_view kGoProc = "cmdGo_フィルター処理";
constexpr const char* kProgressTitle = "フィルターの計算";
constexpr const char* kPleaseWait = "しばらくお待ちください。";

bool UsesPassKind(FilterCalcType type) {
  return type == FilterCalcType::MovingAverage || type == FilterCalcType::Fourier;
}

std::string ProgressCaption(FilterCalcType type) {
  switch (type) {
    case FilterCalcType::MovingAverage: return "移動平均フィルター";
    case FilterCalcType::Fourier: return "フーリエ変換フィルター";
    case FilterCalcType::Iri: return "IRIフィルター";
    case FilterCalcType::Slope: return "Slopeフィルター";
  }
  return {};
}

std::string ProfileName(const ProfileRecord& record) {
  return std::filesystem::path(record.FileName).stem().string();
}

bool UpToDate(const FilterResults& results, const FilterSpec& filterSpec, const IriParams& iri) {
  return results.FilterWave.Calculated && results.Request == filterSpec &&
         (filterSpec.CalcType != FilterCalcType::Iri || results.Iri == iri);
}

// Filters one prepared profile into `out`; false when a procedure that logs its own errors failed.
bool FilterOne(Session& session, AnalysisBlock& block, const FilterSpec& filterSpec, const IriParams& iri,
               const FilterConvergence& limits, FilterResults& out) {
  const DebugTables debug = DebugTablesOf(session);
  const std::int32_t n = block.Count;
  if (n < 1 || block.SamplesPerMetre <= 0)
    throw LegacyError(ErrorNumber::InvalidData, "the profile has not been prepared for analysis");
  const double dx = 1 / block.SamplesPerMetre;
  const Array1<double>& profile = block.Profile.Values;
  switch (filterSpec.CalcType) {
    case FilterCalcType::MovingAverage:
      StoreWave(out.FilterWave, MovingAverageFilter(debug, n, profile, dx, filterSpec.Band, filterSpec.LongCut, filterSpec.ShortCut));
      out.FilterCount = n;
      return true;
    case FilterCalcType::Fourier: {
      WaveSeries result;
      bool ok;
      if (filterSpec.Converge) {
        ok = Cal_FFTフィルタ_収束計算(session, n, block.FftLength1, block.FftLength2, dx, filterSpec.Band, filterSpec.LongCut,
                                 filterSpec.ShortCut, profile, result, limits);
      } else {
        WaveSeries other;
        std::int32_t debugSeq = 0;
        ok = Cal_FFTフィルタ_単体処理(session, debugSeq, 0, n, block.FftLength1, block.FftLength2, dx, filterSpec.Band,
                                 filterSpec.LongCut, filterSpec.ShortCut, profile, result, other);
      }
      if (!ok) return false;
      out.FilterWave = std::move(result);
      out.FilterCount = n;
      return true;
    }
    case FilterCalcType::Iri: {
      block.Iri.IriFilterWave.Calculated = false;  // the parameters may have changed since
      CalcIriFilter(debug, block, iri);
      out.FilterCount = block.Iri.IriFilterCount;  // shorter than the profile by the slope base
      Array1<double> response = block.Iri.IriFilterWave.Values;
      response.resize(out.FilterCount);
      StoreWave(out.FilterWave, std::move(response));
      return true;
    }
    case FilterCalcType::Slope:
      SlopeFilter(block, filterSpec.SlopeMode, filterSpec.SlopeCut);
      out.SlopeWave = block.Filter.SlopeWave;
      // The graph and the export read FilterWave whatever the type, so the slope result goes there too.
      out.FilterWave = block.Filter.SlopeWave;
      out.FilterCount = n;
      return true;
  }
  throw LegacyError(ErrorNumber::InvalidData, "calculation type " +
                                                  std::to_string(static_cast<std::int32_t>(filterSpec.CalcType)) +
                                                  " is not 0 to 3");
}

}  // namespace

std::string FilterKindName(FilterKind kind) {
  switch (kind) {
    case FilterKind::HiPass: return "HiPass";
    case FilterKind::LowPass: return "LowPass";
    case FilterKind::BandPass: return "BandPass";
    case FilterKind::BandCut: return "BandCut";
  }
  return {};
}

std::string FilterShortName(const FilterSpec& filterSpec) {
  static const char* const kSuffix[] = {"HP", "LP", "BP", "BC"};
  const auto band = static_cast<std::size_t>(filterSpec.Band);
  switch (filterSpec.CalcType) {
    case FilterCalcType::MovingAverage: return band < 4 ? std::string("MA") + kSuffix[band] : std::string();
    case FilterCalcType::Fourier: return band < 4 ? std::string("FT") + kSuffix[band] : std::string();
    case FilterCalcType::Iri: return "IRI";
    case FilterCalcType::Slope: return filterSpec.SlopeMode ? "SLHC" : "Slope";
  }
  return {};
}

std::string FilterLegendText(const FilterSpec& filterSpec) {
  return UsesPassKind(filterSpec.CalcType) ? FilterKindName(filterSpec.Band) : std::string();
}

FilterField CheckFilterSpec(Session& session, const FilterSpec& filterSpec) {
  const auto fault = [&session](FilterField field, const char* text) {
    session.Ui().Inform(text, "エラー", MsgIcon::Exclamation);
    return field;
  };
  if (UsesPassKind(filterSpec.CalcType)) {
    if (filterSpec.Band == FilterKind::HiPass && filterSpec.LongCut <= 0)
      return fault(FilterField::LongCut, "Long CutOff wavelength > 0.0 で指定して下さい。");
    if (filterSpec.Band != FilterKind::HiPass && filterSpec.ShortCut <= 0)
      return fault(FilterField::ShortCut, "Short CutOff wavelength > 0.0 で指定して下さい。");
    if ((filterSpec.Band == FilterKind::BandPass || filterSpec.Band == FilterKind::BandCut) && filterSpec.LongCut <= filterSpec.ShortCut)
      return fault(FilterField::LongCut, "Long CutOff > Short CutOff で指定して下さい。");
  }
  if (filterSpec.CalcType == FilterCalcType::Slope && filterSpec.SlopeMode && filterSpec.SlopeCut <= 0)
    return fault(FilterField::SlopeCut, "Slope のCut値は > 0.0 で指定して下さい。");
  return FilterField::None;
}

FilterRunOutcome RunFilter(Session& session, const FilterSpec& filterSpec, bool force,
                           const std::vector<ProfileRecord*>& profiles, const IriParams& iri,
                           const FilterConvergence& limits) {
  FilterRunOutcome outcome;
  outcome.Focus = CheckFilterSpec(session, filterSpec);
  if (outcome.Focus != FilterField::None) return outcome;

  ProgressScope display(session.Ui(), kProgressTitle, kPleaseWait);
  // Said where the model is built; the filter then goes on with what the matrices hold.
  if (filterSpec.CalcType == FilterCalcType::Iri && QuarterCarIsSingular(iri))
    session.Ui().Message("Singular matrix", "", MsgIcon::None, MsgButtons::Ok, MsgAnswer::Ok);
  std::size_t done = 0;
  for (ProfileRecord* record : profiles) {
    session.Ui().ProgressStart(kProgressTitle, ProgressCaption(filterSpec.CalcType) + ProfileName(*record));
    FilterResults& stored = record->Analysis.Filter;
    if (force || !UpToDate(stored, filterSpec, iri)) {
      FilterResults fresh = stored;
      bool ok = false;
      try {
        ok = FilterOne(session, record->Analysis, filterSpec, iri, limits, fresh);
      } catch (const std::exception& error) {
        ErrorLog(session, kModule, kGoProc, NamingFiles(record->FileName, error));
      }
      if (!ok) return outcome;
      fresh.Request = filterSpec;
      fresh.Iri = iri;
      stored = std::move(fresh);
    }
    ReportProgress(session.Ui(), static_cast<int>(++done * 100 / profiles.size()));
  }
  outcome.Completed = true;
  return outcome;
}

}  // namespace velmora
