#include "Views.h"

#include "Project.h"

#include <zrVOMGUI/foundation/vom/XmlExporter.h>
#include <zrVOMGUI/foundation/vom/XmlImporter.h>

#include <QPainter>

namespace Example {

using namespace ZR::VOM;
using ZR::RefT;

namespace {

QIcon makeIcon(char letter, QColor const &colour)
{
    constexpr int size = 16;
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawRoundedRect(pixmap.rect(), 4, 4);
    painter.setPen(Qt::white);
    painter.drawText(pixmap.rect(), Qt::AlignCenter, QString(QChar(letter)));
    return QIcon(pixmap);
}

} // namespace

//! [icons]
RefT<GUI::ObjectIconDB> makeIcons()
{
    const RefT<GUI::ObjectClassIconDB> icons(new GUI::ObjectClassIconDB);
    icons->add("Project", makeIcon('A', QColor(0x80, 0x60, 0xa0)));
    icons->add("Task", makeIcon('T', QColor(0x30, 0x80, 0x60)));
    icons->add("Person", makeIcon('P', QColor(0xb0, 0x60, 0x30)));
    return icons;
}
//! [icons]

//! [exchange]
RefT<Exporter> makeExporter()
{
    return new XmlExporter;
}

RefT<Xml::Importer> makeImporter()
{
    return new XmlImporter(makeRegistry());
}
//! [exchange]

//! [showList]
void showList(GUI::ObjectTreeView &tree, MFieldRef &list)
{
    for (RefT<Object> const &object : list.getAll())
        tree.addRow(object, std::size_t(-1));
    list.sigReplace.connect([&](MFieldRef::SigReplaceData const &sigData) {
        for (std::size_t i = 0; i < sigData.numOld; ++i)
            tree.removeRow(sigData.index);
        for (std::size_t i = sigData.index; i < sigData.end; ++i)
            tree.addRow(list.get(i), i);
    });
}
//! [showList]

} // namespace Example
