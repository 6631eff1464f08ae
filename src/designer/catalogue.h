#pragma once

#include <QIcon>
#include <QSize>

#include <vector>

class QWidget;

namespace Designer {

/// A widget that a form can hold. Texts are such as getLocText() translates.
struct WidgetEntry {
    char const *className;  ///< With its namespaces.
    char const *header;     ///< As a host includes it.
    char const *objectName; ///< What the first one in a form is called.
    char const *toolTip;
    char const *whatsThis;
    QSize size; ///< With which it comes into a form.
    QIcon (*makeIcon)();
    QWidget *(*create)(QWidget *parent);
};

/// All of them, in the order in which they are shown.
std::vector<WidgetEntry> const &catalogue();

} // namespace Designer
