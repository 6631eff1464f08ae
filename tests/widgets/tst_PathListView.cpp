#include "support/PaintCounter.h"
#include "support/QtStrings.h"
#include "support/Things.h"
#include "zrVOMGUI/widgets/PathListView.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QTest>

#include <memory>

using namespace ZR::VOM;
using ZR::PtrT;
using ZR::RefT;
using Numbers = std::vector<std::size_t>;

namespace ZR::VOM::GUI {

/// What the tests see of rows and cells.
struct PathListAccess {
    /// The cells of a row, such as "'a' part|/'b' ".
    static QString cells(PathListView const &view, std::size_t row)
    {
        QStringList texts;
        for (auto const &cell : view.rows.at(row).cells)
            texts << view.displayText(cell);
        return texts.join('|');
    }
    static std::size_t numRows(PathListView const &view) { return view.rows.size(); }
    static QRect rowRect(PathListView const &view, std::size_t row)
    {
        auto const &found = view.rows.at(row);
        return {found.x, found.y, found.width, found.height};
    }
    static QSize cellSize(PathListView const &view, std::size_t row, std::size_t cell)
    {
        auto const &found = view.rows.at(row).cells.at(cell);
        return {found.width, found.height};
    }
    static bool isHighlighted(PathListView const &view, std::size_t row)
    {
        return view.rows.at(row).highlighted;
    }
    static int selectedCount(PathListView const &view) { return view.selectedCount; }
    static QSize contentSize(PathListView const &view)
    {
        return {view.contentWidth, view.contentHeight};
    }
    static QString separatorText(PathListView const &view)
    {
        return view.displayText(view.separator);
    }
    static QSize separatorSize(PathListView const &view)
    {
        return {view.separator.width, view.separator.height};
    }
};

} // namespace ZR::VOM::GUI

using ZR::VOM::GUI::PathListAccess;
using ZR::VOM::GUI::PathListView;
using Access = PathListAccess;

namespace {

class GreenDB : public ZR::VOM::GUI::ObjectIconDB {
public:
    QIcon find(RefT<Object> const &obj) const override
    {
        if (!obj)
            return {};
        QPixmap pixmap(64, 64);
        pixmap.fill(Qt::green);
        return pixmap;
    }
};

/// a owns b by "part", and lists b and c by "all"; b owns c by "list".
struct Scene {
    Scene()
        : things(makeThings("abc"))
    {
        addField<FieldRef>(*a(), "part", b());
        addField<MFieldPtr>(*a(), "all", std::vector<PtrT<Object>>{b(), c()});
        addField<FieldPtr>(*b(), "next", PtrT<Object>(c()));
        addField<MFieldRef>(*b(), "list", std::vector<RefT<Object>>{c()});
        view.setTypeName(false);
        view.setFieldName("name");
        view.setFrameShape(QFrame::NoFrame);
        view.resize(300, 100);
        view.show();
    }
    RefT<Object> const &a() const { return things[0]; }
    RefT<Object> const &b() const { return things[1]; }
    RefT<Object> const &c() const { return things[2]; }
    Field &field(RefT<Object> const &obj, char const *name) { return *obj->findField(name); }
    MField &list(RefT<Object> const &obj, char const *name)
    {
        return dynamic_cast<MField &>(field(obj, name));
    }
    Path path(RefT<Object> const &root) { return Path(PtrT<Object>(root)); }
    void set(std::vector<Path> const &paths)
    {
        view.set(paths);
        paint();
    }
    /// So many paths of one cell.
    void setPlain(std::size_t num) { set(std::vector<Path>(num, path(a()))); }
    QImage paint() { return view.viewport()->grab().toImage(); }
    QString cells(std::size_t row = 0) { return Access::cells(view, row); }
    QPoint middle(std::size_t row) { return Access::rowRect(view, row).center() + QPoint(2, 0); }
    void click(std::size_t row, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, modifiers, middle(row));
    }

    Things things;
    PathListView view;
};

} // namespace

class tst_PathListView : public QObject {
    Q_OBJECT

private slots:
    void nothingIsPaintedBeforeTheFirstSet();
    void rowsAreMadeAtTheFirstPaintAfterSet();
    void cellsOfAPath_data();
    void cellsOfAPath();
    void pathThroughADeadFieldEndsThere();
    void pathOfADeadRootShowsNothing();
    void modelChangesShowWithTheNextSet();
    void settingsTakeEffectWithTheNextSet();
    void hiddenFieldsLeaveTheirRoom();
    void iconsStandBeforeTheirText();
    void databaseThatDiesIsForgotten();
    void databaseMayChangeListAndDatabase();
    void iconOfManyObjectsIsDrawnOnce();
    void geometryAddsUp();
    void scrollRangesHoldTheContent();
    void scrollRangesAreSetOnceAtATime();
    void scrollingMovesRows();
    void rowsOutOfSightLookTheSame();
    void horizontalScrollRangeHoldsTheWidestRow();
    void firstPaintShowsRowsThatAreCutOff_data();
    void firstPaintShowsRowsThatAreCutOff();
    void largeIndexIsShownWhole();

