#include "StatusFile.h"

#include <QTest>

#include <random>

using Explorer::PackageRecord;
using Explorer::readStatus;

namespace {

/// A stanza of an installed package, with further lines.
std::string stanza(std::string const &name, std::string const &lines = "")
{
    return "Package: " + name + "\nStatus: install ok installed\n" + lines;
}

QString names(std::string const &text)
{
    QStringList list;
    for (PackageRecord const &record : readStatus(text))
        list << QString::fromStdString(record.name);
    return list.join(' ');
}

/// "a|b c" for two dependencies, the first with two alternatives.
QString depends(PackageRecord const &record)
{
    QStringList list;
    for (auto const &alternatives : record.depends) {
        QStringList choice;
        for (std::string const &name : alternatives)
            choice << QString::fromStdString(name);
        list << choice.join('|');
    }
    return list.join(' ');
}

} // namespace

class tst_StatusFile : public QObject {
    Q_OBJECT

private slots:
    void readsEveryField();
    void missingFieldsAreEmpty();
    void onlyInstalledPackagesCount_data();
    void onlyInstalledPackagesCount();
    void firstOfEqualNamesCounts();
    void stanzasEndAtEmptyLines_data();
    void stanzasEndAtEmptyLines();
    void oddLinesArePassedOver_data();
    void oddLinesArePassedOver();
    void dependenciesAreBareNames_data();
    void dependenciesAreBareNames();
    void providedNamesAreBare();
    void foldedListsAreOne();
    void sizesAreWholeNumbers_data();
    void sizesAreWholeNumbers();
    void maintainersHaveNoAddress_data();
    void maintainersHaveNoAddress();
    void summaryIsTheFirstLine();
    void randomDamageDoesNoHarm();
};

void tst_StatusFile::readsEveryField()
{
    const auto records = readStatus("Package: bash\n"
                                    "Status: install ok installed\n"
                                    "Priority: required\n"
                                    "Section: shells\n"
                                    "Installed-Size: 7164\n"
                                    "Maintainer: Somebody <some@body>\n"
                                    "Version: 5.2.15-2+b2\n"
                                    "Depends: base-files (>= 2.1.12), debianutils\n"
                                    "Provides: shell\n"
                                    "Description: GNU Bourne Again SHell\n"
                                    " Bash is a shell.\n");
    QCOMPARE(records.size(), std::size_t(1));
    PackageRecord const &record = records[0];
    QCOMPARE(record.name, std::string("bash"));
    QCOMPARE(record.priority, std::string("required"));
    QCOMPARE(record.section, std::string("shells"));
    QCOMPARE(record.installedSize, 7164.0);
    QCOMPARE(record.maintainer, std::string("Somebody"));
    QCOMPARE(record.version, std::string("5.2.15-2+b2"));
    QCOMPARE(depends(record), QString("base-files debianutils"));
    QVERIFY(record.provides == std::vector<std::string>{"shell"});
    QCOMPARE(record.summary, std::string("GNU Bourne Again SHell"));
}

void tst_StatusFile::missingFieldsAreEmpty()
{
    const auto records = readStatus(stanza("a"));
    QCOMPARE(records.size(), std::size_t(1));
    QCOMPARE(records[0].version + records[0].section + records[0].priority + records[0].maintainer +
                 records[0].summary,
             std::string());
    QCOMPARE(records[0].installedSize, 0.0);
    QVERIFY(records[0].depends.empty());
    QVERIFY(records[0].provides.empty());
}

void tst_StatusFile::onlyInstalledPackagesCount_data()
{
    QTest::addColumn<QString>("status");
    QTest::addColumn<bool>("installed");
    QTest::newRow("installed") << "install ok installed" << true;
    QTest::newRow("held") << "hold ok installed" << true;
    QTest::newRow("blanks around") << "  install ok installed \t" << true;
    QTest::newRow("removed") << "deinstall ok config-files" << false;
    QTest::newRow("half installed") << "install reinstreq half-installed" << false;
    QTest::newRow("never installed") << "purge ok not-installed" << false;
    QTest::newRow("unpacked") << "install ok unpacked" << false;
    QTest::newRow("one word") << "installed" << false;
    QTest::newRow("empty") << "" << false;
}

void tst_StatusFile::onlyInstalledPackagesCount()
{
    QFETCH(QString, status);
    QFETCH(bool, installed);
    const QString found = names("Package: a\nStatus: " + status.toStdString() + "\n");
    QCOMPARE(found, QString(installed ? "a" : ""));
}

