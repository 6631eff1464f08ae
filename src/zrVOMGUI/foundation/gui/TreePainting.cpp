// The picture, drawn by the style: branches, expanders, rows, the place of a drop.

#include "zrVOMGUI/foundation/gui/private/TreeBranch.h"
#include "zrVOMGUI/foundation/gui/private/TreeEditor.h"
#include "zrVOMGUI/foundation/gui/private/TreeEngine.h"

#include <QPaintEvent>
#include <QPainter>
#include <QPixmap>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionViewItem>

#include <algorithm>

namespace ZR::GUI {

namespace {

constexpr int maxShownText = 65536;
constexpr std::size_t maxPixmapRows = 16;
constexpr int maxPixmapWidth = 400;
constexpr qreal pixmapOpacity = 0.7;

/// One line of it.
QString shownText(QString const &text)
{
    QString shown = text.left(maxShownText);
    for (QChar &c : shown)
        if (c < QChar(' ') || c == QChar::LineSeparator || c == QChar::ParagraphSeparator)
            c = QChar(' ');
    return shown;
}

} // namespace

QStyleOptionViewItem TreeEngine::makeOption() const
{
    QStyleOptionViewItem option;
    option.initFrom(view);
    option.state &= ~(QStyle::State_MouseOver | QStyle::State_HasFocus);
    // A view without the focus shows its selection in the colours of an inactive window.
    if (!view->hasFocus() && !editor)
        option.state &= ~QStyle::State_Active;
    option.font = view->font();
    option.fontMetrics = QFontMetrics(option.font, view);
    const int iconSize = view->style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, view);
    option.decorationSize = QSize(iconSize, iconSize);
    option.decorationPosition = QStyleOptionViewItem::Left;
    option.decorationAlignment = Qt::AlignCenter;
    option.displayAlignment =
        QStyle::visualAlignment(option.direction, Qt::AlignLeft) | Qt::AlignVCenter;
    option.textElideMode = Qt::ElideRight;
    option.showDecorationSelected =
        view->style()->styleHint(QStyle::SH_ItemView_ShowDecorationSelected, nullptr, view);
    option.viewItemPosition = QStyleOptionViewItem::OnlyOne;
    option.widget = view;
    return option;
}

void TreeEngine::initItem(QStyleOptionViewItem &option, TreeRow const &row) const
{
    option.text = shownText(row.rowText);
    option.icon = row.rowIcon;
    option.features = QStyleOptionViewItem::HasDisplay;
    if (!row.rowIcon.isNull())
        option.features |= QStyleOptionViewItem::HasDecoration;
    if (row.open)
        option.state |= QStyle::State_Open;
    if (row.selected)
        option.state |= QStyle::State_Selected;
    if (&row == hover && (option.state & QStyle::State_Enabled))
        option.state |= QStyle::State_MouseOver;
    if (&row == current && view->hasFocus())
        option.state |= QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange;
    QIcon::Mode mode = QIcon::Normal;
    if (!(option.state & QStyle::State_Enabled))
        mode = QIcon::Disabled;
    else if (row.selected)
        mode = QIcon::Selected;
    const QSize iconSize = row.rowIcon.actualSize(option.decorationSize, mode);
    if (!row.rowIcon.isNull() && iconSize.isValid())
        option.decorationSize = iconSize.boundedTo(option.decorationSize);
    if (!(option.state & QStyle::State_Enabled))
        option.palette.setCurrentColorGroup(QPalette::Disabled);
    else if (!(option.state & QStyle::State_Active))
        option.palette.setCurrentColorGroup(QPalette::Inactive);
}

void TreeEngine::paint(QPaintEvent &event)
{
    if (!settle())
        return;
    placeEditor();
    if (!view)
        return;
    QPainter painter(view->viewport());
    painter.setFont(view->font());
    const QRect rect = event.rect();
    const int top = view->verticalScrollBar()->value();
    const std::size_t first = std::size_t((top + std::max(0, rect.top())) / rowHeight);
    const std::size_t last = std::size_t((top + std::max(0, rect.bottom())) / rowHeight);
    for (std::size_t line = first; line <= last; ++line) {
        TreeRow *const row = rowAtLine(line);
        if (!row)
            break;
        paintLine(painter, *row, line);
    }
    paintDropIndicator(painter);
}

