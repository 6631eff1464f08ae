#pragma once

#include "zrVOMGUI/foundation/gui/GuardedDrag.h"
#include "zrVOMGUI/foundation/gui/export.h"
#include "zrVOMGUI/foundation/util/export.h"

#include <QTreeView>

#include <optional>

namespace ZR::GUI::V1 {

/// A QTreeView for models that stand for something else, and that hosts may destroy at any time.
///
/// Its drags differ from Qt's in this: they begin when the view is done with the mouse, and view
/// and model may be destroyed while they run, which cancels them; rows that were moved stay, since
/// their model follows the objects that it shows; only the left button drags; and their picture has
/// the rows that are in sight, however many are selected.
class ZRGUI_EXPORT TreeView : public QTreeView {
    Q_OBJECT

public:
    explicit TreeView(QWidget *parent = nullptr);
    ~TreeView() override;

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

    /// Drags the selected rows that allow it, with what the model offers for them and with
    /// defaultDropAction(), or to copy where that isn't supported. Returns when the drag is over;
    /// the view may be gone then. Called while the mouse moves, it returns at once, and the drag
    /// begins afterwards. Nothing happens while a drag runs, without such rows or without payload.
    void startDrag(Qt::DropActions supportedActions) override;

private:
    ZR_LOCAL void runDrag(Qt::DropActions actions);
    ZR_LOCAL Qt::DropAction defaultActionOf(Qt::DropActions actions) const;
    ZR_LOCAL bool isDragged(QModelIndex const &index) const;
    ZR_LOCAL QModelIndexList draggedIndexes() const;
    ZR_LOCAL QModelIndexList draggedIndexesInSight() const;
    ZR_LOCAL void drawDragged(GuardedDrag::Load &load) const;

    GuardedDrag drag;
    QPoint pressPos; // In the viewport.

    // While Qt handles a move of the mouse: no drag may begin, but one may be asked for.
    bool isInMove = false;
    std::optional<Qt::DropActions> askedInMove;
};

} // namespace ZR::GUI::V1
