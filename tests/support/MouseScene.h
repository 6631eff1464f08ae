#pragma once

// Views under the mouse.

#include "support/ViewGraph.h"
#include "support/ViewPicture.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTest>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ZR::VOM::GUI {

/// Numbered nodes with labels "0", "1", ... in a row, apart from each other, in a window.
struct MouseScene {
    explicit MouseScene(unsigned numNodes, std::vector<NumberedGraph::Link> const &links = {})
        : graph(std::make_unique<ViewGraph>(numNodes, links))
    {
        for (unsigned i = 0; i < numNodes; ++i)
            VOM::addField<VOM::FieldString>(*graph->obj(i), "name", std::to_string(i));
        view().animDuration.set(0);
        view().setTypeName(false);
        view().setFieldName("name");
        view().setFrameShape(QFrame::NoFrame);
        view().resize(600, 300);
        view().show();
        graph->showWithoutLayout();
        for (unsigned i = 0; i < numNodes; ++i)
            view().setPos(graph->obj(i), 50 + 100 * int(i), 150, false);
        GraphViewAccess::boundsStale(view()) = true;
        view().grab();
        view().sigSel.connect([this](auto const &) { ++numSel; });
        view().sigPopupMenu.connect([this](auto const &sigData) {
            ++numMenus;
            menuPos = QPoint(sigData.x, sigData.y);
        });
    }

    ObjectGraphView &view() { return graph->view; }
    QWidget *viewport() { return view().viewport(); }
    QPoint scroll()
    {
        return {view().horizontalScrollBar()->value(), view().verticalScrollBar()->value()};
    }
    /// In the viewport.
    QPoint centre(unsigned index)
    {
        return QPoint(graph->node(index).x, graph->node(index).y) - scroll();
    }
    QRect box(unsigned index) { return boxOf(view(), graph->node(index)).translated(-scroll()); }
    QPoint upperArrow(unsigned index) { return arrow(index, graph->node(index).topY); }
    QPoint lowerArrow(unsigned index) { return arrow(index, graph->node(index).bottomY); }
    /// Over the box, beside the arrow.
    QPoint band(unsigned index)
    {
        Graph::Node const &node = graph->node(index);
        return centre(index) + QPoint(node.width / 2 - 1, -(node.height / 2) + 1);
    }
    QPoint nowhere() { return {viewport()->width() - 3, viewport()->height() - 3}; }

    void click(QPoint const &pos, Qt::KeyboardModifiers modifiers = {},
               Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(viewport(), button, modifiers, pos);
    }
    void rightClick(QPoint const &pos) { click(pos, {}, Qt::RightButton); }
    void move(QPoint const &pos, Qt::MouseButtons buttons = Qt::NoButton)
    {
        QMouseEvent event(QEvent::MouseMove, pos, viewport()->mapToGlobal(pos), Qt::NoButton,
                          buttons, Qt::NoModifier);
        QApplication::sendEvent(viewport(), &event);
    }
    void press(QPoint const &pos) { QTest::mousePress(viewport(), Qt::LeftButton, {}, pos); }
    void release(QPoint const &pos) { QTest::mouseRelease(viewport(), Qt::LeftButton, {}, pos); }
    void key(Qt::Key which, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&view(), which, modifiers);
    }

    void select(std::vector<unsigned> const &numbers)
    {
        std::vector<RefT<VOM::Object>> objs;
        for (unsigned number : numbers)
            objs.push_back(graph->obj(number));
        view().setSel(objs);
    }
    /// Numbers of the selected nodes, hidden ones too.
    QString selected()
    {
        QStringList numbers;
        for (unsigned i = 0; i < graph->numNodes(); ++i)
            if (graph->node(i).selected)
                numbers << QString::number(i);
        return numbers.join(' ');
    }
    /// Numbers of the objects that were dragged since the last call, in order.
    QString takeDragged()
    {
        std::vector<RefT<VOM::Object>> &objs = GraphViewAccess::dragObjs(view());
        QStringList numbers;
        for (unsigned i = 0; i < graph->numNodes(); ++i)
            if (std::find(objs.begin(), objs.end(), graph->obj(i)) != objs.end())
                numbers << QString::number(i);
        objs.clear();
        return numbers.join(' ');
    }
    int takeNumSel() { return std::exchange(numSel, 0); }

    std::unique_ptr<ViewGraph> graph;
    int numSel = 0, numMenus = 0;
    QPoint menuPos;

private:
    QPoint arrow(unsigned index, int offset)
    {
        Graph::Node const &node = graph->node(index);
        return centre(index) + QPoint(node.arrowX + 2, offset + 2);
    }
};

} // namespace ZR::VOM::GUI
