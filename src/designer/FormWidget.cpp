#include "designer/FormWidget.h"

#include "zrVOMGUI/foundation/util/text.h"

namespace Designer {

FormWidget::FormWidget(WidgetEntry const &ofWidget)
    : entry(ofWidget)
{
}

QString FormWidget::name() const
{
    return entry.className;
}

QString FormWidget::group() const
{
    return "zrVOMGUI";
}

QString FormWidget::toolTip() const
{
    return QString::fromUtf8(ZR::getLocText(entry.toolTip));
}

QString FormWidget::whatsThis() const
{
    return QString::fromUtf8(ZR::getLocText(entry.whatsThis));
}

QString FormWidget::includeFile() const
{
    return entry.header;
}

QIcon FormWidget::icon() const
{
    return entry.makeIcon();
}

QWidget *FormWidget::createWidget(QWidget *parent)
{
    return entry.create(parent);
}

QString FormWidget::domXml() const
{
    return QString("<ui language=\"c++\" displayname=\"%5\"><widget class=\"%1\" name=\"%2\">"
                   "<property name=\"geometry\"><rect><x>0</x><y>0</y>"
                   "<width>%3</width><height>%4</height></rect></property>"
                   "</widget></ui>")
        .arg(entry.className, entry.objectName)
        .arg(entry.size.width())
        .arg(entry.size.height())
        .arg(displayName());
}

// The list of widgets is narrow, and the namespaces that all have would leave the generations
// alike.
QString FormWidget::displayName() const
{
    return name().remove("ZR::VOM::GUI::");
}

} // namespace Designer
