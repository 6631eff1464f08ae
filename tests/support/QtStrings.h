#pragma once

// Lets Qt Test show std::string where two differ, and take it in tables.

#include <QByteArray>
#include <QMetaType>
#include <QTest>

#include <string>

Q_DECLARE_METATYPE(std::string)

namespace QTest {

template <>
inline char *toString(std::string const &text)
{
    return qstrdup(('"' + text + '"').c_str());
}

} // namespace QTest
