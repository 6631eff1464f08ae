#include "GraphControls.h"

#include "PackageGraph.h"

#include <zrVOMGUI/foundation/gui/QtVersion.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

namespace Explorer {

GraphControls::GraphControls(PackageGraph &shownGraph, QWidget *parent)
    : QWidget(parent)
    , graph(shownGraph)
{
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(12);
    column->addWidget(makeLabelBox());
    column->addWidget(makeIconBox());
    column->addWidget(makeLinkBox());
    column->addWidget(makeBehaviourBox());
    column->addStretch();
}

QGroupBox *GraphControls::makeLabelBox()
{
    auto *const box = new QGroupBox(tr("Labels"), this);
    auto *const form = new QFormLayout(box);

    auto *const nameField = new QComboBox(box);
    nameField->addItem(tr("Name"), "name");
    nameField->addItem(tr("Version"), "version");
    nameField->addItem(tr("Summary"), "summary");
    nameField->addItem(tr("None"), "");
    connect(nameField, qOverload<int>(&QComboBox::currentIndexChanged), this, [this, nameField] {
        graph.setFieldName(nameField->currentData().toString().toStdString());
        graph.layout();
        emit changed();
    });
    form->addRow(tr("&Field"), nameField);

    auto *const className = new QCheckBox(tr("&Class names"), box);
    className->setChecked(graph.isTypeName());
    connect(className, &QCheckBox::toggled, this, [this](bool on) {
        graph.setTypeName(on);
        graph.layout();
        emit changed();
    });
    form->addRow(className);

    auto *const tooltips = new QCheckBox(tr("&Tooltips"), box);
    tooltips->setToolTip(tr("Show what an object is about while the mouse rests on its node"));
    tooltips->setChecked(graph.tooltip.get());
    connect(tooltips, &QCheckBox::toggled, this, [this](bool on) { graph.tooltip.set(on); });
    form->addRow(tooltips);
    return box;
}

QGroupBox *GraphControls::makeIconBox()
{
    auto *const box = new QGroupBox(tr("Icons"), this);
    auto *const column = new QVBoxLayout(box);
    auto *const rule = new QComboBox(box);
    rule->addItem(tr("By priority, then by class"), int(IconRule::ByPriority));
    rule->addItem(tr("By class"), int(IconRule::ByClass));
    rule->addItem(tr("None"), int(IconRule::None));
    rule->setToolTip(tr("Which databases the graph asks for an icon, one after the other"));
    connect(rule, qOverload<int>(&QComboBox::currentIndexChanged), this, [this, rule] {
        const auto chosen = static_cast<IconRule>(rule->currentData().toInt());
        graph.setIconRule(chosen);
        fillLegend(chosen);
        emit changed();
    });
    column->addWidget(rule);
    legend = new QGridLayout;
    legend->setHorizontalSpacing(6);
    legend->setVerticalSpacing(4);
    legend->setColumnStretch(1, 1);
    legend->setColumnStretch(3, 1);
    column->addLayout(legend);
    fillLegend(IconRule::ByPriority);
    return box;
}

void GraphControls::fillLegend(IconRule rule)
{
    while (QLayoutItem *const item = legend->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    constexpr int numColumns = 2, edge = 16;
    int i = 0;
    for (auto const &[icon, meaning] : iconLegend(rule)) {
        auto *const picture = new QLabel;
        picture->setPixmap(ZR::GUI::pixmapFor(*this, icon, QSize(edge, edge)));
        legend->addWidget(picture, i / numColumns, i % numColumns * 2);
        legend->addWidget(new QLabel(meaning), i / numColumns, i % numColumns * 2 + 1);
        ++i;
    }
}

QGroupBox *GraphControls::makeLinkBox()
{
    auto *const box = new QGroupBox(tr("Links"), this);
    auto *const grid = new QGridLayout(box);
    grid->setColumnStretch(0, 1);
    grid->setHorizontalSpacing(12);
    grid->addWidget(new QLabel(tr("Out"), box), 0, 1, Qt::AlignHCenter);
    grid->addWidget(new QLabel(tr("In"), box), 0, 2, Qt::AlignHCenter);
    int row = 1;
    for (LinkKind const &kind : linkKinds) {
        grid->addWidget(new QLabel(tr(kind.meaning), box), row, 0);

        auto *const out = new QCheckBox(box);
        const auto rules = graph.getOutLinkFields().find(kind.className);
        out->setChecked(rules != graph.getOutLinkFields().end() &&
                        rules->second.count(kind.fieldName));
        out->setAccessibleName(tr("%1, out").arg(tr(kind.meaning)));
        out->setToolTip(tr("Links run down to what the field holds"));
        connect(out, &QCheckBox::toggled, this, [this, &kind](bool on) {
            graph.setOutLinks(kind, on);
            emit changed();
        });
        grid->addWidget(out, row, 1, Qt::AlignHCenter);

        auto *const in = new QCheckBox(box);
        in->setAccessibleName(tr("%1, in").arg(tr(kind.meaning)));
        in->setToolTip(tr("Links run up from what the field holds"));
        connect(in, &QCheckBox::toggled, this, [this, &kind](bool on) {
            graph.setInLinks(kind, on);
            emit changed();
        });
        grid->addWidget(in, row, 2, Qt::AlignHCenter);
        ++row;
    }
    return box;
}

QGroupBox *GraphControls::makeBehaviourBox()
{
    auto *const box = new QGroupBox(tr("Behaviour"), this);
    auto *const form = new QFormLayout(box);

    auto *const duration = new QDoubleSpinBox(box);
    duration->setRange(0, 60);
    duration->setSingleStep(0.5);
    duration->setDecimals(1);
    duration->setSuffix(tr(" s"));
    duration->setSpecialValueText(tr("Off"));
    duration->setValue(graph.animDuration.get());
    connect(duration, qOverload<double>(&QDoubleSpinBox::valueChanged), this,
            [this](double seconds) { graph.animDuration.set(seconds); });
    form->addRow(tr("&Animation"), duration);

    auto *const limit = new QSpinBox(box);
    limit->setRange(1, 10000);
    limit->setValue(int(graph.getNeighbourLimit()));
    limit->setToolTip(tr("How many more nodes one step shows"));
    connect(limit, qOverload<int>(&QSpinBox::valueChanged), this,
            [this](int number) { graph.setNeighbourLimit(unsigned(number)); });
    form->addRow(tr("&Neighbours at most"), limit);
    return box;
}

} // namespace Explorer
