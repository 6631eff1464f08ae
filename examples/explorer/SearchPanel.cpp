#include "SearchPanel.h"

#include "PackageGraph.h"

#include "zrVOMGUI/foundation/util/LockBool.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace Explorer {

using ZR::RefT;

SearchPanel::SearchPanel(PackageGraph &shownGraph, QWidget *parent)
    : QWidget(parent)
    , graph(shownGraph)
    , search(new QLineEdit(this))
    , list(new QListWidget(this))
{
    makeSearch();
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->setIconSize(QSize(18, 18));
    list->setAccessibleName(tr("Shown objects"));
    connect(list, &QListWidget::itemSelectionChanged, this, &SearchPanel::selectInGraph);
    connect(list, &QListWidget::itemActivated, this,
            [this](QListWidgetItem *item) { emit packageChosen(item->text()); });

    auto *const listLabel = new QLabel(tr("&Shown"), this);
    listLabel->setBuddy(list);
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(8);
    column->addWidget(search);
    column->addWidget(listLabel);
    column->addWidget(list, 1);
}

void SearchPanel::makeSearch()
{
    QStringList names;
    for (RefT<Package> const &package : graph.getModel().getPackages())
        names << QString::fromStdString(package->getName());
    names.sort();
    auto *const completer = new QCompleter(names, this);
    completer->setFilterMode(Qt::MatchContains);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setMaxVisibleItems(12);
    connect(completer, qOverload<QString const &>(&QCompleter::activated), this,
            &SearchPanel::packageChosen);

    search->setPlaceholderText(tr("Find a package"));
    search->setAccessibleName(tr("Find a package"));
    search->setClearButtonEnabled(true);
    search->setCompleter(completer);
    connect(search, &QLineEdit::returnPressed, this, [this] { choose(search->text()); });
}

void SearchPanel::startSearch()
{
    search->setFocus(Qt::ShortcutFocusReason);
    search->selectAll();
}

/// A full name stands for itself, and part of one for the first name that the completer offers.
void SearchPanel::choose(QString const &typed)
{
    const QString name = typed.trimmed();
    if (name.isEmpty())
        return;
    QCompleter &completer = *search->completer();
    const bool isName = bool(graph.getModel().findPackage(name.toStdString()));
    completer.setCompletionPrefix(name);
    const QString offered = completer.currentCompletion();
    emit packageChosen(isName || offered.isEmpty() ? name : offered);
}

void SearchPanel::updateList()
{
    const ZR::LockBool filling(isFilling);
    listed = graph.getVisibleObjs();
    const auto nameOf = [](RefT<ZR::VOM::Object> const &object) {
        return QString::fromStdString(ZR::cast<Item>(object)->getName());
    };
    std::sort(listed.begin(), listed.end(),
              [&](auto const &a, auto const &b) { return nameOf(a) < nameOf(b); });
    const Objects selected = graph.getSel();
    const std::set<RefT<ZR::VOM::Object>> selection(selected.begin(), selected.end());

    list->clear();
    const int rowHeight = std::max(list->fontMetrics().height(), list->iconSize().height()) + 8;
    RefT<ZR::VOM::GUI::ObjectIconDB> const &icons = graph.getObjIconDB();
    for (RefT<ZR::VOM::Object> const &object : listed) {
        const QIcon icon = icons ? icons->find(object) : QIcon();
        auto *const row = new QListWidgetItem(icon, nameOf(object), list);
        // As narrow as the list, so that long names are shortened.
        row->setSizeHint(QSize(1, rowHeight));
        row->setSelected(selection.count(object));
    }
}

void SearchPanel::selectInGraph()
{
    if (isFilling)
        return;
    Objects selection;
    for (int row = 0; row < list->count(); ++row)
        if (list->item(row)->isSelected())
            selection.push_back(listed[std::size_t(row)]);
    graph.setSel(selection);
    graph.showSel();
}

} // namespace Explorer
