#include "support/NumberedGraph.h"
#include "zrVOMGUI/graph/layout/Tournament.h"

#include <QTest>

#include <algorithm>

using ZR::VOM::GUI::Graph::Tournament;
using Values = std::vector<int>;
using Places = std::vector<unsigned>;

namespace {

/// By a look at all of them.
Places allLowest(Values const &values)
{
    Places places;
    const int lowest = *std::min_element(values.begin(), values.end());
    for (unsigned place = 0; place < values.size(); ++place)
        if (values[place] == lowest)
            places.push_back(place);
    return places;
}

} // namespace

/// The tournament against a look at all places.
class tst_Tournament : public QObject {
    Q_OBJECT

private slots:
    void withoutPlacesNothingIsFound();
    void absentPlacesAreFoundWhereThereIsNoOther();
    void allLowestAreAppendedFromLeftToRight();
    void randomChangesEqualALookAtAll_data();
    void randomChangesEqualALookAtAll();
};

void tst_Tournament::withoutPlacesNothingIsFound()
{
    Tournament tournament;
    QCOMPARE(tournament.numPlaces(), std::size_t(0));
    QCOMPARE(tournament.lowest(), Tournament::absent);
    QCOMPARE(tournament.findLowest(), Tournament::none);
    Places places;
    tournament.appendAllLowest(places);
    QCOMPARE(places, Places());
}

void tst_Tournament::absentPlacesAreFoundWhereThereIsNoOther()
{
    Tournament tournament;
    tournament.assign(3, Tournament::absent);
    QCOMPARE(tournament.lowest(), Tournament::absent);
    QCOMPARE(tournament.findLowest(), 0u);
    tournament.set(2, Tournament::absent - 1);
    QCOMPARE(tournament.findLowest(), 2u);
    QCOMPARE(tournament.value(1), Tournament::absent);
}

void tst_Tournament::allLowestAreAppendedFromLeftToRight()
{
    Tournament tournament;
    tournament.assign({4, 1, 2, 1, 7, 1, 1});
    Places places{9};
    tournament.appendAllLowest(places);
    QCOMPARE(places, (Places{9, 1, 3, 5, 6}));
}

void tst_Tournament::randomChangesEqualALookAtAll_data()
{
    QTest::addColumn<unsigned>("numPlaces");
    for (unsigned numPlaces : {1u, 2u, 3u, 5u, 6u, 7u, 8u, 9u, 33u, 64u, 100u})
        QTest::addRow("%u places", numPlaces) << numPlaces;
}

void tst_Tournament::randomChangesEqualALookAtAll()
{
    QFETCH(unsigned, numPlaces);
    for (unsigned seed = 1; seed <= 20; ++seed) {
        std::mt19937 generator(seed);
        Values values(numPlaces);
        for (int &value : values)
            value = static_cast<int>(drawBelow(generator, 9)) - 4;
        Tournament tournament;
        tournament.assign(values);
        for (int step = 0; step < 300; ++step) {
            const Places wanted = allLowest(values);
            Places found;
            tournament.appendAllLowest(found);
            QCOMPARE(found, wanted);
            QCOMPARE(tournament.findLowest(), wanted.front());
            QCOMPARE(tournament.lowest(), values[wanted.front()]);
            const unsigned place = drawBelow(generator, numPlaces);
            values[place] = drawBelow(generator, 10) == 0
                                ? Tournament::absent
                                : static_cast<int>(drawBelow(generator, 9)) - 4;
            tournament.set(place, values[place]);
            QCOMPARE(tournament.value(place), values[place]);
        }
    }
}

QTEST_GUILESS_MAIN(tst_Tournament)
#include "tst_Tournament.moc"
