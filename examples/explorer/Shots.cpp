#include "Shots.h"

#include "ExplorerWindow.h"
#include "FormPanel.h"
#include "GraphPage.h"
#include "PackageGraph.h"
#include "Style.h"
#include "TreePanel.h"
#include "TreesPage.h"

#include "zrVOMGUI/transfer/MimeData.h"
#include "zrVOMGUI/widgets/PathListView.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QDrag>
#include <QDropEvent>
#include <QEventLoop>
#include <QImage>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QProcess>
#include <QScrollBar>
#include <QStyle>
#include <QTimer>

#include <algorithm>
#include <initializer_list>
#include <iostream>
#include <memory>
#include <optional>

namespace Explorer {

using ZR::PtrT;
using ZR::RefT;

namespace {

/// Saves pictures into one folder, and remembers whether all went well.
class Album {
public:
    explicit Album(QString const &path)
        : folder(path)
    {
        if (!folder.mkpath("."))
            fail(path);
    }

    void add(QString const &name, QWidget &widget) { add(name, widget.grab()); }

    /// What is transparent is white.
    void add(QString const &name, QPixmap const &pixmap)
    {
        QImage image(pixmap.size(), QImage::Format_RGB32);
        image.setDevicePixelRatio(pixmap.devicePixelRatio());
        image.fill(Qt::white);
        QPainter(&image).drawPixmap(0, 0, pixmap);
        const QString path = folder.filePath(name);
        if (!isSound)
            return;
        if (image.save(path))
            std::cout << path.toStdString() << '\n';
        else
            fail(path);
    }

    bool isComplete() const { return isSound; }

private:
    void fail(QString const &path)
    {
        std::cerr << "explorer: cannot write " << path.toStdString() << '\n';
        isSound = false;
    }

    QDir folder;
    bool isSound = true;
};

/// A graph by itself, as large as its drawing.
class Subject : public PackageGraph {
public:
    explicit Subject(PackageModel &shownModel)
        : PackageGraph(shownModel)
    {
        animDuration.set(0);
        setFrameShape(NoFrame);
    }

    void fit()
    {
        // Smaller than any drawing, so that the scroll bars tell where the nodes are. Sizes and the
        // scroll range are worked out when the graph paints.
        resize(100, 100);
        grab();
        const auto length = [](QScrollBar const &bar) {
            return bar.maximum() - bar.minimum() + bar.pageStep();
        };
        // Links may run beyond the nodes, of which alone the scroll bars tell.
        constexpr int linkMargin = 8; // On either side.
        resize(std::max(length(*horizontalScrollBar()), getLayoutFigures().width + 2 * linkMargin),
               length(*verticalScrollBar()));
        grab();
    }

    void show(std::initializer_list<char const *> names) { setVisible(find(names), true); }

    /// Drops packages from elsewhere, with the routes that lead to them.
    void drop(std::initializer_list<char const *> names)
    {
        const Objects objects = find(names);
        const std::unique_ptr<QMimeData> mimeData(
            ZR::VOM::GUI::createMimeData({}, &objects, nullptr));
        const QPoint centre = viewport()->rect().center();
        QDragEnterEvent enter(centre, Qt::LinkAction, mimeData.get(), Qt::LeftButton,
                              Qt::NoModifier);
        QApplication::sendEvent(viewport(), &enter);
        QDropEvent dropped(centre, Qt::LinkAction, mimeData.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport(), &dropped);
    }

    /// Clicks the lower arrow of a package.
    void clickArrow(char const *name)
    {
        const QPoint node = findNode(name);
        // Just above the lower end of the node's bands, left of its middle.
        for (int y = node.y(); y < node.y() + arrowSearch; ++y)
            if (clickReveals(QPoint(node.x() - 1, y)))
                return;
    }