void tst_StatusFile::firstOfEqualNamesCounts()
{
    const auto records =
        readStatus("Package: a\nStatus: deinstall ok config-files\nVersion: 0\n\n" +
                   stanza("a", "Version: 1\n") + "\n" + stanza("a", "Version: 2\n"));
    QCOMPARE(records.size(), std::size_t(1));
    QCOMPARE(records[0].version, std::string("1"));
}

void tst_StatusFile::stanzasEndAtEmptyLines_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const QString a = QString::fromStdString(stanza("a")), b = QString::fromStdString(stanza("b"));
    QTest::newRow("no text") << ""
                             << "";
    QTest::newRow("empty lines only") << "\n\n\n"
                                      << "";
    QTest::newRow("one empty line") << a + "\n" + b << "a b";
    QTest::newRow("several empty lines") << "\n\n" + a + "\n\n\n" + b + "\n\n"
                                         << "a b";
    QTest::newRow("line of blanks") << a + " \t \n" + b << "a b";
    QTest::newRow("no line feed at the end") << a + "\n" + b.chopped(1) << "a b";
    QTest::newRow("carriage returns") << QString(a + "\n" + b).replace("\n", "\r\n") << "a b";
    QTest::newRow("no empty line: the first name counts") << a + b << "a";
}

void tst_StatusFile::stanzasEndAtEmptyLines()
{
    QFETCH(QString, text);
    QTEST(names(text.toStdString()), "expected");
}

void tst_StatusFile::oddLinesArePassedOver_data()
{
    QTest::addColumn<QString>("lines");
    QTest::addColumn<QString>("version");
    QTest::newRow("no colon") << "Version 2\nVersion: 1\n"
                              << "1";
    QTest::newRow("continuation of a line without colon") << "odd\n Version: 2\nVersion: 1\n"
                                                          << "1";
    QTest::newRow("colon alone") << ":\nVersion: 1\n"
                                 << "1";
    QTest::newRow("names in any case") << "VERSION: 1\n"
                                       << "1";
    QTest::newRow("no blank after the colon") << "Version:1\n"
                                              << "1";
    QTest::newRow("blanks around the colon") << "Version \t:  1  \n"
                                             << "1";
    QTest::newRow("second of two lines of one name") << "Version: 1\nVersion: 2\n"
                                                     << "1";
    QTest::newRow("continuation of the second of two") << "Version: 1\nVersion: 2\n 3\n"
                                                       << "1";
    QTest::newRow("colons in the value") << "Version: 1:2.0\n"
                                         << "1:2.0";
    QTest::newRow("long line") << QString(1000000, 'x') + "\nVersion: 1\n"
                               << "1";
}

void tst_StatusFile::oddLinesArePassedOver()
{
    QFETCH(QString, lines);
    QFETCH(QString, version);
    const auto records = readStatus(stanza("a", lines.toStdString()));
    QCOMPARE(records.size(), std::size_t(1));
    QCOMPARE(QString::fromStdString(records[0].version), version);

    QCOMPARE(names(" continuation of nothing\n" + stanza("a")), QString("a"));
    QCOMPARE(names("Status: install ok installed\n\n" + stanza("b")), QString("b"));
    QCOMPARE(names("Package:\nStatus: install ok installed\n"), QString());
}

void tst_StatusFile::dependenciesAreBareNames_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("expected");
    QTest::newRow("none") << ""
                          << "";
    QTest::newRow("one") << "libc6"
                         << "libc6";
    QTest::newRow("version") << "libc6 (>= 2.34)"
                             << "libc6";
    QTest::newRow("version without a blank") << "libc6(>= 2.34)"
                                             << "libc6";
    QTest::newRow("architecture") << "python3:any (>= 3.9)"
                                  << "python3";
    QTest::newRow("restrictions") << "a [amd64 i386], b <!nocheck>"
                                  << "a b";
    QTest::newRow("alternatives") << "gpgv | gpgv2 (>= 2) | gpgv1"
                                  << "gpgv|gpgv2|gpgv1";
    QTest::newRow("alternatives among others") << "a, b | c, d"
                                               << "a b|c d";
    QTest::newRow("empty pieces") << ", a,, | , b |, (>= 1)"
                                  << "a b";
    QTest::newRow("unclosed parenthesis") << "a (>= 1, b"
                                          << "a b";
    QTest::newRow("names of all letters") << "libstdc++6, gtk2.0-0, g++-12"
                                          << "libstdc++6 gtk2.0-0 g++-12";
}

