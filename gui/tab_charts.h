#pragma once
// What each tab of the window draws: the tab's chart from the results the profile records hold,
// through the drawing layer into a picture the window shows.
#include <QImage>
#include <QSize>
#include <QString>

#include <functional>
#include <vector>

#include "graph/chart_window.h"
#include "graph/charts.h"
#include "workbench/workbench.h"

namespace velmora::gui {

// A tab the window offers in profile analysis mode, with its caption.
struct TabPage {
  int Index;
  const char* Caption;  // in the window's source language; CaptionOf gives it in the language in force
  bool HasGo;        // the PSD tab computes on a list click instead
  const char* Slug;  // a plain name for files about the tab
  // The charts of one profile (the first selected) stack a panel per band: they need this height
  // (pixels) to be read, and scroll in a smaller window. 0: the chart fills the tab.
  int StackHeight = 0;
};
const std::vector<TabPage>& AnalysisPages();
// The tabs of the repair-shape study, shown in the other mode.
const std::vector<TabPage>& RepairPages();
// The profile tab, which every mode shows.
const TabPage& ProfilePage();
// The tab's caption in the language in force.
QString CaptionOf(const TabPage& page);

// Whether a profile holds the results the tab's chart draws.
bool HasTabResults(int tab, const ProfileRecord& profile);
// The profile a per-profile chart shows: the first of the rows (from 1) that holds the results; 0: none.
int ShownProfile(const workbench::Workbench& bench, int tab, const std::vector<int>& rows);

// A picture of `size` pixels drawn by `draw` through the drawing layer (the session's palettes), or a
// notice naming the fault when the data cannot be drawn; with `window`, in its ranges.
QImage RenderChart(const Session& session, QSize size, const std::function<void(const graph::ChartCanvas&)>& draw,
                   graph::ChartWindow* window = nullptr);
// The picture's raster as an image of its own.
QImage ImageOf(const graph::Picture& picture);
// A white picture with a line of text, where there is nothing to draw.
QImage Notice(QSize size, const QString& text);

// The chart of `tab` for the rows (from 1) that hold its results, `size` in pixels; a white picture
// with a line of text where there is nothing to draw yet. With `window`, in its ranges, and the
// panels' places written into it.
QImage RenderTabChart(const workbench::Workbench& bench, int tab, const std::vector<int>& rows, QSize size,
                      graph::ChartWindow* window = nullptr);

}  // namespace velmora::gui
