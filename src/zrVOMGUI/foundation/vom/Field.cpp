#include "zrVOMGUI/foundation/vom/Field.h"

#include "zrVOMGUI/foundation/vom/MField.h"

#include <unordered_set>
#include <utility>

namespace ZR::VOM {

namespace {

// A model has few names and many fields; a name is kept once, for the life of the process.
std::string const &sharedName(char const *name)
{
    static std::unordered_set<std::string> *const names = new std::unordered_set<std::string>;
    std::string text(name ? name : "");
    const auto known = names->find(text);
    return known != names->end() ? *known : *names->insert(std::move(text)).first;
}

} // namespace

ErrorField::ErrorField(Field const &field, std::string const &reason)
    : Error("field '" + field.name + "': " + reason)
{
}

ErrorTypeMismatch::ErrorTypeMismatch(Field const &field)
    : ErrorField(field, "a value of another type was given")
{
}

Field::Field(Object &newOwner, char const *fieldName, unsigned initialFlags)
    : Flags(initialFlags)
    , owner(&newOwner)
    , name(sharedName(fieldName))
{
}

Field::Field(Object &newOwner, Field const &other)
    : Class(other)
    , Flags(other)
    , owner(&newOwner)
    , name(other.name)
{
}

Field::~Field() = default;

void Field::reg()
{
    owner->enterField(*this);
}

MField::~MField() = default;

void MField::checkRange(std::size_t index, std::size_t numRemoved) const
{
    if (index > getNum() || numRemoved > getNum() - index)
        throw ErrorField(*this, "a range of positions that isn't in the list");
}

LostWatch::LostWatch(Object *target, Field &watchingField)
    : field(&watchingField)
{
    if (!target)
        return;
    next = target->lostWatches;
    if (next)
        next->link = &next;
    link = &target->lostWatches;
    target->lostWatches = this;
}

LostWatch::LostWatch(LostWatch &&other) noexcept
    : field(other.field)
{
    takePlaceOf(other);
}

LostWatch &LostWatch::operator=(LostWatch &&other) noexcept
{
    if (this != &other) {
        leave();
        field = other.field;
        takePlaceOf(other);
    }
    return *this;
}

void LostWatch::leave() noexcept
{
    if (!link)
        return;
    *link = next;
    if (next)
        next->link = link;
    link = nullptr;
    next = nullptr;
}

void LostWatch::takePlaceOf(LostWatch &other) noexcept
{
    link = std::exchange(other.link, nullptr);
    next = std::exchange(other.next, nullptr);
    if (link)
        *link = this;
    if (next)
        next->link = &next;
}

template class FieldT<FieldTypeT<2, int, int, int, int>>;
template class FieldT<FieldTypeT<3, double, double &, double const &, double>>;
template class FieldT<FieldTypeT<4, std::string, std::string &, std::string const &, std::string>>;
template class FieldT<
    FieldTypeT<5, PtrT<Object>, PtrT<Object> &, PtrT<Object> const &, PtrT<Object>>>;
template class FieldT<
    FieldTypeT<6, RefT<Object>, RefT<Object> &, RefT<Object> const &, RefT<Object>>>;
template class MFieldT<
    FieldTypeT<11, PtrT<Object>, PtrT<Object> &, PtrT<Object> const &, std::vector<PtrT<Object>>>>;
template class MFieldT<
    FieldTypeT<12, RefT<Object>, RefT<Object> &, RefT<Object> const &, std::vector<RefT<Object>>>>;

} // namespace ZR::VOM