void tst_StatusFile::dependenciesAreBareNames()
{
    QFETCH(QString, list);
    const auto records = readStatus(stanza("x", "Depends: " + list.toStdString() + "\n"));
    QCOMPARE(records.size(), std::size_t(1));
    QTEST(depends(records[0]), "expected");
}

void tst_StatusFile::providedNamesAreBare()
{
    const auto records = readStatus(stanza("x", "Provides: awk, libfoo (= 1.0), bar:amd64, \n"));
    QVERIFY((records.at(0).provides == std::vector<std::string>{"awk", "libfoo", "bar"}));
}

void tst_StatusFile::foldedListsAreOne()
{
    const auto records =
        readStatus(stanza("x", "Depends: a,\n b (>= 1) |\n\tc,\n d\nVersion: 1\n"));
    QCOMPARE(depends(records.at(0)), QString("a b|c d"));
    QCOMPARE(records[0].version, std::string("1"));
}

void tst_StatusFile::sizesAreWholeNumbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("size");
    QTest::newRow("number") << "7164" << 7164.0;
    QTest::newRow("zero") << "0" << 0.0;
    QTest::newRow("large") << "5000000000" << 5e9;
    QTest::newRow("too large") << "99999999999999999999999" << 0.0;
    QTest::newRow("negative") << "-5" << 0.0;
    QTest::newRow("letters behind") << "12k" << 0.0;
    QTest::newRow("fraction") << "1.5" << 0.0;
    QTest::newRow("word") << "big" << 0.0;
    QTest::newRow("empty") << "" << 0.0;
}

void tst_StatusFile::sizesAreWholeNumbers()
{
    QFETCH(QString, text);
    const auto records = readStatus(stanza("x", "Installed-Size: " + text.toStdString() + "\n"));
    QTEST(records.at(0).installedSize, "size");
}

void tst_StatusFile::maintainersHaveNoAddress_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("name and address") << "Some Body <some@body>"
                                      << "Some Body";
    QTest::newRow("name only") << "Some Body"
                               << "Some Body";
    QTest::newRow("address only") << "<some@body>"
                                  << "";
    QTest::newRow("parentheses") << "S. Body (GCS) <some@body>"
                                 << "S. Body (GCS)";
    QTest::newRow("beyond Latin") << QString::fromUtf8("Jörg <j@x>") << QString::fromUtf8("Jörg");
}

void tst_StatusFile::maintainersHaveNoAddress()
{
    QFETCH(QString, text);
    const auto records = readStatus(stanza("x", "Maintainer: " + text.toStdString() + "\n"));
    QTEST(QString::fromStdString(records.at(0).maintainer), "expected");
}

void tst_StatusFile::summaryIsTheFirstLine()
{
    const auto records =
        readStatus(stanza("x", "Description: short text  \n Long text.\n .\n Package: y\n"));
    QCOMPARE(records.size(), std::size_t(1));
    QCOMPARE(records[0].summary, std::string("short text"));
}

void tst_StatusFile::randomDamageDoesNoHarm()
{
    std::string sound;
    for (int i = 0; i < 20; ++i)
        sound += stanza("p" + std::to_string(i), "Version: 1\nDepends: a (>= 1) | b, c\n"
                                                 "Maintainer: M <m@x>\nDescription: d\n more\n") +
                 "\n";
    for (unsigned seed = 0; seed < 500; ++seed) {
        std::mt19937 gen(seed);
        std::string text = sound.substr(0, gen() % (sound.size() + 1));
        constexpr char odd[] = "\n\r\t :,|(<[\0\xff\xc3";
        for (unsigned i = 0; i < 30 && !text.empty(); ++i)
            text[gen() % text.size()] = odd[gen() % (sizeof odd - 1)];
        for (PackageRecord const &record : readStatus(text)) {
            QVERIFY2(!record.name.empty(), qPrintable(QString("seed %1").arg(seed)));
            for (auto const &alternatives : record.depends)
                QVERIFY2(!alternatives.empty(), qPrintable(QString("seed %1").arg(seed)));
        }
    }
}

QTEST_GUILESS_MAIN(tst_StatusFile)
#include "tst_StatusFile.moc"
