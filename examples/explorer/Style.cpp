#include "Style.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QWidget>

namespace Explorer {

namespace {

/// The graph takes its colours from properties that style sheets can set.
constexpr char darkSheet[] = R"(
ZR--VOM--GUI--ObjectGraphView {
    qproperty-colorBg0: #1b2733;
    qproperty-colorBg1: #14171b;
    qproperty-colorBaseNode: #2a333d;
    qproperty-colorTextNode: #e4e6e9;
    qproperty-colorSelNode: #2f5d8f;
    qproperty-colorRectNode: #56636f;
    qproperty-colorRectSelNode: #8fc1f5;
}
)";

QPalette darkPalette()
{
    const QColor window(0x36, 0x39, 0x3f), base(0x1c, 0x1e, 0x21), text(0xe4, 0xe6, 0xe9),
        faint(0x80, 0x84, 0x8b), accent(0x4c, 0x8d, 0xd6);
    const QColor button = window.lighter(120);
    QPalette palette(button, window);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::ToolTipBase, window);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, faint);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, accent);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, faint);
    return palette;
}

} // namespace

void setDarkStyle(bool dark)
{
    qApp->setStyleSheet({});
    qApp->setPalette(dark ? darkPalette() : qApp->style()->standardPalette());
    if (dark)
        qApp->setStyleSheet(QLatin1String(darkSheet));
    // A sheet that comes or goes leaves some widgets with the palette that they had before.
    for (QWidget *widget : QApplication::allWidgets())
        widget->setPalette(QApplication::palette(widget));
}

} // namespace Explorer