    void clickSelectsOneRow();
    void clickOnNothingClears();
    void controlClickAddsAndCountsAgain();
    void shiftClickExtends_data();
    void shiftClickExtends();
    void countSurvivesANewList();
    void newListHasNoSelectionBeforeItsPaint();
    void rightClickDoesNothing();
    void edgeBelongsToTheFirstRow();
    void rowUnderTheMouseIsMarked();
    void pressClearsTheMark();
    void marksArePaintedAcrossTheWidget();
    void markedTextCanBeRead_data();
    void markedTextCanBeRead();
    void lettersAreWhole();
    void textThatBecameLongerIsCut();
    void furtherLinesOfATextAreCut_data();
    void furtherLinesOfATextAreCut();
    void pressDoesNotRepaintAndReleaseDoes();
    void whatAsksForAPaint_data();
    void whatAsksForAPaint();
    void losingTheFocusClearsAll();
    void losingTheFocusAsksForNoPaint();
    void manyPathsArePaintedAtOnce();

    void newListShowsClassNamesAndFields();
    void separatorStandsBetweenCells();
    void separatorKeepsItsSizeInALargerFont();
    void oldDatabaseIsForgotten();
    void whatDiesAfterSetIsLeftOut();
    void pathThatEndsInADeadFieldIsShort_data();
    void pathThatEndsInADeadFieldIsShort();
    void shiftClickOnNothingDoesNothing();
    void severalClicksOnAnOldListSelectNothing();
    void selectedRowUnderTheMouseLooksTheSame();
};

void tst_PathListView::nothingIsPaintedBeforeTheFirstSet()
{
    Scene scene;
    scene.view.verticalScrollBar()->setRange(3, 7);
    const QImage before = scene.paint();
    QCOMPARE(Access::numRows(scene.view), std::size_t(0));
    QCOMPARE(scene.view.verticalScrollBar()->maximum(), 7);
    scene.set({});
    QCOMPARE(scene.view.verticalScrollBar()->maximum(), 0);
    QCOMPARE(scene.paint(), before);
}

void tst_PathListView::rowsAreMadeAtTheFirstPaintAfterSet()
{
    Scene scene;
    scene.setPlain(2);
    scene.view.set({scene.path(scene.b())});
    QCOMPARE(scene.view.get().size(), std::size_t(1));
    QCOMPARE(Access::numRows(scene.view), std::size_t(2));
    scene.paint();
    QCOMPARE(Access::numRows(scene.view), std::size_t(1));
    QCOMPARE(scene.cells(), QString("'b' "));
}

void tst_PathListView::cellsOfAPath_data()
{
    QTest::addColumn<QString>("steps"); // A letter each: see below.
    QTest::addColumn<QString>("cells");
    QTest::newRow("root alone") << ""
                                << "'a' ";
    QTest::newRow("ends at a single field") << "p"
                                            << "'a' part";
    QTest::newRow("ends at its value") << "P"
                                       << "'a' part|'b' ";
    QTest::newRow("ends at a list: no index") << "l"
                                              << "'a' all";
    QTest::newRow("ends at a value of it") << "L"
                                           << "'a' all[1]|'c' ";
    QTest::newRow("inner list step shows its index") << "Kn"
                                                     << "'a' all[0]|'b' next";
    QTest::newRow("value of a value") << "KN"
                                      << "'a' all[0]|'b' next|'c' ";
    QTest::newRow("ends at an owning list") << "Po"
                                            << "'a' part|'b' list";
    QTest::newRow("ends at a value of an owning list") << "PO"
                                                       << "'a' part|'b' list[0]|'c' ";
    QTest::newRow("inner step of an owning list shows its index")
        << "POs"
        << "'a' part|'b' list[0]|'c' name";
    QTest::newRow("beyond the end of an owning list") << "PE"
                                                      << "'a' part|'b' list[1]| ";
    QTest::newRow("object at the end repeats the field") << "KNx"
                                                         << "'a' all|'b' all";
    QTest::newRow("beyond the end of a list") << "B"
                                              << "'a' all[7]| ";
    QTest::newRow("plain field") << "s"
                                 << "'a' name";
    QTest::newRow("value of a plain field") << "S"
                                            << "'a' name";
}

/// Small letters end at the field, capital ones at a value: part, list "all" at 0 (K), 1 (L) and 7
/// (B), next, list (O) at 0 and 1 (E), the string name; x goes back a step.
void tst_PathListView::cellsOfAPath()
{
    QFETCH(QString, steps);
    Scene scene;
    Path path = scene.path(scene.a());
    for (QChar step : steps) {
        switch (step.toLatin1()) {
        case 'p':
            path.pushField(scene.field(scene.a(), "part"));
            break;
        case 'P':
            path.pushValue(scene.field(scene.a(), "part"));
            break;
        case 'l':
            path.pushField(scene.field(scene.a(), "all"));
            break;
        case 'K':
            path.pushValue(scene.list(scene.a(), "all"), 0);
            break;
        case 'L':
            path.pushValue(scene.list(scene.a(), "all"), 1);
            break;
        case 'B':
            path.pushValue(scene.list(scene.a(), "all"), 7);
            break;
        case 'n':
            path.pushField(scene.field(scene.b(), "next"));
            break;
        case 'N':
            path.pushValue(scene.field(scene.b(), "next"));
            break;
        case 'o':
            path.pushField(scene.field(scene.b(), "list"));
            break;
        case 'O':
            path.pushValue(scene.list(scene.b(), "list"), 0);
            break;
        case 'E':
            path.pushValue(scene.list(scene.b(), "list"), 1);
            break;
        case 's':
            path.pushField(scene.field(scene.a(), "name"));
            break;
        case 'S':
            path.pushValue(scene.field(scene.a(), "name"));
            break;
        default:
            path.pop();
        }
    }
    scene.set({path});
    QTEST(scene.cells(), "cells");
}

