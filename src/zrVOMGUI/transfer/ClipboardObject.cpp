#include "zrVOMGUI/transfer/ClipboardObject.h"

#include "zrVOMGUI/foundation/vom/MField.h"

namespace ZR::VOM {

ClassInfo const Clipboard::classInfo = {&Object::classInfo, "Clipboard"};

Clipboard::Clipboard()
    : Clipboard(std::vector<RefT<Object>>())
{
}

Clipboard::Clipboard(std::vector<RefT<Object>> const &objects)
{
    addField<MFieldRef>(*this, FieldObjects, objects);
}

Clipboard::Clipboard(Clipboard const &other) = default;

Clipboard::~Clipboard() = default;

ClassInfo const &Clipboard::getClassInfo() const
{
    return classInfo;
}

std::vector<RefT<Object>> Clipboard::getObjects() const
{
    auto const *const field = cast<MFieldRef>(findField(FieldObjects));
    return field ? field->getAll() : std::vector<RefT<Object>>();
}

} // namespace ZR::VOM
