#include <QDir>
#include <QImage>
#include <QProcess>
#include <QSet>
#include <QTest>

#include <cstdlib>
#include <map>
#include <memory>

/// Runs every example, as ./run --shoot does, and holds docs/pictures against what they show.
class tst_Examples : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void differencesAreFound();
    void showsItsWidget_data();
    void showsItsWidget();
    void everyPictureHasItsExample();

private:
    struct Run {
        QString picture;
        QProcess process;
    };
    std::map<QString, std::unique_ptr<Run>> runs; // By the example's name.
};

namespace {

const QDir root(ZRVOMGUI_SOURCE_DIR);
const QDir keptPictures(root.filePath("docs/pictures"));
const QStringList names = QString(EXAMPLES).split(' ');

QString pictureOf(QString const &name)
{
    return "example-" + name + ".png";
}

/// Text and frames look a little different with Qt 6. Ties in a graph's layout are broken by
/// address, and addresses aren't the same from run to run: there are several drawings.
bool canBeCompared(QString const &name)
{
    return QT_VERSION < QT_VERSION_CHECK(6, 0, 0) && name != "graph";
}

bool isNearly(QRgb a, QRgb b)
{
    constexpr int tolerance = 8; // Processors don't round alike when colours are mixed.
    return std::abs(qRed(a) - qRed(b)) <= tolerance &&
           std::abs(qGreen(a) - qGreen(b)) <= tolerance &&
           std::abs(qBlue(a) - qBlue(b)) <= tolerance;
}

/// Where two pictures differ; empty if they don't.
QString differenceOf(QImage const &drawn, QImage const &kept)
{
    if (drawn.size() != kept.size())
        return QString("%1 x %2 pixels and not %3 x %4")
            .arg(drawn.width())
            .arg(drawn.height())
            .arg(kept.width())
            .arg(kept.height());
    QRect place;
    for (int y = 0; y < drawn.height(); ++y)
        for (int x = 0; x < drawn.width(); ++x)
            if (!isNearly(drawn.pixel(x, y), kept.pixel(x, y)))
                place |= QRect(x, y, 1, 1);
    if (place.isNull())
        return QString();
    return QString("between (%1, %2) and (%3, %4)")
        .arg(place.left())
        .arg(place.top())
        .arg(place.right())
        .arg(place.bottom());
}

int countColours(QImage const &picture)
{
    QSet<QRgb> colours;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            colours << picture.pixel(x, y);
    return static_cast<int>(colours.size());
}

} // namespace

/// All at once: each takes its time to come to rest.
void tst_Examples::initTestCase()
{
    const QDir programs(EXAMPLES_FOLDER), folder(DRAWN_PICTURES);
    QVERIFY(folder.mkpath("."));
    for (QString const &name : names) {
        auto run = std::make_unique<Run>();
        run->picture = folder.filePath(pictureOf(name));
        QFile::remove(run->picture);
        run->process.setProcessChannelMode(QProcess::MergedChannels);
        run->process.start(programs.filePath(name + '/' + name), {"--shoot", run->picture});
        runs[name] = std::move(run);
    }
}

void tst_Examples::differencesAreFound()
{
    QImage one(20, 10, QImage::Format_RGB32);
    one.fill(qRgb(100, 100, 100));
    QImage other = one;
    QCOMPARE(differenceOf(one, other), QString());
    other.setPixel(7, 3, qRgb(103, 100, 97));
    QCOMPARE(differenceOf(one, other), QString());
    other.setPixel(7, 3, qRgb(100, 100, 130));
    QCOMPARE(differenceOf(one, other), QString("between (7, 3) and (7, 3)"));
    other.setPixel(2, 9, qRgb(100, 70, 100));
    QCOMPARE(differenceOf(one, other), QString("between (2, 3) and (7, 9)"));
    QCOMPARE(differenceOf(one, QImage(20, 9, QImage::Format_RGB32)),
             QString("20 x 10 pixels and not 20 x 9"));
}

void tst_Examples::showsItsWidget_data()
{
    QTest::addColumn<QString>("name");
    for (auto const &[name, run] : runs)
        QTest::newRow(qPrintable(name)) << name;
}

void tst_Examples::showsItsWidget()
{
    QFETCH(QString, name);
    Run &run = *runs.at(name);
    constexpr int patience = 120000; // Milliseconds; sanitizers take their time.
    if (run.process.state() != QProcess::NotRunning)
        QVERIFY(run.process.waitForFinished(patience));
    QVERIFY2(run.process.exitStatus() == QProcess::NormalExit && run.process.exitCode() == 0,
             run.process.readAll().constData());
    const QImage drawn(run.picture);
    QVERIFY(!drawn.isNull());
    QVERIFY(countColours(drawn) > 16); // Text, at least.

    const QString keptPath = keptPictures.filePath(pictureOf(name));
    const QImage kept(keptPath);
    QVERIFY2(!kept.isNull(), qPrintable("There is no " + keptPath));
    QCOMPARE(drawn.size(), kept.size());
    if (!canBeCompared(name))
        return;
    const QString difference = differenceOf(drawn, kept);
    QVERIFY2(
        difference.isEmpty(),
        qPrintable(QString("%1 isn't %2: %3. Look at it. If it is as it should be, copy it there.")
                       .arg(run.picture, keptPath, difference)));
}

void tst_Examples::everyPictureHasItsExample()
{
    QStringList expected;
    for (QString const &name : names)
        expected << pictureOf(name);
    expected.sort();
    QCOMPARE(keptPictures.entryList({pictureOf("*")}, QDir::Files, QDir::Name), expected);
}

QTEST_GUILESS_MAIN(tst_Examples)

#include "tst_Examples.moc"
