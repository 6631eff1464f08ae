#include "support/NumberedGraph.h"
#include "zrVOMGUI/graph/layout/CutValueIndex.h"

#include <QTest>

#include <algorithm>
#include <limits>

using ZR::VOM::GUI::Graph::CutValueIndex;
using Values = std::vector<int>;

namespace {

constexpr unsigned none = CutValueIndex::none;
constexpr int lowestInt = std::numeric_limits<int>::min();
constexpr int highestInt = std::numeric_limits<int>::max();

/// By a look at all of them.
unsigned findLowest(Values const &values)
{
    const auto lowest = std::min_element(values.begin(), values.end()); // The first of equal ones.
    return lowest == values.end() || *lowest >= 0 ? none
                                                  : static_cast<unsigned>(lowest - values.begin());
}

/// Mostly values of which many are equal, as cut values are, and now and then an extreme one.
int drawValue(std::mt19937 &generator)
{
    switch (drawBelow(generator, 20)) {
    case 0:
        return lowestInt;
    case 1:
        return highestInt;
    default:
        return static_cast<int>(drawBelow(generator, 9)) - 4;
    }
}

Values drawValues(unsigned num, std::mt19937 &generator)
{
    Values values(num);
    std::generate(values.begin(), values.end(), [&] { return drawValue(generator); });
    return values;
}

} // namespace

Q_DECLARE_METATYPE(Values)

/// The index of tree edges against a look at all of them.
class tst_CutValueIndex : public QObject {
    Q_OBJECT

private slots:
    void newIndexFindsNone();
    void lowestOfAssignedValues_data();
    void lowestOfAssignedValues();
    void setChangesTheAnswer();
    void raisedValueGivesWayToTheNextOfTheSameHeight();
    void assignForgetsEarlierValues();
    void randomChangesEqualALookAtAll_data();
    void randomChangesEqualALookAtAll();
};

void tst_CutValueIndex::newIndexFindsNone()
{
    QCOMPARE(CutValueIndex().findLowest(), none);
}

void tst_CutValueIndex::lowestOfAssignedValues_data()
{
    QTest::addColumn<Values>("values");
    QTest::addColumn<unsigned>("place");
    QTest::newRow("no place at all") << Values{} << none;
    QTest::newRow("one place, 0") << Values{0} << none;
    QTest::newRow("one place, positive") << Values{7} << none;
    QTest::newRow("one place, negative") << Values{-1} << 0u;
    QTest::newRow("none is negative") << Values{3, 0, 1, highestInt} << none;
    QTest::newRow("last of two") << Values{0, -1} << 1u;
    QTest::newRow("first of equal ones") << Values{5, -2, 0, -2, -2} << 1u;
    QTest::newRow("equal ones in two halves") << Values{0, 0, 0, -2, -2, 0, 0, 0} << 3u;
    QTest::newRow("a lower one behind a negative one") << Values{-1, 4, -2, -1} << 2u;
    QTest::newRow("last place, which fills the last match alone")
        << Values{-1, -1, -1, -1, -2} << 4u;
    QTest::newRow("lowest int") << Values{-highestInt, lowestInt, lowestInt} << 1u;
}

void tst_CutValueIndex::lowestOfAssignedValues()
{
    QFETCH(Values, values);
    QFETCH(unsigned, place);
    CutValueIndex index;
    index.assign(values);
    QCOMPARE(index.findLowest(), place);
}

void tst_CutValueIndex::setChangesTheAnswer()
{
    CutValueIndex index;
    index.assign({0, 0, 0, 0, 0});
    index.set(3, -1);
    QCOMPARE(index.findLowest(), 3u);
    index.set(4, -2);
    QCOMPARE(index.findLowest(), 4u);
    index.set(0, -2);
    QCOMPARE(index.findLowest(), 0u);
    index.set(0, highestInt);
    QCOMPARE(index.findLowest(), 4u);
    index.set(4, 0);
    QCOMPARE(index.findLowest(), 3u);
    index.set(3, 1);
    QCOMPARE(index.findLowest(), none);
}

/// The winner of the final keeps its height, but not its place.
void tst_CutValueIndex::raisedValueGivesWayToTheNextOfTheSameHeight()
{
    CutValueIndex index;
    index.assign({-3, -3, 0, -3});
    index.set(0, -2);
    QCOMPARE(index.findLowest(), 1u);
    index.set(1, 0);
    QCOMPARE(index.findLowest(), 3u);
    index.set(3, 0);
    QCOMPARE(index.findLowest(), 0u);
}

void tst_CutValueIndex::assignForgetsEarlierValues()
{
    CutValueIndex index;
    index.assign({-1, -2, -3, -4, -5});
    index.assign({-1, 0});
    QCOMPARE(index.findLowest(), 0u);
    index.assign({});
    QCOMPARE(index.findLowest(), none);
    index.assign({0, 0, -1});
    QCOMPARE(index.findLowest(), 2u);
}

void tst_CutValueIndex::randomChangesEqualALookAtAll_data()
{
    QTest::addColumn<unsigned>("numPlaces");
    for (unsigned numPlaces : {1u, 2u, 3u, 4u, 5u, 7u, 8u, 9u, 31u, 64u, 65u, 100u})
        QTest::addRow("%u places", numPlaces) << numPlaces;
}

void tst_CutValueIndex::randomChangesEqualALookAtAll()
{
    QFETCH(unsigned, numPlaces);
    for (unsigned seed = 1; seed <= 20; ++seed) {
        std::mt19937 generator(seed);
        Values values = drawValues(numPlaces, generator);
        CutValueIndex index;
        index.assign(values);
        for (int step = 0; step < 500; ++step) {
            QVERIFY2(index.findLowest() == findLowest(values),
                     qPrintable(QString("seed %1, step %2").arg(seed).arg(step)));
            // The found one rises, as in the solver, or else any one changes.
            const unsigned found = index.findLowest();
            const bool raise = found != none && drawBelow(generator, 2) == 0;
            const unsigned place = raise ? found : drawBelow(generator, numPlaces);
            values[place] = raise ? 0 : drawValue(generator);
            index.set(place, values[place]);
        }
    }
}

QTEST_GUILESS_MAIN(tst_CutValueIndex)
#include "tst_CutValueIndex.moc"
