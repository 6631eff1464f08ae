#pragma once

// Documents, and a target that tells whether an import has left it alone.

#include "support/XmlModel.h"

#include <functional>
#include <string>

/// Counts the objects that live, and calls `onMade` for each new one.
class Watched : public Fixed {
public:
    Watched()
    {
        ++numLiving;
        if (onMade)
            onMade(*this);
    }
    Watched(Watched const &other) = delete;
    ~Watched() override { --numLiving; }
    ZR::VOM::ClassInfo const &getClassInfo() const override { return info; }

    inline static ZR::VOM::ClassInfo const info = {&Fixed::info, "Watched"};
    inline static int numLiving = 0;
    inline static std::function<void(Watched &)> onMade;
};

inline ZR::RefT<ZR::VOM::ClassRegistry> watchedRegistry()
{
    const ZR::RefT<ZR::VOM::ClassRegistry> registry = xmlRegistry();
    registry->add("Watched", [] { return ZR::RefT<ZR::VOM::Object>(new Watched); });
    return registry;
}

/// Imports as widgets do, and answers what is reported.
inline std::string import_(ZR::RefT<ZR::VOM::Object> const &target, std::string const &text,
                           ZR::RefT<ZR::VOM::ClassRegistry> const &registry = watchedRegistry(),
                           std::string const &title = "")
{
    XmlErrors errors;
    ZR::Progress progress("", false);
    ZR::VOM::XmlImporter(registry).createContext(target)->import_(
        text.data(), static_cast<int>(text.size()), title, errors.manager, progress);
    return errors.text();
}

/// A document whose first object is a Watched with these fields, followed by further objects. The
/// fields begin on line 3.
inline std::string document(std::string const &fields, std::string const &objects = "")
{
    return "<model version=\"1\">\n<object id=\"1\" class=\"Watched\">\n" + fields +
           "\n</object>\n" + objects + "</model>";
}

/// A target with a value in each field, and what else an import must leave alone.
class Target {
public:
    Target()
        : object(new Watched)
        , part(makeThing("part"))
    {
        object->setFlags(3);
        object->getField(0)->setFlags(1);
        fieldOf<ZR::VOM::FieldInt>(object, "int").set(42);
        fieldOf<ZR::VOM::FieldReal>(object, "real").set(4.25);
        fieldOf<ZR::VOM::FieldString>(object, "string").set("old");
        fieldOf<ZR::VOM::FieldPtr>(object, "ptr").set(part);
        fieldOf<ZR::VOM::FieldRef>(object, "ref").set(part);
        setLinks<ZR::VOM::MFieldPtr>(object, "ptrs", {part, nullptr});
        setLinks<ZR::VOM::MFieldRef>(object, "refs", {part, part});
        text = modelText(object);
    }

    bool isAsItWas() const
    {
        return modelText(object) == text &&
               fieldOf<ZR::VOM::FieldRef>(object, "ref").get() == part && Watched::numLiving == 1;
    }

    const ZR::RefT<ZR::VOM::Object> object, part;

private:
    std::string text;
};

/// A document that uses all there is.
inline std::string richDocument()
{
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<model version="1">
 <object id="1" class="Watched" flags="7">
  <int name="int" flags="1">-12</int>
  <real name="real">1e300</real>
  <string name="string">a &lt; b &#13; <![CDATA[<c>]]></string>
  <ptr name="ptr">20</ptr>
  <ref name="ref">3</ref>
  <ptrs name="ptrs">3 - 1</ptrs>
  <refs name="refs">3 - 20 3</refs>
 </object>
 <!-- a remark -->
 <object id="20" class="Watched">
  <string name="string" encoding="base64">AAEC</string>
  <ref name="ref">3</ref>
 </object>
 <object id="3" classEncoding="base64" class="VGhpbmc=">
  <refs name="circle">20 3</refs>
 </object>
</model>
)";
}
