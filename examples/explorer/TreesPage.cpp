#include "TreesPage.h"

#include "Icons.h"
#include "PackageXml.h"
#include "TreeSettings.h"
#include "treeDrops.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>

namespace Explorer {

using ZR::RefT;
using ZR::VOM::Field;
using ZR::VOM::Path;

namespace {

template <class Tree>
Tree *makeTree(QWidget *parent)
{
    return new Tree(RefT<ZR::VOM::Exporter>(new ZR::VOM::XmlExporter), makeImporter(), parent);
}

} // namespace

TreesPage::TreesPage(PackageModel &shownModel, QWidget *parent)
    : QWidget(parent)
    , model(shownModel)
    , third(makeTree<Third>(this))
    , second(makeTree<Second>(this))
    , first(makeTree<First>(this))
    , sections(shownModel, [this] { updateRows(); })
{
    constexpr int edge = 12;
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(edge, edge, edge, edge);
    auto *const settings = new TreeSettings(this);
    column->addWidget(settings);
    auto *const row = new QHBoxLayout;
    row->setSpacing(edge);
    column->addLayout(row, 1);
    addColumn(*row, "ObjectTreeView", *third);
    addColumn(*row, "V2::ObjectTreeView", *second);
    addColumn(*row, "V1::ObjectTreeView", *first);
    setUpRows(*third);
    setUpRows(*second);
    setUpFirst();
    connectSettings(*settings);
    updateRows();
}

void TreesPage::addColumn(QHBoxLayout &row, QString const &title, QWidget &tree)
{
    auto *const column = new QVBoxLayout;
    auto *const label = new QLabel(title, this);
    label->setBuddy(&tree);
    column->addWidget(label);
    column->addWidget(&tree, 1);
    row.addLayout(column, 1);
}

/// What the two trees of rows have alike.
template <class Tree>
void TreesPage::setUpRows(Tree &tree)
{
    tree.setTypeName(false);
    tree.setNameField("name");
    tree.setTooltipField("summary");
    tree.setObjIconDB(makeIconDB(IconRule::ByPriority));
    // The trees are children of this page, and so are their signals.
    tree.sigDrop.connect([this](typename Tree::SigDropData const &drop) {
        const QString refusal = tryEdit([&] {
            insertDropped(model, {drop.action, drop.fromXml, drop.objs, drop.copyObjs,
                                  RefT<Field>(drop.path.getLast().field), drop.index});
        });
        if (!refusal.isEmpty())
            emit said(refusal);
    });
    tree.sigEditRowError.connect([this](typename Tree::SigEditRowErrorData const &refused) {
        emit said(QString::fromUtf8(refused.error.what()));
    });
}

void TreesPage::setUpFirst()
{
    first->setTypeName(false);
    first->setFieldName("name");
    first->setFieldTooltip("summary");
    first->setObjIconDB(makeIconDB(IconRule::ByPriority));
    first->header()->hide();
    first->setSelectionMode(QAbstractItemView::ExtendedSelection);
    first->setDragDropMode(QAbstractItemView::DragDrop);
    first->setDefaultDropAction(Qt::CopyAction);
    first->sigDrop.connect([this](First::SigDropData const &drop) {
        const QString refusal = tryEdit([&] {
            insertDropped(model,
                          {drop.action, drop.fromXml, *drop.objs, *drop.copyObjs,
                           RefT<Field>(drop.fieldPath->getLast().field), std::size_t(drop.index)});
        });
        if (!refusal.isEmpty())
            emit said(refusal);
    });
}

template <class Operation>
void TreesPage::forEachTree(Operation const &operation)
{
    operation(*third);
    operation(*second);
    operation(*first);
}

void TreesPage::connectSettings(TreeSettings &settings)
{
    connect(&settings, &TreeSettings::hideFieldsToggled, this, [this](bool on) {
        third->setHideFields(on);
        second->setHideFields(on);
        first->hideFields(on);
    });
    connect(&settings, &TreeSettings::classNamesToggled, this,
            [this](bool on) { forEachTree([on](auto &tree) { tree.setTypeName(on); }); });
    connect(&settings, &TreeSettings::dependenciesOnlyToggled, this,
            [this](bool on) { forEachTree([on](auto &tree) { setDependenciesOnly(tree, on); }); });
}

/// Shows the sections anew, and selects what was selected.
void TreesPage::updateRows()
{
    const auto rows = sections.getSections();
    forEachTree([&](auto &tree) {
        std::vector<Path> selected;
        tree.getSel(selected);
        tree.clear();
        tree.addRows(rows, 0);
        tree.setSel(selected);
    });
}

} // namespace Explorer
