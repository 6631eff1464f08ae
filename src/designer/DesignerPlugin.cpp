#include "designer/DesignerPlugin.h"

#include "designer/FormWidget.h"
#include "designer/catalogue.h"

namespace Designer {

DesignerPlugin::DesignerPlugin(QObject *parent)
    : QObject(parent)
{
    for (WidgetEntry const &entry : catalogue())
        widgets.push_back(std::make_unique<FormWidget>(entry));
}

DesignerPlugin::~DesignerPlugin() = default;

QList<QDesignerCustomWidgetInterface *> DesignerPlugin::customWidgets() const
{
    QList<QDesignerCustomWidgetInterface *> result;
    for (auto const &widget : widgets)
        result << widget.get();
    return result;
}

} // namespace Designer
