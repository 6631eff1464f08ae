#pragma once

#include "foundation/gui/DragScene.h"

#include "ExplorerWindow.h"
#include "GraphPage.h"
#include "PackageGraph.h"

#include <QScrollBar>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

namespace window_test {

/// The names of objects in alphabetical order.
template <class Values>
QString names(Values const &values)
{
    QStringList list;
    for (auto const &value : values)
        list << QString::fromStdString(ZR::cast<Explorer::Item>(value)->getName());
    list.sort();
    return list.join(' ');
}

/// The explorer's window on "apt", which depends on "libc6", as does "other"; and a mouse that
/// drags in it. All are packages of one section.
class WindowScene {
public:
    WindowScene();

    Explorer::PackageGraph &graph() { return window->getPage().getGraph(); }
    ZR::VOM::MFieldPtr &depends(char const *name)
    {
        return *model->findPackage(name)->getDepends();
    }

    /// Opens the section, "apt", and its dependencies: "libc6" is the row in line 4.
    void openRows(QAbstractScrollArea &tree);
    /// In the window, as all that follow.
    QPoint pointOf(QWidget &widget, QPoint const &pos) { return widget.mapTo(window.get(), pos); }
    QPoint pointOfNode(ZR::RefT<ZR::VOM::Object> const &object);
    QPoint pointOfNode(char const *name) { return pointOfNode(model->findPackage(name)); }
    /// Waits until nothing in the window changes its place any more.
    void settle();

    /// Presses, moves and lets go, while the drag's event loop runs. May rest first over another
    /// point until something has happened.
    void drag(QPoint const &from, std::function<QPoint()> const &to,
              Qt::KeyboardModifiers keys = {},
              std::vector<gui_test::Hand::Step> const &between = {}, bool escapes = false);
    void mouse(QEvent::Type type, QPoint const &pos, Qt::MouseButton button = Qt::NoButton,
               Qt::KeyboardModifiers keys = {});

    std::shared_ptr<Explorer::PackageModel> model;
    std::unique_ptr<Explorer::ExplorerWindow> window;
};

inline WindowScene::WindowScene()
{
    const auto stanza = [](std::string const &name, std::string const &lines) {
        return "Package: " + name + "\nStatus: install ok installed\nSection: s\n" + lines + "\n";
    };
    model = std::make_shared<Explorer::PackageModel>(
        Explorer::readStatus(stanza("apt", "Depends: libc6\n") + stanza("libc6", "") +
                             stanza("other", "Depends: libc6\n")));
    window = std::make_unique<Explorer::ExplorerWindow>(model, "test");
    window->resize(1300, 800);
    graph().animDuration.set(0);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    window->start("apt");
    settle();
}

inline void WindowScene::settle()
{
    const auto places = [&] {
        std::vector<QPoint> all;
        for (auto const &object : graph().getVisibleObjs())
            all.push_back(pointOfNode(object));
        for (auto *widget : window->findChildren<QWidget *>())
            all.push_back(pointOf(*widget, widget->rect().bottomRight()));
        return all;
    };
    constexpr int fewTicks = 40; // Milliseconds.
    constexpr int enough = 3;
    for (int numStill = 0; numStill < enough;) {
        const auto before = places();
        window->grab();
        QTest::qWait(fewTicks);
        numStill = places() == before ? numStill + 1 : 0;
    }
}

inline void WindowScene::openRows(QAbstractScrollArea &tree)
{
    tree.viewport()->grab(); // Lays the rows out, which keys need.
    for (Qt::Key key : {Qt::Key_Home, Qt::Key_Right, Qt::Key_Down, Qt::Key_Right, Qt::Key_Down,
                        Qt::Key_Right, Qt::Key_Down, Qt::Key_Right}) {
        QTest::keyClick(&tree, key);
        tree.viewport()->grab();
    }
    settle();
}

inline QPoint WindowScene::pointOfNode(ZR::RefT<ZR::VOM::Object> const &object)
{
    int x = 0, y = 0;
    graph().getPos(object, x, y);
    const QPoint scroll(graph().horizontalScrollBar()->value(),
                        graph().verticalScrollBar()->value());
    return pointOf(*graph().viewport(), QPoint(x, y) - scroll);
}

inline void WindowScene::mouse(QEvent::Type type, QPoint const &pos, Qt::MouseButton button,
                               Qt::KeyboardModifiers keys)
{
    const bool held = type != QEvent::MouseButtonRelease;
    gui_test::sendMouse(*window, type, pos, button, held ? Qt::LeftButton : Qt::NoButton, keys);
}

inline void WindowScene::drag(QPoint const &from, std::function<QPoint()> const &to,
                              Qt::KeyboardModifiers keys,
                              std::vector<gui_test::Hand::Step> const &between, bool escapes)
{
    auto steps = between;
    steps.emplace_back([&] { mouse(QEvent::MouseMove, to(), Qt::NoButton, keys); });
    steps.emplace_back([&] { mouse(QEvent::MouseMove, to() + QPoint(1, 0), Qt::NoButton, keys); });
    if (escapes)
        steps.emplace_back([&] { QTest::keyClick(window->windowHandle(), Qt::Key_Escape); });
    steps.emplace_back([&] { mouse(QEvent::MouseButtonRelease, to(), Qt::LeftButton, keys); });
    const gui_test::Hand hand(std::move(steps));
    mouse(QEvent::MouseButtonPress, from, Qt::LeftButton);
    // The move that begins the drag runs its event loop, and the hand goes on in it.
    mouse(QEvent::MouseMove, from + QPoint(30, 3), Qt::NoButton, keys);
    QTRY_VERIFY(hand.isDone());
}

} // namespace window_test
