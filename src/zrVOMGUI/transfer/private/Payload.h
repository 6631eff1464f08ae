#pragma once

#include <QByteArray>
#include <QMimeData>
#include <QString>

#include <cstddef>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace ZR::VOM::GUI {

/// The most bytes that a payload may have. A QByteArray ends a little below 2 GiB.
inline constexpr std::size_t maxPayload = std::numeric_limits<int>::max() - 64;

/// The most bytes of a text: in a QString they may take twice as many.
inline constexpr std::size_t maxText = maxPayload / 2;

/// Sets a text in UTF-8 unless it is longer than maxText.
inline void setText(QMimeData &data, std::string const &text)
{
    if (text.size() <= maxText)
        data.setText(QString::fromUtf8(text.data(), static_cast<int>(text.size())));
}

/// Puts the values that lie in the payload of that type in the place of `values`. False, and those
/// stay, when there is no such type. Bytes behind the last whole value are passed over.
template <class T>
bool readArray(QMimeData const &data, char const *type, std::vector<T> &values)
{
    static_assert(std::is_trivially_copyable_v<T>);
    if (!data.hasFormat(type))
        return false;
    const QByteArray bytes = data.data(type);
    values.clear();
    values.resize(static_cast<std::size_t>(bytes.size()) / sizeof(T));
    if (!values.empty())
        std::memcpy(static_cast<void *>(values.data()), bytes.constData(),
                    values.size() * sizeof(T));
    return true;
}

} // namespace ZR::VOM::GUI
