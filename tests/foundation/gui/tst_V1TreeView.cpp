#include "foundation/gui/DragScene.h"
#include "zrVOMGUI/foundation/gui/v1/TreeView.h"

#include <QApplication>
#include <QDrag>
#include <QHeaderView>
#include <QMimeData>
#include <QPointer>
#include <QSignalSpy>
#include <QStandardItemModel>

#include <algorithm>
#include <memory>

using ZR::GUI::V1::TreeView;
using namespace gui_test;

class tst_V1TreeView : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void dragsWhatTheModelOffersForTheSelection();
    void begins_data();
    void begins();
    void dragsOnlyRowsThatAllowIt();
    void offersItsDefaultAction_data();
    void offersItsDefaultAction();
    void movedRowsStay();
    void selectionStaysAndNothingIsClicked();
    void isTheSourceOfItsDrag();
    void dropsOnItselfReachTheModel();
    void hostsMayStartDrags();
    void secondDragDoesntStart();
    void escapeDoesntStartTheNextDrag();

    void survivesDeath_data();
    void survivesDeath();
    void dropMayDestroyTheView();
    void abandonedDragOffersNothing();
    void makingThePayloadMayDestroyTheView();
    void modelMayChange();
    void modelMayBeReplaced();
    void viewWithoutModelDragsNothing();

    void pictureShowsTheDraggedRows_data();
    void pictureShowsTheDraggedRows();
    void pictureHasOnlyRowsInSight();
    void pictureStaysAtThePointer();
    void pictureHasTheScreensPixels();

private:
    QPoint pointOf(int row) const;
    /// Presses a button and moves on until a drag begins; then does the steps, and ends it.
    void dragFrom(QPoint const &from, std::vector<Hand::Step> steps, int longest = 40,
                  Qt::MouseButton button = Qt::LeftButton);
    void dragRow(int row, std::vector<Hand::Step> steps);
    void moveOut();
    QDrag *findDrag() const { return view ? view->findChild<QDrag *>() : nullptr; }

    class Model;
    std::unique_ptr<QWidget> window;
    std::unique_ptr<Model> model;
    QPointer<TreeView> view;
    QPointer<Site> site;
};

/// Keeps what it was asked to offer.
class tst_V1TreeView::Model : public QStandardItemModel {
public:
    QMimeData *mimeData(QModelIndexList const &indexes) const override
    {
        ++numAsked;
        QStringList names;
        for (QModelIndex const &index : indexes)
            names += index.data().toString();
        if (onMimeData)
            onMimeData();
        if (!hasPayload)
            return nullptr;
        auto *const payload = new QMimeData;
        payload->setText(names.join(' '));
        return payload;
    }
    Qt::DropActions supportedDragActions() const override { return actions; }
    Qt::DropActions supportedDropActions() const override { return Qt::CopyAction; }
    QStringList mimeTypes() const override { return {"text/plain"}; }
    bool dropMimeData(QMimeData const *data, Qt::DropAction, int, int,
                      QModelIndex const &parent) override
    {
        dropped += data->text() + " on " + parent.data().toString();
        return true;
    }

    mutable int numAsked = 0;
    bool hasPayload = true;
    std::function<void()> onMimeData;
    Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    QStringList dropped;
};

