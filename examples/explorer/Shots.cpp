#include "Shots.h"

#include "ExplorerWindow.h"
#include "GraphPage.h"
#include "PackageGraph.h"
#include "Style.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QImage>
#include <QProcess>
#include <QScrollBar>
#include <QStyle>
#include <QTimer>

#include <algorithm>
#include <initializer_list>
#include <iostream>
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

    void add(QString const &name, QWidget &widget)
    {
        const QImage image = widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
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
    explicit Subject(PackageModel const &shownModel)
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
        // Links may run beyond the nodes.
        constexpr int linkMargin = 8;
        resize(std::max(length(*horizontalScrollBar()), getLayoutFigures().width + linkMargin),
               length(*verticalScrollBar()));
        grab();
    }

    void show(std::initializer_list<char const *> names)
    {
        Objects objects;
        for (char const *name : names)
            if (const RefT<Package> package = getModel().findPackage(name))
                objects.push_back(package);
        setVisible(objects, true);
    }
};

/// What is taken pictures of.
///
/// All of it is laid out before anything is painted or any timer runs: ties in the layout are
/// broken by address, and addresses are the same from run to run only as long as nothing depends on
/// time.
class Scene {
public:
    explicit Scene(std::vector<PackageRecord> const &records)
        : model(records)
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

        window.emplace(model, "extract");
        window->resize(1280, 640);
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

        revealed->fit();
        album.add("graph-revealed.png", *revealed);
        backLinks->fit();
        album.add("graph-back-links.png", *backLinks);
        window->grab(); // Lays out what the window holds; the graph then knows its size.
        album.add("window.png", *window);
    }

    void shootScaled(Album &album)
    {
        settle();
        start->fit();
        album.add("graph-scale2.png", *start);
    }

private:
    /// Lets the timers run that end an animation of no length.
    static void settle()
    {
        QEventLoop loop;
        constexpr int fewTicks = 150; // Milliseconds.
        QTimer::singleShot(fewTicks, &loop, &QEventLoop::quit);
        loop.exec();
    }

    PackageModel model, circularModel;
    std::optional<Subject> start, revealed, backLinks;
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
