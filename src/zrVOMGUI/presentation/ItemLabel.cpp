#include "zrVOMGUI/presentation/ItemLabel.h"

#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/util/text.h"

#include <QFontMetrics>
#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <locale>
#include <sstream>

namespace ZR::VOM::GUI {

char const *const _ObjectItemLabelAddress_1 = "[ZR::VOM::GUI::ObjectItemLabelAddress_1]@%1";
char const *const _ObjectItemLabelType_1 = "[ZR::VOM::GUI::ObjectItemLabelType_1]%1";
char const *const _ObjectItemLabelType_1_Address_2 =
    "[ZR::VOM::GUI::ObjectItemLabelType_1_Address_2]%1 @%2";
char const *const _ObjectItemLabelName_1 = "[ZR::VOM::GUI::ObjectItemLabelName_1]'%1'";
char const *const _ObjectItemLabelAddress_1_Name_2 =
    "[ZR::VOM::GUI::ObjectItemLabelAddress_1_Name_2]'%2' @%1";
char const *const _ObjectItemLabelType_1_Name_2 =
    "[ZR::VOM::GUI::ObjectItemLabelType_1_Name_2]%1 '%2'";
char const *const _ObjectItemLabelType_1_Address_2_Name_3 =
    "[ZR::VOM::GUI::ObjectItemLabelType_1_Address_2_Name_3]%1 '%3' @%2";

namespace {

/// The format for the wanted parts; null when none is wanted.
char const *labelFormat(bool named, bool typeName, bool address)
{
    if (named) {
        if (typeName)
            return address ? _ObjectItemLabelType_1_Address_2_Name_3
                           : _ObjectItemLabelType_1_Name_2;
        return address ? _ObjectItemLabelAddress_1_Name_2 : _ObjectItemLabelName_1;
    }
    if (typeName)
        return address ? _ObjectItemLabelType_1_Address_2 : _ObjectItemLabelType_1;
    return address ? _ObjectItemLabelAddress_1 : nullptr;
}

std::string addressText(Object const &object)
{
    std::ostringstream stream;
    // The user's locale plays no part, which may group digits.
    stream.imbue(std::locale::classic());
    stream << static_cast<void const *>(&object);
    return stream.str();
}

/// The measures of one row of a list.
struct Row {
    QString label;
    QRect textRect; // Relative to the text's origin.
    int textHeight, height;
};

Row measureRow(RefT<Object> const &object, std::string const &fieldName, bool typeName,
               bool address, QFontMetrics const &metrics, int marginY, int iconSize)
{
    Row row;
    row.label = QString::fromStdString(getItemLabel(object, fieldName, typeName, address));
    row.textRect = metrics.boundingRect(row.label);
    row.textHeight = row.textRect.bottom() - row.textRect.top() + 1;
    row.height = std::max(row.textHeight, iconSize) + 2 * marginY;
    return row;
}

} // namespace

std::string getItemLabel(RefT<Object> const &object, RefT<FieldString> const &nameField,
                         bool typeName, bool address)
{
    if (!object)
        return {};
    char const *const format = labelFormat(bool(nameField), typeName, address);
    if (!format)
        return {};
    // In the order of the constants' names: type, address, name.
    std::string const addressPart = address ? addressText(*object) : std::string();
    std::vector<char const *> parts;
    if (typeName)
        parts.push_back(object->getClassInfo().name);
    if (address)
        parts.push_back(addressPart.c_str());
    if (nameField)
        parts.push_back(nameField->get().c_str());
    char const *const *const args = parts.data();
    return _compose(getLocText(format), static_cast<unsigned>(parts.size()), args);
}

std::string getItemLabel(RefT<Object> const &object, std::string const &fieldName, bool typeName,
                         bool address, RefT<FieldString> &nameField)
{
    nameField.reset();
    if (!object)
        return {};
    if (!fieldName.empty())
        nameField = cast<FieldString>(object->findField(fieldName));
    return getItemLabel(object, nameField, typeName, address);
}

QSize layoutItemList(std::vector<RefT<Object>> const &objects, std::string const &fieldName,
                     bool typeName, bool address, QFont const &font, int marginX, int marginY,
                     int iconSize)
{
    const QFontMetrics metrics(font);
    int width = 0, height = 0;
    for (RefT<Object> const &object : objects) {
        if (!object)
            continue;
        const Row row =
            measureRow(object, fieldName, typeName, address, metrics, marginY, iconSize);
        // KEPT: left is subtracted once for the width of the rectangle and once more. Texts that
        // begin left of their origin need the second, since they are drawn from the origin.
        const int left = row.textRect.left();
        const int textWidth = (row.textRect.right() - left + 1) - left;
        width = std::max(width, textWidth + 3 * marginX + iconSize);
        height += row.height;
    }
    return {width, height};
}

void paintItemList(QPainter &painter, std::vector<RefT<Object>> const &objects,
                   RefT<ObjectIconDB> const &iconDB, std::string const &fieldName, bool typeName,
                   bool address, int marginX, int marginY, int iconSize)
{
    const QFontMetrics metrics = painter.fontMetrics();
    int rowTop = 0;
    for (RefT<Object> const &object : objects) {
        if (!object)
            continue;
        const QIcon icon = iconDB ? iconDB->find(object) : QIcon();
        const Row row =
            measureRow(object, fieldName, typeName, address, metrics, marginY, iconSize);
        // KEPT: icon and text are centred in a row that holds both margins already, and then moved
        // down by marginY once more. The list reserves no room for it, so the last row ends marginY
        // nearer the bottom edge. Drag pixmaps of all widgets rely on the same places.
        const int iconY = marginY + (row.height - iconSize) / 2 + rowTop;
        icon.paint(&painter, marginX, iconY, iconSize, iconSize, Qt::AlignCenter, QIcon::Normal,
                   QIcon::Off);
        const int textY = rowTop + (row.height - row.textHeight) / 2 - row.textRect.top() + marginY;
        painter.drawText(iconSize + 2 * marginX, textY, row.label);
        rowTop += row.height;
    }
}

QPixmap makeItemListPixmap(QWidget const &widget, std::vector<RefT<Object>> const &objects,
                           RefT<ObjectIconDB> const &iconDB, std::string const &fieldName,
                           bool typeName, int margin, int iconSize)
{
    // Beyond it no window system shows anything: a label of a million characters takes no
    // gigabytes.
    constexpr int maxEdge = 32767;
    // The colour of selected nodes, at half opacity.
    constexpr quint64 background = 0x8080ffffe0e0c0c0;
    const QSize size =
        layoutItemList(objects, fieldName, typeName, false, widget.font(), margin, margin, iconSize)
            .boundedTo({maxEdge, maxEdge});
    QPixmap pixmap(size * widget.devicePixelRatioF());
    if (pixmap.isNull())
        return pixmap;
    pixmap.setDevicePixelRatio(widget.devicePixelRatioF());
    pixmap.fill(QColor(QRgba64::fromRgba64(background)));
    QPainter painter(&pixmap);
    painter.setFont(widget.font());
    painter.setBackground(widget.palette().window());
    painter.setPen(widget.palette().color(QPalette::Text));
    // What the widget owns may be replaced, and the widget destroyed, while the database is asked.
    const std::vector<RefT<Object>> kept = objects;
    const RefT<ObjectIconDB> keptDB = iconDB;
    const std::string keptName = fieldName;
    tryCatch("ZR::VOM::GUI::makeItemListPixmap", [&] {
        paintItemList(painter, kept, keptDB, keptName, typeName, false, margin, margin, iconSize);
    });
    return pixmap;
}

} // namespace ZR::VOM::GUI
