#pragma once

#include "designer/catalogue.h"

#include <QtUiPlugin/QDesignerCustomWidgetInterface>

namespace Designer {

/// One entry of the catalogue, in the words of Qt Designer.
class FormWidget : public QDesignerCustomWidgetInterface {
public:
    explicit FormWidget(WidgetEntry const &entry);

    QString name() const override;
    QString group() const override;
    QString toolTip() const override;
    QString whatsThis() const override;
    QString includeFile() const override;
    QIcon icon() const override;
    bool isContainer() const override { return false; }
    QWidget *createWidget(QWidget *parent) override;
    /// A name for the object and a size, for a widget that was just put into a form.
    QString domXml() const override;

private:
    QString displayName() const;

    WidgetEntry const &entry; // Of the catalogue, which lives as long as the process.
};

} // namespace Designer