void tst_PathListView::pathThroughADeadFieldEndsThere()
{
    Scene scene;
    Path path = scene.path(scene.a());
    path.pushValue(scene.list(scene.a(), "all"), 0);
    path.pushField(scene.field(scene.b(), "next"));
    removeField(*scene.b(), scene.field(scene.b(), "next"));
    scene.set({path});
    QCOMPARE(scene.cells(), QString("'a' all[0]"));
}

void tst_PathListView::pathOfADeadRootShowsNothing()
{
    Scene scene;
    Path path(PtrT<Object>(makeThing("x")));
    scene.set({path});
    QCOMPARE(scene.cells(), QString(" "));
}

void tst_PathListView::modelChangesShowWithTheNextSet()
{
    Scene scene;
    scene.set({scene.path(scene.a())});
    fieldOf<FieldString>(scene.a(), "name").set("new");
    scene.paint();
    QCOMPARE(scene.cells(), QString("'a' "));
    scene.set(scene.view.get());
    QCOMPARE(scene.cells(), QString("'new' "));
}

void tst_PathListView::settingsTakeEffectWithTheNextSet()
{
    Scene scene;
    scene.set({scene.path(scene.a())});
    scene.view.setFieldName("other");
    scene.view.setTypeName(true);
    scene.view.setObjIconDB(RefT<GUI::ObjectIconDB>(new GreenDB));
    const QImage before = scene.paint();
    QCOMPARE(scene.cells(), QString("'a' "));
    scene.set(scene.view.get());
    QCOMPARE(scene.cells(), QString("Thing "));
    QVERIFY(scene.paint() != before);
}

/// KEPT: cells keep the width that they were measured with.
void tst_PathListView::hiddenFieldsLeaveTheirRoom()
{
    Scene scene;
    Path path = scene.path(scene.a());
    path.pushValue(scene.field(scene.a(), "part"));
    scene.set({path});
    const QSize size = Access::cellSize(scene.view, 0, 0);
    scene.view.hideFields(true);
    scene.paint();
    QVERIFY(scene.view.isHideFields());
    QCOMPARE(scene.cells(), QString("'a'|'b'"));
    QCOMPARE(Access::cellSize(scene.view, 0, 0), size);
    scene.set({path});
    QVERIFY(Access::cellSize(scene.view, 0, 0).width() < size.width());
}

void tst_PathListView::iconsStandBeforeTheirText()
{
    Scene scene;
    scene.set({scene.path(scene.a())});
    const QRect without = Access::rowRect(scene.view, 0);
    scene.view.setObjIconDB(RefT<GUI::ObjectIconDB>(new GreenDB));
    scene.set({scene.path(scene.a())});
    const QRect with = Access::rowRect(scene.view, 0);
    const int icon = scene.view.style()->pixelMetric(QStyle::PM_ListViewIconSize);
    QCOMPARE(with.width(), without.width() + icon + 5);
    // KEPT: the icon's height doesn't count.
    QCOMPARE(with.height(), without.height());
    QCOMPARE(scene.paint().pixelColor(1, 1), QColor(Qt::green));
}

void tst_PathListView::databaseThatDiesIsForgotten()
{
    class StackDB : public GUI::ObjectIconDB {};
    Scene scene;
    {
        StackDB db;
        scene.view.setObjIconDB(RefT<GUI::ObjectIconDB>(db));
    }
    QVERIFY(!scene.view.getObjIconDB());
    scene.setPlain(1);
}

void tst_PathListView::databaseMayChangeListAndDatabase()
{
    class Meddler : public GUI::ObjectIconDB {
    public:
        explicit Meddler(Scene &changedScene)
            : scene(changedScene)
        {
        }
        QIcon find(RefT<Object> const &) const override
        {
            Scene &changed = scene; // This dies with what comes next.
            changed.view.setObjIconDB({});
            changed.view.set({changed.path(changed.b())});
            return {};
        }

    private:
        Scene &scene;
    };
    Scene scene;
    scene.view.setObjIconDB(RefT<GUI::ObjectIconDB>(new Meddler(scene)));
    scene.setPlain(100);
    scene.paint();
    QCOMPARE(Access::numRows(scene.view), std::size_t(1));
    QCOMPARE(scene.cells(), QString("'b' "));
    QVERIFY(!scene.view.getObjIconDB());
}

void tst_PathListView::iconOfManyObjectsIsDrawnOnce()
{
    class Engine : public QIconEngine {
    public:
        explicit Engine(int &count)
            : numDrawn(count)
        {
        }
        void paint(QPainter *, QRect const &, QIcon::Mode, QIcon::State) override {}
        QPixmap pixmap(QSize const &size, QIcon::Mode, QIcon::State) override
        {
            ++numDrawn;
            QPixmap pixmap(size);
            pixmap.fill(Qt::red);
            return pixmap;
        }
        QIconEngine *clone() const override { return new Engine(numDrawn); }

    private:
        int &numDrawn;
    };
    class DB : public GUI::ObjectIconDB {
    public:
        explicit DB(int &count)
            : icon(new Engine(count))
        {
        }
        QIcon find(RefT<Object> const &) const override { return icon; }

    private:
        const QIcon icon;
    };
    int numDrawn = 0;
    Scene scene;
    scene.view.setObjIconDB(RefT<GUI::ObjectIconDB>(new DB(numDrawn)));
    scene.setPlain(100);
    QCOMPARE(numDrawn, 1);
    QCOMPARE(scene.paint().pixelColor(1, 1), QColor(Qt::red));
    scene.setPlain(100);
    QCOMPARE(numDrawn, 2);
}

