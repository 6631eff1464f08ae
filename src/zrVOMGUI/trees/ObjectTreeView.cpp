#include "zrVOMGUI/trees/ObjectTreeView.h"

#include "zrVOMGUI/trees/private/ObjectTreeDragDropT.h"
#include "zrVOMGUI/trees/private/ObjectTreeImplT.h"
#include "zrVOMGUI/trees/private/ObjectTreeRows.h"

#include <utility>

namespace ZR::VOM::GUI {

char const *const _ObjectTreeViewVoidRowLabel = "[ZR::VOM::GUI::ObjectTreeViewVoidRowLabel]void";

template class Trees::ObjectTreeT<ObjectTreeView, ObjectTreeTraits>;

bool ObjectTreeTraits::accept(AcceptedFields &accepted, std::string const &className,
                              std::string const &fieldName)
{
    return accepted.add(className, fieldName);
}

bool ObjectTreeTraits::refuse(AcceptedFields &accepted, std::string const &className,
                              std::string const &fieldName)
{
    return accepted.remove(className, fieldName);
}

bool ObjectTreeTraits::matches(AcceptedFields const &accepted, Field &field)
{
    return accepted.matches(field);
}

bool ObjectTreeTraits::hasAddress(ObjectTreeView const &view)
{
    return view.isAddress();
}

ObjectTreeView::ObjectTreeView(QWidget *parent)
    : ObjectTreeView({}, {}, parent)
{
}

ObjectTreeView::ObjectTreeView(RefT<Exporter> const &exporter, RefT<Xml::Importer> const &importer,
                               QWidget *parent)
    : ObjectTreeT(exporter, importer, parent)
{
    RowHandle root = Traits::make<Root>(*this, RowHandle());
    root->setHidden(true);
    setRoot(std::move(root));
}

ObjectTreeView::~ObjectTreeView()
{
    letGo();
}

ObjectTreeView::Root &ObjectTreeView::getRoot()
{
    return static_cast<Root &>(*TreeView::getRoot());
}

void ObjectTreeView::setAddress(bool on)
{
    if (std::exchange(address, on) != on)
        forEachRow(&VoidRow::onAddressChanged);
}

Path ObjectTreeView::getCurrent()
{
    return getRowPath(getCurrentRow());
}

} // namespace ZR::VOM::GUI
