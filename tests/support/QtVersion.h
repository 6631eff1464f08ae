#pragma once

// What differs between Qt versions for tests.

#include <QLibraryInfo>
#include <QMetaType>
#include <QVariant>

/// How a payload is told which type of value it is asked for.
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
using MimeValueType = QMetaType;
#else
using MimeValueType = QVariant::Type;
#endif

inline QString qtHeadersFolder()
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return QLibraryInfo::path(QLibraryInfo::HeadersPath);
#else
    return QLibraryInfo::location(QLibraryInfo::HeadersPath);
#endif
}