void tst_PathListView::geometryAddsUp()
{
    Scene scene;
    Path path = scene.path(scene.a());
    path.pushValue(scene.field(scene.a(), "part"));
    scene.set({path, scene.path(scene.a())});
    const QSize first = Access::cellSize(scene.view, 0, 0),
                second = Access::cellSize(scene.view, 0, 1);
    const QRect bound = scene.view.fontMetrics().boundingRect("'a' part");
    QCOMPARE(first, QSize(bound.right() - bound.left() + 1, bound.bottom() - bound.top() + 1));
    const int textHeight =
        std::max({first.height(), second.height(), Access::separatorSize(scene.view).height()});
    const int width =
        2 + first.width() + 5 + Access::separatorSize(scene.view).width() + 5 + second.width() + 5;
    QCOMPARE(Access::rowRect(scene.view, 0), QRect(0, 0, width, 2 + textHeight));
    QCOMPARE(Access::rowRect(scene.view, 1).y(), 5 + textHeight);
    QCOMPARE(Access::contentSize(scene.view),
             QSize(width, 5 + textHeight + 5 + Access::cellSize(scene.view, 1, 0).height()));
}

void tst_PathListView::scrollRangesHoldTheContent()
{
    Scene scene;
    scene.setPlain(50);
    QScrollBar const &bar = *scene.view.verticalScrollBar();
    QCOMPARE(bar.minimum(), 0);
    QCOMPARE(bar.maximum(),
             Access::contentSize(scene.view).height() - scene.view.viewport()->height());
    QCOMPARE(bar.pageStep(), scene.view.viewport()->height());
    scene.view.resize(300, 60);
    QCOMPARE(bar.pageStep(), scene.view.viewport()->height());
    QCOMPARE(bar.maximum(),
             Access::contentSize(scene.view).height() - scene.view.viewport()->height());
}

void tst_PathListView::scrollRangesAreSetOnceAtATime()
{
    Scene scene;
    fieldOf<FieldString>(scene.a(), "name").set(std::string(100, 'w'));
    scene.set({});
    QScrollBar &bar = *scene.view.verticalScrollBar();
    const int pageStep = bar.pageStep();
    int pageStepMeanwhile = 0;
    connect(scene.view.horizontalScrollBar(), &QScrollBar::rangeChanged, &scene.view, [&] {
        if (pageStepMeanwhile != 0)
            return;
        scene.view.resize(300, 60);
        pageStepMeanwhile = bar.pageStep();
    });
    scene.setPlain(1);
    QVERIFY(scene.view.viewport()->height() < pageStep);
    QCOMPARE(pageStepMeanwhile, pageStep);
}

void tst_PathListView::scrollingMovesRows()
{
    Scene scene;
    scene.setPlain(50);
    scene.view.verticalScrollBar()->setValue(37);
    scene.paint();
    QCOMPARE(Access::rowRect(scene.view, 0).y(), -37);
    scene.view.resize(20, 60);
    scene.paint();
    scene.view.horizontalScrollBar()->setValue(9);
    scene.paint();
    QCOMPARE(Access::rowRect(scene.view, 0).x(), -9);
}

/// What is left out of a paint is what can't be seen.
void tst_PathListView::rowsOutOfSightLookTheSame()
{
    Scene scene;
    scene.view.setObjIconDB(RefT<GUI::ObjectIconDB>(new GreenDB));
    scene.setPlain(40);
    scene.view.resize(300, 2000);
    scene.view.verticalScrollBar()->setValue(0);
    scene.view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const QImage whole = scene.paint();
    scene.view.resize(300, 100);
    for (int scroll : {0, 1, 17, 100, 333}) {
        scene.paint();
        scene.view.verticalScrollBar()->setValue(scroll);
        QCOMPARE(scene.view.verticalScrollBar()->value(), scroll);
        QCOMPARE(scene.paint(), whole.copy(0, scroll, 300, 100));
    }
}

void tst_PathListView::horizontalScrollRangeHoldsTheWidestRow()
{
    Scene scene;
    Path path = scene.path(scene.a());
    path.pushValue(scene.field(scene.a(), "part"));
    scene.view.resize(40, 100);
    scene.set({scene.path(scene.b()), path});
    const int width = Access::rowRect(scene.view, 1).width();
    QVERIFY(width > Access::rowRect(scene.view, 0).width());
    QCOMPARE(Access::contentSize(scene.view).width(), width);
    QScrollBar &bar = *scene.view.horizontalScrollBar();
    QCOMPARE(bar.minimum(), 0);
    QCOMPARE(bar.maximum(), width - scene.view.viewport()->width());
    QCOMPARE(bar.pageStep(), scene.view.viewport()->width());
    bar.setValue(bar.maximum());
    scene.paint();
    QCOMPARE(Access::rowRect(scene.view, 1).x(), -bar.maximum());
    QCOMPARE(Access::rowRect(scene.view, 1).width(), width);
    QCOMPARE(bar.maximum(), width - scene.view.viewport()->width());
    scene.view.resize(60, 100);
    QCOMPARE(bar.pageStep(), scene.view.viewport()->width());
}

