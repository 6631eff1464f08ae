#include "PackageXml.h"

namespace Explorer {

using ZR::cast;
using ZR::RefT;
using ZR::VOM::ClassRegistry;
using ZR::VOM::Object;

namespace {

/// The classes of the model, each made as its constructor does, with nothing in its fields.
RefT<ClassRegistry> makeRegistry()
{
    const RefT<ClassRegistry> registry(new ClassRegistry);
    registry->add("Archive", [] { return RefT<Object>(new Archive(std::string())); });
    registry->add("Section", [] { return RefT<Object>(new Section(std::string(), {})); });
    registry->add("Package", [] { return RefT<Object>(new Package({}, {})); });
    registry->add("Maintainer", [] { return RefT<Object>(new Maintainer(std::string())); });
    registry->add("Details", [] { return RefT<Object>(new Details(std::string())); });
    return registry;
}

} // namespace

RefT<ZR::VOM::XmlImporter> makeImporter()
{
    return new ZR::VOM::XmlImporter(makeRegistry());
}

std::string saveModel(PackageModel const &model, std::vector<std::string> &errors)
{
    ZR::Log log;
    ZR::ErrorManager manager(log);
    const std::string xml = ZR::VOM::toXml(model.getArchive(), manager);
    errors = log.getMessages();
    return xml;
}

RefT<Archive> openModel(std::string const &xml, std::vector<std::string> &errors)
{
    ZR::Log log;
    ZR::ErrorManager manager(log);
    const RefT<Object> root = ZR::VOM::fromXml(xml, makeRegistry(), manager);
    if (root && !cast<Archive>(root))
        manager.report("The document holds no archive of packages.");
    errors = log.getMessages();
    return cast<Archive>(root);
}

} // namespace Explorer
