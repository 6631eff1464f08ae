#pragma once

#include "support/QtStrings.h"
#include "support/Things.h"
#include "support/ViewCheck.h"
#include "support/ViewProbe.h"
#include "support/dump.h"

#include <QScrollBar>
#include <QTest>

namespace ZR::VOM::GUI {

/// a > b > c > d, and a long link from a to d; all visible, a and d selected.
struct LongLinkScene {
    LongLinkScene()
        : things(makeThings("abcd"))
    {
        for (std::size_t i = 0; i < 3; ++i)
            setLink(things[i], "next", things[i + 1]);
        setLinks(things[0], "list", {things[3], things[3]});
        view.addOutLinkField("", "next");
        view.addOutLinkField("", "list");
        view.setFieldName("label");
        view.resize(200, 150);
        view.add(things, false);
        view.setSel({things[0], things[3]});
        view.setVisible(things, true);
    }
    void advance(double seconds)
    {
        for (auto const &[timer, start] :
             {std::pair(&GraphViewAccess::animTimer(view), &GraphViewAccess::animStart(view)),
              std::pair(&GraphViewAccess::scrollTimer(view),
                        &GraphViewAccess::scrollStart(view))}) {
            if (timer->isActive()) {
                letPass(*start, seconds);
                tick(*timer);
            }
        }
    }
    Things things;
    ObjectGraphView view;
};

/// Where nodes may come to stand by layouts of drawings that are far too large.
constexpr int farthest = 4 * ObjectGraphView::maxPos;

/// Uses all that a widget does by itself, and what a user can see of it.
inline void useAll(LongLinkScene &scene)
{
    ObjectGraphView &view = scene.view;
    view.viewport()->grab();
    QCOMPARE(faultsOf(view), std::string());
    view.layout();
    scene.advance(0.7);
    view.viewport()->grab();
    view.showSel();
    scene.advance(0.7);
    view.viewport()->grab();
    scene.advance(99);
    view.horizontalScrollBar()->setValue(view.horizontalScrollBar()->minimum());
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
    view.viewport()->grab();
    QCOMPARE(faultsAtRest(view), std::string());
}

} // namespace ZR::VOM::GUI
