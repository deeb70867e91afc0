#pragma once
// A made-up road for the study tests: three sines, one in each wave of the 4 m / 51.2 m split.
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "base/session.h"
#include "profile/profile_record.h"
#include "repair/three_wave.h"
#include "support/profile_fixture.h"

namespace velmora::testing {

// 1024 samples at 0.25 m: 5 mm of 100 m wave, 3 mm of 20 m wave, 1 mm of 2 m wave.
inline ProfileRecord ThreeSineProfile(const std::string& fileName = "road.ERD") {
  const double tau = 2 * std::numbers::pi;
  std::vector<double> samples;
  for (int i = 0; i < 1024; ++i) {
    const double x = i * 0.25;
    samples.push_back(5 * std::sin(tau * x / 100) + 3 * std::sin(tau * x / 20) + std::sin(tau * x / 2));
  }
  ProfileRecord record = MakeProfile("試験路", 0.25, std::move(samples));
  record.FileName = fileName;
  record.Erd.ShortName[1] = "RElev";
  record.Erd.YLabel = "Elevation";
  record.Erd.XLabel = "Distance";
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
