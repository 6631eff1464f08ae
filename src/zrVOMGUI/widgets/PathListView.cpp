#include "zrVOMGUI/widgets/PathListView.h"

#include "zrVOMGUI/foundation/gui/QtVersion.h"
#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/util/LockBool.h"
#include "zrVOMGUI/foundation/util/text.h"
#include "zrVOMGUI/foundation/vom/linkFields.h"
#include "zrVOMGUI/presentation/ItemLabel.h"

#include <QFontMetrics>
#include <QHash>
#include <QIcon>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <type_traits>

namespace ZR::VOM::GUI {

namespace {

constexpr auto noRow = std::numeric_limits<std::size_t>::max();

/// The object that a step of a path leads to. False when the step leads beyond the end of a list.
bool follow(Path::Entry const &step, RefT<Object> &object)
{
    object = {};
    bool isThere = true;
    visitLinkField(*step.field, [&](auto &links) {
        if constexpr (std::is_base_of_v<MField, std::decay_t<decltype(links)>>) {
            isThere = step.index < links.getNum();
            if (isThere)
                object = RefT<Object>(links.get(step.index));
        } else {
            object = RefT<Object>(links.get());
        }
    });
    return isThere;
}

bool isOneLine(QString const &text)
{
    return !text.contains(QChar::LineFeed) && !text.contains(QChar::LineSeparator);
}

} // namespace

struct PathListView::Pen {
    QPainter &painter;
    bool draws; // False for a row that is out of sight.
    int x, y;
};

struct PathListView::Memo {
    const QFontMetrics metrics;
    QHash<QString, QSize> sizes;    // Of texts, which take long to measure.
    QHash<qint64, QPixmap> pixmaps; // By the cache keys of icons.
};

PathListView::PathListView(QWidget *parent)
    : QAbstractScrollArea(parent)
    , iconSize(style()->pixelMetric(QStyle::PM_ListViewIconSize))
{
    // KEPT: measured without the blank that it is drawn with while fields are shown, so that as
    // much room is before it as behind. And once, in the font of that time, so that it is cut where
    // a later font is larger: cells stand as far apart when a user enlarges the text.
    separator.objectText = separatorText;
    const QRect bound = fontMetrics().boundingRect(QString::fromStdString(separatorText));
    separator.width = bound.width();
    separator.height = bound.height();
    setMouseTracking(true);
}

PathListView::~PathListView()
{
    connection.disconnect();
}

void PathListView::set(std::vector<Path> const &newPaths)
{
    paths = newPaths;
    dirty = hasPaths = true;
    viewport()->update();
}

std::vector<std::size_t> PathListView::getSelectedRows() const
{
    std::vector<std::size_t> selected;
    if (dirty) // The rows are those of the list before.
        return selected;
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (rows[i].selected)
            selected.push_back(i);
    return selected;
}

void PathListView::setObjIconDB(RefT<ObjectIconDB> const &db)
{
    connection.disconnect();
    objIconDB = db;
    if (objIconDB)
        connection = objIconDB->sigDelete.connect(
            [this](SigVoidData const &sigData) { onRefObjIconDBDelete(sigData); });
}

void PathListView::onRefObjIconDBDelete(SigVoidData const &)
{
    setObjIconDB({});
}

// Making rows.

/// KEPT: the number of clicks that selected goes on from where it was, though no row is selected
/// any more: the next Shift click extends as it would have.
void PathListView::collectDataFromPath()
{
    Memo memo{fontMetrics(), {}, {}};
    rows.clear();
    rows.reserve(paths.size());
    dirty = false;
    // An icon database may set another list, which the next paint takes.
    for (std::size_t i = 0; i < paths.size() && !dirty; ++i) {
        const Path path = paths[i];
        Row row;
        row.cells = makeCells(path, memo);
        row.height = textHeight(row) + cellSpacing / 2;
        rows.push_back(std::move(row));
    }
}

/// A cell for each step, and one for the object at the end of a path that doesn't end at a field.
std::vector<PathListView::Cell> PathListView::makeCells(Path const &path, Memo &memo) const
{
    std::vector<Cell> cells;
    RefT<Object> object(path.getRoot());
    std::string fieldText; // Of the last step.
    for (std::size_t i = 0; i < path.getNum(); ++i) {
        Path::Entry const &step = path.get(i);
        fieldText.clear();
        if (!step.field)
            break;
        const bool isLast = i + 1 == path.getNum();
        fieldText = step.field->name;
        if (isLinkListType(step.field->getType()) && (!isLast || path.getType() == Path::Value))
            fieldText += _compose("[%1]", std::to_string(step.index));
        RefT<Object> next;
        const bool goesOn = follow(step, next);
        cells.push_back(makeCell(object, fieldText, memo));
        object = next;
        if (!goesOn)
            break;
    }
    if (path.getType() == Path::Object) {
        // KEPT: the last cell repeats the field of the one before, by which hosts' users know where
        // the object was found.
        cells.push_back(makeCell(object, fieldText, memo));
    } else if (path.getType() == Path::Value) {
        const PtrT<Field> last = path.getLast().field;
        if (last && isLinkType(last->getType()))
            cells.push_back(makeCell(object, {}, memo));
    }
    return cells;
}

PathListView::Cell PathListView::makeCell(RefT<Object> const &object, std::string const &fieldText,
                                          Memo &memo) const
{
    Cell cell;
    cell.objectText = getItemLabel(object, fieldName, typeName, false);
    cell.fieldText = fieldText;
    cell.pixmap = makePixmap(object, memo);
    createTextGeometry(cell, memo);
    return cell;
}

QPixmap PathListView::makePixmap(RefT<Object> const &object, Memo &memo) const
{
    QIcon icon;
    const RefT<ObjectIconDB> db = objIconDB; // It may set another one.
    tryCatch("ZR::VOM::GUI::PathListView::makePixmap", [&] {
        if (db)
            icon = db->find(object);
    });
    if (icon.isNull())
        return {};
    QPixmap &pixmap = memo.pixmaps[icon.cacheKey()];
    if (pixmap.isNull())
        pixmap = ZR::GUI::pixmapFor(*this, icon, QSize(iconSize, iconSize));
    return pixmap;
}

QString PathListView::displayText(Cell const &cell) const
{
    return QString::fromStdString(fieldsHidden ? cell.objectText
                                               : cell.objectText + ' ' + cell.fieldText);
}

void PathListView::createTextGeometry(Cell &cell, Memo &memo) const
{
    const QString text = displayText(cell);
    auto size = memo.sizes.constFind(text);
    if (size == memo.sizes.constEnd())
        size = memo.sizes.insert(text, memo.metrics.boundingRect(text).size());
    cell.width = size->width();
    cell.height = size->height();
}

/// KEPT: the height of icons doesn't count. Rows are as high as their text.
int PathListView::textHeight(Row const &row) const
{
    int height = row.cells.size() > 1 ? separator.height : 0;
    for (Cell const &cell : row.cells)
        height = std::max(height, cell.height);
    return height;
}

// Painting.

void PathListView::paintEvent(QPaintEvent *)
{
    if (!hasPaths)
        return;
    QPainter painter(viewport());
    if (dirty)
        collectDataFromPath();
    updateListView(painter);
    updateScrollbars();
}

void PathListView::updateListView(QPainter &painter)
{
    contentWidth = contentHeight = 0;
    int y = -verticalScrollBar()->value();
    for (Row &row : rows) {
        drawRow(painter, row, y);
        contentWidth = std::max(contentWidth, row.width);
        const int step = cellSpacing + textHeight(row);
        contentHeight += step;
        y += step;
    }
}

void PathListView::drawRow(QPainter &painter, Row &row, int y)
{
    const int scrollX = horizontalScrollBar()->value();
    row.x = -scrollX;
    row.y = y;
    // Twice where both are so.
    for (bool isMarked : {row.selected, row.highlighted})
        if (isMarked)
            drawSelectionRect(painter, row);
    const bool isInSight = y < viewport()->height() && y + std::max(row.height, iconSize) >= 0;
    if (isInSight)
        painter.setPen(textColor(row));
    Pen pen{painter, isInSight, row.x, y};
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        drawIcon(pen, row.cells[i]);
        drawText(pen, row.cells[i]);
        if (i + 1 != row.cells.size())
            drawText(pen, separator);
    }
    row.width = cellSpacing / 2 + pen.x + scrollX;
}

