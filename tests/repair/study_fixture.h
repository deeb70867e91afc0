#pragma once
// A made-up road for the study tests: three sines, one in each wave of the 4 m / 51.2 m split.
#include <cmath>
#include <numbers>
#include <string>

#include "base/session.h"
#include "profile/profile_record.h"
#include "repair/three_wave.h"

namespace velmora::testing {

// 1024 samples at 0.25 m: 5 mm of 100 m wave, 3 mm of 20 m wave, 1 mm of 2 m wave.
inline ProfileRecord ThreeSineProfile(const std::string& fileName = "road.ERD") {
  ProfileRecord record;
  record.FileName = fileName;
  const std::int32_t n = 1024;
  const double pitch = 0.25;
  record.Erd.NumChannels = 1;
  record.Erd.FormatCode = 5;
  record.Erd.StepSize = pitch;
  record.Erd.Title = "試験路";
  record.Erd.ShortName[1] = "RElev";
  record.Erd.YLabel = "Elevation";
  record.Erd.XLabel = "Distance";
  record.SamplesPerMetre = 1 / pitch;
  record.WorkCount = n;
  record.WorkProfile.assign_zero(n);
  for (std::int32_t i = 1; i <= n; ++i) {
    const double x = (i - 1) * pitch;
    const double tau = 2 * std::numbers::pi;
    record.WorkProfile[i] = 5 * std::sin(tau * x / 100) + 3 * std::sin(tau * x / 20) + std::sin(tau * x / 2);
  }
  record.Erd.Elevation = record.WorkProfile;
  record.Erd.NumSamples = n;
  return record;
}

// The tab's boxes for the 4 m / 51.2 m split with a 10 m IRI window and no band lines.
inline ThreeWaveForm StudyForm() {
  ThreeWaveForm form;
  form.LongBoundary = "51.2";
  form.ShortBoundary = "4";
  form.IriLength = "10";
  return form;
}

// The golden car for the study's own IRI parameters.
inline void UseGoldenCarForStudy(Session& session) {
  IriParams& iri = session.CurrentConditions.RepairIri;
  iri = IriParams{80, 63.3, 6, 0.15, 653, 0, 0, 10};
}

}  // namespace velmora::testing