void tst_PathListView::firstPaintShowsRowsThatAreCutOff_data()
{
    QTest::addColumn<int>("pixels");
    QTest::newRow("icons higher than text") << 8;
    QTest::newRow("text higher than icons") << 40;
}

void tst_PathListView::firstPaintShowsRowsThatAreCutOff()
{
    QFETCH(int, pixels);
    Scene scene;
    QFont font = scene.view.font();
    font.setPixelSize(pixels);
    scene.view.setFont(font);
    scene.view.setObjIconDB(RefT<GUI::ObjectIconDB>(new GreenDB));
    Path path = scene.path(scene.a());
    path.pushValue(scene.field(scene.a(), "part"));
    const std::vector<Path> paths(50, path);
    scene.set(paths);
    for (int scroll = 0; scroll < Access::rowRect(scene.view, 0).height(); ++scroll) {
        scene.view.verticalScrollBar()->setValue(scroll);
        const QImage before = scene.paint();
        scene.view.set(paths);
        QCOMPARE(scene.paint(), before);
    }
}

void tst_PathListView::largeIndexIsShownWhole()
{
    Scene scene;
    Path path = scene.path(scene.a());
    path.pushValue(scene.list(scene.a(), "all"), std::size_t(5000000000));
    scene.set({path});
    QCOMPARE(scene.cells(), QString("'a' all[5000000000]| "));
}

void tst_PathListView::clickSelectsOneRow()
{
    Scene scene;
    scene.setPlain(4);
    scene.click(2);
    QCOMPARE(scene.view.getSelectedRows(), Numbers{2});
    scene.click(1);
    QCOMPARE(scene.view.getSelectedRows(), Numbers{1});
    QCOMPARE(Access::selectedCount(scene.view), 1);
}

void tst_PathListView::clickOnNothingClears()
{
    Scene scene;
    scene.setPlain(2);
    scene.click(0);
    QTest::mouseClick(scene.view.viewport(), Qt::LeftButton, {}, {5, 95});
    QCOMPARE(scene.view.getSelectedRows(), Numbers());
    QCOMPARE(Access::selectedCount(scene.view), 0);
    scene.click(0);
    QTest::mouseClick(scene.view.viewport(), Qt::LeftButton, Qt::ControlModifier, {5, 95});
    QCOMPARE(scene.view.getSelectedRows(), Numbers{0});
}

/// KEPT: it doesn't toggle.
void tst_PathListView::controlClickAddsAndCountsAgain()
{
    Scene scene;
    scene.setPlain(4);
    scene.click(2);
    scene.click(0, Qt::ControlModifier);
    scene.click(0, Qt::ControlModifier);
    QCOMPARE(scene.view.getSelectedRows(), (Numbers{0, 2}));
    QCOMPARE(Access::selectedCount(scene.view), 3);
}

void tst_PathListView::shiftClickExtends_data()
{
    QTest::addColumn<QString>("clicks"); // Rows; "+" holds Control, "^" Shift.
    QTest::addColumn<Numbers>("selected");
    QTest::addColumn<int>("count");
    QTest::newRow("from the first row when none is selected") << "^2" << Numbers{0, 1, 2} << 3;
    QTest::newRow("down from one") << "1 ^3" << Numbers{1, 2, 3} << 4;
    QTest::newRow("up from one") << "3 ^1" << Numbers{1, 2, 3} << 4;
    QTest::newRow("the same one") << "1 ^1" << Numbers{1} << 2;
    QTest::newRow("several give way to a range from the top") << "1 +3 ^2" << Numbers{1, 2} << 2;
    QTest::newRow("above the top of several") << "2 +3 ^0" << Numbers{0, 1, 2} << 3;
    QTest::newRow("two clicks on one row are several") << "2 +2 ^0" << Numbers{0, 1, 2} << 3;
    QTest::newRow("extended twice") << "1 ^2 ^4" << Numbers{1, 2, 3, 4} << 4;
}

/// KEPT: the number of clicks decides, and not that of rows.
void tst_PathListView::shiftClickExtends()
{
    QFETCH(QString, clicks);
    Scene scene;
    scene.setPlain(5);
    for (QString const &word : clicks.split(' ')) {
        const Qt::KeyboardModifiers modifiers = word.startsWith('^')   ? Qt::ShiftModifier
                                                : word.startsWith('+') ? Qt::ControlModifier
                                                                       : Qt::NoModifier;
        scene.click(word.right(1).toUInt(), modifiers);
    }
    QTEST(scene.view.getSelectedRows(), "selected");
    QTEST(Access::selectedCount(scene.view), "count");
}

/// KEPT: a new list selects no row and goes on counting.
void tst_PathListView::countSurvivesANewList()
{
    Scene scene;
    scene.setPlain(3);
    scene.click(1);
    scene.setPlain(3);
    QCOMPARE(scene.view.getSelectedRows(), Numbers());
    QCOMPARE(Access::selectedCount(scene.view), 1);
    scene.click(2, Qt::ShiftModifier);
    QCOMPARE(scene.view.getSelectedRows(), Numbers());
}

void tst_PathListView::newListHasNoSelectionBeforeItsPaint()
{
    Scene scene;
    scene.setPlain(3);
    scene.click(2);
    scene.view.set({});
    QCOMPARE(scene.view.getSelectedRows(), Numbers());
    scene.setPlain(3);
    scene.click(2);
    QCOMPARE(scene.view.getSelectedRows(), Numbers{2});
}

