#include "TreePanel.h"

#include "Icons.h"
#include "PackageXml.h"
#include "TreeSettings.h"
#include "treeDrops.h"

#include "zrVOMGUI/foundation/vom/linkFields.h"

#include <QMenu>
#include <QVBoxLayout>

#include <type_traits>

namespace Explorer {

using ZR::cast;
using ZR::PtrT;
using ZR::RefT;
using ZR::VOM::Field;
using ZR::VOM::MField;
using ZR::VOM::MFieldRef;
using ZR::VOM::Object;
using ZR::VOM::Path;

namespace {

/// Takes a value out of a list, or empties a single link.
void removeValue(Path::Entry const &place)
{
    ZR::VOM::visitLinkField(*place.field, [&](auto &links) {
        using Links = std::decay_t<decltype(links)>;
        if constexpr (std::is_base_of_v<MField, Links>)
            links.replace(place.index, 1, {});
        else
            links.set({});
    });
}

} // namespace

TreePanel::TreePanel(PackageModel &shownModel, QWidget *parent)
    : QWidget(parent)
    , model(shownModel)
    , tree(new Tree(RefT<ZR::VOM::Exporter>(new ZR::VOM::XmlExporter), makeImporter(), this))
    , sections(shownModel, [this] { updateRows(); })
{
    auto *const settings = new TreeSettings(this);
    connect(settings, &TreeSettings::hideFieldsToggled, tree, &Tree::setHideFields);
    connect(settings, &TreeSettings::classNamesToggled, tree, &Tree::setTypeName);
    connect(settings, &TreeSettings::dependenciesOnlyToggled, tree,
            [this](bool on) { setDependenciesOnly(*tree, on); });
    tree->setTypeName(false);
    tree->setNameField("name");
    tree->setTooltipField("summary");
    tree->setObjIconDB(makeIconDB(IconRule::ByPriority));
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(settings);
    column->addWidget(tree);
    connectTree();
    updateRows();
}

void TreePanel::connectTree()
{
    // The tree is a child of this panel, and so are its signals.
    tree->sigDrop.connect([this](Tree::SigDropData const &drop) { insertDropped(drop); });
    tree->sigEditRowError.connect([this](Tree::SigEditRowErrorData const &refused) {
        emit said(tr("The name \"%1\" isn't taken. %2")
                      .arg(QString::fromStdString(refused.text),
                           QString::fromUtf8(refused.error.what())));
    });
    tree->sigRowMenu.connect(
        [this](Tree::SigRowMenuData const &sigData) { popupMenu(sigData.row, sigData.pos); });
}

void TreePanel::updateRows()
{
    std::vector<Path> selected;
    tree->getSel(selected);
    tree->clear();
    tree->addRows(sections.getSections(), 0);
    tree->setSel(selected);
}

void TreePanel::insertDropped(Tree::SigDropData const &drop)
{
    edit([&] {
        Explorer::insertDropped(model, {drop.action, drop.fromXml, drop.objs, drop.copyObjs,
                                        RefT<Field>(drop.path.getLast().field), drop.index});
    });
}

template <class Edit>
void TreePanel::edit(Edit &&change)
{
    const QString refusal = tryEdit(change);
    if (!refusal.isEmpty())
        emit said(refusal);
}

void TreePanel::popupMenu(Tree::RowHandle const &row, QPoint const &pos)
{
    auto *const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (auto const *const item = dynamic_cast<Item *>(tree->getRowObj(row)))
        addObjectActions(*menu, row, *item);
    if (row)
        addRemoveAction(*menu, tree->getRowPath(row));
    if (menu->isEmpty())
        delete menu;
    else
        menu->popup(pos);
}

void TreePanel::addObjectActions(QMenu &menu, Tree::RowHandle const &row, Item const &item)
{
    const QString name = QString::fromStdString(item.getName());
    if (dynamic_cast<Package const *>(&item))
        menu.addAction(tr("&Show in the graph"), this, [=] { emit packageChosen(name); });
    const auto rename = [this, weakRow = std::weak_ptr<Tree::Row>(row), name] {
        tree->editRow(weakRow.lock(), name.toStdString());
    };
    menu.addAction(tr("&Rename"), this, rename)->setShortcut(Qt::Key_F2);
}

/// For a row that shows a value of a field.
void TreePanel::addRemoveAction(QMenu &menu, Path const &path)
{
    if (path.getType() != Path::Value)
        return;
    const RefT<Field> field(path.getLast().field);
    if (!field)
        return;
    menu.addAction(tr("Re&move from %1").arg(QString::fromStdString(field->name)), this,
                   [this, path, object = path.getObj()] {
                       // The model may have changed since.
                       if (path.getLast().field && path.getObj() == object)
                           edit([&] { removeValue(path.getLast()); });
                   });
}

} // namespace Explorer
