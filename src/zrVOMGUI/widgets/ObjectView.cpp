#include "zrVOMGUI/widgets/ObjectView.h"

#include "zrVOMGUI/foundation/gui/GuardedDrag.h"
#include "zrVOMGUI/foundation/gui/QtVersion.h"
#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/presentation/ItemLabel.h"
#include "zrVOMGUI/transfer/MimeData.h"

#include <QApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QScopeGuard>
#include <QStyle>

#include <iostream>
#include <memory>
#include <utility>

namespace ZR::VOM::GUI {

namespace {

int iconSizeOf(QWidget const &widget)
{
    return widget.style()->pixelMetric(QStyle::PM_ButtonIconSize, nullptr, &widget);
}

/// Keeps what an operation of a derived class raises from Qt and from the model.
template <class Call>
void guard(char const *operation, Call const &call)
{
    tryCatch(std::string("ZR::VOM::GUI::ObjectView::") + operation, call);
}

constexpr QPalette::ColorGroup groups[] = {QPalette::Active, QPalette::Disabled,
                                           QPalette::Inactive};

} // namespace

ObjectView::ObjectView(RefT<Exporter> const &xmlExporter, RefT<Xml::Importer> const &xmlImporter,
                       QWidget *parent)
    : QFrame(parent)
    , exporter(xmlExporter)
    , importer(xmlImporter)
    , iconLabel(new QLabel(this))
    , textLabel(new QLabel(this))
    , externDrag(std::make_unique<ZR::GUI::GuardedDrag>())
{
    constexpr int edge = 4;
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(edge, edge, edge, edge);
    row->addWidget(iconLabel, 0);
    row->addWidget(textLabel, 1);
    // A label is a line of text, whatever it looks like.
    textLabel->setTextFormat(Qt::PlainText);
    setFrameStyle(int(QFrame::Box) | int(QFrame::Sunken));
    for (QPalette::ColorGroup group : groups)
        backgrounds[group] = palette().brush(group, QPalette::Window);
    updateBackground();
    updateAlignment();
    setAutoFillBackground(true);
    setAcceptDrops(true);
}

ObjectView::ObjectView(QWidget *parent)
    : ObjectView({}, {}, parent)
{
}

ObjectView::~ObjectView()
{
    connection.disconnect();
    // A drag that runs has nothing to offer from now on.
    externDrag->abandon();
    if (internDrag)
        internDrag->mimeData()->clear();
}

void ObjectView::setObjIconDB(RefT<ObjectIconDB> const &db)
{
    objIconDB = db;
    if (value)
        updateIcon();
}

void ObjectView::setFieldName(std::string const &name)
{
    fieldName = name;
    if (value)
        updateLabel();
}

void ObjectView::setTypeName(bool on)
{
    typeName = on;
    if (value)
        updateLabel();
}

void ObjectView::setDragEnabled(bool enabled, bool intern)
{
    dragEnabled = enabled;
    dragIntern = intern;
}

/// KEPT: picture and text of an object that dies stay, until the next value: users of a form read
/// there what was lost. A host that wants an empty slot calls clear().
void ObjectView::setValue(RefT<Object> const &object)
{
    const QPointer<ObjectView> self(this);
    value = object;
    hasValue = true;
    updateIcon();
    // The database may have destroyed or cleared the slot.
    if (self && hasValue)
        updateLabel();
}

void ObjectView::clear()
{
    ++numPictures;
    ++numTexts;
    connection.disconnect();
    nameField = {};
    value = {};
    hasValue = false;
    iconLabel->setPixmap({});
    textLabel->setText({});
}

void ObjectView::confirm()
{
    const QPointer<ObjectView> self(this);
    guard("onConfirm", [this] { onConfirm(); });
    if (!self)
        return;
    SigVoidData sigData;
    sigConfirm.emitCatching(sigData, "ZR::VOM::GUI::ObjectView::confirm");
}

/// The database may destroy the slot, or give it another picture, which is the newer one.
void ObjectView::updateIcon()
{
    const QPointer<ObjectView> self(this);
    const unsigned number = ++numPictures;
    QPixmap picture;
    guard("onUpdateIcon", [&] { picture = onUpdateIcon(); });
    if (self && number == numPictures)
        iconLabel->setPixmap(picture);
}

/// As with the icon.
void ObjectView::updateLabel()
{
    const QPointer<ObjectView> self(this);
    const unsigned number = ++numTexts;
    QString text;
    guard("onUpdateText", [&] { text = onUpdateText(); });
    if (self && number == numTexts)
        textLabel->setText(text);
}

void ObjectView::onPtrObjFieldNameSigSet(FieldString::SigSetData const &)
{
    updateLabel();
}

void ObjectView::onConfirm() {}

QPixmap ObjectView::onUpdateIcon()
{
    const QPointer<ObjectView> self(this);
    QIcon icon;
    const RefT<ObjectIconDB> db = objIconDB; // It may set another one.
    tryCatch("ZR::VOM::GUI::ObjectView::onUpdateIcon", [&] {
        if (db)
            icon = db->find(RefT<Object>(value));
    });
    if (!self)
        return {};
    const int size = iconSizeOf(*this);
    return ZR::GUI::pixmapFor(*this, icon, QSize(size, size));
}

QString ObjectView::onUpdateText()
{
    RefT<FieldString> found;
    const std::string label = getItemLabel(RefT<Object>(value), fieldName, typeName, false, found);
    if (found.get() != nameField.get()) {
        connection.disconnect();
        nameField = found;
        if (found)
            connection = found->sigSet.connect([this](FieldString::SigSetData const &sigData) {
                onPtrObjFieldNameSigSet(sigData);
            });
    }
    return QString::fromStdString(label);
}

void ObjectView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::StyleChange && value)
        updateIcon();
    else if (event->type() == QEvent::LayoutDirectionChange)
        updateAlignment();
    else if (event->type() == QEvent::PaletteChange)
        updateBackground();
    QFrame::changeEvent(event);
}

