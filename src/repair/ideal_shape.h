#pragma once
// The study's calculation drivers as engine operations (three-wave split, M wave, S wave, ideal shape),
// the calculation of a study with the user's adjustment, and the registration of the study's waves as
// new profiles.
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "analysis/octave.h"
#include "base/session.h"
#include "profile/profile_list.h"
#include "profile/profile_record.h"
#include "repair/m_wave.h"
#include "repair/three_wave.h"
#include "results/band_reduction_types.h"
#include "results/iri_types.h"

namespace velmora {

// What every driver works on: the registered profiles, the rows selected in the tab's list (1-based),
// the tab's boxes, the values the current splits were made with, and the plan range check box.
struct StudyRun {
  std::span<ProfileRecord> Profiles;
  std::span<const std::int32_t> Selected;
  ThreeWaveForm Form;
  ThreeWaveParams* Stored = nullptr;
  bool UsePlanRange = false;  // chk補修計画範囲
};

// The study's IRI parameters (session.CurrentConditions.RepairIri) with the tab's base length (m).
IriParams StudyIriParams(Session& session, double iriLength);
// The plan range of a profile from its ERD record (used only when `use` and the record has one).
PlanRange PlanRangeOf(const ProfileRecord& record, bool use);

// The octave split of a study wave (mm, 1..n, pitch m) through a preparation of its own, with
// writeDebug as the octave pass takes it.
bool StudyWaveOctave(Session& session, const Array1<double>& wave, double pitch, std::int32_t writeDebug,
                     OctaveBands& bands);
// The IRI of a study wave with the study's parameters: its response, window series and whole IRI.
bool StudyWaveIri(Session& session, const Array1<double>& wave, double pitch, const IriParams& iri, IriResults& out);
// The profile's S wave split into octaves and reduced band by band as `by` tells: S' and its bands.
bool ReduceShortWave(Session& session, const ProfileRecord& record, const ShortReduction& by, BandReductionResult& out);

// The drivers; each first checks the boxes (messages of the split) and passes over profiles whose
// earlier step has not run. True when every step that ran succeeded.
bool cmdGo_3波長分解(Session& session, StudyRun& run, ThreeWaveRun* result = nullptr);
bool cmdGo_中波長(Session& session, StudyRun& run);
bool cmdGo_短波長(Session& session, StudyRun& run);
bool cmdGo_理想形状(Session& session, StudyRun& run);

// M' of a study: M + UserAdjust, S + M' + L and the middle wave of its split, and the IRI of M' and of
// S + M' + L with the study's parameters (five progress steps). Needs the M-wave step of `record`.
bool CalcStudyAdjustment(Session& session, ProfileRecord& record, StudyTarget& target, const ThreeWaveForm& form);

// What the ideal shape takes for a profile: the chosen study's outcome when it has been calculated,
// else the calculated one (M' as straightened).
const MWaveOutcome& ChosenOutcome(const ProfileRecord& record);
// The M' of ChosenOutcome.
const Array1<double>& ChosenMPrime(const ProfileRecord& record);

// Which waves to register.
struct WaveChoice {
  bool Long = false;
  bool Middle = false;
  bool Short = false;
};

// Writes the chosen waves of the selected profiles as ERD files in the project's profile folder and
// registers them in `list`. `pattern` is the "FileExportName" setting of the kind (empty: the built-in
// name "<profile>_L波_<date>"). The title gets "(L)", "(M)" or "(S)". Returns false when the split
// could not be made or a file could not be written or registered.
bool cmdProfile登録_3波分解(Session& session, StudyRun& run, ProfileList& list, const WaveChoice& waves, const std::string& pattern);
// The same for the ideal shape of the selected profiles: "_理想形状案_", title mark "(理想形状案)".
bool cmdProfile登録_理想形状(Session& session, StudyRun& run, ProfileList& list, const std::string& pattern);

}  // namespace velmora
