#pragma once

// What is dragged out of views: objects that can be copied and objects that can't, exporters by
// functions of the test, and what payloads lead to.

#include "support/Things.h"
#include "zrVOMGUI/foundation/vom/Exporter.h"
#include "zrVOMGUI/transfer/ClipboardObject.h"
#include "zrVOMGUI/transfer/MimeData.h"

#include <functional>
#include <stdexcept>
#include <string>

/// Can be copied.
class Copied : public Thing {
public:
    ZR::RefT<ZR::VOM::Object> clone() override { return new Copied(*this); }
};

/// Throws when it is to be copied.
class Uncopied : public Thing {
public:
    ZR::RefT<ZR::VOM::Object> clone() override { throw std::runtime_error("not to be copied"); }
};

/// Writes by a function of the test.
class TestExporter : public ZR::VOM::Exporter {
public:
    using Write =
        std::function<void(ZR::VOM::Clipboard const &, std::string &, ZR::ErrorManager &)>;

    explicit TestExporter(Write function)
        : write(std::move(function))
    {
    }
    ZR::RefT<Context> createContext(ZR::RefT<ZR::VOM::Object> const &object) override
    {
        return new Run(write, object);
    }

private:
    class Run : public Context {
    public:
        Run(Write const &function, ZR::RefT<ZR::VOM::Object> const &object)
            : write(function)
            , root(dynamic_cast<ZR::VOM::Clipboard &>(*object))
        {
        }
        void export_(std::string &out, std::string const &, ZR::ErrorManager &errors,
                     ZR::Progress &) override
        {
            write(root, out, errors);
        }

    private:
        const Write write;
        ZR::VOM::Clipboard const &root;
    };

    const Write write;
};

/// One for each letter, named by it.
template <class Class>
Things makeAll(std::string const &letters)
{
    Things things;
    for (char letter : letters)
        things.push_back(makeThing<Class>(std::string(1, letter)));
    return things;
}

/// What a payload leads to.
inline Things objsOf(QMimeData const &data)
{
    Things objs;
    return ZR::VOM::GUI::getFromMimeData(data, objs) ? objs : Things{makeThing("no objects")};
}

inline Things copiesOf(QMimeData const &data)
{
    Things objs;
    return ZR::VOM::GUI::getCopyFromMimeData(data, objs) ? objs : Things{makeThing("no copies")};
}
