#include "OtherProcess.h"

#include <QTest>

/// Mistakes of the caller's, each in a process of its own.
class tst_TransferMisuse : public QObject {
    Q_OBJECT

private slots:
    void nullListsAreRefused_data();
    void nullListsAreRefused();
    void nothingIsCopiedOrPastedWithoutAClipboard_data();
    void nothingIsCopiedOrPastedWithoutAClipboard();
};

void tst_TransferMisuse::nullListsAreRefused_data()
{
    QTest::addColumn<QString>("deed");
    QTest::addColumn<QString>("complaint");
    QTest::addColumn<QString>("offered");
    QTest::newRow("ints") << "claim ints"
                          << "An array that has values isn't null."
                          << "ZR::VOM::int[] ZR::VOM::int[0] text/plain\n";
    QTest::newRow("strings") << "claim strings"
                             << "An array that has values isn't null."
                             << "ZR::VOM::string[] ZR::VOM::string[0] text/plain\n";
    QTest::newRow("objects") << "claim objects"
                             << "Readers of the reference need a list."
                             << "\n";
}

void tst_TransferMisuse::nullListsAreRefused()
{
    QFETCH(QString, deed);
    OtherProcess other(deed);
    QVERIFY(other.run());
#ifdef NDEBUG
    QFETCH(QString, offered);
    QVERIFY(other.hasSucceeded());
    QCOMPARE(other.output(), offered);
#else
    QFETCH(QString, complaint);
    QVERIFY(other.hasCrashed());
    QVERIFY2(other.errors().contains(complaint), qPrintable(other.errors()));
#endif
}

void tst_TransferMisuse::nothingIsCopiedOrPastedWithoutAClipboard_data()
{
    QTest::addColumn<QString>("deed");
    QTest::newRow("no application") << "use no application";
    QTest::newRow("an application without windows") << "use an application without windows";
}

void tst_TransferMisuse::nothingIsCopiedOrPastedWithoutAClipboard()
{
    QFETCH(QString, deed);
    OtherProcess other(deed);
    QVERIFY(other.run());
    QVERIFY2(other.hasSucceeded(), qPrintable(other.errors()));
    QCOMPARE(other.output(), QString());
}

QTEST_GUILESS_MAIN(tst_TransferMisuse)

#include "tst_TransferMisuse.moc"