/// In an active window that of texts to edit, otherwise the one around the slot. Also with a
/// palette that comes later, unless a host has chosen another background.
void ObjectView::updateBackground()
{
    // Qt takes a brush that is set in one group for chosen in all of them, and hands none on.
    QPalette const around =
        parentWidget() ? parentWidget()->palette() : QApplication::palette(this);
    QPalette colors = palette();
    bool isNew = false;
    for (QPalette::ColorGroup group : groups) {
        QBrush &last = backgrounds[group];
        if (colors.brush(group, QPalette::Window) != last)
            continue;
        last = group == QPalette::Active ? colors.brush(group, QPalette::Base)
                                         : around.brush(group, QPalette::Window);
        isNew = isNew || colors.brush(group, QPalette::Window) != last;
        colors.setBrush(group, QPalette::Window, last);
    }
    if (isNew)
        setPalette(colors);
}

/// Next to the icon, whatever the direction of the text itself.
void ObjectView::updateAlignment()
{
    textLabel->setAlignment(Qt::AlignVCenter | Qt::AlignAbsolute |
                            (isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft));
}

void ObjectView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && dragEnabled)
        pressPos = event->pos();
}

void ObjectView::mouseMoveEvent(QMouseEvent *event)
{
    const bool mayDrag = (event->buttons() & Qt::LeftButton) && dragEnabled;
    if (mayDrag && (event->pos() - pressPos).manhattanLength() >= QApplication::startDragDistance())
        startDrag();
}

/// Returns when the drag is over. Until then the model may change, and the slot may be destroyed.
void ObjectView::startDrag()
{
    if (!dragObjs.empty())
        return;
    const QPointer<ObjectView> self(this);
    const auto release = qScopeGuard([&] {
        if (self)
            const std::vector<RefT<Object>> released = std::exchange(dragObjs, {});
    });
    dragObjs = {RefT<Object>(value)};
    std::unique_ptr<QMimeData> payload(createMimeData(exporter, &dragObjs, nullptr));
    if (!self)
        return;
    const QPixmap pixmap = makeDragPixmap();
    if (!self)
        return;
    if (dragIntern)
        runInternDrag(std::move(payload), pixmap);
    else
        externDrag->exec(*this,
                         {std::move(payload),
                          pixmap,
                          {},
                          [this](QDrag &drag, Qt::DropAction action) {
                              guard("onDragDrop", [&] { onDragDrop(drag, action); });
                          }},
                         dragActions, defaultDragAction);
}

