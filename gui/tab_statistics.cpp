#include "tab_statistics.h"

#include <QCheckBox>
#include <QFont>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QSplitter>
#include <QTableView>
#include <QVBoxLayout>

#include "output_tabs.h"
#include "tab_charts.h"
#include "workbench/evaluation_tabs.h"

namespace velmora::gui {
namespace {

namespace tab = workbench::tab;

// The whole-length page of the profile side has the profiles' chart with the display marks; its
// section pages, whose rows are the sections of the grid, the chart of those sections.
constexpr int kWholePage = 0;
constexpr int kFirstSectionPage = 1;
constexpr int kLastSectionPage = 3;

QCheckBox* Bound(bool& field, const QString& caption, const QString& name) {
  auto* box = new QCheckBox(caption);
  box->setObjectName(name);
  box->setChecked(field);
  QObject::connect(box, &QCheckBox::toggled, box, [&field](bool on) { field = on; });
  return box;
}

// A group of check boxes under its header check, which switches the whole group; `header` (may be
// null) keeps the header's own state where the run reads it.
template <std::size_t N>
QGroupBox* CheckGroup(const QString& title, const std::array<const char*, N>& names, std::array<bool, N>& field,
                      bool* header, const QString& name, int columns) {
  auto* group = new QGroupBox;
  auto* layout = new QGridLayout(group);
  auto* top = new QCheckBox(title);
  top->setObjectName(name + "Top");
  if (header != nullptr) top->setChecked(*header);
  layout->addWidget(top, 0, 0, 1, columns);
  std::vector<QCheckBox*> members;
  for (std::size_t i = 0; i < N; ++i) {
    members.push_back(Bound(field[i], QString::fromUtf8(names[i]), name + QString::number(i)));
    layout->addWidget(members.back(), 1 + static_cast<int>(i) / columns, static_cast<int>(i) % columns);
  }
  QObject::connect(top, &QCheckBox::toggled, group, [&field, header, members](bool on) {
    if (header != nullptr) *header = on;
    SwitchGroup(field, on);
    for (QCheckBox* member : members) member->setChecked(on);
  });
  return group;
}

void ShowWords(QListWidget* list, const std::vector<std::string>& words) {
  list->clear();
  for (const std::string& word : words) list->addItem(QString::fromStdString(word));
}

// lst並順 with its ▲ and ▼: the words of an ordering list, most significant first.
QWidget* OrderList(const QString& title, std::vector<std::string>& order, const QString& name) {
  auto* box = new QGroupBox(title);
  auto* layout = new QHBoxLayout(box);
  auto* list = new QListWidget;
  list->setObjectName(name);
  ShowWords(list, order);
  list->setMaximumHeight(90);
  auto* buttons = new QVBoxLayout;
  const auto move = [list, &order](int step) {
    const int from = list->currentRow();
    const int to = from + step;
    if (from < 0 || to < 0 || to >= list->count()) return;
    list->insertItem(to, list->takeItem(from));
    list->setCurrentRow(to);
    std::swap(order[static_cast<std::size_t>(from)], order[static_cast<std::size_t>(to)]);
  };
  for (const auto& [caption, step] : {std::pair{"▲", -1}, std::pair{"▼", 1}}) {
    auto* button = new QPushButton(QString::fromUtf8(caption));
    button->setObjectName(name + (step < 0 ? "Up" : "Down"));
    QObject::connect(button, &QPushButton::clicked, list, [move, step] { move(step); });
    buttons->addWidget(button);
  }
  layout->addWidget(list);
  layout->addLayout(buttons);
  return box;
}

}  // namespace

void StatisticsPageModel::SetPage(const StatisticsPage& page) {
  beginResetModel();
  page_ = page;
  endResetModel();
}

int StatisticsPageModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(page_.RowCount());
}

int StatisticsPageModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() || page_.Empty() ? 0 : static_cast<int>(page_.Width());
}

