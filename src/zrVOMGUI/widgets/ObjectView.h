#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/gui/Drag.h"
#include "zrVOMGUI/foundation/util/Signal.h"
#include "zrVOMGUI/foundation/vom/Exporter.h"
#include "zrVOMGUI/foundation/vom/Field.h"
#include "zrVOMGUI/foundation/vom/Importer.h"
#include "zrVOMGUI/presentation/ObjectIconDB.h"

#include <QBrush>
#include <QFrame>
#include <QPalette>
#include <QPixmap>
#include <QPoint>
#include <QPointer>

#include <memory>
#include <set>
#include <string>
#include <vector>

class QDrag;
class QLabel;

namespace ZR::GUI {
class GuardedDrag;
}

namespace ZR::VOM::GUI {

/// A slot for one object: its icon and label in a frame, to be dragged out and dropped in.
///
/// What a form uses for a field that refers to one object. Derive from it to change the picture,
/// the text and the drop rule. The slot watches its object and doesn't keep it alive; it never
/// changes the model.
///
/// A slot that isn't set is empty; one that is set may be empty, too: of the null reference, or
/// since its object was moved away or died.
///
/// What is a plain value is also a Qt property, for forms and style sheets. GUI thread only.
class ZRVOMGUI_EXPORT ObjectView : public QFrame {
    Q_OBJECT
    Q_PROPERTY(QString fieldName READ readFieldName WRITE writeFieldName)
    Q_PROPERTY(bool typeName READ isTypeName WRITE setTypeName)
    Q_PROPERTY(bool dragEnabled READ isDragEnabled WRITE writeDragEnabled)
    Q_PROPERTY(bool dragIntern READ isDragIntern WRITE writeDragIntern)
    Q_PROPERTY(Qt::DropActions dragActions READ getDragActions WRITE setDragActions)
    Q_PROPERTY(
        Qt::DropAction defaultDragAction READ getDefaultDragAction WRITE setDefaultDragAction)
    Q_PROPERTY(Qt::DropActions dropActions READ getDropActions WRITE setDropActions)
    Q_PROPERTY(
        Qt::DropAction defaultDropAction READ getDefaultDropAction WRITE setDefaultDropAction)

public:
    using Object = VOM::Object;

    /// `exporter` writes the XML of drags, `importer` reads that of drops from elsewhere; either
    /// may be empty.
    ObjectView(RefT<Exporter> const &exporter, RefT<Xml::Importer> const &importer,
               QWidget *parent = nullptr);
    /// As forms make it, with neither of them.
    explicit ObjectView(QWidget *parent = nullptr);
    ~ObjectView() override;

    /// \name The value
    /// None of these emits sigConfirm.
    /// @{

    /// Null when the slot is empty.
    PtrT<Object> const &getValue() const { return value; }
    /// Whether there is a value, be it null.
    bool isSet() const { return hasValue; }
    void setValue(RefT<Object> const &object);
    /// Empties the slot, which isn't set afterwards.
    void clear();
    /// @}

    /// Says that the user confirmed the value: onConfirm() and then sigConfirm.
    void confirm();

    /// \name What is shown
    /// @{

    /// Where the icon comes from; empty by default.
    RefT<ObjectIconDB> const &getObjIconDB() const { return objIconDB; }
    void setObjIconDB(RefT<ObjectIconDB> const &db);
    /// The name of the string field that names the object; empty by default.
    std::string const &getFieldName() const { return fieldName; }
    void setFieldName(std::string const &name);
    /// Whether the label shows the class name; false by default.
    bool isTypeName() const { return typeName; }
    void setTypeName(bool on);
    /// @}

    /// \name Dragging out and dropping in
    /// @{

    bool isDragEnabled() const { return dragEnabled; }
    bool isDragIntern() const { return dragIntern; }
    /// Whether the object can be dragged out, which it can't by default; and whether the drag stays
    /// within this process.
    void setDragEnabled(bool enabled, bool intern);

    /// What is offered when dragging out: copy, move and link by default, of which copy is the
    /// default action.
    Qt::DropActions getDragActions() const { return dragActions; }
    void setDragActions(Qt::DropActions actions) { dragActions = actions; }
    Qt::DropAction getDefaultDragAction() const { return defaultDragAction; }
    void setDefaultDragAction(Qt::DropAction action) { defaultDragAction = action; }

    /// What is accepted on a drop, and what is taken of it without a modifier key; the same
    /// defaults.
    Qt::DropActions getDropActions() const { return dropActions; }
    void setDropActions(Qt::DropActions actions) { dropActions = actions; }
    Qt::DropAction getDefaultDropAction() const { return defaultDropAction; }
    void setDefaultDropAction(Qt::DropAction action) { defaultDropAction = action; }