void tst_PathListView::rightClickDoesNothing()
{
    Scene scene;
    scene.setPlain(3);
    scene.click(0);
    QTest::mouseClick(scene.view.viewport(), Qt::RightButton, {}, scene.middle(1));
    QCOMPARE(scene.view.getSelectedRows(), Numbers{0});
}

void tst_PathListView::edgeBelongsToTheFirstRow()
{
    Scene scene;
    scene.setPlain(3);
    const QRect row = Access::rowRect(scene.view, 0);
    QTest::mouseClick(scene.view.viewport(), Qt::LeftButton, {}, {250, row.y() + row.height()});
    QCOMPARE(scene.view.getSelectedRows(), Numbers{0});
}

void tst_PathListView::rowUnderTheMouseIsMarked()
{
    Scene scene;
    scene.setPlain(3);
    QTest::mouseMove(scene.view.viewport(), scene.middle(1));
    QTRY_VERIFY(Access::isHighlighted(scene.view, 1));
    QVERIFY(!Access::isHighlighted(scene.view, 0));
    QTest::mouseMove(scene.view.viewport(), {5, 95});
    QTRY_VERIFY(!Access::isHighlighted(scene.view, 1));
}

void tst_PathListView::pressClearsTheMark()
{
    Scene scene;
    scene.setPlain(3);
    QTest::mouseMove(scene.view.viewport(), scene.middle(1));
    QTRY_VERIFY(Access::isHighlighted(scene.view, 1));
    QTest::mousePress(scene.view.viewport(), Qt::LeftButton, {}, scene.middle(1));
    QVERIFY(!Access::isHighlighted(scene.view, 1));
}

void tst_PathListView::marksArePaintedAcrossTheWidget()
{
    Scene scene;
    scene.setPlain(3);
    scene.click(1);
    const QImage image = scene.paint();
    const QColor color = scene.view.palette().color(QPalette::Highlight).lighter(150).toRgb();
    const QRect row = Access::rowRect(scene.view, 1);
    QCOMPARE(image.pixel(290, row.y()), color.rgb());
    QCOMPARE(image.pixel(290, row.y() + row.height() - 1), color.rgb());
    QVERIFY(image.pixel(290, row.y() + row.height()) != color.rgb());
    QVERIFY(image.pixel(290, row.y() - 1) != color.rgb());
}

void tst_PathListView::markedTextCanBeRead_data()
{
    QTest::addColumn<QColor>("base");
    QTest::addColumn<QColor>("text");
    QTest::addColumn<QColor>("highlight");
    QTest::addColumn<QColor>("marked");
    const QColor blue(0x30, 0x8c, 0xc6), paleBlue(0x4c, 0x8d, 0xd6), navy(0, 0, 0x40);
    QTest::newRow("light") << QColor(Qt::white) << QColor(Qt::black) << blue << QColor(Qt::black);
    QTest::newRow("dark") << QColor(Qt::black) << QColor(Qt::white) << paleBlue
                          << QColor(Qt::black);
    QTest::newRow("dark with a dark mark")
        << QColor(Qt::black) << QColor(Qt::white) << navy << QColor(Qt::white);
}

void tst_PathListView::markedTextCanBeRead()
{
    QFETCH(QColor, base);
    QFETCH(QColor, text);
    QFETCH(QColor, highlight);
    QFETCH(QColor, marked);
    Scene scene;
    QFont font = scene.view.font();
    font.setPixelSize(40); // So that letters have an inside.
    font.setBold(true);
    scene.view.setFont(font);
    QPalette palette;
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Highlight, highlight);
    scene.view.setPalette(palette);
    scene.setPlain(2);
    scene.click(0);
    const QImage image = scene.paint();
    const auto has = [&](std::size_t row, QColor const &color) {
        const QRect rect = Access::rowRect(scene.view, row) & image.rect();
        for (int y = rect.top(); y <= rect.bottom(); ++y)
            for (int x = rect.left(); x <= rect.right(); ++x)
                if (image.pixel(x, y) == color.rgb())
                    return true;
        return false;
    };
    QVERIFY(has(0, marked));
    QVERIFY(has(1, text));
}

/// Letters whose ink begins behind the left edge of their box, as that of "j" and "]" may.
void tst_PathListView::lettersAreWhole()
{
    Scene scene;
    fieldOf<FieldString>(scene.a(), "name").set("]]");
    scene.view.hideFields(true);
    scene.setPlain(1);
    const QImage shown = scene.paint();
    QImage expected = shown;
    expected.fill(scene.view.palette().color(QPalette::Base));
    QPainter painter(&expected);
    painter.setFont(scene.view.font());
    painter.setPen(scene.view.palette().color(QPalette::Text));
    painter.drawText(0, scene.view.fontMetrics().ascent(), "']]'");
    painter.end();
    const auto lastInk = [&](QImage const &image) {
        for (int x = image.width() - 1; x >= 0; --x)
            for (int y = 0; y < image.height(); ++y)
                if (image.pixel(x, y) != image.pixel(image.width() - 1, image.height() - 1))
                    return x;
        return -1;
    };
    QCOMPARE(lastInk(shown), lastInk(expected));
}

