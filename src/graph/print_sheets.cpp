#include "graph/print_sheets.h"

#include <fmt/format.h>

#include <cmath>

#include "base/common.h"
#include "base/legacy_format.h"
#include "graph/chart_data.h"
#include "graph/charts.h"
#include "profile/profile_list.h"

namespace velmora::graph {
namespace {

constexpr double kMargin = 10;  // mm
constexpr Colour kInk = 0x000000;

FontSpec SheetFont(double size, bool bold = false) {
  FontSpec font;
  font.Name = "ＭＳ ゴシック";
  font.Size = size;
  font.Bold = bold;
  return font;
}

void CentredText(const SheetTarget& sheet, double centreX, double top, const std::string& text, const FontSpec& font) {
  sheet.Devices.drText(sheet.Target, centreX - sheet.Devices.TextWidth(sheet.Target, text, font) / 2, top, text,
                       {.Font = font, .Color = kInk});
}

// The frame of the whole sheet and its title; the area left inside under the title.
Rect FramedSheet(const SheetTarget& sheet, const std::string& title) {
  const Rect page{kMargin, kMargin, sheet.Sheet.ScaleWidth - kMargin, sheet.Sheet.ScaleHeight - kMargin};
  sheet.Devices.drBox(sheet.Target, page.Left, page.Top, page.Right, page.Bottom, {.Width = 2, .Color = kInk});
  const FontSpec titleFont = SheetFont(16, true);
  CentredText(sheet, (page.Left + page.Right) / 2, page.Top + 3, title, titleFont);
  const double below = page.Top + 5 + sheet.Devices.TextHeight(sheet.Target, titleFont);
  return {page.Left + 3, below, page.Right - 3, page.Bottom - 3};
}

// KP (km) of distance `metres` along the profile's evaluation.
double KpAt(const SectionIri& sections, double metres) {
  return sections.KpStart + (sections.KpStep < 0 ? -metres : metres) / 1000;
}

}  // namespace

double OctaveCentreWavelength(int band) {
  const double longest = 102.4 / std::pow(2.0, band - 1);
  return longest / std::sqrt(2.0);
}

void Print_Profile(const SheetTarget& sheet, const Rect& area, const ProfileRecord& profile, const SheetScales& scales,
                   Colour colour) {
  const std::span<const double> values = Samples(profile.WorkProfile, profile.WorkCount);
  auto [low, high] = ValueRange(values);
  if (scales.FromOptions) {
    low = scales.Options.ProfileMin;
    high = scales.Options.ProfileMax;
  }
  ChartPanel panel(sheet.Devices, sheet.Target, sheet.Sheet, area, {0, ProfileLength(profile), false, "距離 (m)", 8},
                   {low, high, false, "mm", 4}, SheetFont(7));
  panel.DrawAxes("Profile");
  panel.Wave(0, PitchOf(profile), values, {.Color = colour});
}

void Print_Profile_v01(const SheetTarget& sheet, const Rect& area, const ProfileRecord& profile,
                       const SheetScales& scales, Colour colour) {
  const double split = area.Top + area.Height() * 0.6;
  Print_Profile(sheet, {area.Left, area.Top, area.Right, split}, profile, scales, colour);
  const IriResults& iri = profile.Analysis.Iri;
  const std::span<const double> windows = Samples(iri.IriWindowWave.Values, iri.IriWindowCount);
  auto [low, high] = ValueRange(windows);
  low = 0;
  if (scales.FromOptions) {
    low = scales.Options.IriMin;
    high = scales.Options.IriMax;
  }
  ChartPanel panel(sheet.Devices, sheet.Target, sheet.Sheet, {area.Left, split, area.Right, area.Bottom},
                   {0, ProfileLength(profile), false, "", 8}, {low, high, false, "mm/m", 3}, SheetFont(7));
  panel.DrawAxes(fmt::format("10m IRI   (IRI {:.2f} mm/m)", iri.IriWholeProfile));
  panel.Wave(FirstIriWindowAt(profile), PitchOf(profile), windows, {.Color = colour});
}

void Print_印刷パターン_v01(const SheetTarget& sheet, const ProfileRecord& profile, const SheetScales& scales,
                          const std::array<Colour, 10>& bandColours) {
  const PrintOptions& options = scales.Options;
  const Rect inside = FramedSheet(sheet, "プロファイル分割図");
  // The header cells: where, under which conditions, which road before repair, and the work items.
  const FontSpec small = SheetFont(7);
  const double cellHeight = 9;
  const std::string items[] = {
      fmt::format("{}", profile.RouteName.empty() ? ProfileList::NameOf(profile) : profile.RouteName),
      fmt::format("ピッチ {:g} m  延長 {:.1f} m", PitchOf(profile), ProfileLength(profile)), profile.FileName,
      fmt::format("{}", fmt::join(options.HeaderItems, " / "))};
  const char* const labels[] = {"現地", "条件", "補修前路面図", "施工関連"};
  const double cellWidth = inside.Width() / 4;
  for (int i = 0; i < 4; ++i) {
    const double left = inside.Left + cellWidth * i;
    sheet.Devices.drBox(sheet.Target, left, inside.Top, left + cellWidth, inside.Top + cellHeight, {.Color = kInk});
    sheet.Devices.drText(sheet.Target, left + 1, inside.Top + 0.8, labels[i], {.Font = SheetFont(6, true), .Color = kInk});
    sheet.Devices.drText(sheet.Target, left + 1, inside.Top + 4.5, items[i], {.Font = small, .Color = kInk});
  }
  const double top = inside.Top + cellHeight + 2;
  const double profileHeight = (inside.Bottom - top) * 0.3;
  Print_Profile_v01(sheet, {inside.Left, top, inside.Right, top + profileHeight}, profile, scales, 0x000000);

  const OctaveBandSet& octave = profile.Analysis.Octave;
  const BandReductionBlock& reduction = profile.Analysis.BandReduction;
  const double titleRoom = sheet.Devices.TextHeight(sheet.Target, small) * 1.5;
  const std::vector<Rect> panels =
      StackedPanels({inside.Left, top + profileHeight + 1, inside.Right, inside.Bottom}, 9, titleRoom);
  for (int band = 1; band <= 9; ++band) {
    const auto at = static_cast<std::size_t>(band);
    const std::span<const double> values = Samples(octave.Band[at].Values, profile.Analysis.Count);
    auto [low, high] = ValueRange(values);
    const double reach = scales.FromOptions ? options.OctaveMax[at] : std::fmax(std::fabs(low), std::fabs(high));
    const double limit = reduction.Limits[at];
    const bool hasLimit = reduction.Calculated && limit > 0 && limit < 1e30;
    ChartPanel panel(sheet.Devices, sheet.Target, sheet.Sheet, panels[at - 1],
                     {0, ProfileLength(profile), false, band == 9 ? "距離 (m)" : "", 8}, {-reach, reach, false, "mm", 2},
                     small);
    panel.DrawAxes(fmt::format("{} {}{}", OctaveLabel(band), OctaveRange(band),
                               hasLimit ? "   低減ライン ±" + FormatNumber(limit, "0.00") + " mm" : ""),
                   options.OctaveBackground[at]);
    panel.Wave(0, PitchOf(profile), values, {.Color = bandColours[at]});
    if (hasLimit) {
      const Colour colour = LimitLineColourFor(options.LimitLineColour, bandColours[at]);
      panel.HorizontalRule(limit, {.Style = 1, .Color = colour});
      panel.HorizontalRule(-limit, {.Style = 1, .Color = colour});
    }
  }
}

void Print_印刷パターン_v02(const SheetTarget& sheet, std::span<const ProfileRecord* const> profiles,
                          const SheetScales& scales, std::span<const Colour> colours) {
  const Rect inside = FramedSheet(sheet, "IRI図");
  const FontSpec font = SheetFont(9);
  sheet.Devices.drText(sheet.Target, inside.Left + 2, inside.Top, "IRI", {.Font = SheetFont(12, true), .Color = kInk});
  const std::string dated = "測定日：H99.99.99";
  sheet.Devices.drText(sheet.Target, inside.Right - 2 - sheet.Devices.TextWidth(sheet.Target, dated, font), inside.Top,
                       dated, {.Font = font, .Color = kInk});
  double kpLow = 1e30, kpHigh = -1e30, iriHigh = 0;
  for (const ProfileRecord* p : profiles) {
    const SectionIri& sections = p->Analysis.Sections;
    for (double kp : {KpAt(sections, 0), KpAt(sections, ProfileLength(*p))}) {
      kpLow = std::fmin(kpLow, kp);
      kpHigh = std::fmax(kpHigh, kp);
    }
    iriHigh = std::fmax(iriHigh, ValueRange(Samples(p->Analysis.Iri.IriWindowWave.Values, p->Analysis.Iri.IriWindowCount)).second);
  }
  const double iriLow = scales.FromOptions ? scales.Options.IriMin : 0;
  if (scales.FromOptions) iriHigh = scales.Options.IriMax;
  ChartPanel panel(sheet.Devices, sheet.Target, sheet.Sheet,
                   {inside.Left, inside.Top + 8, inside.Right, inside.Bottom},
                   {kpLow, kpHigh, false, "KP", 8, "0.00"}, {iriLow, iriHigh, false, "IRI (mm/m)", 5, "0.0"}, font);
  panel.DrawAxes("");
  std::vector<LegendEntry> legend;
  for (std::size_t i = 0; i < profiles.size(); ++i) {
    const ProfileRecord& p = *profiles[i];
    const Colour colour = colours.empty() ? kInk : colours[i % colours.size()];
    const IriResults& iri = p.Analysis.Iri;
    const double dx = PitchOf(p);
    const double first = FirstIriWindowAt(p);
    std::vector<double> kps, values;
    for (std::int32_t k = 1; k <= iri.IriWindowCount; ++k) {
      kps.push_back(KpAt(p.Analysis.Sections, first + (k - 1) * dx));
      values.push_back(iri.IriWindowWave.Values[k]);
    }
    panel.Line(kps, values, {.Color = colour});
    std::vector<double> from, to, section;
    for (std::ptrdiff_t s = 1; s <= p.Analysis.Sections.Sec100.size(); ++s) {
      from.push_back(p.Analysis.Sections.Sec100[s].KpFrom);
      to.push_back(p.Analysis.Sections.Sec100[s].KpTo);
      section.push_back(p.Analysis.Sections.Sec100[s].Iri);
    }
    panel.Steps(from, to, section, {.Width = 3, .Color = colour});
    legend.push_back({fmt::format("{}  IRI {}", ProfileList::NameOf(p), FormatNumber(iri.IriWholeProfile, "0.00")), colour});
  }
  legend.push_back({"10m 連続 (細線) / 100m 区間 (太線)", kInk});
  panel.Legend(legend);
}

void Print_プロファイル分解(const SheetTarget& sheet, std::span<const ProfileRecord* const> profiles, double speed) {
  const Rect inside = FramedSheet(sheet, "プロファイル分割図");
  DrawDevices& dev = sheet.Devices;
  const FontSpec heading = SheetFont(11, true);
  const FontSpec font = SheetFont(8);
  dev.drText(sheet.Target, inside.Left + 2, inside.Top, "◆プロファイル分割", {.Font = heading, .Color = kInk});
  double y = inside.Top + 8;
  dev.drText(sheet.Target, inside.Left + 4, y, "OctaveBand 統計値", {.Font = SheetFont(9, true), .Color = kInk});
  y += 6;
  // Columns: band, frequency at the speed, wavelength, then per profile its section, σ and Δ.
  const double columns[] = {0, 22, 40, 58, 110, 150, 170};
  const char* const heads[] = {"OCT", "(Hz)", "(m)", "Prof", "区間", "σ", "Δ"};
  const double row = 5;
  const auto cells = [&](const std::vector<std::string>& texts, bool bold) {
    for (std::size_t c = 0; c < texts.size(); ++c)
      dev.drText(sheet.Target, inside.Left + 4 + columns[c], y + 0.8, texts[c],
                 {.Font = bold ? SheetFont(8, true) : font, .Color = kInk});
    dev.drLine(sheet.Target, inside.Left + 2, y + row, inside.Right - 2, y + row, {.Color = 0x808080});
    y += row;
  };
  cells({heads, heads + 7}, true);
  const double metresPerSecond = speed / 3.6;
  for (int band = 1; band <= 9 && y + row < inside.Bottom; ++band) {
    const double wavelength = OctaveCentreWavelength(band);
    for (std::size_t i = 0; i < profiles.size() && y + row < inside.Bottom; ++i) {
      const ProfileRecord& p = *profiles[i];
      const SeriesStats& stats = p.Analysis.Octave.Band[static_cast<std::size_t>(band)].Stats;
      const SectionIri& sections = p.Analysis.Sections;
      cells({i == 0 ? OctaveLabel(band) : "", i == 0 ? FormatNumber(metresPerSecond / wavelength, "0.00") : "",
             i == 0 ? FormatNumber(wavelength, "0.0") : "", ProfileList::NameOf(p),
             FormatNumber(KpAt(sections, 0), "0.000") + " - " + FormatNumber(KpAt(sections, ProfileLength(p)), "0.000"),
             FormatNumber(stats.StdDev, "0.00"), FormatNumber(stats.Maximum - stats.Minimum, "0.00")},
            false);
    }
  }
}

}  // namespace velmora::graph