QVariant StatisticsPageModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const auto row = static_cast<std::size_t>(index.row());
  if (role == Qt::DisplayRole) return QString::fromStdString(page_.Cell(row, static_cast<std::size_t>(index.column())));
  if (role == Qt::FontRole && row < page_.Head.size()) {
    QFont bold;
    bold.setBold(true);
    return bold;
  }
  if (role == Qt::TextAlignmentRole && row >= page_.Head.size() && index.column() > 0)
    return QVariant(Qt::AlignRight | Qt::AlignVCenter);
  return {};
}

StatisticsTabPage::StatisticsTabPage(MainWindow& window, workbench::Workbench& bench) : window_(window), bench_(bench) {
  setObjectName("statisticsTab");
  QTableView* list = window.NewProfileList();
  auto* go = new QPushButton(tr("実行"));
  auto* save = new QPushButton(tr("保存"));
  save->setObjectName("cmdSave統計値");
  connect(save, &QPushButton::clicked, this, [this] { workbench::SaveStatisticsTab(bench_); });

  auto* left = new QWidget;
  auto* leftLayout = new QVBoxLayout(left);
  leftLayout->setContentsMargins(0, 0, 0, 0);
  leftLayout->addWidget(list, 1);
  auto* scroll = new QScrollArea;
  scroll->setWidgetResizable(true);
  scroll->setWidget(MakeChoices());
  leftLayout->addWidget(scroll, 2);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(go);
  buttons->addWidget(save);
  buttons->addStretch();
  leftLayout->addLayout(buttons);

  SplitPage(this, left, MakeResults(), 380, 820);
  window.AddOwnPage(tab::Statistics, tr("統計値"), this, list, go, [this] { ShowResults(); });
}

QWidget* StatisticsTabPage::MakeChoices() {
  StatisticsSelection& s = bench_.Evaluation.Statistics.Selection;
  auto* choices = new QWidget;
  auto* layout = new QVBoxLayout(choices);
  auto* profile = new QGroupBox(tr("プロファイル"));
  auto* profileLayout = new QVBoxLayout(profile);
  profileLayout->addWidget(CheckGroup(tr("帯域"), kStatisticsBands, s.ProfileBands, &s.ProfileBandsHeader, "chk帯域_pro", 3));
  profileLayout->addWidget(CheckGroup(tr("統計値"), kStatisticsMeasures, s.ProfileMeasures, nullptr, "chk統計値_pro", 3));
  profileLayout->addWidget(OrderList(tr("並び順"), bench_.StatisticsSortProfile, "lst並順_pro"));
  layout->addWidget(profile);

  auto* iri = new QGroupBox("IRI");
  auto* iriLayout = new QVBoxLayout(iri);
  iriLayout->addWidget(CheckGroup(tr("帯域"), kStatisticsBands, s.IriBands, &s.IriBandsHeader, "chk帯域_IRI", 3));
  iriLayout->addWidget(CheckGroup(tr("統計値"), kStatisticsMeasures, s.IriMeasures, nullptr, "chk統計値_IRI", 3));
  iriLayout->addWidget(CheckGroup(tr("IRI算出基準長"), kIriEvaluationLengths, s.IriLengths, nullptr, "chk評価帳_IRI", 2));
  iriLayout->addWidget(OrderList(tr("並び順"), bench_.StatisticsSortIri, "lst並順_IRI"));
  layout->addWidget(iri);

  // chk統計値: what the profile chart annotates, kept across runs; the chart follows at once.
  auto* marks = new QGroupBox(tr("表示指定"));
  auto* marksLayout = new QGridLayout(marks);  // three to a row, as the check groups above: fits in either language
  const QString markNames[] = {tr("平均"), tr("分散(σ)"), tr("最大"), tr("最小"), tr("IRI")};
  for (std::size_t i = 0; i < bench_.StatisticsMarks.size(); ++i) {
    QCheckBox* mark = Bound(bench_.StatisticsMarks[i], markNames[i], "chk統計値" + QString::number(i));
    connect(mark, &QCheckBox::toggled, this, [this] { chart_->Refresh(); });
    marksLayout->addWidget(mark, static_cast<int>(i / 3), static_cast<int>(i % 3));
  }
  layout->addWidget(marks);
  layout->addStretch();
  return choices;
}