void PathListView::drawIcon(Pen &pen, Cell const &cell) const
{
    if (cell.pixmap.isNull())
        return;
    if (pen.draws)
        pen.painter.drawPixmap(pen.x, pen.y, cell.pixmap);
    pen.x += static_cast<int>(cell.pixmap.width() / cell.pixmap.devicePixelRatio()) + cellSpacing;
}

void PathListView::drawText(Pen &pen, Cell const &cell) const
{
    if (pen.draws) {
        const QString text = displayText(cell);
        // Letters may begin behind the left edge and end as far behind the right one. A text that
        // became longer, since fields aren't hidden any more, is cut, and so are further lines.
        const bool fits = isOneLine(text) && fontMetrics().boundingRect(text).width() <= cell.width;
        pen.painter.drawText(QRect(pen.x, pen.y, cell.width, cell.height),
                             fits ? int(Qt::TextDontClip) : 0, text);
    }
    pen.x += cellSpacing + cell.width;
}

QColor PathListView::markColor() const
{
    constexpr int lighter = 150; // Percent.
    return palette().color(QPalette::Highlight).lighter(lighter);
}

/// The mark may be as light as the text, in a dark palette.
QColor PathListView::textColor(Row const &row) const
{
    const QColor text = palette().color(QPalette::Text), base = palette().color(QPalette::Base);
    if (!row.selected && !row.highlighted)
        return text;
    const auto distance = [mark = qGray(markColor().rgb())](QColor const &color) {
        return std::abs(qGray(color.rgb()) - mark);
    };
    return distance(text) >= distance(base) ? text : base;
}