void tst_PathListView::textThatBecameLongerIsCut()
{
    Scene scene;
    Path path = scene.path(scene.a());
    path.pushField(scene.field(scene.a(), "part"));
    scene.view.hideFields(true);
    scene.set({path});
    const int width = Access::cellSize(scene.view, 0, 0).width();
    scene.view.hideFields(false);
    const QImage image = scene.paint();
    for (int x = width + 1; x < image.width(); ++x)
        for (int y = 0; y < 30; ++y)
            QCOMPARE(image.pixel(x, y), scene.view.palette().color(QPalette::Base).rgb());
}

void tst_PathListView::furtherLinesOfATextAreCut_data()
{
    QTest::addColumn<QString>("separator");
    QTest::newRow("line feed") << "\n";
    QTest::newRow("line separator") << QString(QChar(QChar::LineSeparator));
}

void tst_PathListView::furtherLinesOfATextAreCut()
{
    QFETCH(QString, separator);
    Scene scene;
    fieldOf<FieldString>(scene.a(), "name").set(("WWW" + separator + "WWW").toStdString());
    scene.setPlain(1);
    const QImage image = scene.paint();
    const QRect row = Access::rowRect(scene.view, 0);
    const auto hasInk = [&](int top, int bottom) {
        for (int y = top; y <= bottom; ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixel(x, y) != scene.view.palette().color(QPalette::Base).rgb())
                    return true;
        return false;
    };
    QVERIFY(hasInk(row.top(), row.bottom()));
    QVERIFY(!hasInk(row.bottom() + 1, image.height() - 1));
}

/// KEPT: a click takes one paint.
void tst_PathListView::pressDoesNotRepaintAndReleaseDoes()
{
    Scene scene;
    scene.setPlain(3);
    PaintCounter paints(*scene.view.viewport());
    QTest::mousePress(scene.view.viewport(), Qt::LeftButton, {}, scene.middle(1));
    QCOMPARE(paints.take(), 0);
    QTest::mouseRelease(scene.view.viewport(), Qt::LeftButton, {}, scene.middle(1));
    QCOMPARE(paints.take(), 1);
}

void tst_PathListView::whatAsksForAPaint_data()
{
    QTest::addColumn<QString>("act");
    QTest::addColumn<int>("numPaints");
    QTest::newRow("a new list") << "set" << 1;
    QTest::newRow("the mouse over a row") << "move" << 1;
    QTest::newRow("a name field doesn't") << "field name" << 0;
    QTest::newRow("class names don't") << "class names" << 0;
    QTest::newRow("hiding fields doesn't") << "hide fields" << 0;
    QTest::newRow("a database doesn't") << "database" << 0;
    QTest::newRow("another button doesn't") << "right button" << 0;
}

void tst_PathListView::whatAsksForAPaint()
{
    QFETCH(QString, act);
    Scene scene;
    scene.setPlain(3);
    QWidget &viewport = *scene.view.viewport();
    const QPointF pos(scene.middle(1));
    QMouseEvent move(QEvent::MouseMove, pos, viewport.mapToGlobal(pos.toPoint()), Qt::NoButton,
                     Qt::NoButton, {});
    PaintCounter paints(viewport);
    if (act == "set")
        scene.view.set({scene.path(scene.b())});
    else if (act == "move")
        QApplication::sendEvent(&viewport, &move);
    else if (act == "field name")
        scene.view.setFieldName("other");
    else if (act == "class names")
        scene.view.setTypeName(true);
    else if (act == "hide fields")
        scene.view.hideFields(true);
    else if (act == "database")
        scene.view.setObjIconDB(RefT<GUI::ObjectIconDB>(new GreenDB));
    else
        QTest::mouseClick(&viewport, Qt::RightButton, {}, scene.middle(1));
    QTEST(paints.take(), "numPaints");
}

void tst_PathListView::losingTheFocusClearsAll()
{
    Scene scene;
    scene.setPlain(3);
    scene.click(1);
    QTest::mouseMove(scene.view.viewport(), scene.middle(2));
    QTRY_VERIFY(Access::isHighlighted(scene.view, 2));
    QFocusEvent event(QEvent::FocusOut);
    QApplication::sendEvent(&scene.view, &event);
    QCOMPARE(scene.view.getSelectedRows(), Numbers());
    QCOMPARE(Access::selectedCount(scene.view), 0);
    QVERIFY(!Access::isHighlighted(scene.view, 2));
}

/// KEPT: marks stay to be seen until the next paint.
void tst_PathListView::losingTheFocusAsksForNoPaint()
{
    Scene scene;
    scene.setPlain(3);
    scene.click(1);
    PaintCounter paints(*scene.view.viewport());
    QFocusEvent event(QEvent::FocusOut);
    QApplication::sendEvent(&scene.view, &event);
    QCOMPARE(paints.take(), 0);
}

void tst_PathListView::manyPathsArePaintedAtOnce()
{
    Scene scene;
    scene.setPlain(50000);
    scene.view.verticalScrollBar()->setValue(scene.view.verticalScrollBar()->maximum());
    scene.paint();
    const QRect last = Access::rowRect(scene.view, 49999);
    QVERIFY(last.top() > 0 && last.top() < 100);
}

void tst_PathListView::newListShowsClassNamesAndFields()
{
    const PathListView view;
    QVERIFY(view.get().empty());
    QVERIFY(view.isTypeName());
    QVERIFY(!view.isHideFields());
    QVERIFY(!view.getObjIconDB());
    QCOMPARE(view.getFieldName(), std::string());
    QVERIFY(view.getSelectedRows().empty());
    QVERIFY(view.hasMouseTracking());
}

