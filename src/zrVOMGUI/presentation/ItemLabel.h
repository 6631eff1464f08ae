#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/vom/Field.h"
#include "zrVOMGUI/presentation/ObjectIconDB.h"

#include <QPixmap>
#include <QSize>

#include <string>
#include <vector>

class QFont;
class QPainter;
class QWidget;

namespace ZR::VOM::GUI {

// How one object reads in one line, so that every widget shows it in the same words. A label has up
// to three parts: the class name, the address in memory, and the value of a name field.
//
// GUI thread only. Texts are UTF-8, lengths are pixels.

/// \name Formats of labels
/// Each is its own translation key in square brackets, then the default text. The numbers in a
/// constant's name give the order of the arguments; a translation may move them in the text.
/// @{
ZRVOMGUI_EXPORT extern char const *const _ObjectItemLabelAddress_1;
ZRVOMGUI_EXPORT extern char const *const _ObjectItemLabelType_1;
ZRVOMGUI_EXPORT extern char const *const _ObjectItemLabelType_1_Address_2;
ZRVOMGUI_EXPORT extern char const *const _ObjectItemLabelName_1;
ZRVOMGUI_EXPORT extern char const *const _ObjectItemLabelAddress_1_Name_2;
ZRVOMGUI_EXPORT extern char const *const _ObjectItemLabelType_1_Name_2;
ZRVOMGUI_EXPORT extern char const *const _ObjectItemLabelType_1_Address_2_Name_3;
/// @}

/// The label of `object` with the value of `nameField`, which may be empty, and on wish with the
/// class name and the address. Empty for an empty reference, and when no part is wanted.
ZRVOMGUI_EXPORT std::string getItemLabel(RefT<Object> const &object,
                                         RefT<FieldString> const &nameField, bool typeName,
                                         bool address);

/// As above, with the object's string field of the given name. A field of that name and another
/// type counts as none.
///
/// Hands the field back in `nameField`, empty when there is none, for callers who watch it.
ZRVOMGUI_EXPORT std::string getItemLabel(RefT<Object> const &object, std::string const &fieldName,
                                         bool typeName, bool address, RefT<FieldString> &nameField);

inline std::string getItemLabel(RefT<Object> const &object, std::string const &fieldName,
                                bool typeName, bool address)
{
    RefT<FieldString> nameField;
    return getItemLabel(object, fieldName, typeName, address, nameField);
}

/// The size of a list as paintItemList() draws it: one row of icon and label for each object. Empty
/// references take no row; an object with an empty label takes one as high as the icon.
ZRVOMGUI_EXPORT QSize layoutItemList(std::vector<RefT<Object>> const &objects,
                                     std::string const &fieldName, bool typeName, bool address,
                                     QFont const &font, int marginX, int marginY, int iconSize);

/// Draws the list from the painter's origin, in its font and pen. `iconDB` may be empty: rows then
/// keep the room of their icons.
ZRVOMGUI_EXPORT void paintItemList(QPainter &painter, std::vector<RefT<Object>> const &objects,
                                   RefT<ObjectIconDB> const &iconDB, std::string const &fieldName,
                                   bool typeName, bool address, int marginX, int marginY,
                                   int iconSize);

/// What the mouse carries while objects are dragged out of a widget: the list as paintItemList()
/// draws it, in the widget's font and text colour, half opaque, sharp on the widget's screen and at
/// most 32,767 pixels a side. Null when there is nothing to show. An exception from the database
/// goes to the error sink.
ZRVOMGUI_EXPORT QPixmap makeItemListPixmap(QWidget const &widget,
                                           std::vector<RefT<Object>> const &objects,
                                           RefT<ObjectIconDB> const &iconDB,
                                           std::string const &fieldName, bool typeName, int margin,
                                           int iconSize);

} // namespace ZR::VOM::GUI
