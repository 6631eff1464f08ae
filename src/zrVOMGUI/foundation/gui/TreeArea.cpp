#include "zrVOMGUI/foundation/gui/TreeArea.h"

#include "zrVOMGUI/foundation/gui/private/TreeAccessible.h"
#include "zrVOMGUI/foundation/gui/private/TreeEngine.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>

namespace ZR::GUI {

// Each handler holds the engine, since what it leads to may destroy this view.

TreeArea::TreeArea(QWidget *parent, TreeHooks *hooks)
    : QAbstractScrollArea(parent)
    , engine(new TreeEngine(*this, std::unique_ptr<TreeHooks>(hooks)))
{
    installTreeAccessibility();
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_Hover);
    viewport()->setAcceptDrops(true);
}

TreeArea::~TreeArea()
{
    engine->leaveView();
    engine->unref();
}

void TreeArea::setDropActions(QFlags<Qt::DropAction> actions, Qt::DropAction defaultAction)
{
    engine->setDropActions(actions, defaultAction);
}

void TreeArea::addMimeType(QString const &type)
{
    engine->addMimeType(type);
}

std::vector<QString> const &TreeArea::getMimeTypes() const
{
    return engine->getMimeTypes();
}

int TreeArea::getRowHeight() const
{
    return engine->getRowHeight();
}

QSize TreeArea::sizeHint() const
{
    return {256, 12 * getRowHeight() + 2 * frameWidth()};
}

bool TreeArea::event(QEvent *event)
{
    if (event->type() == QEvent::Show)
        engine->shown();
    if (event->type() == QEvent::LayoutRequest) {
        const TreeEngine::Ref ref(*engine);
        ref->layoutRequested();
        if (!ref->getView())
            return true;
    }
    return QAbstractScrollArea::event(event);
}

bool TreeArea::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::Leave)
        engine->hoverLeft();
    return QAbstractScrollArea::viewportEvent(event);
}

void TreeArea::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    engine->resized();
}

void TreeArea::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    const QEvent::Type type = event->type();
    if (type == QEvent::FontChange || type == QEvent::StyleChange)
        engine->metricsChanged();
}

void TreeArea::paintEvent(QPaintEvent *event)
{
    const TreeEngine::Ref ref(*engine);
    ref->paint(*event);
}

void TreeArea::scrollContentsBy(int, int)
{
    engine->scrolled();
}

void TreeArea::mousePressEvent(QMouseEvent *event)
{
    const TreeEngine::Ref ref(*engine);
    ref->mousePress(*event);
}

void TreeArea::mouseMoveEvent(QMouseEvent *event)
{
    const TreeEngine::Ref ref(*engine);
    ref->mouseMove(*event);
}

void TreeArea::mouseReleaseEvent(QMouseEvent *event)
{
    const TreeEngine::Ref ref(*engine);
    ref->mouseRelease(*event);
}

void TreeArea::mouseDoubleClickEvent(QMouseEvent *event)
{
    const TreeEngine::Ref ref(*engine);
    ref->mouseDoubleClick(*event);
}

void TreeArea::keyPressEvent(QKeyEvent *event)
{
    const TreeEngine::Ref ref(*engine);
    if (ref->keyPress(*event))
        event->accept();
    else if (ref->getView())
        event->ignore();
}

void TreeArea::contextMenuEvent(QContextMenuEvent *event)
{
    const TreeEngine::Ref ref(*engine);
    ref->contextMenu(*event);
    event->accept();
}

void TreeArea::dragEnterEvent(QDragEnterEvent *event)
{
    const TreeEngine::Ref ref(*engine);
    ref->dragEnter(*event);
}

void TreeArea::dragMoveEvent(QDragMoveEvent *event)
{
    const TreeEngine::Ref ref(*engine);
    ref->dragMove(*event);
}

void TreeArea::dragLeaveEvent(QDragLeaveEvent *)
{
    engine->dragLeave();
}

void TreeArea::dropEvent(QDropEvent *event)
{
    const TreeEngine::Ref ref(*engine);
    ref->drop(*event);
}

void TreeArea::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    engine->focusChanged(true);
}

void TreeArea::focusOutEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusOutEvent(event);
    engine->focusChanged(false);
}

void TreeArea::timerEvent(QTimerEvent *event)
{
    const TreeEngine::Ref ref(*engine);
    ref->timer(*event);
}

} // namespace ZR::GUI