    /// Further types, for derived classes that read them.
    /// KEPT: nothing here does, and no drop is judged by them. Hosts keep the types of their own
    /// payloads with the slot.
    std::set<std::string> const &getMimeTypes() const { return mimeTypes; }
    void addMimeType(std::string const &type) { mimeTypes.insert(type); }
    void removeMimeType(std::string const &type) { mimeTypes.erase(type); }
    void clearMimeTypes() { mimeTypes.clear(); }
    /// @}

protected:
    /// What shows the text, for derived classes that fit it to the slot's width. The slot owns it.
    QLabel &getTextLabel() const { return *textLabel; }

    /// \name Hooks
    /// What one of them raises goes to the error sink, and the slot goes on without its answer:
    /// with no picture, an empty text, and a drop refused.
    /// @{

    /// The user changed the value. Does nothing here.
    virtual void onConfirm();
    /// The picture of the value, at the size of a button's icon; null without a database. Called
    /// when a value is set, also null, and while there is one when the database or the style
    /// changes.
    virtual QPixmap onUpdateIcon();
    /// The text of the value. Called when a value is set, also null, when the name field that the
    /// last text was made from changes, and while there is a value when the settings do.
    virtual QString onUpdateText();
    /// Whether the objects may be dropped; sets the event's drop action to what the drop would do.
    /// `copied` says that they are new ones, made of XML, which nobody owns: each step of a drag
    /// makes its own, and they die with the event unless they are adopted.
    virtual bool onCanDrop(std::vector<RefT<Object>> const &objects, bool copied,
                           QDropEvent &event);
    /// Takes a dropped object as the value, and confirms it. Of more or less than one nothing.
    /// Where `copied` is true, or a sender offered an object that nobody owns, the host must adopt
    /// it before this returns, here, in onConfirm() or in sigConfirm: the slot only watches.
    virtual void onDrop(std::vector<RefT<Object>> const &objects, bool copied, QDropEvent &event);
    /// A drag from here is over. Empties the slot, and confirms that, when the object was moved
    /// elsewhere.
    virtual void onDragDrop(ZR::GUI::Drag &drag, Qt::DropAction action);
    virtual void onDragDrop(QDrag &drag, Qt::DropAction action);
    /// @}

    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    struct Dropped {
        std::vector<RefT<Object>> objects;
        bool copied = false;
    };

    ZR_LOCAL void updateIcon();
    ZR_LOCAL void updateLabel();
    ZR_LOCAL void updateBackground();
    ZR_LOCAL void updateAlignment();
    ZR_LOCAL void onPtrObjFieldNameSigSet(FieldString::SigSetData const &sigData);
    ZR_LOCAL void startDrag();
    ZR_LOCAL void runInternDrag(std::unique_ptr<QMimeData> payload, QPixmap const &pixmap);
    ZR_LOCAL void moveAway();
    ZR_LOCAL QPixmap makeDragPixmap() const;
    ZR_LOCAL Dropped readDropped(QMimeData const &data) const;
    ZR_LOCAL void acceptDrag(QDropEvent &event);
    ZR_LOCAL Qt::DropAction actionFor(QDropEvent const &event, Qt::DropActions possible) const;

    // The settings, as Qt's properties have them.
    QString readFieldName() const { return QString::fromStdString(fieldName); }
    void writeFieldName(QString const &name) { setFieldName(name.toStdString()); }
    void writeDragEnabled(bool enabled) { setDragEnabled(enabled, dragIntern); }
    void writeDragIntern(bool intern) { setDragEnabled(dragEnabled, intern); }

    RefT<Exporter> exporter;
    RefT<Xml::Importer> importer;
    RefT<ObjectIconDB> objIconDB;
    std::string fieldName;
    bool typeName = false;
    bool dragEnabled = false;
    bool dragIntern = false;
    Qt::DropActions dragActions = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    Qt::DropAction defaultDragAction = Qt::CopyAction;
    Qt::DropActions dropActions = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    Qt::DropAction defaultDropAction = Qt::CopyAction;
    std::set<std::string> mimeTypes;
    bool hasValue = false;
    PtrT<Object> value;
    PtrT<FieldString> nameField; // From which the label was made last.
    QPoint pressPos;
    std::vector<RefT<Object>> dragObjs; // Of the running drag, whose payload names them.
    QLabel *iconLabel, *textLabel;
    Signal::Connection connection; // To the name field's sigSet.

public:
    /// The user changed the value: by a drop, by moving it away, or what confirm() stands for.
    SignalT<SigVoidData> sigConfirm;

private:
    QBrush backgrounds[QPalette::NColorGroups]; // That were set last, by group.
    unsigned numPictures = 0, numTexts = 0;     // That were asked for.
    const std::unique_ptr<ZR::GUI::GuardedDrag> externDrag;
    QPointer<ZR::GUI::Drag> internDrag;
};

} // namespace ZR::VOM::GUI
