#include "zrVOMGUI/foundation/vom/private/Document.h"

#include "zrVOMGUI/foundation/vom/linkFields.h"

#include <algorithm>
#include <utility>

namespace ZR::VOM::Xml {

namespace {

/// From ids to positions. Sorted, since a document may choose ids on which a hash table is slow.
class Ids {
public:
    Ids(std::vector<ObjectRecord> const &objects, Reports &reports)
    {
        for (std::size_t i = 0; i < objects.size(); ++i)
            positions.emplace_back(objects[i].id, i);
        std::sort(positions.begin(), positions.end());
        for (std::size_t i = 1; i < positions.size(); ++i)
            if (positions[i].first == positions[i - 1].first)
                reports.report(objects[positions[i].second].place,
                               "the id " + std::to_string(positions[i].first) + " is taken");
    }

    /// noLink when there is none.
    Link positionOf(std::uint64_t id) const
    {
        const auto found =
            std::lower_bound(positions.begin(), positions.end(), std::make_pair(id, Link(0)));
        return found != positions.end() && found->first == id ? found->second : noLink;
    }

private:
    std::vector<std::pair<std::uint64_t, Link>> positions;
};

} // namespace

void Document::resolveLinks(Reports &reports)
{
    const Ids ids(objects, reports);
    for (ObjectRecord &object : objects) {
        for (FieldRecord &field : object.fields) {
            if (!isLinkType(field.type))
                continue;
            for (Link &link : std::get<Links>(field.value)) {
                if (link == noLink)
                    continue;
                const Link position = ids.positionOf(link);
                if (position == noLink)
                    reports.report(field.place, "no object has the id " + std::to_string(link));
                link = position;
            }
        }
    }
    reports.giveUpAfterErrors();
    reportOrphans(reports);
}

void Document::reportOrphans(Reports &reports) const
{
    std::vector<bool> isOwned(objects.size());
    std::vector<std::size_t> open{0};
    isOwned[0] = true;
    while (!open.empty()) {
        ObjectRecord const &owner = objects[open.back()];
        open.pop_back();
        for (FieldRecord const &field : owner.fields) {
            if (!isOwningLinkType(field.type))
                continue;
            for (const Link owned : std::get<Links>(field.value)) {
                if (owned == noLink || isOwned[owned])
                    continue;
                isOwned[owned] = true;
                open.push_back(owned);
            }
        }
    }
    for (std::size_t i = 0; i < objects.size(); ++i)
        if (!isOwned[i])
            reports.report(objects[i].place, "nobody owns this object");
}

} // namespace ZR::VOM::Xml
