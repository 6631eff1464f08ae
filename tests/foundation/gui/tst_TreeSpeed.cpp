#include "zrVOMGUI/foundation/gui/TreeView.h"
#include "zrVOMGUI/foundation/gui/v2/TreeView.h"

#include <QElapsedTimer>
#include <QScrollBar>
#include <QTest>

#include <algorithm>
#include <memory>
#include <vector>

using namespace ZR::GUI;

namespace {

/// One open row with many, each of which was asked only if it was in sight.
class ManyRow final : public V2::TreeView::Row {
public:
    ManyRow(V2::TreeView &view, Row *parentRow, std::size_t numBelow)
        : Row(view, parentRow)
        , num(numBelow)
    {
    }
    using Row::setChildRows;
    static std::size_t numUpdates;

protected:
    void onUpdate(bool) override
    {
        ++numUpdates;
        setText("row");
        if (!num || getNumMadeChildRows())
            return;
        std::vector<std::unique_ptr<Row>> rows;
        rows.reserve(num);
        for (std::size_t i = 0; i < num; ++i)
            rows.push_back(std::make_unique<ManyRow>(*getTreeView(), this, 0));
        setChildRows(std::move(rows));
    }

private:
    const std::size_t num;
};

std::size_t ManyRow::numUpdates = 0;

class ManyView final : public V2::TreeView {
public:
    explicit ManyView(std::size_t num)
        : TreeView(std::make_unique<ManyRow>(*this, nullptr, num), nullptr)
    {
        resize(300, 400);
    }
    Row &row(std::size_t pos) { return *getRoot().getChildRow(pos); }
};

/// A chain of open rows. They are put together from the lowest on.
class DeepView final : public V2::TreeView {
public:
    explicit DeepView(std::size_t depth)
        : TreeView(std::make_unique<ManyRow>(*this, nullptr, 0), nullptr)
    {
        resize(300, 400);
        std::vector<std::unique_ptr<Row>> rows;
        Row *above = &getRoot();
        for (std::size_t i = 0; i < depth; ++i) {
            rows.push_back(std::make_unique<ManyRow>(*this, above, 0));
            above = rows.back().get();
            above->setOpen(true);
        }
        while (!rows.empty()) {
            std::vector<std::unique_ptr<Row>> child;
            child.push_back(std::move(rows.back()));
            rows.pop_back();
            Row &parent = rows.empty() ? getRoot() : *rows.back();
            static_cast<ManyRow &>(parent).setChildRows(std::move(child));
        }
    }
};

} // namespace

/// That no event walks over siblings: what an event costs in a tree of a million rows.
class tst_TreeSpeed : public QObject {
    Q_OBJECT

private slots:
    void eventsDoNotWalkOverSiblings_data();
    void eventsDoNotWalkOverSiblings();
    void onlyRowsInSightAreAsked();
    void paintingIsLinearInTheDepth();
    void everythingIsSelectedInATrice();
    void rowsAreSmall();
};

void tst_TreeSpeed::eventsDoNotWalkOverSiblings_data()
{
    QTest::addColumn<QString>("event");
    for (char const *event : {"scroll and paint", "hit", "select", "mark", "open and close", "key"})
        QTest::newRow(event) << event;
}

void tst_TreeSpeed::eventsDoNotWalkOverSiblings()
{
    QFETCH(QString, event);
    const auto microseconds = [&](std::size_t num) {
        ManyView view(num);
        view.findRow({0, 0});
        const int height = view.getRowHeight();
        // An open row with a child, so that lines are counted.
        const auto openOne = [&] {
            V2::TreeView::Row &row = view.row(num / 2);
            std::vector<std::unique_ptr<V2::TreeView::Row>> below;
            below.push_back(std::make_unique<ManyRow>(view, &row, 0));
            static_cast<ManyRow &>(row).setChildRows(std::move(below));
            row.setOpen(true);
        };
        openOne();
        view.findRow({0, 0});
        QImage image(view.size(), QImage::Format_RGB32);
        qint64 best = std::numeric_limits<qint64>::max();
        for (int run = 0; run < 5; ++run) {
            QElapsedTimer timer;
            timer.start();
            for (int i = 0; i < 20; ++i) {
                const std::size_t pos = (num / 20) * std::size_t(i) + std::size_t(run);
                const QPoint point(5, int(pos) * height);
                if (event == "scroll and paint") {
                    view.verticalScrollBar()->setValue(point.y());
                    view.viewport()->render(&image);
                } else if (event == "hit") {
                    view.findRow(point);
                } else if (event == "select") {
                    view.setSel({&view.row(pos)});
                    view.getSel();
                } else if (event == "mark") {
                    view.row(pos).invalidateLayout();
                    view.findRow(point);
                } else if (event == "open and close") {
                    view.row(num / 2).setOpen(i % 2);
                    view.findRow(point);
                } else {
                    QTest::keyClick(&view, i % 2 ? Qt::Key_End : Qt::Key_Home);
                }
            }
            best = std::min(best, timer.nsecsElapsed() / 1000);
        }
        return best;
    };
    const qint64 few = microseconds(1000), many = microseconds(1000000);
    qInfo("%s: 20 in 1,000 rows take %lld us, in 1,000,000 rows %lld us", qPrintable(event), few,
          many);
    // A walk would take a thousand times as long.
    QVERIFY(many < 20 * few + 5000);
}

void tst_TreeSpeed::onlyRowsInSightAreAsked()
{
    ManyRow::numUpdates = 0;
    ManyView view(1000000);
    view.findRow({0, 0});
    QVERIFY(ManyRow::numUpdates < 100);
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
    view.findRow({0, 0});
    QVERIFY(ManyRow::numUpdates < 200);
}

void tst_TreeSpeed::paintingIsLinearInTheDepth()
{
    const auto microseconds = [](std::size_t depth) {
        DeepView view(depth);
        view.findRow({0, 0});
        view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
        QImage image(view.size(), QImage::Format_RGB32);
        view.viewport()->render(&image);
        QElapsedTimer timer;
        timer.start();
        view.viewport()->render(&image);
        return timer.nsecsElapsed() / 1000;
    };
    const qint64 flat = microseconds(1000), deep = microseconds(20000);
    qInfo("Painting takes %lld us below 1,000 rows, %lld us below 20,000", flat, deep);
    QVERIFY(deep < 60 * flat + 5000);
}

void tst_TreeSpeed::everythingIsSelectedInATrice()
{
    ManyView view(1000000);
    view.show();
    view.findRow({0, 0});
    QElapsedTimer timer;
    timer.start();
    QTest::keyClick(&view, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(view.getSel().size(), std::size_t(1000000));
    QTest::keyClick(&view, Qt::Key_Down);
    QCOMPARE(view.getSel().size(), std::size_t(1));
    qInfo("Selecting and deselecting 1,000,000 rows takes %lld ms", timer.elapsed());
    QVERIFY(timer.elapsed() < 5000);
}

void tst_TreeSpeed::rowsAreSmall()
{
    QVERIFY(sizeof(TreeRow) <= 96);
    QVERIFY(sizeof(V2::TreeView::Row) <= 104);
    QVERIFY(sizeof(TreeViewRow) <= 152);
}

QTEST_MAIN(tst_TreeSpeed)
#include "tst_TreeSpeed.moc"
