#pragma once

// Part of Drag; not for hosts.

#include <QPixmap>
#include <QPoint>
#include <QWidget>

namespace ZR::GUI {

/// What is dragged, beside the pointer. Takes no input and no focus.
class DragPicture : public QWidget {
public:
    DragPicture(QPixmap const &shownPixmap, QPoint const &pointOfPointer);

    /// Shows it with its hot spot at a point of the screen.
    void showAt(QPoint const &pos);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QPixmap pixmap;
    QPoint hotSpot;
};

} // namespace ZR::GUI
