#pragma once
// The printed sheets, composed on a printer's surface in millimetres (y down): the profile split sheet
// with its nine octave panels, the IRI sheet, and the decomposition statistics. Scales and colours
// come from the print options; all text is in "ＭＳ ゴシック".
#include <array>
#include <span>

#include "graph/chart_panel.h"
#include "graph/print_options.h"
#include "profile/profile_record.h"

namespace velmora::graph {

struct SheetTarget {
  DrawDevices& Devices;
  Hdc Target = 0;
  const DrawSurface& Sheet;  // the whole paper, mm
};

// The sheet's scales: from the options when a file gave them, else from the data.
struct SheetScales {
  const PrintOptions& Options;
  bool FromOptions = false;
};

// One profile panel: elevation (mm) against distance (m), axes by the profile's range (or the
// options), the line clipped to the frame.
void Print_Profile(const SheetTarget& sheet, const Rect& area, const ProfileRecord& profile, const SheetScales& scales,
                   Colour colour);
// The sheet pattern's variant: the "Profile" panel with the "10m IRI" panel under it.
void Print_Profile_v01(const SheetTarget& sheet, const Rect& area, const ProfileRecord& profile,
                       const SheetScales& scales, Colour colour);
// Pattern 1, "プロファイル分割図": frame, header cells, profile and 10 m IRI, the nine octave panels
// with their wavelength ranges and reduction limits ("0.00").
void Print_印刷パターン_v01(const SheetTarget& sheet, const ProfileRecord& profile, const SheetScales& scales,
                          const std::array<Colour, 10>& bandColours);
// Pattern 2, "IRI図": the IRI of the profiles against KP in their colours.
void Print_印刷パターン_v02(const SheetTarget& sheet, std::span<const ProfileRecord* const> profiles,
                          const SheetScales& scales, std::span<const Colour> colours);
// The decomposition sheet: "◆プロファイル分割" and the table "OctaveBand 統計値" of each band's
// frequency at `speed` (km/h), wavelength, section, σ and Δ of every profile.
void Print_プロファイル分解(const SheetTarget& sheet, std::span<const ProfileRecord* const> profiles, double speed);

// The centre wavelength (m) of an octave band: the geometric mean of its ends.
double OctaveCentreWavelength(int band);

}  // namespace velmora::graph
