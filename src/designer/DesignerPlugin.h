#pragma once

#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

#include <memory>
#include <vector>

namespace Designer {

/// What Qt Designer and QUiLoader find in the plugin: one entry for each widget of the catalogue.
class DesignerPlugin : public QObject, public QDesignerCustomWidgetCollectionInterface {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)

public:
    explicit DesignerPlugin(QObject *parent = nullptr);
    ~DesignerPlugin() override;

    /// In the order of the catalogue. Owned by the plugin.
    QList<QDesignerCustomWidgetInterface *> customWidgets() const override;

private:
    std::vector<std::unique_ptr<QDesignerCustomWidgetInterface>> widgets;
};

} // namespace Designer
