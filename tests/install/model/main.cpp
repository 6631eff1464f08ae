// A program that has a model and no widgets, against the installed library.
#include <zrVOMGUI/foundation/util/Log.h>
#include <zrVOMGUI/foundation/vom/MField.h>
#include <zrVOMGUI/foundation/vom/XmlExporter.h>
#include <zrVOMGUI/foundation/vom/XmlImporter.h>

#include <cstdio>

#ifdef QT_VERSION
#error "The model's headers use no Qt"
#endif

using namespace ZR::VOM;

int main()
{
    const ZR::RefT<Object> house(new Object), door(new Object);
    addField<FieldString>(*house, "name", "house");
    addField<FieldRef>(*house, "part", door);

    ZR::Log log;
    ZR::ErrorManager errors(log);
    const std::string text = toXml(house, errors);
    const ZR::RefT<ClassRegistry> registry(new ClassRegistry);
    registry->add<Object>(ClassRegistry::Fields::Open);
    const ZR::RefT<Object> copy = fromXml(text, registry, errors);
    if (!copy || !copy->findField("part")) {
        std::fputs("The model didn't come back from XML\n", stderr);
        return 1;
    }
    std::puts("A model without widgets");
}
