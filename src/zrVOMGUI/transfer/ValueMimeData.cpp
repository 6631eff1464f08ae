#include "zrVOMGUI/transfer/private/ValueMimeData.h"

#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/util/Matrix4x4T.h"
#include "zrVOMGUI/foundation/util/text.h"
#include "zrVOMGUI/transfer/MimeData.h"
#include "zrVOMGUI/transfer/MimeTypes.h"
#include "zrVOMGUI/transfer/private/Payload.h"
#include "zrVOMGUI/transfer/private/StringArray.h"

#include <cassert>
#include <memory>
#include <new>

namespace ZR::VOM::GUI {
namespace {

std::string toText(Bool value)
{
    return value ? "true" : "false";
}

std::string toText(int value)
{
    return intToStr(value, 10);
}

std::string toText(double value)
{
    return doubleToStr(value, 0, false);
}

/// The values with commas between them, of which there may be too many for a text: more than
/// maxText bytes then.
template <class T>
std::string joinedText(std::size_t count, T const *values)
{
    std::string text;
    for (std::size_t i = 0; i < count && text.size() <= maxText; ++i) {
        if (i > 0)
            text += ", ";
        text += toText(values[i]);
    }
    return text;
}

template <class T>
QByteArray rawBytes(std::size_t count, T const *values)
{
    return {reinterpret_cast<char const *>(values), static_cast<int>(count * sizeof(T))};
}

template <class T>
QMimeData *createValue(char const *type, T const &value)
{
    auto data = std::make_unique<QMimeData>();
    data->setData(type, rawBytes(1, &value));
    setText(*data, toText(value));
    return data.release();
}

void setBothTypes(QMimeData &data, char const *type, char const *sizedType, std::size_t count,
                  QByteArray const &bytes)
{
    data.setData(type, bytes);
    data.setData(QString::fromStdString(_compose(sizedType, count)), bytes);
}

/// The number of values that are there: none if the list is null.
std::size_t checkedCount(std::size_t count, void const *values)
{
    assert((values || count == 0) && "An array that has values isn't null.");
    return values ? count : 0;
}

template <class T>
QMimeData *createArray(char const *type, char const *sizedType, std::size_t claimedCount,
                       T const *values)
{
    const std::size_t count = checkedCount(claimedCount, values);
    auto data = std::make_unique<QMimeData>();
    if (count > maxPayload / sizeof(T))
        return data.release();
    setBothTypes(*data, type, sizedType, count, rawBytes(count, values));
    setText(*data, joinedText(count, values));
    return data.release();
}

/// Whether all are valid UTF-8 up to their first zero byte.
bool areValid(std::size_t count, std::string const *values)
{
    char const *errorPos = nullptr;
    for (std::size_t i = 0; i < count; ++i) {
        if (!validateUtf8(values[i].c_str(), errorPos))
            return false;
    }
    return true;
}

std::string lines(std::size_t count, std::string const *values)
{
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        // Up to the first zero byte: what is behind it wasn't looked at.
        text += values[i].c_str();
        text += '\n';
    }
    return text;
}

void removeCarriageReturns(std::vector<std::string> &values)
{
    for (std::string &value : values) {
        if (!value.empty() && value.back() == '\r')
            value.pop_back();
    }
}

} // namespace

QMimeData *createMimeData(Bool value)
{
    return createValue(MimeType::boolean, value);
}

QMimeData *createMimeData(int value)
{
    return createValue(MimeType::integer, value);
}

QMimeData *createMimeData(double const &value)
{
    return createValue(MimeType::real, value);
}

QMimeData *createMimeData(std::string const &value)
{
    auto data = std::make_unique<QMimeData>();
    setText(*data, value.c_str());
    return data.release();
}

QMimeData *createMimeData(Matrix4x4T<double> const &value)
{
    constexpr std::size_t count = Matrix4x4D::size * Matrix4x4D::size;
    auto data = std::make_unique<QMimeData>();
    data->setData(MimeType::matrix, rawBytes(count, value.data()));
    setText(*data, "Mat4x4( " + joinedText(count, value.data()) + ')');
    return data.release();
}

QMimeData *createMimeData(std::size_t count, Bool const *values)
{
    return createArray(MimeType::booleans, MimeType::sizedBooleans, count, values);
}

QMimeData *createMimeData(std::size_t count, int const *values)
{
    return createArray(MimeType::integers, MimeType::sizedIntegers, count, values);
}

QMimeData *createMimeData(std::size_t count, double const *values)
{
    return createArray(MimeType::reals, MimeType::sizedReals, count, values);
}

QMimeData *createMimeData(std::size_t claimedCount, std::string const *values)
{
    const std::size_t count = checkedCount(claimedCount, values);
    auto data = std::make_unique<QMimeData>();
    std::string bytes;
    if (!encodeStrings(count, values, maxPayload, bytes))
        return data.release();
    setBothTypes(*data, MimeType::strings, MimeType::sizedStrings, count,
                 rawBytes(bytes.size(), bytes.data()));
    // All or nothing: with a string left out, the others would be read in wrong places.
    if (areValid(count, values))
        setText(*data, lines(count, values));
    return data.release();
}

bool getFromMimeData(QMimeData const &data, std::vector<int> &values)
{
    return readArray(data, MimeType::integers, values);
}

bool getFromMimeData(QMimeData const &data, std::vector<double> &values)
{
    return readArray(data, MimeType::reals, values);
}

bool getFromMimeData(QMimeData const &data, std::vector<std::string> &values)
{
    if (data.hasFormat(MimeType::strings)) {
        values.clear();
        try {
            decodeStrings(data.data(MimeType::strings), values);
            return true;
        } catch (ErrorBinaryDecode const &) {
            return false;
        } catch (std::bad_alloc const &) {
            // Empty strings take one byte each in the payload and many times that in a list.
            return false;
        }
    }
    if (!data.hasText())
        return false;
    const QByteArray text = data.text().toUtf8();
    values.clear();
    strTok(text.constData(), '\n', values);
    removeCarriageReturns(values);
    return true;
}

} // namespace ZR::VOM::GUI
