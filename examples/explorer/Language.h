#pragma once

#include <QMap>
#include <QTranslator>

namespace Explorer {

/// The translations of one context of a .ts file, as it is written by hand or by Qt Linguist. A
/// program that is delivered may have a .qm made of it and load that into a plain QTranslator.
class Catalogue : public QTranslator {
public:
    explicit Catalogue(QString const &path, QObject *parent = nullptr);

    bool isEmpty() const override { return texts.isEmpty(); }
    /// Null for what isn't in the catalogue.
    QString translate(char const *context, char const *source, char const *disambiguation,
                      int number) const override;

private:
    QByteArray contextName;
    QMap<QString, QString> texts; // By source.
};

/// Lets the library's texts read in German, or in English again, in all windows.
void setGerman(bool german);

} // namespace Explorer
