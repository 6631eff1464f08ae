#include "FieldSlot.h"

#include "Icons.h"
#include "PackageXml.h"

#include "zrVOMGUI/foundation/vom/linkFields.h"
#include "zrVOMGUI/transfer/canDrop.h"

#include <QDropEvent>
#include <QLabel>
#include <QPainter>

#include <algorithm>
#include <type_traits>

namespace Explorer {

using ZR::PtrT;
using ZR::RefT;
using ZR::VOM::Field;
using ZR::VOM::MField;

namespace {

template <class Links>
constexpr bool isList = std::is_base_of_v<MField, std::decay_t<Links>>;

/// What the slot of a field shows.
RefT<ZR::VOM::Object> firstLink(Field &field)
{
    RefT<ZR::VOM::Object> first;
    ZR::VOM::visitLinkField(field, [&](auto &links) {
        if constexpr (!isList<decltype(links)>)
            first = links.get();
        else if (links.getNum() != 0)
            first = links.get(0);
    });
    return first;
}

/// Puts the object in place of the first link, or takes that away.
void setFirstLink(Field &field, RefT<ZR::VOM::Object> const &object)
{
    ZR::VOM::visitLinkField(field, [&](auto &links) {
        if constexpr (!isList<decltype(links)>) {
            links.set(object);
        } else {
            const std::size_t numOld = std::min<std::size_t>(links.getNum(), 1);
            if (object)
                links.replace(0, numOld, {object});
            else
                links.replace(0, numOld, {});
        }
    });
}

} // namespace

FieldSlot::FieldSlot(PackageModel &shownModel, char const *acceptedClass, QString const &hint,
                     QWidget *parent)
    : ObjectView(RefT<ZR::VOM::Exporter>(new ZR::VOM::XmlExporter), makeImporter(), parent)
    , model(shownModel)
    , className(acceptedClass)
    , emptyText(hint)
    , textLabel(&getTextLabel())
{
    setObjIconDB(makeIconDB(IconRule::ByPriority));
    setFieldName("name");
    setDragEnabled(true, false);
    setDefaultDropAction(Qt::LinkAction);
    setDefaultDragAction(Qt::LinkAction);
    // The same in each state of the window.
    setBackgroundRole(QPalette::Base);
    // A long label is shortened to the slot, and doesn't widen it.
    textLabel->setMinimumWidth(1);
    textLabel->installEventFilter(this);
    setEnabled(false);
}

FieldSlot::~FieldSlot()
{
    disconnectField();
}

void FieldSlot::setField(PtrT<Field> const &newField)
{
    if (field == newField)
        return;
    disconnectField();
    field = newField;
    if (field)
        connectField();
    showField();
}

void FieldSlot::connectField()
{
    ZR::VOM::visitLinkField(*field, [this](auto &links) {
        const auto follow = [this](auto const &) { showField(); };
        if constexpr (isList<decltype(links)>)
            connections.push_back(links.sigReplace.connect(follow));
        else
            connections.push_back(links.sigSet.connect(follow));
        connections.push_back(links.sigLost.connect(follow));
        connections.push_back(links.sigDelete.connect([this](auto const &) { setField({}); }));
    });
}

void FieldSlot::disconnectField()
{
    for (ZR::Signal::Connection &held : connections)
        held.disconnect();
    connections.clear();
}

void FieldSlot::showField()
{
    setEnabled(field && ZR::VOM::isLinkType(field->getType()));
    const RefT<Object> object = field ? firstLink(*field) : RefT<Object>();
    if (object)
        setValue(object);
    else
        clear();
    if (!object)
        setToolTip({});
    QWidget::update();
    emit changed();
}

void FieldSlot::unlink()
{
    clear();
    confirm();
}

/// The slot has the new value; the model decides.
void FieldSlot::onConfirm()
{
    if (!field)
        return;
    try {
        setFirstLink(*field, getValue());
    } catch (ZR::Error const &error) {
        emit said(QString::fromUtf8(error.what()));
        showField();
    } catch (...) {
        showField();
        throw;
    }
}

QString FieldSlot::onUpdateText()
{
    const QString text = ObjectView::onUpdateText();
    setToolTip(text);
    return textLabel->fontMetrics().elidedText(text, Qt::ElideRight, textLabel->width());
}

bool FieldSlot::onCanDrop(Objects const &objects, bool copied, QDropEvent &event)
{
    return objects.size() == 1 && canLink(objects.front()) &&
           ObjectView::onCanDrop(objects, copied, event);
}

bool FieldSlot::canLink(RefT<Object> const &object)
{
    if (!field || !object)
        return false;
    if (!object->getClassInfo().isType(className)) {
        sayRefusal(tr("This takes a %1, and not a %2")
                       .arg(QString::fromStdString(className).toLower(),
                            QString::fromUtf8(object->getClassInfo().name).toLower()));
        return false;
    }
    bool isTaken = false;
    ZR::VOM::visitLinkField(*field, [&](auto &links) {
        if constexpr (isList<decltype(links)>)
            isTaken = links.canReplace(0, std::min<std::size_t>(links.getNum(), 1), {object});
        else
            isTaken = links.canSet(object);
    });
    if (!isTaken)
        sayRefusal(tr("The model refuses that"));
    return isTaken;
}

/// Once for each drag: it asks with every move.
void FieldSlot::sayRefusal(QString const &text)
{
    if (text != lastRefusal)
        emit said(text);
    lastRefusal = text;
}

/// What came from another program is new, and nobody owns it yet.
void FieldSlot::onDrop(Objects const &objects, bool copied, QDropEvent &event)
{
    lastRefusal.clear();
    if (objects.size() != 1 || !canLink(objects.front()))
        return;
    if (copied)
        model.adopt(objects);
    ObjectView::onDrop(objects, copied, event);
}

void FieldSlot::dragLeaveEvent(QDragLeaveEvent *event)
{
    lastRefusal.clear();
    ObjectView::dragLeaveEvent(event);
}

void FieldSlot::paintEvent(QPaintEvent *event)
{
    ObjectView::paintEvent(event);
    if (getValue() || !isEnabled())
        return;
    QPainter painter(this);
    constexpr int edge = 6;
    const QRect room = contentsRect().adjusted(edge, 0, -edge, 0);
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(room, int(Qt::AlignVCenter | Qt::AlignLeading),
                     fontMetrics().elidedText(emptyText, Qt::ElideRight, room.width()));
}

bool FieldSlot::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == textLabel && event->type() == QEvent::Resize)
        setTypeName(isTypeName()); // Makes the text anew, for the new width.
    return ObjectView::eventFilter(watched, event);
}

} // namespace Explorer
