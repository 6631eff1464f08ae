#include "zrVOMGUI/foundation/vom/Copy.h"

#include "zrVOMGUI/foundation/vom/linkFields.h"

#include <type_traits>

namespace ZR::VOM::Copy {

Context::Context() = default;
Context::~Context() = default;

std::vector<RefT<Object>> Context::copy(std::vector<RefT<Object>> const &objs)
{
    std::vector<RefT<Object>> result;
    std::vector<RefT<Object>> fresh; // Originals copied in this call, each behind its first owner.
    for (RefT<Object> const &original : objs)
        result.push_back(original ? enter(original, fresh) : RefT<Object>());
    // A list and no recursion: the depth follows the model.
    for (std::size_t i = 0; i < fresh.size(); ++i) {
        const RefT<Object> original = fresh[i];
        for (std::size_t f = 0; f < original->getNumFields(); ++f) {
            Field &field = *original->getField(f);
            if (isOwningLinkType(field.getType()))
                forEachLink(field, [&](RefT<Object> const &owned) { enter(owned, fresh); });
        }
    }
    for (RefT<Object> const &original : fresh)
        redirectLinks(*copies.at(original));
    return result;
}

RefT<Object> Context::enter(RefT<Object> const &original, std::vector<RefT<Object>> &fresh)
{
    const auto [entry, isNew] = copies.try_emplace(original);
    if (isNew) {
        if (original->isSharable()) {
            entry->second = original;
        } else {
            entry->second = original->clone();
            fresh.push_back(original);
        }
    }
    return entry->second;
}

/// Lets each link of a copy that still leads to a copied original lead to its copy.
void Context::redirectLinks(Object &copy) const
{
    const auto redirect = [this](auto const &link) {
        using Link = std::decay_t<decltype(link)>;
        const auto found = link ? copies.find(RefT<Object>(link)) : copies.end();
        return found == copies.end() ? link : Link(found->second);
    };
    for (std::size_t i = 0; i < copy.getNumFields(); ++i) {
        visitLinkField(*copy.getField(i), [&](auto &field) {
            if constexpr (std::is_base_of_v<MField, std::decay_t<decltype(field)>>) {
                auto links = field.getAll();
                for (auto &link : links)
                    link = redirect(link);
                field.replace(0, field.getNum(), links);
            } else {
                field.set(redirect(field.get()));
            }
        });
    }
}

} // namespace ZR::VOM::Copy
