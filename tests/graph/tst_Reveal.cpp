#include "support/QtStrings.h"
#include "support/Things.h"
#include "support/ViewProbe.h"

#include <QtTest>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;
using Node = Graph::Node;

class tst_Reveal : public QObject {
    Q_OBJECT

private slots:
    void rowStandsCentred();
};

void tst_Reveal::rowStandsCentred()
{
    ObjectGraphView view;
    const Things things = makeThings("na");
    view.addOutLinkField("", "to");
    view.setFieldName("name");
    setLink(things[1], "to", things[0]);
    view.add(things, false);
    view.setVisible({things[0]}, true);
    finishAnimation(view);
    Node &node = *Access::node(view, things[0]);
    Node &far = *Access::node(view, things[1]);
    Access::showLinkedIn(view, RefT<Node>(node));
    QVERIFY(far.visible);
    QCOMPARE(far.x, node.x);
    QVERIFY(far.y < node.y);
}

QTEST_MAIN(tst_Reveal)
#include "tst_Reveal.moc"
