#include "GraphPage.h"

#include "GraphControls.h"
#include "PackageGraph.h"
#include "SearchPanel.h"

#include <QHBoxLayout>
#include <QLocale>
#include <QScrollArea>

namespace Explorer {

namespace {

/// A column that scrolls when the window is low, and is as wide as what it holds.
QScrollArea *makeColumn(QWidget *content, QWidget *parent)
{
    auto *const area = new QScrollArea(parent);
    area->setWidget(content);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFocusPolicy(Qt::NoFocus);
    area->setFixedWidth(content->sizeHint().width() + 8);
    return area;
}

} // namespace

GraphPage::GraphPage(PackageModel &shownModel, QWidget *parent)
    : QWidget(parent)
    , model(shownModel)
    , graph(new PackageGraph(shownModel, this))
    , searchPanel(new SearchPanel(*graph, this))
    , controls(new GraphControls(*graph, this))
{
    constexpr int searchWidth = 210;
    searchPanel->setFixedWidth(searchWidth);
    graph->setMinimumSize(320, 240);
    graph->setFrameShape(QFrame::StyledPanel);

    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(12, 12, 12, 12);
    row->setSpacing(12);
    row->addWidget(searchPanel);
    row->addWidget(graph, 1);
    row->addWidget(makeColumn(controls, this));

    connect(searchPanel, &SearchPanel::packageChosen, this, &GraphPage::showPackage);
    connect(controls, &GraphControls::changed, this, [this] {
        searchPanel->updateList();
        updateFigures();
    });
    connectGraph();
}

void GraphPage::connectGraph()
{
    const auto update = [this](auto const &) {
        searchPanel->updateList();
        updateFigures();
    };
    // The graph is a child of this page, and so are its signals: no slot outlives what it uses.
    graph->sigInsertNode.connect(update);
    graph->sigRemoveNode.connect(update);
    graph->sigSel.connect(update);
}

void GraphPage::showPackage(QString const &name)
{
    const auto package = model.findPackage(name.toStdString());
    if (!package) {
        emit said(tr("No package is called %1").arg(name));
        return;
    }
    sayLeft(graph->showPackage(package).left);
    searchPanel->updateList();
    updateFigures();
}

void GraphPage::showMore()
{
    const PackageGraph::Revealed revealed = graph->showMore();
    if (revealed.shown == 0)
        emit said(tr("No neighbours are hidden"));
    sayLeft(revealed.left);
    updateFigures();
}

void GraphPage::hideSelected()
{
    if (graph->getSel().empty())
        emit said(tr("Nothing is selected"));
    graph->hideSelected();
    updateFigures();
}

void GraphPage::clear()
{
    graph->hideAll();
    updateFigures();
}

void GraphPage::layOut()
{
    graph->layout();
    updateFigures();
}

void GraphPage::showSelected()
{
    graph->showSel();
}

void GraphPage::copySelected()
{
    const std::size_t number = graph->getSel().size();
    if (number == 0) {
        emit said(tr("Nothing is selected"));
        return;
    }
    graph->copySelected();
    emit said(tr("%1 objects are on the clipboard").arg(number));
}

void GraphPage::paste()
{
    if (!graph->paste())
        emit said(tr("The clipboard holds no objects"));
    searchPanel->updateList();
    updateFigures();
}

void GraphPage::startSearch()
{
    searchPanel->startSearch();
}

void GraphPage::sayLeft(std::size_t number)
{
    if (number != 0)
        emit said(tr("%1 more neighbours are hidden").arg(QLocale().toString(qulonglong(number))));
}

void GraphPage::updateFigures()
{
    const PackageGraph::Counts counts = graph->count();
    ZR::VOM::GUI::LayoutFigures const &figures = graph->getLayoutFigures();
    const QLocale locale;
    const auto part = [&](QString const &what, std::size_t number) {
        return what + " " + locale.toString(qulonglong(number));
    };
    const QStringList parts = {part(tr("Known"), counts.known), part(tr("Visible"), counts.visible),
                               part(tr("Links"), counts.links), part(tr("Layers"), figures.layers),
                               part(tr("Crossings"), figures.crossings)};
    emit figuresChanged(parts.join(QString::fromUtf8("  ·  ")));
}

} // namespace Explorer
