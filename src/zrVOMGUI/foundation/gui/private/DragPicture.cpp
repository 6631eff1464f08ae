#include "zrVOMGUI/foundation/gui/private/DragPicture.h"

#include <QPainter>

namespace ZR::GUI {

DragPicture::DragPicture(QPixmap const &shownPixmap, QPoint const &pointOfPointer)
    : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint |
                           Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus)
    , pixmap(shownPixmap)
    , hotSpot(pointOfPointer)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_QuitOnClose, false);
    setFixedSize((QSizeF(pixmap.size()) / pixmap.devicePixelRatioF()).toSize());
}

void DragPicture::showAt(QPoint const &pos)
{
    move(pos - hotSpot);
    show();
}

void DragPicture::paintEvent(QPaintEvent *)
{
    QPainter(this).drawPixmap(0, 0, pixmap);
}

} // namespace ZR::GUI
