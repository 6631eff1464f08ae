#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/util/Signal.h"
#include "zrVOMGUI/foundation/vom/Path.h"
#include "zrVOMGUI/presentation/ObjectIconDB.h"

#include <QAbstractScrollArea>
#include <QPixmap>

#include <cstddef>
#include <string>
#include <vector>

class QPainter;

namespace ZR::VOM::GUI {

/// Paths through the model, a row for each: object after object, each with the field by which the
/// path goes on.
///
/// The user can select rows; the one under the mouse is marked. The list shows and does no more.
/// Labels and icons are taken when it is first painted after set(): a change of the model shows
/// with the next set(). What is a plain value is also a Qt property, for forms and style sheets.
/// Nothing here owns an object. GUI thread only.
class ZRVOMGUI_EXPORT PathListView : public QAbstractScrollArea {
    Q_OBJECT
    Q_PROPERTY(QString fieldName READ readFieldName WRITE writeFieldName)
    Q_PROPERTY(bool typeName READ isTypeName WRITE setTypeName)
    Q_PROPERTY(bool hideFields READ isHideFields WRITE hideFields)

public:
    explicit PathListView(QWidget *parent = nullptr);
    ~PathListView() override;

    std::vector<Path> const &get() const { return paths; }
    /// Replaces the list, of which no row is selected.
    void set(std::vector<Path> const &newPaths);
    /// Positions of the selected rows, in order. Empty until a new list is painted.
    std::vector<std::size_t> getSelectedRows() const;

    /// \name What cells show
    /// These take effect with the next set(), hideFields() with the next paint.
    /// @{

    /// Where objects get their icons; empty by default.
    RefT<ObjectIconDB> const &getObjIconDB() const { return objIconDB; }
    void setObjIconDB(RefT<ObjectIconDB> const &db);
    /// The name of the string field that names objects; empty by default.
    std::string const &getFieldName() const { return fieldName; }
    void setFieldName(std::string const &name) { fieldName = name; }
    /// Whether labels show the class name; true by default.
    bool isTypeName() const { return typeName; }
    void setTypeName(bool on) { typeName = on; }
    /// Whether cells leave out the fields; false by default.
    /// KEPT: cells keep the width that they were measured with until the next set(). Rows don't
    /// jump while a user looks at them with and without fields.
    bool isHideFields() const { return fieldsHidden; }
    void hideFields(bool on) { fieldsHidden = on; }
    /// @}

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    friend struct PathListAccess; // The tests' view of rows and cells.

    struct Cell {
        QPixmap pixmap;
        std::string objectText, fieldText;
        int width = 0, height = 0; // Of the text.
    };
    struct Row {
        std::vector<Cell> cells;
        int x = 0, y = 0, width = 0; // In the viewport, since the last paint.
        int height = 0;              // With half of the gap to the next row.
        bool selected = false, highlighted = false;
    };
    struct Pen;  // Where the next thing is drawn.
    struct Memo; // What many cells have in common, while rows are made.

    ZR_LOCAL void collectDataFromPath();
    ZR_LOCAL std::vector<Cell> makeCells(Path const &path, Memo &memo) const;
    ZR_LOCAL Cell makeCell(RefT<Object> const &object, std::string const &fieldText,
                           Memo &memo) const;
    ZR_LOCAL QPixmap makePixmap(RefT<Object> const &object, Memo &memo) const;
    ZR_LOCAL QString displayText(Cell const &cell) const;
    ZR_LOCAL void createTextGeometry(Cell &cell, Memo &memo) const;
    ZR_LOCAL int textHeight(Row const &row) const;

    ZR_LOCAL void updateListView(QPainter &painter);
    ZR_LOCAL void drawRow(QPainter &painter, Row &row, int y);
    ZR_LOCAL void drawIcon(Pen &pen, Cell const &cell) const;
    ZR_LOCAL void drawText(Pen &pen, Cell const &cell) const;
    ZR_LOCAL void drawSelectionRect(QPainter &painter, Row const &row) const;
    ZR_LOCAL QColor markColor() const;
    ZR_LOCAL QColor textColor(Row const &row) const;
    ZR_LOCAL void updateScrollbars();

    ZR_LOCAL std::size_t posToRow(int x, int y) const;
    ZR_LOCAL void clearSelected();
    ZR_LOCAL void clearHighlighted();
    ZR_LOCAL void selectRange(std::size_t first, std::size_t last);
    ZR_LOCAL void extendSelection(std::size_t row);
    ZR_LOCAL std::size_t findHeadOfSelection() const;
    ZR_LOCAL std::size_t findTailOfSelection() const;
    ZR_LOCAL void onRefObjIconDBDelete(SigVoidData const &sigData);

    // The name, as Qt's properties have it.
    QString readFieldName() const { return QString::fromStdString(fieldName); }
    void writeFieldName(QString const &name) { setFieldName(name.toStdString()); }

    std::vector<Path> paths;
    std::vector<Row> rows; // Of the paths at the last rebuild.
    const std::string separatorText = "/";
    Cell separator;
    const int cellSpacing = 5;
    RefT<ObjectIconDB> objIconDB;
    std::string fieldName;
    bool typeName = true;
    const int iconSize;
    int selectedCount = 0; // Of clicks as much as of rows.
    int contentWidth = 0, contentHeight = 0;
    bool dirty = true;     // Rows are to be made anew at the next paint.
    bool hasPaths = false; // set() was called.
    bool inScrollUpdate = false;
    bool fieldsHidden = false;
    Signal::Connection connection; // To the icon database's sigDelete.
};

} // namespace ZR::VOM::GUI