void PathListView::drawSelectionRect(QPainter &painter, Row const &row) const
{
    const QRect rect(QPoint(0, row.y),
                     QPoint(geometry().right() - geometry().left(), row.y + row.height - 1));
    painter.fillRect(rect, markColor());
}

void PathListView::updateScrollbars()
{
    if (inScrollUpdate)
        return;
    const LockBool lock(inScrollUpdate);
    const QSize size = viewport()->size();
    horizontalScrollBar()->setRange(0, contentWidth - size.width());
    horizontalScrollBar()->setPageStep(size.width());
    verticalScrollBar()->setRange(0, contentHeight - size.height());
    verticalScrollBar()->setPageStep(size.height());
}

void PathListView::resizeEvent(QResizeEvent *)
{
    updateScrollbars();
}

// The mouse.

/// A point on the edge of two rows is in the first one.
std::size_t PathListView::posToRow(int, int y) const
{
    const auto row = std::find_if(rows.begin(), rows.end(), [&](Row const &candidate) {
        return candidate.y <= y && y <= candidate.y + candidate.height;
    });
    return row == rows.end() ? noRow : static_cast<std::size_t>(row - rows.begin());
}

void PathListView::mouseMoveEvent(QMouseEvent *event)
{
    const std::size_t row = posToRow(event->pos().x(), event->pos().y());
    clearHighlighted();
    if (row != noRow)
        rows[row].highlighted = true;
    viewport()->update();
}

/// KEPT: nothing is painted before the button goes up, so that a click takes one paint. Control
/// adds a row and doesn't take it out again, so that no double click undoes itself.
void PathListView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const std::size_t row = posToRow(event->pos().x(), event->pos().y());
    clearHighlighted();
    if (event->modifiers() & Qt::ShiftModifier) {
        if (row != noRow)
            extendSelection(row);
        return;
    }
    if (!(event->modifiers() & Qt::ControlModifier))
        clearSelected();
    if (row != noRow)
        selectRange(row, row);
}

/// KEPT: after one click the row between is added to what is selected, after several it takes the
/// place of it; a second click on one row counts as two. Users extend a first click by Shift, and
/// begin anew from the top of a longer selection.
void PathListView::extendSelection(std::size_t row)
{
    if (selectedCount == 0) {
        selectRange(0, row);
        return;
    }
    const std::size_t head = findHeadOfSelection();
    if (head == rows.size())
        return;
    if (selectedCount > 1) {
        if (findTailOfSelection() == rows.size())
            return;
        clearSelected();
    }
    selectRange(std::min(head, row), std::max(head, row));
}

void PathListView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        viewport()->update();
}

/// KEPT: asks for no paint. Marks stay to be seen until something else is painted, for users who
/// only look at another window.
void PathListView::focusOutEvent(QFocusEvent *)
{
    clearSelected();
    clearHighlighted();
}

void PathListView::clearSelected()
{
    for (Row &row : rows)
        row.selected = false;
    selectedCount = 0;
}

void PathListView::clearHighlighted()
{
    for (Row &row : rows)
        row.highlighted = false;
}

void PathListView::selectRange(std::size_t first, std::size_t last)
{
    for (std::size_t i = first; i <= last; ++i) {
        rows[i].selected = true;
        ++selectedCount;
    }
}

std::size_t PathListView::findHeadOfSelection() const
{
    const auto head =
        std::find_if(rows.begin(), rows.end(), [](Row const &row) { return row.selected; });
    return static_cast<std::size_t>(head - rows.begin());
}

std::size_t PathListView::findTailOfSelection() const
{
    const auto tail =
        std::find_if(rows.rbegin(), rows.rend(), [](Row const &row) { return row.selected; });
    return tail == rows.rend() ? rows.size() : static_cast<std::size_t>(rows.rend() - tail) - 1;
}

} // namespace ZR::VOM::GUI
