#include "LineIcons.h"

#include <QIconEngine>
#include <QPainter>

namespace Explorer {

using ZR::RefT;
using ZR::VOM::GUI::ObjectIconDB;

namespace {

class LineIconEngine : public QIconEngine {
public:
    explicit LineIconEngine(QIcon const &largeIcon)
        : large(largeIcon)
    {
    }

    void paint(QPainter *painter, QRect const &rect, QIcon::Mode mode, QIcon::State state) override
    {
        const QSize size = rect.size() * 2 / 3;
        const QPoint corner(rect.left() + (rect.width() - size.width()) / 2, rect.top());
        large.paint(painter, QRect(corner, size), Qt::AlignCenter, mode, state);
    }
    QPixmap pixmap(QSize const &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, picture.rect(), mode, state);
        return picture;
    }
    QIconEngine *clone() const override { return new LineIconEngine(large); }

private:
    const QIcon large;
};

class LineIconDB : public ObjectIconDB {
public:
    explicit LineIconDB(RefT<ObjectIconDB> const &largeIcons)
        : large(largeIcons)
    {
    }

    QIcon find(RefT<ZR::VOM::Object> const &object) const override
    {
        const QIcon icon = large->find(object);
        return icon.isNull() ? icon : QIcon(new LineIconEngine(icon));
    }

private:
    const RefT<ObjectIconDB> large;
};

} // namespace

RefT<ObjectIconDB> makeLineIconDB(RefT<ObjectIconDB> const &largeIcons)
{
    return new LineIconDB(largeIcons);
}

} // namespace Explorer