void TreeEngine::paintLine(QPainter &painter, TreeRow &row, std::size_t line)
{
    QStyleOptionViewItem option = makeOption();
    initItem(option, row);
    option.rect = lineRect(line);
    view->style()->drawPrimitive(QStyle::PE_PanelItemViewRow, &option, &painter, view);
    paintBranches(painter, row, line, option);
    option.rect = itemRect(row, line);
    view->style()->drawControl(QStyle::CE_ItemViewItem, &option, &painter, view);
}

/// The nearest ancestor with a line, null at the top level. `line` is the row's, and becomes that
/// of the ancestor or, at the top level, 0.
TreeRow const *TreeEngine::climb(TreeRow const &row, std::size_t &line) const
{
    TreeRow const *at = &row;
    do {
        line -= at->rowParent->branch->before(at->rowIndex);
        at = at->rowParent;
    } while (at->hidden && at != root);
    if (at == root)
        return nullptr;
    --line;
    return at;
}

/// From the row's own expander to the outermost level in sight. Lines are counted on the way up:
/// to look one up takes a walk to the root.
void TreeEngine::paintBranches(QPainter &painter, TreeRow const &row, std::size_t line,
                               QStyleOptionViewItem const &option)
{
    QStyleOptionViewItem branch = option;
    const QStyle::State state =
        option.state & (QStyle::State_Enabled | QStyle::State_Active | QStyle::State_Selected);
    const QRect viewport = view->viewport()->rect();
    bool own = true;
    int level = levelOf(row);
    std::size_t lineOfAt = line;
    TreeRow const *above = nullptr;
    for (TreeRow const *at = &row; at; at = above, own = false, --level) {
        if (contentLeft() + (level + 1) * indent <= 0)
            break;
        const std::size_t endOfAt = lineOfAt + at->getLines();
        above = climb(*at, lineOfAt);
        branch.rect = expanderRect(level, line);
        if (!branch.rect.intersects(viewport))
            continue;
        branch.state = state;
        if (own)
            branch.state |= QStyle::State_Item;
        // Another row of the same level follows under the same parent.
        if (endOfAt < (above ? lineOfAt + above->getLines() : getNumLines()))
            branch.state |= QStyle::State_Sibling;
        if (own && hasChildren(row)) {
            branch.state |= QStyle::State_Children;
            if (row.open)
                branch.state |= QStyle::State_Open;
            if (&row == hover)
                branch.state |= QStyle::State_MouseOver;
        }
        view->style()->drawPrimitive(QStyle::PE_IndicatorBranch, &branch, &painter, view);
    }
}

void TreeEngine::paintDropIndicator(QPainter &painter)
{
    if (dropIndicator.isNull())
        return;
    QStyleOption option;
    option.initFrom(view);
    option.rect = dropIndicator;
    view->style()->drawPrimitive(QStyle::PE_IndicatorItemViewItemDrop, &option, &painter, view);
}

/// The rows below each other, the first few of them.
QPixmap TreeEngine::makeDragPixmap(std::vector<TreeRow *> const &rows)
{
    const std::size_t count = std::min(rows.size(), maxPixmapRows);
    int width = 1;
    for (std::size_t i = 0; i < count; ++i)
        width = std::max(width, itemWidth(*rows[i]));
    width = std::min(width, maxPixmapWidth);
    const qreal ratio = view->devicePixelRatioF();
    QPixmap pixmap(QSize(width, std::max(1, int(count) * rowHeight)) * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setOpacity(pixmapOpacity);
    painter.setFont(view->font());
    for (std::size_t i = 0; i < count; ++i) {
        QStyleOptionViewItem option = makeOption();
        initItem(option, *rows[i]);
        option.state |= QStyle::State_Selected | QStyle::State_Active;
        option.state &= ~(QStyle::State_HasFocus | QStyle::State_MouseOver);
        option.showDecorationSelected = true;
        option.rect = QRect(0, int(i) * rowHeight, width, rowHeight);
        view->style()->drawControl(QStyle::CE_ItemViewItem, &option, &painter, view);
    }
    return pixmap;
}

} // namespace ZR::GUI