QWidget* StatisticsTabPage::MakeResults() {
  pages_ = new QTabWidget;
  for (const char* caption : kStatisticsPages) {
    auto* model = new StatisticsPageModel;
    model->setParent(this);
    models_.push_back(model);
    auto* view = new QTableView;
    view->setModel(model);
    view->horizontalHeader()->hide();
    view->verticalHeader()->hide();
    pages_->addTab(view, QString::fromUtf8(caption));
  }
  chart_ = new ChartView([this](QSize size, graph::ChartWindow& window) { return RenderPageChart(size, window); });
  connect(pages_, &QTabWidget::currentChanged, chart_, [this] { chart_->Refresh(); });
  auto* splitter = new QSplitter(Qt::Vertical);
  splitter->addWidget(pages_);
  splitter->addWidget(chart_);
  splitter->setSizes({420, 380});
  return splitter;
}

QImage StatisticsTabPage::RenderPageChart(QSize size, graph::ChartWindow& window) const {
  const int shown = pages_->currentIndex();
  if (shown == kWholePage) {
    // The profiles themselves, which a running Go may be writing: the picture on show stays meanwhile.
    if (window_.GoBusy()) return {};
    std::vector<const ProfileRecord*> profiles;
    for (int row : bench_.Selection(tab::Statistics)) profiles.push_back(&bench_.List().Items.at(row));
    if (profiles.empty()) return Notice(size, tr("リストでプロファイルを選択してください。"));
    return RenderChart(
        bench_.Session(), size,
        [&](const graph::ChartCanvas& canvas) { graph::DrawProfileChart(canvas, profiles, bench_.StatisticsMarks); },
        &window);
  }
  if (shown < kFirstSectionPage || shown > kLastSectionPage)
    return Notice(size, tr("全区間または区間集計のページ（プロファイル）を選ぶと図が出ます。"));
  const StatisticsPage& page = models_.at(static_cast<std::size_t>(shown))->Page();
  if (page.Empty()) return Notice(size, tr("結果がありません。実行を押してください。"));
  return RenderChart(
      bench_.Session(), size, [&page](const graph::ChartCanvas& canvas) { graph::DrawStatisticsChart(canvas, page); },
      &window);
}

void StatisticsTabPage::ShowResults() {
  // A new or opened project puts the ordering lists back to their defaults.
  for (const auto& [name, words] : {std::pair{"lst並順_pro", &bench_.StatisticsSortProfile}, std::pair{"lst並順_IRI", &bench_.StatisticsSortIri}}) {
    auto* list = findChild<QListWidget*>(name);
    std::vector<std::string> shown;
    for (int i = 0; i < list->count(); ++i) shown.push_back(list->item(i)->text().toStdString());
    if (shown != *words) ShowWords(list, *words);
  }
  const StatisticsResults& results = bench_.Evaluation.Statistics.Results;
  for (std::size_t i = 0; i < models_.size(); ++i) {
    models_[i]->SetPage(results.Valid ? results.Pages[i] : StatisticsPage{});
    auto* view = static_cast<QTableView*>(pages_->widget(static_cast<int>(i)));
    if (models_[i]->rowCount() < 200) view->resizeColumnsToContents();
  }
  // The first page that holds figures comes to the front.
  for (std::size_t i = 0; i < models_.size(); ++i)
    if (!models_[i]->Page().Empty()) {
      pages_->setCurrentIndex(static_cast<int>(i));
      break;
    }
  chart_->Refresh();
}

StatisticsTabPage* AddStatisticsTab(MainWindow& window, workbench::Workbench& bench) {
  return new StatisticsTabPage(window, bench);
}

}  // namespace velmora::gui
