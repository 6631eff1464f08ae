#include "support/GraphProgram.h"
#include "support/QtStrings.h"

#include <QElapsedTimer>
#include <QTest>

#include <numeric>

using namespace ZR::VOM::GUI;

// Random programs of changes to a model and to two views of it. After each step both views must
// show what an oracle makes of the model, and a view built anew what it makes of it from nothing.
//
// A row's name is its seed. When one fails, the program is cut down to the steps that it takes, and
// these are told. ZRVOMGUI_SEEDS=1000-1999 runs other seeds, and ZRVOMGUI_TRACE=1 writes each step
// before it is made, for programs that crash.

namespace {

/// What is wrong first when these steps are made, with the steps that were made, or nothing.
std::string failureOf(unsigned seed, std::vector<unsigned> const &steps)
{
    GraphProgram program(seed);
    std::string made;
    for (unsigned step : steps) {
        const std::string wrong = program.step(step);
        made += "\n  " + std::to_string(step) + ": " + program.lastStep();
        if (!wrong.empty())
            return wrong + "after" + made;
    }
    return {};
}

/// The failure of fewer steps: drops stretches of them as long as it still fails, for some seconds.
std::string shortestFailure(unsigned seed, std::vector<unsigned> steps, std::string failure)
{
    QElapsedTimer timer;
    timer.start();
    std::size_t stretch = steps.size() / 2;
    while (stretch > 0) {
        const std::size_t numBefore = steps.size();
        for (std::size_t i = 0; i + stretch <= steps.size() && timer.elapsed() < 20000;) {
            std::vector<unsigned> fewer = steps;
            const auto begin = fewer.begin() + std::ptrdiff_t(i);
            fewer.erase(begin, begin + std::ptrdiff_t(stretch));
            std::string stillFails = failureOf(seed, fewer);
            if (stillFails.empty()) {
                i += stretch;
            } else {
                failure = std::move(stillFails);
                steps = std::move(fewer);
            }
        }
        // One dropped step may make another needless.
        stretch = steps.size() < numBefore ? std::min(stretch, steps.size()) : stretch / 2;
    }
    return failure;
}

} // namespace

class tst_GraphModelBased : public QObject {
    Q_OBJECT

private slots:
    void viewsFollowTheModel_data();
    void viewsFollowTheModel();
    void programsMeetWhatTheyAreFor();
};

void tst_GraphModelBased::viewsFollowTheModel_data()
{
    unsigned first = 1, last = 40;
    const QStringList range = qEnvironmentVariable("ZRVOMGUI_SEEDS").split('-');
    if (!range.first().isEmpty()) {
        first = range.first().toUInt();
        last = range.last().toUInt();
    }
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = first; seed <= last; ++seed)
        QTest::addRow("%u", seed) << seed;
}

void tst_GraphModelBased::viewsFollowTheModel()
{
    QFETCH(unsigned, seed);
    std::vector<unsigned> steps(GraphProgram::numSteps);
    std::iota(steps.begin(), steps.end(), 0u);
    const std::string failure = failureOf(seed, steps);
    if (!failure.empty())
        QFAIL(shortestFailure(seed, steps, failure).c_str());
}

/// A program that meets nothing passes, whatever views do.
void tst_GraphModelBased::programsMeetWhatTheyAreFor()
{
    GraphProgram::Met met;
    for (unsigned seed = 1; seed <= 10; ++seed) {
        GraphProgram program(seed);
        for (unsigned step = 0; step < GraphProgram::numSteps; ++step)
            QCOMPARE(program.step(step), std::string());
        met.stations += program.getMet().stations;
        met.counts += program.getMet().counts;
        met.loops += program.getMet().loops;
        met.merged += program.getMet().merged;
        met.behind += program.getMet().behind;
    }
    for (unsigned numSteps : {met.stations, met.counts, met.loops, met.merged, met.behind})
        QVERIFY2(numSteps >= 300, qPrintable(QString::number(numSteps)));
}

QTEST_MAIN(tst_GraphModelBased)
#include "tst_GraphModelBased.moc"
