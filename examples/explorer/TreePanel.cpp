#include "TreePanel.h"

#include "Icons.h"
#include "PackageXml.h"

#include "zrVOMGUI/foundation/vom/linkFields.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>
#include <type_traits>

namespace Explorer {

using ZR::RefT;
using ZR::VOM::Field;
using ZR::VOM::MField;
using ZR::VOM::Object;
using ZR::VOM::Path;

namespace {

/// Puts objects into a field: before a position of a list, or in place of a single link.
void insert(Field &field, std::size_t index, Objects const &objects)
{
    ZR::VOM::visitLinkField(field, [&](auto &links) {
        if constexpr (std::is_base_of_v<MField, std::decay_t<decltype(links)>>)
            links.replace(std::min(index, links.getNum()), 0, {objects.begin(), objects.end()});
        else if (!objects.empty())
            links.set(objects.front());
    });
}

/// Takes objects that are moved within a list out of where they were.
std::size_t takeOut(Field &field, std::size_t index, Objects const &objects)
{
    ZR::VOM::visitLinkField(field, [&](auto &links) {
        if constexpr (std::is_base_of_v<MField, std::decay_t<decltype(links)>>) {
            for (std::size_t i = links.getNum(); i-- != 0;) {
                const RefT<Object> value(links.get(i));
                if (std::find(objects.begin(), objects.end(), value) == objects.end())
                    continue;
                links.replace(i, 1, {});
                if (i < index && index != std::size_t(-1))
                    --index;
            }
        }
    });
    return index;
}

} // namespace

TreePanel::TreePanel(PackageModel &shownModel, QWidget *parent)
    : QWidget(parent)
    , model(shownModel)
    , tree(new Tree(RefT<ZR::VOM::Exporter>(new ZR::VOM::XmlExporter), makeImporter(), this))
{
    auto *const settings = new QHBoxLayout;
    const auto add = [&](QString const &text, QString const &help, auto &&toggle) {
        auto *const box = new QCheckBox(text, this);
        box->setToolTip(help);
        connect(box, &QCheckBox::toggled, this, toggle);
        settings->addWidget(box);
    };
    add(tr("Hide fields"), tr("Values stand right below their objects"),
        [this](bool on) { tree->setHideFields(on); });
    add(tr("Class names"), tr("Labels begin with the class"),
        [this](bool on) { tree->setTypeName(on); });
    add(tr("Dependencies only"), tr("Other fields of packages don't appear"), [this](bool on) {
        if (on)
            tree->addAcceptedField("Package", "depends");
        else
            tree->removeAcceptedField("Package", "depends");
    });
    settings->addStretch();

    tree->setTypeName(false);
    tree->setNameField("name");
    tree->setTooltipField("summary");
    tree->setObjIconDB(makeIconDB(IconRule::ByPriority));
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(settings);
    column->addWidget(tree);
    connectTree();
    updateRows();
}

void TreePanel::connectTree()
{
    // The tree is a child of this panel, and so are its signals.
    tree->sigDrop.connect([this](Tree::SigDropData const &drop) { insertDropped(drop); });
    tree->sigEditRowError.connect([this](Tree::SigEditRowErrorData const &refused) {
        emit said(tr("%1 is no name: %2")
                      .arg(QString::fromStdString(refused.text),
                           QString::fromUtf8(refused.error.what())));
    });
}

void TreePanel::updateRows()
{
    std::vector<Path> selected;
    tree->getSel(selected);
    tree->clear();
    const auto &sections = model.getSections();
    tree->addRows({sections.begin(), sections.end()}, 0);
    tree->setSel(selected);
}

/// Copies, moves and links as the user asked. What came from another program is new already.
void TreePanel::insertDropped(Tree::SigDropData const &drop)
{
    const RefT<Field> field(drop.path.getLast().field);
    if (!field)
        return;
    const bool copies = drop.action == Qt::CopyAction && !drop.fromXml && !drop.copyObjs.empty();
    Objects const &objects = copies ? drop.copyObjs : drop.objs;
    try {
        std::size_t index = drop.index;
        if (drop.action == Qt::MoveAction)
            index = takeOut(*field, index, objects);
        insert(*field, index, objects);
    } catch (ZR::Error const &error) {
        emit said(QString::fromUtf8(error.what()));
    }
}

} // namespace Explorer
