#include "zrVOMGUI/foundation/vom/XmlImporter.h"

#include "zrVOMGUI/foundation/vom/private/ModelBuilder.h"
#include "zrVOMGUI/foundation/vom/private/XmlReader.h"

#include <algorithm>
#include <limits>

namespace ZR::VOM {

namespace {

using namespace Xml;

/// Fills `target`, or a new object if that is null. Null after an error.
RefT<Object> readModel(std::string_view text, RefT<Object> const &target,
                       RefT<ClassRegistry> const &registry, Reports &reports, Progress &progress)
{
    RefT<Object> result;
    const bool isWhole = reports.guard([&] {
        Ticker ticker(progress, reports);
        Document document = readDocument(text.data(), text.size(), reports, ticker);
        document.resolveLinks(reports);
        const ClassRegistry none;
        ModelBuilder builder(document, registry ? *registry : none, reports, ticker);
        result = builder.build(target);
    });
    return isWhole ? result : RefT<Object>();
}

class ImportContext : public VOM::Importer::Context {
public:
    ImportContext(RefT<Object> const &filled, RefT<ClassRegistry> const &classRegistry)
        : target(filled)
        , registry(classRegistry)
    {
    }

    void import_(char const *data, int size, std::string const &title, ErrorManager &errors,
                 Progress &progress) override
    {
        Reports reports(errors, title);
        if (!target)
            reports.report("no object to fill");
        else
            readModel({data, static_cast<std::size_t>(std::max(size, 0))}, target, registry,
                      reports, progress);
    }

private:
    RefT<Object> target;
    RefT<ClassRegistry> registry;
};

} // namespace

XmlImporter::XmlImporter(RefT<ClassRegistry> const &classRegistry)
    : registry(classRegistry)
{
}

XmlImporter::~XmlImporter() = default;

RefT<VOM::Importer::Context> XmlImporter::createContext(RefT<Object> const &target)
{
    return new ImportContext(target, registry);
}

RefT<Object> fromXml(std::string const &text, RefT<ClassRegistry> const &registry,
                     ErrorManager &errors)
{
    Reports reports(errors, "");
    Progress progress("", false);
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        reports.report("the document is too long");
        return {};
    }
    return readModel(text, {}, registry, reports, progress);
}

} // namespace ZR::VOM
