#include "zrVOMGUI/foundation/vom/ClassRegistry.h"

namespace ZR::VOM {

ClassRegistry::~ClassRegistry() = default;

bool ClassRegistry::add(std::string const &className, Factory factory, Fields fields)
{
    return factory && classes.try_emplace(className, std::move(factory), fields).second;
}

bool ClassRegistry::remove(std::string const &className)
{
    return classes.erase(className) != 0;
}

bool ClassRegistry::isKnown(std::string const &className) const
{
    return classes.count(className) != 0;
}

bool ClassRegistry::isOpen(std::string const &className) const
{
    const auto found = classes.find(className);
    return found != classes.end() && found->second.second == Fields::Open;
}

RefT<Object> ClassRegistry::create(std::string const &className) const
{
    const auto found = classes.find(className);
    if (found == classes.end())
        return {};
    // A copy: a factory may change the registry.
    const Factory factory = found->second.first;
    return factory();
}

} // namespace ZR::VOM
