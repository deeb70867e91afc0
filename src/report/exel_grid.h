#pragma once
// The chosen profiles of a report on one common distance grid: rows at the pitch of the last chosen
// profile from the lowest to the highest end of them all, each profile's samples, bands and 10 m
// continuous IRI placed on its rows, and its 10, 100 and 200 m section tables read from that IRI.
#include "profile/profile_list.h"
#include "report/exel_template.h"
#include "report/position_axis.h"
#include "report/report_script.h"

namespace velmora {

// Above this many rows the user is asked, twice, whether to go on.
inline constexpr std::int32_t kExelRowsWithoutQuestion = 30000;

// Fills the slots of `state` for the profile parameters of `report` that have a choice, and its
// UnitText ("km" or "m" by the distance unit, "KP" for kilometre posts). The profiles need their
// octave bands and their 10 m continuous IRI computed. False (after a warning or a cancelled
// question) means stop.
bool SetupExelData(Session& session, const ExelTemplate& report, const ProfileList& profiles,
                   const PositionAxis& axis, ExelScriptState& state);

}  // namespace velmora
