#include "TreeSettings.h"

#include <QCheckBox>
#include <QHBoxLayout>

namespace Explorer {

TreeSettings::TreeSettings(QWidget *parent)
    : QWidget(parent)
{
    auto *const row = new QHBoxLayout(this);
    constexpr int edge = 6;
    row->setContentsMargins(edge, edge, edge, 0);
    const auto add = [&](QString const &text, QString const &help, auto signal) {
        auto *const box = new QCheckBox(text, this);
        box->setToolTip(help);
        connect(box, &QCheckBox::toggled, this, signal);
        row->addWidget(box);
    };
    add(tr("Hide fields"), tr("Values stand right below their objects"),
        &TreeSettings::hideFieldsToggled);
    add(tr("Class names"), tr("Labels begin with the class"), &TreeSettings::classNamesToggled);
    add(tr("Dependencies only"), tr("Other fields of packages don't appear"),
        &TreeSettings::dependenciesOnlyToggled);
    row->addStretch();
}

} // namespace Explorer
