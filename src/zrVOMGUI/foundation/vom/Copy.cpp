#include "zrVOMGUI/foundation/vom/Copy.h"

#include "zrVOMGUI/foundation/vom/linkFields.h"

#include <cstddef>
#include <type_traits>
#include <utility>

namespace ZR::VOM::Copy {

/// One call of copy(). Forgets what it entered unless it comes to its end.
class Context::Run {
public:
    explicit Run(Context &copier)
        : context(copier)
    {
    }
    ~Run()
    {
        if (!isDone)
            for (RefT<Object> const &original : fresh)
                context.entries.erase(original.get());
    }
    Run(Run const &) = delete;
    Run &operator=(Run const &) = delete;

    RefT<Object> enter(RefT<Object> const &original)
    {
        if (Entry const *const known = context.find(original.get()))
            return known->copy;
        RefT<Object> copy = original->isSharable() ? original : original->clone();
        fresh.push_back(original);
        context.entries[original.get()] = {original, copy};
        return copy;
    }

    // A list and no recursion: the depth follows the model.
    void enterWhatIsOwned()
    {
        for (std::size_t i = 0; i < fresh.size(); ++i) {
            const RefT<Object> original = fresh[i];
            if (context.find(original.get())->copy == original)
                continue;
            for (std::size_t f = 0; f < original->getNumFields(); ++f) {
                Field &field = *original->getField(f);
                if (isOwningLinkType(field.getType()))
                    forEachLink(field, [&](RefT<Object> const &owned) { enter(owned); });
            }
        }
    }

    void finish()
    {
        for (RefT<Object> const &original : fresh) {
            RefT<Object> const &copy = context.find(original.get())->copy;
            if (copy && copy != original)
                context.redirectLinks(*copy);
        }
        isDone = true;
    }

private:
    Context &context;
    std::vector<RefT<Object>> fresh; // Originals entered by this call, each behind its first owner.
    bool isDone = false;
};

Context::Context() = default;
Context::~Context() = default;

std::vector<RefT<Object>> Context::copy(std::vector<RefT<Object>> const &objs)
{
    std::vector<RefT<Object>> result;
    Run run(*this);
    for (RefT<Object> const &original : objs)
        result.push_back(original ? run.enter(original) : RefT<Object>());
    run.enterWhatIsOwned();
    run.finish();
    return result;
}

Context::Entry const *Context::find(Object const *original) const
{
    const auto entry = entries.find(original);
    // A new object may live where one lived that no reference owned.
    return entry != entries.end() && entry->second.original ? &entry->second : nullptr;
}

/// Lets each link of a copy that still leads to a copied original lead to its copy.
void Context::redirectLinks(Object &copy) const
{
    const auto redirect = [this](auto &link) {
        using Link = std::decay_t<decltype(link)>;
        Entry const *const entry = link ? find(link.get()) : nullptr;
        if (!entry || entry->copy == link)
            return false;
        link = Link(entry->copy);
        return true;
    };
    for (std::size_t i = 0; i < copy.getNumFields(); ++i) {
        visitLinkField(*copy.getField(i), [&](auto &field) {
            bool hasChanged = false;
            if constexpr (std::is_base_of_v<MField, std::decay_t<decltype(field)>>) {
                auto links = field.getAll();
                for (auto &link : links)
                    hasChanged |= redirect(link);
                if (hasChanged)
                    field.replace(0, field.getNum(), std::move(links));
            } else {
                auto link = field.get();
                hasChanged = redirect(link);
                if (hasChanged)
                    field.set(std::move(link));
            }
        });
    }
}

} // namespace ZR::VOM::Copy
