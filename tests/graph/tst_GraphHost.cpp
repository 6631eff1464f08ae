// What a host does with a view: no header here that a host hasn't.

#include "zrVOMGUI/foundation/vom/MField.h"
#include "zrVOMGUI/graph/ObjectGraphView.h"

#include <QTest>

using ZR::PtrT;
using ZR::RefT;
using ZR::VOM::Object;
using ZR::VOM::GUI::ObjectGraphView;

class tst_GraphHost : public QObject {
    Q_OBJECT
private slots:
    void addedNodesTellTheirObjects();
    void addedNodesCanBeKeptAndCopied();
    void noNodeHasNoObject();
    void positionsWithinTheRangeAreKeptExactly();
    void viewIsMovedAsAnyWidget();
};

void tst_GraphHost::addedNodesTellTheirObjects()
{
    const RefT<Object> shown(new Object), hidden(new Object);
    ObjectGraphView view;
    view.add({shown}, false);
    view.setVisible({shown}, true);
    const ObjectGraphView::AddedNodes added = view.add({shown, hidden}, true);
    QCOMPARE(added.visible.size(), std::size_t(1));
    QCOMPARE(added.hidden.size(), std::size_t(1));
    QCOMPARE(ObjectGraphView::getObj(*added.visible.begin()).get(), shown.get());
    QCOMPARE(ObjectGraphView::getObj(*added.hidden.begin()).get(), hidden.get());
}

void tst_GraphHost::addedNodesCanBeKeptAndCopied()
{
    ObjectGraphView::AddedNodes kept;
    {
        const RefT<Object> object(new Object);
        ObjectGraphView view;
        const ObjectGraphView::AddedNodes added = view.add({object}, true);
        kept = added;
        QCOMPARE(ObjectGraphView::getObj(*kept.hidden.begin()).get(), object.get());
    }
    // Neither the view nor the object is there any more.
    QCOMPARE(kept.hidden.size(), std::size_t(1));
    QVERIFY(!ObjectGraphView::getObj(*kept.hidden.begin()));
}

void tst_GraphHost::noNodeHasNoObject()
{
    QVERIFY(!ObjectGraphView::getObj({}));
}

void tst_GraphHost::positionsWithinTheRangeAreKeptExactly()
{
    const RefT<Object> object(new Object);
    ObjectGraphView view;
    view.add({object}, false);
    constexpr int most = ObjectGraphView::maxPos;
    int x = 0, y = 0;
    QVERIFY(view.setPos(object, most, -most, false));
    QVERIFY(view.getPos(object, x, y));
    QCOMPARE(x, most);
    QCOMPARE(y, -most);
    QVERIFY(view.setPos(object, most + 1, -most - 1, false));
    QVERIFY(view.getPos(object, x, y));
    QCOMPARE(x, most);
    QCOMPARE(y, -most);
}

void tst_GraphHost::viewIsMovedAsAnyWidget()
{
    QWidget window;
    ObjectGraphView view({}, &window);
    view.move(20, 30);
    QCOMPARE(view.pos(), QPoint(20, 30));
}

QTEST_MAIN(tst_GraphHost)
#include "tst_GraphHost.moc"