/// KEPT: its box is that of the stroke alone, though a blank follows while fields are shown.
void tst_PathListView::separatorStandsBetweenCells()
{
    Scene scene;
    QCOMPARE(Access::separatorText(scene.view), QString("/ "));
    const QRect bound = scene.view.fontMetrics().boundingRect("/");
    QCOMPARE(Access::separatorSize(scene.view), bound.size());
    Path path = scene.path(scene.a());
    path.pushValue(scene.field(scene.a(), "part"));
    scene.set({path});
    const int left = Access::cellSize(scene.view, 0, 0).width() + 5;
    const QImage image = scene.paint();
    int numInked = 0;
    for (int x = left; x < left + bound.width(); ++x)
        for (int y = 0; y < bound.height(); ++y)
            numInked += image.pixelColor(x, y) != scene.view.palette().color(QPalette::Base);
    QVERIFY(numInked > 0);
    scene.view.hideFields(true);
    QCOMPARE(Access::separatorText(scene.view), QString("/"));
}

/// KEPT: it is measured once, and cut where the font has grown.
void tst_PathListView::separatorKeepsItsSizeInALargerFont()
{
    Scene scene;
    const QSize size = Access::separatorSize(scene.view);
    QFont font = scene.view.font();
    font.setPixelSize(40);
    scene.view.setFont(font);
    Path path = scene.path(scene.a());
    path.pushValue(scene.field(scene.a(), "part"));
    scene.set({path});
    QVERIFY(scene.view.fontMetrics().boundingRect("/").width() > size.width());
    QCOMPARE(Access::separatorSize(scene.view), size);
    const int left = Access::cellSize(scene.view, 0, 0).width() + 5;
    const QImage image = scene.paint();
    for (int y = size.height(); y < Access::rowRect(scene.view, 0).height(); ++y)
        for (int x = left; x < left + size.width(); ++x)
            QCOMPARE(image.pixel(x, y), scene.view.palette().color(QPalette::Base).rgb());
}

void tst_PathListView::oldDatabaseIsForgotten()
{
    Scene scene;
    const RefT<GUI::ObjectIconDB> first(new GreenDB), second(new GreenDB);
    scene.view.setObjIconDB(first);
    scene.view.setObjIconDB(second);
    QVERIFY(!first->sigDelete.hasSlots());
    QVERIFY(second->sigDelete.hasSlots());
    scene.view.setObjIconDB({});
    QVERIFY(!second->sigDelete.hasSlots());
}

void tst_PathListView::whatDiesAfterSetIsLeftOut()
{
    Scene scene;
    Path path = scene.path(scene.a());
    path.pushValue(scene.list(scene.a(), "all"), 0);
    path.pushValue(scene.field(scene.b(), "next"));
    scene.view.set({path, scene.path(scene.b()), path});
    scene.things.clear();
    scene.paint();
    QCOMPARE(scene.cells(0), QString());
    QCOMPARE(scene.cells(1), QString(" "));
    QCOMPARE(Access::numRows(scene.view), std::size_t(3));
    scene.click(1);
    scene.set(scene.view.get());
}

void tst_PathListView::pathThatEndsInADeadFieldIsShort_data()
{
    QTest::addColumn<bool>("endsAtValue");
    QTest::addColumn<QString>("cells");
    QTest::newRow("at the field") << false << "'a' all[0]";
    QTest::newRow("at its value") << true << "'a' all[0]";
}

void tst_PathListView::pathThatEndsInADeadFieldIsShort()
{
    QFETCH(bool, endsAtValue);
    Scene scene;
    Path path = scene.path(scene.a());
    path.pushValue(scene.list(scene.a(), "all"), 0);
    if (endsAtValue)
        path.pushValue(scene.field(scene.b(), "next"));
    else
        path.pushField(scene.field(scene.b(), "next"));
    removeField(*scene.b(), scene.field(scene.b(), "next"));
    scene.set({path});
    QTEST(scene.cells(), "cells");
}

void tst_PathListView::shiftClickOnNothingDoesNothing()
{
    Scene scene;
    scene.setPlain(2);
    scene.click(0);
    QTest::mouseClick(scene.view.viewport(), Qt::LeftButton, Qt::ShiftModifier, {5, 95});
    QCOMPARE(scene.view.getSelectedRows(), Numbers{0});
    QCOMPARE(Access::selectedCount(scene.view), 1);
}

/// KEPT: the count of the old list asks for a range that has no top.
void tst_PathListView::severalClicksOnAnOldListSelectNothing()
{
    Scene scene;
    scene.setPlain(3);
    scene.click(0);
    scene.click(1, Qt::ControlModifier);
    scene.setPlain(3);
    scene.click(2, Qt::ShiftModifier);
    QCOMPARE(scene.view.getSelectedRows(), Numbers());
    QCOMPARE(Access::selectedCount(scene.view), 2);
}

void tst_PathListView::selectedRowUnderTheMouseLooksTheSame()
{
    Scene scene;
    scene.setPlain(2);
    scene.click(0);
    const QImage selected = scene.paint();
    QTest::mouseMove(scene.view.viewport(), scene.middle(0));
    QTRY_VERIFY(Access::isHighlighted(scene.view, 0));
    QCOMPARE(scene.paint(), selected);
}

QTEST_MAIN(tst_PathListView)
#include "tst_PathListView.moc"
