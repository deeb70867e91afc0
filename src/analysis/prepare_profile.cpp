#include "analysis/prepare_profile.h"

#include <string>
#include <vector>

#include "analysis/debug_table.h"
#include "analysis/fft.h"
#include "analysis/octave_bands.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/session.h"
#include "profile/profile_record.h"

namespace velmora {
namespace {

// Position p of a mask of `length` looks at this j (one bin above its own harmonic).
std::int32_t MaskHarmonic(std::int32_t length, std::int32_t p) {
  return p <= length / 2 + 1 ? p : length + 2 - p;
}

void WriteMaskTable(const DebugTables& debug, const AnalysisBlock& block, double dx) {
  const std::int32_t length = block.FftLength2;
  std::vector<std::string> lines;
  lines.reserve(static_cast<std::size_t>(length) + 1);
  std::string head = "No, ff, 1/ff";
  for (int k = 1; k <= kMaskCount; ++k) head += ", fil(" + std::to_string(k) + ")";
  lines.push_back(head);
  for (std::int32_t p = 1; p <= length; ++p) {
    const double ff = MaskHarmonic(length, p) / (static_cast<double>(length) * dx);
    std::string line = FormatNumber(p, "00000") + " " + FormatNumber(ff, "0.00000") + " " +
                       FormatNumber(1 / ff, "0.00000") + " ";
    for (int k = 1; k <= kMaskCount; ++k)
      line += " " + std::to_string(block.Masks[static_cast<std::size_t>(k)][p]);
    lines.push_back(std::move(line));
  }
  WriteDebugTable(debug, "BandFilter.dat", lines);
}

void WriteProfileTable(const DebugTables& debug, const AnalysisBlock& block, double dx) {
  std::vector<std::string> lines{"No, Dist, Profile"};
  lines.reserve(static_cast<std::size_t>(block.Count) + 1);
  for (std::int32_t i = 1; i <= block.Count; ++i)
    lines.push_back(std::to_string(i) + "," + FormatNumber((i - 1) * dx, "0.000") + "," +
                    FormatNumber(block.Profile.Values[i], "0.000000"));
  WriteDebugTable(debug, "Profile.csv", lines);
}

}  // namespace

void PrepareAnalysis(const DebugTables& debug, AnalysisBlock& block, std::int32_t n, const Array1<double>& profile, double pitch) {
  if (n < 1 || profile.size() < n)
    throw LegacyError(ErrorNumber::InvalidData, "PrepareProfile: " + std::to_string(n) +
                                                    " samples asked, profile holds " +
                                                    std::to_string(profile.size()));
  if (!(pitch > 0))
    throw LegacyError(ErrorNumber::InvalidData,
                      "PrepareProfile: pitch " + std::to_string(pitch) + " m is not above zero");
  block.SamplesPerMetre = 1.0 / pitch;
  block.Count = n;
  Array1<double> copy(static_cast<std::size_t>(n));
  for (std::int32_t i = 1; i <= n; ++i) copy[i] = profile[i];
  StoreWave(block.Profile, std::move(copy));
  block.FftLength1 = FftLength1(n);
  block.FftLength2 = FftLength2(n);
  block.Masks = {};
  block.Octave.Calculated = false;
  block.BandReduction.Calculated = false;
  block.Psd.Calculated = false;
  if (debug.On) {
    const double dx = 1.0 / block.SamplesPerMetre;
    EnsureOctaveMasks(block);
    WriteMaskTable(debug, block, dx);
    WriteProfileTable(debug, block, dx);
  }
}

void EnsureOctaveMasks(AnalysisBlock& block) {
  if (block.Masks[1].size() == block.FftLength2) return;
  // The masks work with the pitch as 1/(samples per metre), as every later use does.
  MakeOctaveMasks(block.FftLength2, 1.0 / block.SamplesPerMetre, block.Masks);
}

void PrepareProfile(const DebugTables& debug, ProfileRecord& record) {
  try {
    PrepareAnalysis(debug, record.Analysis, record.WorkCount, record.WorkProfile, record.Erd.StepSize);
  } catch (const LegacyError& error) {
    throw LegacyError(error.Number(), record.FileName + ": " + error.what());
  }
}

}  // namespace velmora
