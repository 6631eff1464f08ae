#pragma once

#include "zrVOMGUI/foundation/gui/export.h"

#include <QAbstractScrollArea>

#include <memory>
#include <vector>

namespace ZR::GUI {

class TreeEngine;
class TreeHooks;
template <class View>
class TreeHooksT;

/// What both generations of tree views have in common: a scroll area that hands its events to the
/// one engine beneath. Take TreeView or V2::TreeView.
class ZRGUI_EXPORT TreeArea : public QAbstractScrollArea {
    Q_OBJECT

public:
    ~TreeArea() override;

    /// What a drag out of this view may do, and what it does without modifiers; also what a drop
    /// onto it may do. Copying alone by default.
    void setDropActions(QFlags<Qt::DropAction> actions, Qt::DropAction defaultAction);

    /// The types of which a dragged payload must have one to be considered at all; none by default,
    /// so that nothing can be dropped. Types that are there already change nothing.
    void addMimeType(QString const &type);
    std::vector<QString> const &getMimeTypes() const;

    /// The height of every row, in pixels. It follows font and style.
    int getRowHeight() const;
    QSize sizeHint() const override;

protected:
    /// Takes ownership of the hooks.
    TreeArea(QWidget *parent, TreeHooks *hooks);
    TreeEngine &getEngine() const { return *engine; }

    bool event(QEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    friend class TreeAreaAccessible;

    TreeEngine *const engine; // One reference of it. It ends with the last of the rows.
};

} // namespace ZR::GUI
