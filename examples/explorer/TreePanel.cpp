#include "TreePanel.h"

#include "Icons.h"
#include "PackageXml.h"
#include "TreeSettings.h"
#include "placeObjects.h"

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
{
    auto *const settings = new TreeSettings(this);
    connect(settings, &TreeSettings::hideFieldsToggled, tree, &Tree::setHideFields);
    connect(settings, &TreeSettings::classNamesToggled, tree, &Tree::setTypeName);
    connect(settings, &TreeSettings::dependenciesOnlyToggled, tree, [this](bool on) {
        if (on)
            tree->addAcceptedField("Package", "depends");
        else
            tree->removeAcceptedField("Package", "depends");
    });
    tree->setTypeName(false);
    tree->setNameField("name");
    tree->setTooltipField("summary");
    tree->setObjIconDB(makeIconDB(IconRule::ByPriority));
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(settings);
    column->addWidget(tree);
    connectTree();
    watchSections();
    updateRows();
}

TreePanel::~TreePanel()
{
    sectionsConnection.disconnect();
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

/// The model outlives this panel, and so does the connection's signal, unless somebody removes the
/// field.
void TreePanel::watchSections()
{
    if (auto *const sections = cast<MFieldRef>(model.getArchive()->findField("sections")))
        sectionsConnection = sections->sigReplace.connect([this](auto const &) { updateRows(); });
}

void TreePanel::updateRows()
{
    std::vector<Path> selected;
    tree->getSel(selected);
    tree->clear();
    std::vector<PtrT<Object>> rows;
    if (auto const *const sections = cast<MFieldRef>(model.getArchive()->findField("sections")))
        rows.assign(sections->getAll().begin(), sections->getAll().end());
    tree->addRows(rows, 0);
    tree->setSel(selected);
}

template <class Edit>
void TreePanel::tryEdit(Edit &&edit)
{
    try {
        edit();
    } catch (ZR::Error const &error) {
        emit said(QString::fromUtf8(error.what()));
    }
}

/// Copies, moves and links as the user asked. What came from another program is new already.
void TreePanel::insertDropped(Tree::SigDropData const &drop)
{
    const RefT<Field> field(drop.path.getLast().field);
    if (!field)
        return;
    const bool copies = drop.action == Qt::CopyAction && !drop.fromXml && !drop.copyObjs.empty();
    Objects const &objects = copies ? drop.copyObjs : drop.objs;
    tryEdit([&] {
        if (drop.action == Qt::MoveAction)
            moveObjects(model, *field, drop.index, objects);
        else
            placeObjects(*field, drop.index, objects);
    });
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
                           tryEdit([&] { removeValue(path.getLast()); });
                   });
}

} // namespace Explorer
