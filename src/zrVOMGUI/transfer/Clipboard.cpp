#include "zrVOMGUI/transfer/Clipboard.h"

#include "zrVOMGUI/foundation/vom/Exporter.h"
#include "zrVOMGUI/transfer/MimeData.h"
#include "zrVOMGUI/transfer/MimeTypes.h"
#include "zrVOMGUI/transfer/private/ObjectMimeData.h"
#include "zrVOMGUI/transfer/private/Payload.h"
#include "zrVOMGUI/transfer/private/ValueMimeData.h"

#include <QClipboard>
#include <QGuiApplication>

#include <algorithm>
#include <memory>

namespace ZR::VOM::GUI::Clipboard {
namespace {

/// Null where there is no application to ask.
QClipboard *systemClipboard()
{
    return qobject_cast<QGuiApplication *>(QCoreApplication::instance())
               ? QGuiApplication::clipboard()
               : nullptr;
}

/// Null where nothing is to be had.
QMimeData const *contents()
{
    QClipboard const *const clipboard = systemClipboard();
    return clipboard ? clipboard->mimeData(QClipboard::Clipboard) : nullptr;
}

void put(QMimeData *newData)
{
    std::unique_ptr<QMimeData> data(newData);
    if (QClipboard *const clipboard = systemClipboard())
        clipboard->setMimeData(data.release(), QClipboard::Clipboard);
}

/// Keeps the objects that the clipboard's reference names. There is one for the whole life of the
/// process, so that the address of its list never changes.
struct Holder {
    std::vector<RefT<Object>> objs;
    QMetaObject::Connection connection; // Live while there is something to hold.
};

Holder &holder()
{
    static Holder *const instance = new Holder;
    return *instance;
}

/// Lets the objects go once the clipboard no longer names them.
void watchClipboard()
{
    // KEPT: any reference of this process keeps the objects, also one that names another list:
    // only the process is compared. For hosts that put references there themselves.
    QMimeData const *const data = contents();
    if (data && hasOwnObjects(*data))
        return;
    Holder &held = holder();
    QObject::disconnect(held.connection);
    // They die when the holder is empty already: a slot may copy others into it.
    std::vector<RefT<Object>> released;
    released.swap(held.objs);
}

template <class T>
bool pasteValue(char const *type, T &value)
{
    static_assert(std::is_trivially_copyable_v<T>);
    QMimeData const *const data = contents();
    // KEPT: a text of digits isn't read as a number. For hosts that offer pasting by the type.
    if (!data || !data->hasFormat(type))
        return false;
    const QByteArray bytes = data->data(type);
    if (bytes.isEmpty())
        return false;
    // KEPT: a payload of another size is taken, too: what there is of it replaces as many bytes of
    // the value. For programs that write these types in other widths.
    const auto size = std::min(static_cast<std::size_t>(bytes.size()), sizeof value);
    std::memcpy(static_cast<void *>(&value), bytes.constData(), size);
    return true;
}

template <class T>
bool pasteArray(char const *type, std::vector<T> &values)
{
    QMimeData const *const data = contents();
    return data && readArray(*data, type, values);
}

} // namespace

void copy(Bool value)
{
    put(createMimeData(value));
}

void copy(int value)
{
    put(createMimeData(value));
}

void copy(double const &value)
{
    put(createMimeData(value));
}

void copy(std::string const &value)
{
    put(createMimeData(value));
}

void copy(std::size_t count, Bool const *values)
{
    put(createMimeData(count, values));
}

void copy(std::size_t count, int const *values)
{
    put(createMimeData(count, values));
}

void copy(std::size_t count, double const *values)
{
    put(createMimeData(count, values));
}

void copy(std::size_t count, std::string const *values)
{
    put(createMimeData(count, values));
}

void copyMat(Matrix4x4T<double> const &value)
{
    put(createMimeData(value));
}

void copyObjs(RefT<Exporter> const &exporter, std::vector<RefT<Object>> const &objs)
{
    QClipboard *const clipboard = systemClipboard();
    if (!clipboard)
        return;
    // The exporter may run anything, and the caller's list may be gone after it.
    std::vector<RefT<Object>> objects = objs;
    const std::string xml = exportXml(exporter, objects);

    Holder &held = holder();
    QObject::disconnect(held.connection);
    // What was held dies at the end of this function, when all is in place.
    held.objs.swap(objects);
    // Before the data is set: the watch then sees our own change, and keeps the objects.
    held.connection = QObject::connect(clipboard, &QClipboard::changed, watchClipboard);

    auto data = std::make_unique<QMimeData>();
    setObjectFormats(*data, &held.objs, nullptr, xml);
    clipboard->setMimeData(data.release(), QClipboard::Clipboard);
}

bool paste(Bool &value)
{
    return pasteValue(MimeType::boolean, value);
}

bool paste(int &value)
{
    return pasteValue(MimeType::integer, value);
}

bool paste(double &value)
{
    return pasteValue(MimeType::real, value);
}

bool paste(std::string &value)
{
    QMimeData const *const data = contents();
    if (!data || !data->hasText())
        return false;
    value = data->text().toUtf8().constData();
    return true;
}

bool paste(std::vector<Bool> &values)
{
    return pasteArray(MimeType::booleans, values);
}

bool paste(std::vector<int> &values)
{
    return pasteArray(MimeType::integers, values);
}

bool paste(std::vector<double> &values)
{
    return pasteArray(MimeType::reals, values);
}

bool paste(std::vector<std::string> &values)
{
    // KEPT: the payload counts as an array of elements of 32 bytes, and the strings stay empty. For
    // hosts that look at the answer and the number; getFromMimeData() reads the strings.
    constexpr int elementSize = 32;
    QMimeData const *const data = contents();
    if (!data || !data->hasFormat(MimeType::strings))
        return false;
    const int size = data->data(MimeType::strings).size();
    values.assign(static_cast<std::size_t>(size / elementSize), std::string());
    return true;
}

bool pasteObjs(std::vector<RefT<Object>> &objs)
{
    QMimeData const *const data = contents();
    return data && getFromMimeData(*data, objs);
}

bool pasteObjs(std::vector<RefT<Object>> &objs, Xml::Importer &importer)
{
    QMimeData const *const data = contents();
    return data && getFromMimeData(*data, importer, objs);
}

} // namespace ZR::VOM::GUI::Clipboard