    /// What the mouse carries while it drags the selected objects by one of them.
    QPixmap dragPixmap(char const *name)
    {
        const QPoint from = findNode(name);
        const QPoint to = from + QPoint(QApplication::startDragDistance(), 0);
        send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
        // Offscreen nothing can be dropped: the platform says so, and the drag is over at once.
        const QtMessageHandler handler =
            qInstallMessageHandler([](QtMsgType, QMessageLogContext const &, QString const &) {});
        send(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
        qInstallMessageHandler(handler);
        auto const *const ended = findChild<QDrag *>();
        return ended ? ended->pixmap() : QPixmap();
    }

private:
    Objects find(std::initializer_list<char const *> names) const
    {
        Objects objects;
        for (char const *name : names)
            if (const RefT<Package> package = getModel().findPackage(name))
                objects.push_back(package);
        return objects;
    }

    /// Where its centre is in the viewport.
    QPoint findNode(char const *name) const
    {
        int x = 0, y = 0;
        getPos(getModel().findPackage(name), x, y);
        return QPoint(x - horizontalScrollBar()->value(), y - verticalScrollBar()->value());
    }

    bool clickReveals(QPoint const &pos)
    {
        const std::size_t before = getVisibleObjs().size();
        send(QEvent::MouseButtonPress, pos, Qt::LeftButton, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, pos, Qt::LeftButton, Qt::NoButton);
        return getVisibleObjs().size() != before;
    }

    void send(QEvent::Type type, QPoint const &pos, Qt::MouseButton button,
              Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, pos, viewport()->mapToGlobal(pos), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(viewport(), &event);
    }

    static constexpr int arrowSearch = 200;
};

void press(QWidget &widget, Qt::Key key)
{
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

/// From the second section down to what its first package depends on, which is opened and current.
void openByKeys(QAbstractScrollArea &tree)
{
    tree.setFocus();
    tree.viewport()->grab(); // Lays the rows out, which keys need.
    for (Qt::Key key : {Qt::Key_Home, Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_Right,
                        Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_Right}) {
        press(tree, key);
        tree.viewport()->grab();
    }
}

/// The tree of sections. The second is opened, with its first package and what that depends on.
class TreeSubject : public TreePanel {
public:
    explicit TreeSubject(PackageModel &shownModel)
        : TreePanel(shownModel)
    {
        resize(420, 420);
        // Where text is edited, a tree paints its cursor only in an active window.
        QApplication::setActiveWindow(this);
        show();
        openByKeys(getTree());
    }

    /// Begins with the row below the current one.
    void edit()
    {
        press(getTree(), Qt::Key_Down);
        press(getTree(), Qt::Key_F2);
    }

    /// A package is dragged over the lower end of another.
    void dragBetweenRows()
    {
        constexpr int rowsAbove = 6;
        const Objects objects = {getModel().findPackage("libc6")};
        mimeData.reset(ZR::VOM::GUI::createMimeData({}, &objects, nullptr));
        const QPoint gap(2 * getTree().getRowHeight(), rowsAbove * getTree().getRowHeight() - 1);
        QDragEnterEvent enter(gap, Qt::LinkAction, mimeData.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(getTree().viewport(), &enter);
        QDragMoveEvent move(gap, Qt::LinkAction, mimeData.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(getTree().viewport(), &move);
    }

    void endDrag()
    {
        QDragLeaveEvent leave;
        QApplication::sendEvent(getTree().viewport(), &leave);
    }

private:
    std::unique_ptr<QMimeData> mimeData;
};

/// A form by itself.
class FormSubject : public FormPanel {
public:
    explicit FormSubject(PackageModel &shownModel)
        : FormPanel(shownModel)
        , model(shownModel)
    {
        resize(340, 460);
        // Editors follow the model while they can be seen.
        setAttribute(Qt::WA_DontShowOnScreen);
        show();
        rate("apt", 4.5);
    }

    void showPackages(std::initializer_list<char const *> names)
    {
        Objects packages;
        for (char const *name : names)
            packages.push_back(model.findPackage(name));
        showObjects(packages);
    }

    /// Selects one path by a click, with the mouse on the next one.
    void clickPath(int y)
    {
        QWidget &list = *getPathList().viewport();
        constexpr int x = 8, nextRow = 20;
        sendMouse(list, QEvent::MouseButtonPress, QPoint(x, y), Qt::LeftButton);
        sendMouse(list, QEvent::MouseMove, QPoint(x, y + nextRow), Qt::NoButton);
    }

    /// Once the layout has followed what is shown.
    void shoot(Album &album, QString const &name)
    {
        QApplication::sendPostedEvents();
        album.add(name, *this);
    }

private:
    static void sendMouse(QWidget &widget, QEvent::Type type, QPoint const &pos,
                          Qt::MouseButton button)
    {
        QMouseEvent event(type, pos, widget.mapToGlobal(pos), button, button, Qt::NoModifier);
        QApplication::sendEvent(&widget, &event);
    }

    void rate(char const *name, double value)
    {
        ZR::VOM::Object &package = *model.findPackage(name);
        if (!package.findField("rating"))
            ZR::VOM::addField<ZR::VOM::FieldReal>(package, "rating", value);
    }

    PackageModel &model;
};

/// What is taken pictures of.
///
/// All of it is laid out before anything is painted or any timer runs: ties in the layout are
/// broken by address, and addresses are the same from run to run only as long as nothing depends on
/// time.
class Scene {
public:
    explicit Scene(std::vector<PackageRecord> const &records)
        : sharedModel(std::make_shared<PackageModel>(records))
        , model(*sharedModel)
        , circularModel(records)
    {
        const RefT<Package> apt = model.findPackage("apt");
        start.emplace(model);
        start->showPackage(apt);

        revealed.emplace(model);
        revealed->showPackage(apt);
        revealed->setSel({model.findPackage("libapt-pkg6.0"), model.findPackage("libgnutls30")});
        revealed->showMore();

        // Packages that need each other, and a longer way round that the archive doesn't have: what
        // all programs need needs a program.
        circularModel.findPackage("libc6")->getDepends()->replace(
            0, 0, {PtrT<ZR::VOM::Object>(circularModel.findPackage("curl"))});
        backLinks.emplace(circularModel);
        backLinks->show({"curl", "libcurl4", "zlib1g", "libssh2-1", "libssl3", "libc6", "libgcc-s1",
                         "dmsetup", "libdevmapper1.02.1"});

        row.emplace(model);
        row->show({"apt"});

        dropped.emplace(model);
        dropped->setOutLinks(linkKinds[0], false);
        dropped->setOutLinks(linkKinds[1], true);
        dropped->show({"apt", "libc6"});
        dropped->drop({"adduser", "passwd", "libgnutls30", "curl"});

        window.emplace(sharedModel, "extract");
        window->resize(1500, 760);
        window->getPage().getGraph().animDuration.set(0);
        window->start("apt");
    }

    void shoot(Album &album)
    {
        settle();
        start->fit();
        album.add("graph-start.png", *start);
        start->setEnabled(false);
        album.add("graph-disabled.png", *start);
        start->setEnabled(true);
        setDarkStyle(true);
        start->fit();
        album.add("graph-dark.png", *start);
        setDarkStyle(false);

        start->setSel({model.findPackage("apt"), model.findPackage("libc6")});
        album.add("graph-selection.png", *start);
        album.add("drag-pixmap.png", start->dragPixmap("apt"));

        row->fit();
        row->clickArrow("apt");
        settle();
        row->fit();
        album.add("graph-row.png", *row);
        dropped->fit();
        album.add("graph-drop.png", *dropped);

        revealed->fit();
        album.add("graph-revealed.png", *revealed);
        backLinks->fit();
        album.add("graph-back-links.png", *backLinks);
        shootTree(album);
        shootGenerations(album);
        shootForm(album);
        window->setAttribute(Qt::WA_DontShowOnScreen);
        window->show();
        settle();
        window->grab(); // Lays out what the window holds; the graph then knows its size.
        album.add("window.png", *window);
    }

    void shootScaled(Album &album)
    {
        settle();
        start->fit();
        album.add("graph-scale2.png", *start);
        TreeSubject tree(model);
        album.add("tree-scale2.png", tree);
        FormSubject form(model);
        form.showPackages({"apt"});
        form.shoot(album, "form-scale2.png");
    }

private:
    void shootTree(Album &album)
    {
        TreeSubject tree(model);
        album.add("tree.png", tree);
        tree.setLayoutDirection(Qt::RightToLeft);
        album.add("tree-right-to-left.png", tree);
        tree.setLayoutDirection(Qt::LeftToRight);
        tree.getTree().setHideFields(true);
        album.add("tree-hidden-fields.png", tree);
        tree.getTree().setHideFields(false);
        setDarkStyle(true);
        album.add("tree-dark.png", tree);
        setDarkStyle(false);
        tree.dragBetweenRows();
        album.add("tree-drop.png", tree);
        tree.endDrag();
        tree.edit();
        album.add("tree-editing.png", tree);
    }

    void shootGenerations(Album &album)
    {
        TreesPage page(model);
        page.resize(900, 420);
        page.show();
        for (QAbstractScrollArea *tree : std::initializer_list<QAbstractScrollArea *>{
                 &page.getThird(), &page.getSecond(), &page.getFirst()})
            openByKeys(*tree);
        album.add("trees.png", page);
        page.findChild<QCheckBox *>()->click(); // Hides the fields.
        QCoreApplication::processEvents();      // Scroll bars that are no longer needed go.
        album.add("trees-hidden-fields.png", page);
        setDarkStyle(true);
        album.add("trees-dark.png", page);
        setDarkStyle(false);
    }

    void shootForm(Album &album)
    {
        constexpr int clickedPath = 30; // From the top of the list.
        FormSubject form(model);
        form.showPackages({"apt"});
        form.shoot(album, "form.png");
        form.setLayoutDirection(Qt::RightToLeft);
        form.shoot(album, "form-right-to-left.png");
        form.setLayoutDirection(Qt::LeftToRight);
        setDarkStyle(true);
        form.shoot(album, "form-dark.png");
        form.showPackages({"apt", "libc6", "curl", "git"});
        form.getPathList().viewport()->grab();
        form.clickPath(clickedPath);
        form.shoot(album, "form-mixed-dark.png");
        setDarkStyle(false);
        form.clickPath(clickedPath);
        form.shoot(album, "form-mixed.png");
        form.showPackages({});
        form.shoot(album, "form-empty.png");
    }

    /// Lets the timers run that end an animation of no length.
    static void settle()
    {
        QEventLoop loop;
        constexpr int fewTicks = 150; // Milliseconds.
        QTimer::singleShot(fewTicks, &loop, &QEventLoop::quit);
        loop.exec();
    }

    const std::shared_ptr<PackageModel> sharedModel;
    PackageModel &model;
    PackageModel circularModel;
    std::optional<Subject> start, revealed, backLinks, row, dropped;
    std::optional<ExplorerWindow> window;
};

void useFixedLooks()
{
    QFont font("DejaVu Sans");
    font.setPixelSize(12);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(
        QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    QApplication::setFont(font);
    QApplication::setPalette(QApplication::style()->standardPalette());
    QApplication::setCursorFlashTime(0);
}

bool runForScaled(QString const &folder)
{
    std::cout.flush();
    const int result =
        QProcess::execute(QCoreApplication::applicationFilePath(), {"--shoot-scaled", folder});
    if (result != 0)
        std::cerr << "explorer: the scaled picture failed\n";
    return result == 0;
}

} // namespace

void prepareShots(int scale)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_FONT_DPI", "96");
    for (char const *variable :
         {"QT_QPA_PLATFORMTHEME", "QT_STYLE_OVERRIDE", "QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS",
          "QT_AUTO_SCREEN_SCALE_FACTOR", "XDG_CURRENT_DESKTOP"})
        qunsetenv(variable);
    if (scale != 1)
        qputenv("QT_SCALE_FACTOR", QByteArray::number(scale));
    QApplication::setDesktopSettingsAware(false);
    qSetGlobalQHashSeed(0);
}

bool shoot(std::vector<PackageRecord> const &records, QString const &folder)
{
    Album album(folder);
    if (album.isComplete()) {
        useFixedLooks();
        Scene(records).shoot(album);
    }
    return album.isComplete() && runForScaled(folder);
}

bool shootScaled(std::vector<PackageRecord> const &records, QString const &folder)
{
    Album album(folder);
    useFixedLooks();
    Scene(records).shootScaled(album);
    return album.isComplete();
}

} // namespace Explorer
