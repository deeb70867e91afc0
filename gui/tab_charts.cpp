#include "tab_charts.h"

#include <QCoreApplication>
#include <QPainter>

#include <cstring>
#include <stdexcept>

#include "base/legacy_error.h"
#include "graph/charts.h"
#include "qt_interaction.h"

namespace velmora::gui {
namespace {

using workbench::tab::BandReduction;
using workbench::tab::Filter;
using workbench::tab::IdealShape;
using workbench::tab::MediumWave;
using workbench::tab::ShortWave;
using workbench::tab::ThreeWave;
using workbench::tab::Verification;
using workbench::tab::Iri;
using workbench::tab::Octave;
using workbench::tab::Profile;
using workbench::tab::Psd;

void DrawTab(const graph::ChartCanvas& canvas, int tab, std::span<const ProfileRecord* const> profiles,
             const workbench::Workbench& bench) {
  switch (tab) {
    case Profile: graph::DrawProfileChart(canvas, profiles, bench.StatisticsMarks); break;
    case Filter: graph::DrawFilterChart(canvas, profiles); break;
    case Iri: graph::DrawIriChart(canvas, profiles, bench.Iri.Bands); break;
    case Psd: graph::DrawPsdChart(canvas, profiles, {}); break;
    // The per-profile charts show the first selected profile.
    case Octave: graph::DrawOctaveChart(canvas, *profiles.front()); break;
    case BandReduction:
      graph::DrawBandReductionChart(canvas, *profiles.front(), bench.Session().CurrentConditions.LineColour);
      break;
    // Every step of the study shows the study of the profile as far as it has come.
    case ThreeWave:
    case MediumWave:
    case ShortWave:
    case IdealShape: graph::DrawRepairChart(canvas, *profiles.front()); break;
    default: throw std::logic_error("no chart for tab " + std::to_string(tab));
  }
}

}  // namespace

QImage ImageOf(const graph::Picture& picture) {
  // A cairo raster (premultiplied ARGB, native order) copied into an image of its own.
  cairo_surface_t* raster = picture.Raster();
  cairo_surface_flush(raster);
  const int width = cairo_image_surface_get_width(raster);
  const int height = cairo_image_surface_get_height(raster);
  const QImage view(cairo_image_surface_get_data(raster), width, height, cairo_image_surface_get_stride(raster),
                    QImage::Format_ARGB32_Premultiplied);
  return view.copy();
}

QImage Notice(QSize size, const QString& text) {
  QImage image(size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.drawText(image.rect(), Qt::AlignCenter | Qt::TextWordWrap, text);
  return image;
}

const std::vector<TabPage>& AnalysisPages() {
  static const std::vector<TabPage> pages{{Filter, QT_TRANSLATE_NOOP("TabPage", "フィルター処理"), true, "filter"},
                                          {Octave, QT_TRANSLATE_NOOP("TabPage", "プロファイル分解"), true, "octave", 1500},
                                          {BandReduction, QT_TRANSLATE_NOOP("TabPage", "バンド別低減"), true, "reduce", 1400},
                                          {Psd, QT_TRANSLATE_NOOP("TabPage", "PSD"), false, "psd"},
                                          {Iri, QT_TRANSLATE_NOOP("TabPage", "IRI"), true, "iri"},
                                          {Verification, QT_TRANSLATE_NOOP("TabPage", "精度検証"), true, "xcorr"}};
  return pages;
}

const std::vector<TabPage>& RepairPages() {
  static const std::vector<TabPage> pages{{ThreeWave, QT_TRANSLATE_NOOP("TabPage", "3波長分解"), true, "threewave", 1100},
                                          {MediumWave, QT_TRANSLATE_NOOP("TabPage", "中波長"), true, "medium", 1100},
                                          {ShortWave, QT_TRANSLATE_NOOP("TabPage", "短波長"), true, "short", 1100},
                                          {IdealShape, QT_TRANSLATE_NOOP("TabPage", "理想形状"), true, "ideal", 1100}};
  return pages;
}

const TabPage& ProfilePage() {
  static const TabPage page{Profile, QT_TRANSLATE_NOOP("TabPage", "プロファイル"), false, "profile"};
  return page;
}

QString CaptionOf(const TabPage& page) { return QCoreApplication::translate("TabPage", page.Caption); }

bool HasTabResults(int tab, const ProfileRecord& profile) {
  const AnalysisBlock& a = profile.Analysis;
  switch (tab) {
    case Profile: return profile.WorkCount > 0;
    case Filter: return a.Filter.FilterWave.Calculated;
    case Octave: return a.Octave.Calculated;
    case BandReduction: return a.BandReduction.Calculated;
    case Psd: return a.Psd.Calculated;
    case Iri: return a.Iri.IriWindowWave.Calculated;
    case ThreeWave: return profile.ThreeWave.Valid;
    case MediumWave: return profile.RepairStudy.MiddleValid;
    case ShortWave: return profile.RepairStudy.ShortReducedValid;
    case IdealShape: return profile.RepairStudy.IdealValid;
    default: return false;
  }
}

int ShownProfile(const workbench::Workbench& bench, int tab, const std::vector<int>& rows) {
  for (int row : rows)
    if (HasTabResults(tab, bench.List().Items.at(row))) return row;
  return 0;
}

QImage RenderChart(const Session& session, QSize size, const std::function<void(const graph::ChartCanvas&)>& draw,
                   graph::ChartWindow* window) {
  size = size.expandedTo(QSize(100, 100));
  graph::Picture picture(size.width(), size.height());
  graph::DrawDevices devices;
  const graph::Hdc hdc = devices.regHDCPicture(picture);
  devices.flBox(hdc, 0, 0, size.width(), size.height(), {.Style = 5, .Fill = graph::kWhite});
  const graph::ChartCanvas canvas{.Devices = devices,
                                  .Target = hdc,
                                  .Surface = picture.Surface,
                                  .Area = {16, 12, size.width() - 16.0, size.height() - 12.0},
                                  .Font = graph::FontSpec(),
                                  .Palette = session.Settings.PaletteProfile,
                                  .Bands = session.CurrentConditions.BandColours,
                                  .Window = window};
  try {
    draw(canvas);
  } catch (const std::invalid_argument& error) {  // data no axis can be divided over
    return Notice(size, DialogText(error.what()));
  } catch (const LegacyError& error) {
    return Notice(size, DialogText(error.what()));
  }
  devices.releaseHDC(hdc);
  return ImageOf(picture);
}

QImage RenderTabChart(const workbench::Workbench& bench, int tab, const std::vector<int>& rows, QSize size,
                      graph::ChartWindow* window) {
  size = size.expandedTo(QSize(100, 100));
  std::vector<const ProfileRecord*> profiles;
  for (int row : rows) {
    const ProfileRecord& profile = bench.List().Items.at(row);
    if (HasTabResults(tab, profile)) profiles.push_back(&profile);
  }
  // The verification's results are the last run's, not the profiles'.
  const CorrelationResults& verification = bench.Evaluation.Verification.Results;
  const bool drawable = tab == Verification ? verification.Selection.ProfileCount >= 2 : !profiles.empty();
  if (!drawable)
    return Notice(size, rows.empty() ? QCoreApplication::translate("TabPage", "リストでプロファイルを選択してください。")
                                     : QCoreApplication::translate("TabPage", "結果がありません。Go を押してください。"));
  return RenderChart(
      bench.Session(), size,
      [&](const graph::ChartCanvas& canvas) {
        if (tab == Verification)
          graph::DrawCorrelationChart(canvas, verification.Selection.Names.at(0),
                                      graph::CorrelationCurves(bench.Session(), bench.List(), verification,
                                                               bench.Session().CurrentConditions.Iri));
        else
          DrawTab(canvas, tab, profiles, bench);
      },
      window);
}

}  // namespace velmora::gui
