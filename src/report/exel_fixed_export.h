#pragma once
// The fixed export "エクセルへエクスポート（TEST)": one profile's positions, elevations, 10 m continuous
// IRI and octave bands written straight into a copy of the fixed template's sheet "データ", from row 3.
#include <ctime>
#include <filesystem>
#include <functional>
#include <optional>

#include "base/session.h"
#include "profile/profile_record.h"
#include "report/position_axis.h"

namespace velmora {

// Where the fixed template lies under the program's folder.
inline constexpr const char* kFixedTemplate = "Exel雛形データ/帳表(補修前後).xlsm";

// Sheet columns of the fixed export: positions, elevations, the IRI, then bands 1..9 from kFixedBandColumn.
inline constexpr int kFixedPositionColumn = 1;
inline constexpr int kFixedElevationColumn = 5;
inline constexpr int kFixedIriColumn = 6;
inline constexpr int kFixedBandColumn = 7;
inline constexpr int kFixedFirstRow = 3;

// cmxExlsTest: writes "帳表(補修前後)_YYYYMMDDHHNNSS.xlsm" into `folder` from `templatePath`. The
// profile needs its octave bands and 10 m continuous IRI. Nullopt when the template is missing or a
// failure was logged; no half-written workbook is left. `open` as for OfferToOpen.
std::optional<std::filesystem::path> cmxExlsTest(Session& session, const ProfileRecord& profile,
                                                 const PositionAxis& axis, const std::filesystem::path& templatePath,
                                                 const std::filesystem::path& folder, const std::tm& time,
                                                 const std::function<void(const std::filesystem::path&)>& open = {});

}  // namespace velmora
