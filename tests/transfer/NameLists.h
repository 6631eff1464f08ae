#pragma once

// An exporter and an importer for tests, whose text is a list of names, and which fail on demand.

#include "ThingNames.h"

#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/vom/Exporter.h"
#include "zrVOMGUI/foundation/vom/Importer.h"

#include <functional>
#include <sstream>
#include <stdexcept>

/// How an exporter or importer fails.
enum class Fault {
    None,
    Report,        ///< Does its work, then reports an error.
    NoContext,     ///< Has no context.
    RaiseEarly,    ///< Raises in place of making a context.
    Raise,         ///< Does its work, then raises an Error.
    RaiseStandard, ///< The same with an exception of the standard library.
    RaiseNumber,   ///< The same with what is no exception class at all.
};

inline void raise(Fault fault)
{
    if (fault == Fault::Raise)
        throw ZR::Error("out of names");
    if (fault == Fault::RaiseStandard)
        throw std::runtime_error("out of names");
    if (fault == Fault::RaiseNumber)
        throw 7;
}

/// Writes the class of the root and the names of the things in its field "objects".
class NameExporter : public ZR::VOM::Exporter {
public:
    explicit NameExporter(Fault wantedFault = Fault::None)
        : fault(wantedFault)
    {
    }

    ZR::RefT<Context> createContext(ZR::RefT<ZR::VOM::Object> const &object) override
    {
        if (fault == Fault::RaiseEarly)
            throw ZR::Error("no context");
        if (fault == Fault::NoContext)
            return {};
        root = object;
        return {new Run(*this)};
    }

    Fault fault;
    std::function<void()> whileExporting = [] {};
    ZR::PtrT<ZR::VOM::Object> root; ///< Of the last run, while that lives.
    std::string title = "none";

private:
    struct Run : Context {
        explicit Run(NameExporter &owner)
            : exporter(owner)
        {
        }
        void export_(std::string &out, std::string const &title, ZR::ErrorManager &errors,
                     ZR::Progress &progress) override
        {
            exporter.whileExporting();
            exporter.title = title + progress.getTitle();
            out = exporter.root->getClassInfo().name + std::string(" ") +
                  namesOf(fieldOf<ZR::VOM::MFieldRef>(exporter.root, "objects").getAll());
            if (exporter.fault == Fault::Report)
                errors.report("out of names");
            raise(exporter.fault);
        }
        NameExporter &exporter;
    };
};

/// Makes a thing for each name behind the class of the root.
class NameImporter : public ZR::VOM::Xml::Importer {
public:
    explicit NameImporter(Fault wantedFault = Fault::None)
        : fault(wantedFault)
    {
    }

    ZR::RefT<Context> createContext(ZR::RefT<ZR::VOM::Object> const &target) override
    {
        if (fault == Fault::RaiseEarly)
            throw ZR::Error("no context");
        if (fault == Fault::NoContext)
            return {};
        root = target;
        return {new Run(*this)};
    }

    Fault fault;
    std::function<void()> whileImporting = [] {};
    ZR::PtrT<ZR::VOM::Object> root; ///< Of the last run, while that lives.
    std::string title = "none";

private:
    struct Run : Context {
        explicit Run(NameImporter &owner)
            : importer(owner)
        {
        }
        void import_(char const *data, int size, std::string const &title, ZR::ErrorManager &errors,
                     ZR::Progress &) override
        {
            importer.title = title;
            std::istringstream words(std::string(data, static_cast<std::size_t>(size)));
            std::string name;
            words >> name;
            if (name != importer.root->getClassInfo().name)
                errors.report("another root");
            Things things;
            while (words >> name)
                things.push_back(makeThing(name));
            setLinks<ZR::VOM::MFieldRef>(importer.root, "objects", things);
            importer.whileImporting();
            if (importer.fault == Fault::Report)
                errors.report("out of names");
            raise(importer.fault);
        }
        NameImporter &importer;
    };
};
