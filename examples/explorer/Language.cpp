#include "Language.h"

#include "zrVOMGUI/foundation/gui/QtTranslation.h"
#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/trees/ObjectTreeView.h"
#include "zrVOMGUI/trees/v1/ObjectTreeView.h"
#include "zrVOMGUI/trees/v2/ObjectTreeView.h"
#include "zrVOMGUI/widgets/ObjectView.h"
#include "zrVOMGUI/widgets/PathListView.h"

#include <QApplication>
#include <QFile>
#include <QPointer>
#include <QXmlStreamReader>

// Static libraries don't bring their resources in by themselves. Not inside a namespace.
static void initResources()
{
    Q_INIT_RESOURCE(translations);
}

namespace Explorer {

namespace {

namespace GUI = ZR::VOM::GUI;

//! [relabel]
/// Has all labels made anew, which views do when the model or a setting changes.
template <class View>
void relabel(QWidget *widget)
{
    if (auto *const view = qobject_cast<View *>(widget)) {
        view->setTypeName(!view->isTypeName());
        view->setTypeName(!view->isTypeName());
    }
}

/// A list of paths does so when it is given paths.
template <>
void relabel<GUI::PathListView>(QWidget *widget)
{
    if (auto *const list = qobject_cast<GUI::PathListView *>(widget))
        list->set(std::vector<ZR::VOM::Path>(list->get()));
}
//! [relabel]

} // namespace

Catalogue::Catalogue(QString const &path, QObject *parent)
    : QTranslator(parent)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    QXmlStreamReader xml(&file);
    QString source;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name"))
            contextName = xml.readElementText().toUtf8();
        else if (xml.name() == QLatin1String("source"))
            source = xml.readElementText();
        else if (xml.name() == QLatin1String("translation"))
            texts[source] = xml.readElementText();
    }
}

QString Catalogue::translate(char const *context, char const *source, char const *, int) const
{
    return context == contextName ? texts.value(QString::fromUtf8(source)) : QString();
}

void setGerman(bool german)
{
    static QPointer<Catalogue> catalogue;
    initResources();
    if (!catalogue)
        catalogue = new Catalogue(":/zrVOMGUI_de.ts", qApp);
    //! [translation]
    ZR::GUI::installQtTranslation(); // From now on Qt's translators are asked for texts.
    if (german)
        QCoreApplication::installTranslator(catalogue);
    else
        QCoreApplication::removeTranslator(catalogue);

    for (QWidget *const widget : QApplication::allWidgets()) {
        relabel<GUI::ObjectGraphView>(widget);
        relabel<GUI::ObjectTreeView>(widget);
        relabel<GUI::V2::ObjectTreeView>(widget);
        relabel<GUI::V1::ObjectTreeView>(widget);
        relabel<GUI::ObjectView>(widget);
        relabel<GUI::PathListView>(widget);
    }
    //! [translation]
}

} // namespace Explorer
