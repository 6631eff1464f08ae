#pragma once

// MIME data as text, and by hand.

#include <QMimeData>
#include <QString>

#include <memory>

/// One line for each type, in the order in which they are offered: the bytes in hexadecimal digits,
/// or the text in quotes.
inline QString dump(QMimeData const &data)
{
    QStringList lines;
    for (QString const &type : data.formats())
        lines << (type == "text/plain" ? "text \"" + data.text() + '"'
                                       : type + ' ' + data.data(type).toHex());
    return lines.join('\n');
}

using MimeData = std::unique_ptr<QMimeData>;

/// One type with these bytes.
inline MimeData payload(char const *type, QByteArray const &bytes)
{
    auto data = std::make_unique<QMimeData>();
    data->setData(type, bytes);
    return data;
}

inline MimeData plainText(QString const &text)
{
    auto data = std::make_unique<QMimeData>();
    data->setText(text);
    return data;
}
