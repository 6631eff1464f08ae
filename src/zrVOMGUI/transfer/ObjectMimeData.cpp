#include "zrVOMGUI/transfer/private/ObjectMimeData.h"

#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/util/Log.h"
#include "zrVOMGUI/foundation/vom/Exporter.h"
#include "zrVOMGUI/foundation/vom/Importer.h"
#include "zrVOMGUI/transfer/ClipboardObject.h"
#include "zrVOMGUI/transfer/MimeData.h"
#include "zrVOMGUI/transfer/MimeTypes.h"
#include "zrVOMGUI/transfer/private/Payload.h"

#include <QCoreApplication>

#include <cassert>
#include <cstdint>
#include <memory>

namespace ZR::VOM::GUI {
namespace {

using Objects = std::vector<RefT<Object>>;

/// The payload that names a list.
struct Reference {
    std::int32_t processId;
    std::uint32_t reserved; // Writers put 0, readers don't look.
    std::uint64_t address;
};
static_assert(sizeof(Reference) == 16, "Its bytes are the payload.");
static_assert(sizeof(Objects const *) <= sizeof(std::uint64_t));

std::int32_t ownProcessId()
{
    return static_cast<std::int32_t>(QCoreApplication::applicationPid());
}

void setReference(QMimeData &data, char const *type, Objects const *objs)
{
    const Reference reference = {ownProcessId(), 0, reinterpret_cast<std::uintptr_t>(objs)};
    data.setData(type, {reinterpret_cast<char const *>(&reference), sizeof reference});
}

/// Whether the payload of that type is a reference of this process.
bool readReference(QMimeData const &data, char const *type, Reference &reference)
{
    if (!data.hasFormat(type))
        return false;
    const QByteArray bytes = data.data(type);
    if (bytes.size() != sizeof reference)
        return false;
    std::memcpy(&reference, bytes.constData(), sizeof reference);
    return reference.processId == ownProcessId();
}

bool readObjects(QMimeData const &data, char const *type, Objects &objs)
{
    Reference reference;
    if (!readReference(data, type, reference) || reference.address == 0)
        return false;
    auto const *const list =
        reinterpret_cast<Objects const *>(static_cast<std::uintptr_t>(reference.address));
    // A copy first: what `objs` held may die by this, and its death may change either list.
    Objects copy = *list;
    objs.swap(copy);
    return true;
}

/// What one run of an exporter or importer reports to. The messages go with it: whoever pastes gets
/// the next format, and no lecture on this one.
struct Reports {
    Log log;
    ErrorManager errors{log};
    Progress progress{"", false};
};

void importXml(Xml::Importer &importer, QByteArray const &xml, VOM::Clipboard &root,
               Reports &reports)
{
    const RefT<VOM::Importer::Context> context = importer.createContext(root);
    if (context)
        context->import_(xml.constData(), xml.size(), "[Clipboard]", reports.errors,
                         reports.progress);
    else
        reports.errors.report("The importer has no context.");
}

} // namespace

std::string exportXml(RefT<Exporter> const &exporter, Objects const &objs)
{
    if (!exporter)
        return {};
    const RefT<Exporter> kept = exporter;
    Reports reports;
    std::string xml;
    const bool ended = tryCatch("ZR::VOM::GUI::addFormats", [&] {
        VOM::Clipboard root(objs);
        const RefT<Exporter::Context> context = kept->createContext(root);
        if (context)
            context->export_(xml, "", reports.errors, reports.progress);
    });
    // Not even a part of it: half of the objects are worse than none.
    return ended && reports.errors.errorCount == 0 ? xml : std::string();
}

void setObjectFormats(QMimeData &data, Objects const *objs, Objects const *copyObjs,
                      std::string const &xml)
{
    setReference(data, MimeType::objects, objs);
    if (copyObjs)
        setReference(data, MimeType::objectCopies, copyObjs);
    if (!xml.empty() && xml.size() <= maxPayload)
        data.setData(MimeType::objectsXml, {xml.data(), static_cast<int>(xml.size())});
}

bool hasOwnObjects(QMimeData const &data)
{
    Reference reference;
    return readReference(data, MimeType::objects, reference);
}

void addFormats(QMimeData &data, RefT<Exporter> const &exporter, Objects const *objs,
                Objects const *copyObjs)
{
    assert(objs && "Readers of the reference need a list.");
    if (objs)
        setObjectFormats(data, objs, copyObjs, exportXml(exporter, *objs));
}

QMimeData *createMimeData(RefT<Exporter> const &exporter, Objects const *objs,
                          Objects const *copyObjs)
{
    auto data = std::make_unique<QMimeData>();
    addFormats(*data, exporter, objs, copyObjs);
    return data.release();
}

bool getFromMimeData(QMimeData const &data, Objects &objs)
{
    return readObjects(data, MimeType::objects, objs);
}

bool getCopyFromMimeData(QMimeData const &data, Objects &objs)
{
    return readObjects(data, MimeType::objectCopies, objs);
}

bool getFromMimeData(QMimeData const &data, Xml::Importer &importer, Objects &objs)
{
    if (!data.hasFormat(MimeType::objectsXml))
        return false;
    const QByteArray xml = data.data(MimeType::objectsXml);
    if (xml.isEmpty())
        return false;
    const RefT<Xml::Importer> kept(importer);
    Reports reports;
    VOM::Clipboard root;
    const bool ended =
        tryCatch("ZR::VOM::GUI::getFromMimeData", [&] { importXml(importer, xml, root, reports); });
    if (!ended || reports.errors.errorCount != 0)
        return false;
    Objects imported = root.getObjects();
    objs.swap(imported);
    return true;
}

} // namespace ZR::VOM::GUI
