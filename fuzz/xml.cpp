// Arbitrary bytes for the importer of XML. What it takes is written and read once more, and must be
// the same; what it refuses must leave no trace.

#include "require.h"
#include "support/XmlModel.h"

#include <cstddef>
#include <cstdint>
#include <string>

using namespace ZR;
using namespace ZR::VOM;
using Model = VOM::Object;

namespace {

void requireSameAfterRoundTrip(RefT<Model> const &root)
{
    XmlErrors errors;
    const std::string text = toXml(root, errors.manager);
    const RefT<Model> copy = fromXml(text, xmlRegistry(), errors.manager);
    require(errors.count() == 0 && copy, "what was read can be written and read again");
    const XmlModelEnd end(copy);
    require(modelText(copy) == modelText(root), "the second model is the first");
    require(toXml(copy, errors.manager) == text, "the second document is the first");
}

void readIntoTarget(std::string const &text)
{
    const RefT<Model> target(new Fixed);
    const XmlModelEnd end(target);
    setLinks<MFieldRef>(target, "refs", {makeThing("part")});
    const std::string before = modelText(target);
    XmlErrors errors;
    Progress progress("", false);
    XmlImporter(xmlRegistry())
        .createContext(target)
        ->import_(text.data(), static_cast<int>(text.size()), "title", errors.manager, progress);
    if (errors.count() == 0)
        requireSameAfterRoundTrip(target);
    else
        require(modelText(target) == before, "a refused document leaves the target");
}

void readNewObject(std::string const &text)
{
    XmlErrors errors;
    const RefT<Model> root = fromXml(text, xmlRegistry(), errors.manager);
    const XmlModelEnd end(root);
    require((errors.count() == 0) == bool(root), "there is a model or an error");
    if (root)
        requireSameAfterRoundTrip(root);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size)
{
    const std::string text(reinterpret_cast<char const *>(data), size);
    readIntoTarget(text);
    readNewObject(text);
    return 0;
}
