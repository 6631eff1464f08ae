#include "zrVOMGUI/trees/v2/ObjectTreeView.h"

#include "zrVOMGUI/trees/private/ObjectTreeDragDropT.h"
#include "zrVOMGUI/trees/private/ObjectTreeImplT.h"
#include "zrVOMGUI/trees/v2/private/ObjectTreeRows.h"

#include <algorithm>
#include <iostream>

namespace ZR::VOM::GUI {

template class Trees::ObjectTreeT<V2::ObjectTreeView, V2::ObjectTreeTraits>;

namespace V2 {

bool ObjectTreeTraits::accept(AcceptedFields &accepted, std::string const &className,
                              std::string const &fieldName)
{
    return accepted[className].insert(fieldName).second;
}

bool ObjectTreeTraits::refuse(AcceptedFields &accepted, std::string const &className,
                              std::string const &fieldName)
{
    const auto names = accepted.find(className);
    if (names == accepted.end() || names->second.erase(fieldName) == 0)
        return false;
    if (names->second.empty())
        accepted.erase(names);
    return true;
}

bool ObjectTreeTraits::matches(AcceptedFields const &accepted, Field &field)
{
    const auto accepts = [&](std::string const &className) {
        const auto names = accepted.find(className);
        return names != accepted.end() &&
               (names->second.empty() || names->second.count(field.name) != 0);
    };
    if (field.owner)
        for (ClassInfo const *info = &field.owner->getClassInfo(); info; info = info->base)
            if (accepts(info->name))
                return true;
    return accepts({});
}

void ObjectTreeTraits::traceDrop(Row const *row, std::size_t index)
{
    if (!row) {
        std::cout << "  No row.\n";
        return;
    }
    std::cout << "  Row '" << row->getText().toLatin1().toStdString() << "'["
              << static_cast<int>(index) << "]\n";
    if (dynamic_cast<Trees::RowsT<ObjectTreeView>::FieldRow const *>(row))
        std::cout << "  FieldRow\n";
    else if (dynamic_cast<ObjectRow const *>(row))
        std::cout << "  ObjectRow\n";
}

ObjectTreeView::ObjectTreeView(QWidget *parent)
    : ObjectTreeView({}, {}, parent)
{
}

ObjectTreeView::ObjectTreeView(RefT<Exporter> const &exporter, RefT<Xml::Importer> const &importer,
                               QWidget *parent)
    : ObjectTreeT(exporter, importer, Traits::make<Root>(*this, nullptr), parent)
{
}

ObjectTreeView::~ObjectTreeView()
{
    letGo();
}

ObjectTreeView::Root &ObjectTreeView::getRoot()
{
    return static_cast<Root &>(TreeView::getRoot());
}

/// A host that is told of a new row may change the model, so that rows found before die.
void ObjectTreeView::onDeleteRow(Row &row)
{
    std::replace(foundRows.begin(), foundRows.end(), &row, static_cast<Row *>(nullptr));
}

Path ObjectTreeView::getCurrent() const
{
    return getRowPath(getCurrentRow());
}

} // namespace V2

} // namespace ZR::VOM::GUI
