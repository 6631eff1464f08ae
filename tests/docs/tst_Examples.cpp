#include <QDir>
#include <QImage>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <map>
#include <memory>

/// Runs every example, as ./run --shoot does.
class tst_Examples : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void showsItsWidget_data();
    void showsItsWidget();

private:
    struct Run {
        QString picture;
        QProcess process;
    };
    QTemporaryDir folder;
    std::map<QString, std::unique_ptr<Run>> runs; // By the example's name.
};

/// All at once: each takes its time to come to rest.
void tst_Examples::initTestCase()
{
    QVERIFY(folder.isValid());
    const QDir programs(EXAMPLES_FOLDER);
    for (QString const &name : QString(EXAMPLES).split(' ')) {
        auto run = std::make_unique<Run>();
        run->picture = folder.filePath(name + ".png");
        run->process.setProcessChannelMode(QProcess::MergedChannels);
        run->process.start(programs.filePath(name + '/' + name), {"--shoot", run->picture});
        runs[name] = std::move(run);
    }
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
    const QImage picture(run.picture);
    QVERIFY(!picture.isNull());
    QSet<QRgb> colours;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            colours << picture.pixel(x, y);
    QVERIFY(colours.size() > 16); // Text, at least.
}

QTEST_GUILESS_MAIN(tst_Examples)

#include "tst_Examples.moc"