void tst_V1TreeView::init()
{
    window = std::make_unique<QWidget>();
    window->setGeometry(0, 0, 200, 160);
    model = std::make_unique<Model>();
    for (char const *name : {"a", "b", "c", "d"})
        model->appendRow(new QStandardItem(name));
    view = new TreeView(window.get());
    view->setModel(model.get());
    view->setHeaderHidden(true);
    view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    view->setDragEnabled(true);
    view->setFrameShape(QFrame::NoFrame);
    view->setGeometry(0, 0, 120, 160);
    site = new Site(window.get());
    site->setGeometry(120, 0, 80, 160);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void tst_V1TreeView::cleanup()
{
    QDrag::cancel();
    if (window)
        release(*window);
    window.reset();
    model.reset();
}

QPoint tst_V1TreeView::pointOf(int row) const
{
    const QRect rect = view->visualRect(view->model()->index(row, 0));
    return view->viewport()->mapTo(window.get(), QPoint(rect.left() + 15, rect.center().y()));
}

void tst_V1TreeView::moveOut()
{
    moveTo(*site);
}

void tst_V1TreeView::dragFrom(QPoint const &from, std::vector<Hand::Step> steps, int longest,
                              Qt::MouseButton button)
{
    std::unique_ptr<Hand> hand;
    steps.emplace_back([] { QDrag::cancel(); });
    const auto onMimeData = model->onMimeData;
    model->onMimeData = [&] {
        if (!hand)
            hand = std::make_unique<Hand>(steps);
        if (onMimeData)
            onMimeData();
    };
    sendMouse(*window, QEvent::MouseButtonPress, from, button, button);
    // The first far enough move begins the drag and returns when it is over.
    for (int way = 1; way <= longest && window && !hand; ++way)
        sendMouse(*window, QEvent::MouseMove, from + QPoint(way, 0), Qt::NoButton, button);
    QTRY_VERIFY(!hand || hand->isDone());
    if (model)
        model->onMimeData = onMimeData;
}

void tst_V1TreeView::dragRow(int row, std::vector<Hand::Step> steps)
{
    dragFrom(pointOf(row), std::move(steps));
}

void tst_V1TreeView::dragsWhatTheModelOffersForTheSelection()
{
    QString text;
    site->onEvent = [&](QDropEvent &event) {
        text = event.mimeData()->text();
        event.accept();
    };
    view->selectionModel()->select(model->index(0, 0), QItemSelectionModel::Select);
    view->selectionModel()->select(model->index(2, 0), QItemSelectionModel::Select);
    dragRow(2, {[&] { moveOut(); }, [&] { release(*site); }});
    QCOMPARE(text, QString("a c"));
    QCOMPARE(model->numAsked, 1);
    QVERIFY(site->text().endsWith("drop copy"));
}

void tst_V1TreeView::begins_data()
{
    QTest::addColumn<bool>("byLeftButton");
    QTest::addColumn<int>("way");
    QTest::addColumn<bool>("dragEnabled");
    QTest::addColumn<bool>("onRow");
    QTest::addColumn<bool>("hasPayload");
    QTest::addColumn<bool>("begins");
    QTest::newRow("left button") << true << 30 << true << true << true << true;
    QTest::newRow("right button") << false << 30 << true << true << true << false;
    QTest::newRow("short way") << true << 4 << true << true << true << false;
    QTest::newRow("drags disabled") << true << 30 << false << true << true << false;
    QTest::newRow("beside the rows") << true << 30 << true << false << true << false;
    QTest::newRow("nothing to offer") << true << 30 << true << true << false << false;
}

void tst_V1TreeView::begins()
{
    QFETCH(bool, byLeftButton);
    QFETCH(int, way);
    QFETCH(bool, dragEnabled);
    QFETCH(bool, onRow);
    QFETCH(bool, hasPayload);
    QFETCH(bool, begins);
    view->setDragEnabled(dragEnabled);
    model->hasPayload = hasPayload;
    const QPoint from = onRow ? pointOf(1) : QPoint(20, 150);
    const Qt::MouseButton button = byLeftButton ? Qt::LeftButton : Qt::RightButton;
    bool hasBegun = false;
    dragFrom(from, {[&] { hasBegun = findDrag(); }}, way, button);
    sendMouse(*window, QEvent::MouseButtonRelease, from, button, Qt::NoButton);
    QCOMPARE(hasBegun, begins);
}

void tst_V1TreeView::dragsOnlyRowsThatAllowIt()
{
    QString text;
    site->onEvent = [&](QDropEvent &event) { text = event.mimeData()->text(); };
    model->item(1)->setDragEnabled(false);
    view->selectAll();
    dragRow(0, {[&] { moveOut(); }});
    QCOMPARE(text, QString("a c d"));

    view->clearSelection();
    model->numAsked = 0;
    dragRow(1, {});
    QCOMPARE(model->numAsked, 0);
}

void tst_V1TreeView::offersItsDefaultAction_data()
{
    QTest::addColumn<Qt::DropActions>("actions");
    QTest::addColumn<Qt::DropAction>("defaultAction");
    QTest::addColumn<QString>("expected");
    const Qt::DropActions all = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    QTest::newRow("its own") << all << Qt::LinkAction << "link";
    QTest::newRow("none set") << all << Qt::IgnoreAction << "copy";
    QTest::newRow("its own isn't supported")
        << Qt::DropActions(Qt::CopyAction | Qt::MoveAction) << Qt::LinkAction << "copy";
    QTest::newRow("neither is copying")
        << Qt::DropActions(Qt::MoveAction | Qt::LinkAction) << Qt::CopyAction << "move";
}

void tst_V1TreeView::offersItsDefaultAction()
{
    QFETCH(Qt::DropActions, actions);
    QFETCH(Qt::DropAction, defaultAction);
    QFETCH(QString, expected);
    model->actions = actions;
    view->setDefaultDropAction(defaultAction);
    Qt::DropActions possible;
    site->onEvent = [&](QDropEvent &event) { possible = event.possibleActions(); };
    dragRow(0, {[&] { moveOut(); }});
    QCOMPARE(site->log.first(), "enter " + expected);
    QCOMPARE(possible, actions);
}

void tst_V1TreeView::movedRowsStay()
{
    view->setDefaultDropAction(Qt::MoveAction);
    dragRow(0, {[&] { moveOut(); }, [&] { release(*site); }});
    QVERIFY(site->text().endsWith("drop move"));
    QCOMPARE(model->rowCount(), 4);
}

void tst_V1TreeView::selectionStaysAndNothingIsClicked()
{
    QSignalSpy clicks(view, &QAbstractItemView::clicked);
    view->selectionModel()->select(model->index(0, 0), QItemSelectionModel::Select);
    view->selectionModel()->select(model->index(2, 0), QItemSelectionModel::Select);
    dragRow(2, {[&] { moveOut(); }, [&] { release(*site); }});
    QCoreApplication::processEvents();
    QVERIFY(site->text().endsWith("drop copy"));
    QCOMPARE(view->selectionModel()->selectedIndexes().size(), 2);
    QCOMPARE(clicks.size(), 0);
}

void tst_V1TreeView::isTheSourceOfItsDrag()
{
    QObject *source = nullptr;
    site->onEvent = [&](QDropEvent &event) { source = event.source(); };
    dragRow(0, {[&] { moveOut(); }});
    QCOMPARE(source, static_cast<QObject *>(view));
}

void tst_V1TreeView::dropsOnItselfReachTheModel()
{
    view->setAcceptDrops(true);
    view->setDragDropMode(QAbstractItemView::DragDrop);
    const QPoint there = pointOf(3);
    dragRow(0, {[&] { sendMouse(*window, QEvent::MouseMove, there); },
                [&] {
                    sendMouse(*window, QEvent::MouseButtonRelease, there, Qt::LeftButton,
                              Qt::NoButton);
                }});
    QCOMPARE(model->dropped, QStringList("a on d"));
    QCOMPARE(model->rowCount(), 4);
}

void tst_V1TreeView::hostsMayStartDrags()
{
    struct Open : TreeView {
        using TreeView::startDrag;
    };
    QString text;
    site->onEvent = [&](QDropEvent &event) {
        text = event.mimeData()->text();
        event.accept();
    };
    view->selectionModel()->select(model->index(1, 0), QItemSelectionModel::Select);
    sendMouse(*window, QEvent::MouseButtonPress, {190, 5}, Qt::LeftButton);
    const Hand hand({[&] { moveOut(); }, [&] { release(*site); }, [] { QDrag::cancel(); }});
    (view->*(&Open::startDrag))(Qt::CopyAction);
    QCOMPARE(text, QString("b"));
    QVERIFY(site->text().endsWith("drop copy"));
}

void tst_V1TreeView::secondDragDoesntStart()
{
    struct Open : TreeView {
        using TreeView::startDrag;
    };
    dragRow(0, {[&] { (view->*(&Open::startDrag))(Qt::CopyAction); }, [&] { moveOut(); },
                [&] { release(*site); }});
    QCOMPARE(model->numAsked, 1);
    QVERIFY(site->text().endsWith("drop copy"));
}

void tst_V1TreeView::escapeDoesntStartTheNextDrag()
{
    dragRow(0, {[&] { QTest::keyClick(window->windowHandle(), Qt::Key_Escape); },
                [&] {
                    for (int x = 10; x < 100; x += 5)
                        sendMouse(*window, QEvent::MouseMove, {x, 20});
                }});
    QCOMPARE(model->numAsked, 1);
}

void tst_V1TreeView::survivesDeath_data()
{
    QTest::addColumn<QString>("victim");
    QTest::newRow("view") << "view";
    QTest::newRow("model") << "model";
    QTest::newRow("both with the window") << "window";
    QTest::newRow("target") << "target";
}

void tst_V1TreeView::survivesDeath()
{
    QFETCH(QString, victim);
    bool goesOn = false;
    dragRow(0, {[&] { moveOut(); },
                [&] {
                    if (victim == "view")
                        delete view;
                    else if (victim == "model")
                        model.reset();
                    else if (victim == "target")
                        delete site;
                    else
                        window.reset();
                },
                [&] {
                    if (window)
                        sendMouse(*window, QEvent::MouseMove, {150, 50});
                    goesOn = findDrag();
                }});
    QCOMPARE(goesOn, victim == "target");
    if (site)
        QVERIFY(site->text().endsWith("leave"));
}

void tst_V1TreeView::dropMayDestroyTheView()
{
    QString text = "none";
    site->onEvent = [&](QDropEvent &event) {
        event.accept();
        if (event.type() != QEvent::Drop)
            return;
        delete view;
        text = event.mimeData()->text();
    };
    dragRow(0, {[&] { moveOut(); }, [&] { release(*site); }});
    QVERIFY(!view);
    QCOMPARE(text, QString());
}

void tst_V1TreeView::abandonedDragOffersNothing()
{
    QPointer<QDrag> drag;
    QString text = "none";
    dragRow(0, {[&] {
                drag = findDrag();
                delete view;
                if (drag)
                    text = drag->mimeData()->text();
            }});
    QCOMPARE(text, QString());
    QTRY_VERIFY(!drag);
}

void tst_V1TreeView::makingThePayloadMayDestroyTheView()
{
    model->onMimeData = [&] { delete view; };
    dragRow(0, {});
    QVERIFY(!view);
    QCOMPARE(site->text(), QString());
}

void tst_V1TreeView::modelMayChange()
{
    view->selectAll();
    dragRow(0, {[&] { model->removeRow(0); }, [&] { moveOut(); },
                [&] {
                    model->clear();
                    model->appendRow(new QStandardItem("new"));
                },
                [&] { release(*site); }});
    QVERIFY(site->text().endsWith("drop copy"));
}

void tst_V1TreeView::modelMayBeReplaced()
{
    Model other;
    dragRow(0, {[&] { view->setModel(&other); }, [&] { moveOut(); }, [&] { release(*site); }});
    QVERIFY(site->text().endsWith("drop copy"));
    QCOMPARE(other.numAsked, 0);
    view->setModel(nullptr);
}

void tst_V1TreeView::viewWithoutModelDragsNothing()
{
    struct Open : TreeView {
        using TreeView::startDrag;
    };
    view->setModel(nullptr);
    (view->*(&Open::startDrag))(Qt::CopyAction);
    QVERIFY(!findDrag());
}

void tst_V1TreeView::pictureShowsTheDraggedRows_data()
{
    QTest::addColumn<Qt::LayoutDirection>("direction");
    QTest::newRow("from left to right") << Qt::LeftToRight;
    QTest::newRow("from right to left") << Qt::RightToLeft;
}

void tst_V1TreeView::pictureShowsTheDraggedRows()
{
    QFETCH(Qt::LayoutDirection, direction);
    view->setLayoutDirection(direction);
    model->setItem(0, 1, new QStandardItem("a2"));
    view->header()->setStretchLastSection(false);
    view->setColumnWidth(0, 50);
    view->setColumnWidth(1, 30);
    model->item(1)->setDragEnabled(false);
    const int height = view->visualRect(model->index(0, 0)).height();
    const int left = std::min(view->visualRect(model->index(0, 0)).left(),
                              view->visualRect(model->index(0, 1)).left());
    const int right = std::max(view->visualRect(model->index(0, 0)).right(),
                               view->visualRect(model->index(0, 1)).right());
    view->selectAll();
    QPixmap pixmap;
    dragRow(0, {[&] { pixmap = findDrag() ? findDrag()->pixmap() : QPixmap(); }});
    QCOMPARE(pixmap.size(), QSize(right - left + 1, 4 * height));
    // In the first column: a selected row is filled, and one that stays isn't drawn at all.
    const QImage image = pixmap.toImage();
    const int x = view->visualRect(model->index(0, 0)).center().x() - left;
    QStringList filled;
    for (int row = 0; row < 4; ++row)
        if (image.pixelColor(x, row * height + 1).alpha() > 0)
            filled += model->item(row)->text();
    QCOMPARE(filled, QStringList({"a", "c", "d"}));
}

void tst_V1TreeView::pictureHasOnlyRowsInSight()
{
    for (int row = 0; row < 20000; ++row)
        model->appendRow(new QStandardItem("row"));
    view->selectAll();
    view->scrollTo(model->index(10000, 0));
    QPixmap pixmap;
    int row = view->indexAt({30, 50}).row();
    QVERIFY(row > 5000);
    dragRow(row, {[&] { pixmap = findDrag() ? findDrag()->pixmap() : QPixmap(); }});
    QVERIFY(!pixmap.isNull());
    QVERIFY(pixmap.height() <= view->viewport()->height());
}

void tst_V1TreeView::pictureStaysAtThePointer()
{
    const QPoint corner = view->visualRect(model->index(1, 0)).topLeft();
    const QPoint pressed = pointOf(1) - corner;
    QPoint spot;
    dragRow(1, {[&] { spot = findDrag() ? findDrag()->hotSpot() : QPoint(); }});
    QCOMPARE(spot, pressed);
}

void tst_V1TreeView::pictureHasTheScreensPixels()
{
    qreal ratio = 0;
    QSize size;
    dragRow(1, {[&] {
                if (findDrag()) {
                    ratio = findDrag()->pixmap().devicePixelRatio();
                    size = findDrag()->pixmap().size();
                }
            }});
    QCOMPARE(ratio, view->devicePixelRatioF());
    QCOMPARE(size, view->visualRect(model->index(1, 0)).size() * ratio);
}

QTEST_MAIN(tst_V1TreeView)

#include "tst_V1TreeView.moc"
