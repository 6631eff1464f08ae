#include "FormPanel.h"

#include "FieldSlot.h"
#include "Icons.h"
#include "LineIcons.h"
#include "NumberEdit.h"
#include "PackageGraph.h"

#include "zrVOMGUI/widgets/PathListView.h"

#include <QAbstractScrollArea>
#include <QCheckBox>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <unordered_map>
#include <unordered_set>

namespace Explorer {

using ZR::cast;
using ZR::PtrT;
using ZR::RefT;
using ZR::VOM::FieldString;
using ZR::VOM::MFieldRef;
using ZR::VOM::Object;
using ZR::VOM::Path;
using ZR::VOM::GUI::ObjsManager;
using ZR::VOM::GUI::PathListView;

namespace {

using ObjPtrs = std::vector<PtrT<Object>>;

constexpr int numColumns = 3; // Of each box: a label, a field and what belongs to it.

/// What the paths lead to, each object once; for a path that ends at a field or a plain value, the
/// object that has it.
ObjPtrs objectsOf(FormPanel::Paths const &paths)
{
    ObjPtrs objects;
    std::unordered_set<Object const *> seen;
    for (Path path : paths) {
        while (!path.getObj() && path.getNum() != 0)
            path.pop();
        const PtrT<Object> object = path.getObj();
        if (object && seen.insert(object.get()).second)
            objects.push_back(object);
    }
    return objects;
}

} // namespace

FormPanel::FormPanel(PackageModel &shownModel, QWidget *parent)
    : QWidget(parent)
    , model(shownModel)
    , title(new QLabel(this))
    , maintainer(new FieldSlot(model, "Maintainer", tr("Drop a maintainer here"), this))
    , dependency(new FieldSlot(model, "Package", tr("Drop a package here"), this))
    , size(new NumberEdit(this))
    , rating(new NumberEdit(static_cast<ObjsManager &>(*size), this))
    , pathList(new PathListView(this))
{
    auto *const column = new QVBoxLayout(this);
    constexpr int edge = 9;
    column->setContentsMargins(edge, edge, edge, edge);
    column->setSpacing(edge);
    QFont titleFont = title->font();
    titleFont.setBold(true);
    title->setFont(titleFont);
    title->setTextFormat(Qt::PlainText);
    column->addWidget(title, 0, Qt::AlignLeading);
    column->addWidget(makePackageBox());
    column->addWidget(makeNumberBox());
    column->addWidget(makePathBox(), 1);
    showPaths({});
}

FormPanel::~FormPanel()
{
    disconnectTitle();
}

QGroupBox *FormPanel::makePackageBox()
{
    auto *const box = new QGroupBox(tr("Package"), this);
    auto *const grid = new QGridLayout(box);
    addSlot(*grid, tr("Maintainer"), *maintainer);
    addSlot(*grid, tr("Needs first"), *dependency);
    return box;
}

void FormPanel::addSlot(QGridLayout &grid, QString const &label, FieldSlot &slot)
{
    connect(&slot, &FieldSlot::said, this, &FormPanel::said);
    auto *const clear = new QToolButton(this);
    clear->setText(QString(QChar(0xd7)));
    clear->setAutoRaise(true);
    clear->setToolTip(tr("Take the link away"));
    clear->setAccessibleName(tr("Clear %1").arg(label));
    clear->setEnabled(false);
    connect(clear, &QToolButton::clicked, &slot, &FieldSlot::unlink);
    connect(&slot, &FieldSlot::changed, clear,
            [&slot, clear] { clear->setEnabled(bool(slot.getValue())); });
    addRow(grid, label, slot, *clear);
}

QGroupBox *FormPanel::makeNumberBox()
{
    auto *const box = new QGroupBox(tr("All selected"), this);
    auto *const grid = new QGridLayout(box);
    size->setField("size");
    constexpr unsigned manyDigits = 10;
    size->setPrec(manyDigits);
    rating->setField("rating");
    addNumber(*grid, tr("&Size, KiB"), *size);
    addNumber(*grid, tr("&Rating"), *rating);

    auto *const create = new QCheckBox(tr("Create on &demand"), box);
    create->setToolTip(tr("A confirmed number is given also to objects that have none"));
    connect(create, &QCheckBox::toggled, this, [this](bool on) {
        size->setCreateOnDemand(on);
        rating->setCreateOnDemand(on);
    });
    auto *const readOnly = new QCheckBox(tr("Read-&only"), box);
    connect(readOnly, &QCheckBox::toggled, this, [this](bool on) {
        size->setEditable(!on);
        rating->setEditable(!on);
    });
    auto *const options = new QHBoxLayout;
    options->addWidget(create);
    options->addWidget(readOnly);
    options->addStretch();
    grid->addLayout(options, grid->rowCount(), 0, 1, numColumns);
    return box;
}

void FormPanel::addNumber(QGridLayout &grid, QString const &label, NumberEdit &edit)
{
    auto *const state = new QLabel(this);
    connect(&edit, &NumberEdit::found, state, [state, &edit](std::size_t count, bool mixed) {
        const std::size_t numObjs = edit.getObjs().size();
        if (mixed)
            state->setText(tr("%1 differ").arg(count));
        else if (count != numObjs)
            state->setText(tr("%1 of %2").arg(count).arg(numObjs));
        else
            state->clear();
    });
    edit.setToolTip(tr("Return sets the number on all selected objects that have one"));
    addRow(grid, label, edit, *state)->setBuddy(&edit);
}

/// The columns of all boxes are of the same widths.
QLabel *FormPanel::addRow(QGridLayout &grid, QString const &label, QWidget &field, QWidget &more)
{
    const QFontMetrics metrics = fontMetrics();
    auto *const caption = new QLabel(label, this);
    caption->setMinimumWidth(metrics.horizontalAdvance(tr("Needs first ")));
    const int row = grid.rowCount();
    grid.addWidget(caption, row, 0);
    grid.addWidget(&field, row, 1);
    grid.addWidget(&more, row, 2, Qt::AlignLeading);
    grid.setColumnMinimumWidth(2, metrics.horizontalAdvance(tr("%1 differ").arg(888)));
    grid.setColumnStretch(1, 1);
    return caption;
}

QGroupBox *FormPanel::makePathBox()
{
    auto *const box = new QGroupBox(tr("Paths"), this);
    auto *const column = new QVBoxLayout(box);
    pathList->setFieldName("name");
    pathList->setTypeName(false);
    pathList->setObjIconDB(makeLineIconDB(makeIconDB(IconRule::ByPriority)));
    column->addWidget(pathList);
    return box;
}

void FormPanel::watch(PackageGraph &graph)
{
    graph.sigSel.connect([this, &graph](auto const &) { showObjects(graph.getSel()); });
}

void FormPanel::showObjects(Objects const &objects)
{
    showPaths(pathsTo(objects));
}

/// Objects that no section owns stand for themselves.
FormPanel::Paths FormPanel::pathsTo(Objects const &objects) const
{
    struct Place {
        MFieldRef *packages = nullptr; // Of the section.
        std::size_t index = 0;
    };
    std::unordered_map<Object const *, Place> places;
    for (RefT<Object> const &object : objects)
        places[object.get()];
    std::size_t numMissing = places.size();
    for (RefT<Section> const &section : model.getSections()) {
        auto *const packages = cast<MFieldRef>(section->findField("packages"));
        for (std::size_t i = 0; packages && numMissing != 0 && i < packages->getNum(); ++i) {
            const auto wanted = places.find(packages->get(i).get());
            if (wanted == places.end() || wanted->second.packages)
                continue;
            wanted->second = {packages, i};
            --numMissing;
        }
    }
    Paths paths;
    for (RefT<Object> const &object : objects) {
        const Place place = places[object.get()];
        paths.emplace_back(PtrT<Object>(place.packages ? place.packages->owner : object.get()));
        if (place.packages)
            paths.back().pushValue(*place.packages, place.index);
    }
    return paths;
}

void FormPanel::watch(QAbstractScrollArea &area, std::function<Paths()> const &getSel)
{
    for (QObject *source :
         {static_cast<QObject *>(&area), static_cast<QObject *>(area.viewport())}) {
        watched[source] = getSel;
        source->installEventFilter(this);
    }
}

bool FormPanel::eventFilter(QObject *source, QEvent *event)
{
    const auto found = watched.find(source);
    if (found != watched.end() &&
        (event->type() == QEvent::MouseButtonRelease || event->type() == QEvent::KeyPress))
        // Once the widget has had the event.
        QTimer::singleShot(0, this, [=, alive = QPointer<QObject>(source)] {
            if (alive)
                showPaths(found->second());
        });
    return QWidget::eventFilter(source, event);
}

void FormPanel::showPaths(Paths const &paths)
{
    pathList->set(paths);
    const ObjPtrs objects = objectsOf(paths);
    size->setObjs(objects);
    rating->setObjs(size->getObjs());
    showPackage(objects.size() == 1 ? PtrT<Package>(cast<Package>(objects.front()))
                                    : PtrT<Package>());
    showTitle(objects);
}

void FormPanel::showPackage(PtrT<Package> const &package)
{
    const auto find = [&](char const *name) {
        return package ? package->findField(name) : PtrT<ZR::VOM::Field>();
    };
    maintainer->setField(find("maintainer"));
    dependency->setField(find("depends"));
}

void FormPanel::showTitle(ObjPtrs const &objects)
{
    disconnectTitle();
    auto *const item = objects.size() == 1 ? cast<Item>(objects.front()) : nullptr;
    if (objects.empty())
        title->setText(tr("Nothing is selected"));
    else if (objects.size() > 1)
        title->setText(tr("%1 objects").arg(objects.size()));
    else
        title->setText(item ? QString::fromStdString(item->getName()) : QString());
    if (item)
        followTitle(*item);
}

/// Its new names, and its death.
void FormPanel::followTitle(Item &item)
{
    titleConnections.push_back(item.sigDelete.connect([this](auto const &) { showTitle({}); }));
    auto *const name = cast<FieldString>(item.findField("name"));
    if (!name)
        return;
    titleConnections.push_back(name->sigSet.connect(
        [this, &item](auto const &) { title->setText(QString::fromStdString(item.getName())); }));
}

void FormPanel::disconnectTitle()
{
    for (ZR::Signal::Connection &held : titleConnections)
        held.disconnect();
    titleConnections.clear();
}

} // namespace Explorer