void ObjectView::runInternDrag(std::unique_ptr<QMimeData> payload, QPixmap const &pixmap)
{
    const QPointer<ObjectView> self(this);
    const QPointer<ZR::GUI::Drag> drag(new ZR::GUI::Drag(this));
    internDrag = drag;
    drag->setMimeData(payload.release());
    drag->setPixmap(pixmap);
    const Qt::DropAction action = drag->exec(dragActions, defaultDragAction);
    if (self && drag)
        guard("onDragDrop", [&] { onDragDrop(*drag, action); });
}

void ObjectView::onDragDrop(ZR::GUI::Drag &drag, Qt::DropAction action)
{
    if (action == Qt::MoveAction && drag.source() != drag.target())
        moveAway();
}

void ObjectView::onDragDrop(QDrag &drag, Qt::DropAction action)
{
    if (action == Qt::MoveAction && drag.source() != drag.target())
        moveAway();
}

/// KEPT: the slot stays set, to nothing. Forms tell a value that the user moved away from one that
/// was never there.
void ObjectView::moveAway()
{
    const QPointer<ObjectView> self(this);
    setValue({});
    if (self)
        confirm();
}

QPixmap ObjectView::makeDragPixmap() const
{
    return makeItemListPixmap(*this, dragObjs, objIconDB, fieldName, typeName, 0,
                              iconSizeOf(*this));
}

ObjectView::Dropped ObjectView::readDropped(QMimeData const &payload) const
{
    Dropped dropped;
    if (!getFromMimeData(payload, dropped.objects) && importer) {
        dropped.copied = true;
        getFromMimeData(payload, *importer, dropped.objects);
    }
    return dropped;
}

/// The importer may destroy the slot, which takes nothing any more then.
void ObjectView::acceptDrag(QDropEvent &event)
{
    if (!event.mimeData())
        return;
    const QPointer<ObjectView> self(this);
    const Dropped dropped = readDropped(*event.mimeData());
    bool isTaken = false;
    if (self)
        guard("onCanDrop", [&] { isTaken = onCanDrop(dropped.objects, dropped.copied, event); });
    event.setAccepted(isTaken);
}

void ObjectView::dragEnterEvent(QDragEnterEvent *event)
{
    acceptDrag(*event);
}

void ObjectView::dragMoveEvent(QDragMoveEvent *event)
{
    acceptDrag(*event);
}

/// KEPT: says of every drop that it was taken, also of one that changes nothing. What doesn't fit
/// isn't offered to the widgets behind the slot.
void ObjectView::dropEvent(QDropEvent *event)
{
    if (event->mimeData()) {
        const QPointer<ObjectView> self(this);
        const Dropped dropped = readDropped(*event->mimeData());
        if (self)
            guard("onDrop", [&] { onDrop(dropped.objects, dropped.copied, *event); });
    }
    event->accept();
}

bool ObjectView::onCanDrop(std::vector<RefT<Object>> const &objects, bool, QDropEvent &event)
{
    if (objects.size() != 1)
        return false;
    const Qt::DropActions possible = dropActions & event.possibleActions();
    const Qt::DropAction action = actionFor(event, possible);
    if (action == Qt::IgnoreAction)
        return false;
    // KEPT: each accepted step of a drag is told on the standard output: whoever integrates the
    // slot follows there what a drop would do.
    std::cout << "ZR::VOM::GUI::ObjectView::onCanDrop()\n"
              << "  dropActions: " << int(possible) << '\n'
              << "  dropAction: " << int(action) << '\n';
    event.setDropAction(action);
    return true;
}

/// KEPT: a modifier alone asks for one action and for no other; several at once ask for the
/// default. Users who hold Shift get a move or nothing.
Qt::DropAction ObjectView::actionFor(QDropEvent const &event, Qt::DropActions possible) const
{
    const Qt::KeyboardModifiers modifiers = ZR::GUI::modifiersOf(event);
    Qt::DropAction wanted = defaultDropAction;
    if (modifiers == Qt::ShiftModifier)
        wanted = Qt::MoveAction;
    else if (modifiers == Qt::ControlModifier)
        wanted = Qt::CopyAction;
    else if (modifiers == Qt::AltModifier)
        wanted = Qt::LinkAction;
    return Qt::DropAction(int(possible & wanted));
}

void ObjectView::onDrop(std::vector<RefT<Object>> const &objects, bool, QDropEvent &)
{
    if (objects.size() != 1)
        return;
    const QPointer<ObjectView> self(this);
    setValue(objects.front());
    if (self)
        confirm();
}

} // namespace ZR::VOM::GUI
