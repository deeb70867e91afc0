#include "report/project_record.h"

#include "base/number_helpers.h"

namespace velmora {
namespace {

bool ErdChanged(const ErdRecord& a, const ErdRecord& b) {
  return a.NumSamples != b.NumSamples || a.NumSamplesHeader != b.NumSamplesHeader || a.FormatCode != b.FormatCode ||
         !uNearlyEqual(a.StepSize, b.StepSize) || a.Title != b.Title || a.DistanceUnit != b.DistanceUnit ||
         a.UnitsName[1] != b.UnitsName[1] || a.UnitsName[2] != b.UnitsName[2] || a.ShortName[1] != b.ShortName[1] ||
         a.ShortName[2] != b.ShortName[2] || a.IsMetric != b.IsMetric ||
         !uNearlyEqual(a.SlopeUnitScale, b.SlopeUnitScale) || a.SlopeUnitName != b.SlopeUnitName ||
         a.Elevation != b.Elevation || !uNearlyEqual(a.KpStart, b.KpStart) || a.Lane != b.Lane ||
         a.KpSign != b.KpSign;
}

}  // namespace

ProfileList PersistentCopy(const ProfileList& list) {
  ProfileList copy;
  copy.Selected = list.Selected;
  copy.SelectedRows = list.SelectedRows;
  copy.Views = list.Views;
  copy.Items.resize(list.Count());
  for (std::int32_t i = 1; i <= list.Count(); ++i) {
    const ProfileRecord& from = list.Items[i];
    ProfileRecord& to = copy.Items[i];
    to.SourceType = from.SourceType;
    to.FilePath = from.FilePath;
    to.FileName = from.FileName;
    to.Erd = from.Erd;
    to.RouteName = from.RouteName;
    to.MeasureDate = from.MeasureDate;
    to.Comment = from.Comment;
    for (const StudyTarget& study : from.Studies) {
      StudyTarget kept;
      kept.Name = study.Name;
      kept.Adjusted = study.Adjusted;
      kept.Flags = study.Flags;
      kept.Points = study.Points;
      kept.AdjFlags = study.AdjFlags;
      kept.AdjPoints = study.AdjPoints;
      kept.PlanA = study.PlanA;
      kept.PlanB = study.PlanB;
      kept.PlanC = study.PlanC;
      kept.PlanValue = study.PlanValue;
      kept.PlanText = study.PlanText;
      to.Studies.push_back(std::move(kept));
    }
  }
  return copy;
}

bool ProfilesChanged(const ProfileList& a, const ProfileList& b) {
  if (a.Count() != b.Count()) return true;
  for (std::int32_t i = 1; i <= a.Count(); ++i) {
    const ProfileRecord& p = a.Items[i];
    const ProfileRecord& q = b.Items[i];
    if (p.FileName != q.FileName || ErdChanged(p.Erd, q.Erd) || p.RouteName != q.RouteName ||
        p.MeasureDate != q.MeasureDate || p.Comment != q.Comment)
      return true;
  }
  return false;
}

bool ProjectChanged(const ProjectRecord& a, const ProjectRecord& b) { return ProfilesChanged(a.Profiles, b.Profiles); }

}  // namespace velmora
