#include "ExplorerWindow.h"
#include "ModelFile.h"
#include "PackageModel.h"
#include "Shots.h"

#include <zrVOMGUI/foundation/gui/QtVersion.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>

#include <iostream>
#include <memory>
#include <optional>

namespace {

constexpr char usage[] =
    "explorer [--status FILE] [--package NAME]   opens a window on the installed packages\n"
    "explorer FILE.xml [--package NAME]          opens a saved model\n"
    "explorer --shoot DIR                        writes pictures of it into DIR; needs no display\n"
    "explorer --shoot-scaled DIR                 writes only the one of twice the size\n"
    "explorer --help                             says this\n"
    "\n"
    "--status FILE    another package database than /var/lib/dpkg/status\n"
    "--package NAME   the package to begin with\n";

enum ExitCode { Done = 0, Failed = 1, NoDisplay = 2 };

struct Arguments {
    QString shootFolder; // Empty when no pictures are asked for.
    bool scaled = false;
    QString statusFile = "/var/lib/dpkg/status";
    QString modelFile; // Takes the place of the package database.
    QString packageName;
    bool help = false;
};

/// Without the application object, since its platform depends on what is asked for. Nothing, with
/// the reason on the standard error stream, when the arguments make no sense.
std::optional<Arguments> readArguments(int argc, char **argv)
{
    QStringList list;
    for (int i = 0; i < argc; ++i)
        list << QString::fromLocal8Bit(argv[i]);
    const QCommandLineOption shoot("shoot", {}, "DIR"), scaled("shoot-scaled", {}, "DIR"),
        status("status", {}, "FILE"), package("package", {}, "NAME"),
        help(QStringList{"h", "help"});
    QCommandLineParser parser;
    parser.addOptions({shoot, scaled, status, package, help});
    const bool isRead = parser.parse(list);
    const bool isScaled = parser.isSet(scaled);
    const bool wantsShots = isScaled || parser.isSet(shoot);
    const QString folder = parser.value(isScaled ? scaled : shoot);
    const QStringList files = parser.positionalArguments();
    const bool hasTooManyFiles = files.size() > (wantsShots || parser.isSet(status) ? 0 : 1);
    if (!isRead || hasTooManyFiles || (wantsShots && folder.isEmpty())) {
        const QString reason = isRead ? QString("what is asked for?") : parser.errorText();
        std::cerr << "explorer: " << reason.toStdString() << '\n' << usage;
        return std::nullopt;
    }
    Arguments arguments;
    arguments.shootFolder = folder;
    arguments.scaled = isScaled;
    if (parser.isSet(status))
        arguments.statusFile = parser.value(status);
    if (!files.isEmpty())
        arguments.modelFile = files.front();
    arguments.packageName = parser.value(package);
    arguments.help = parser.isSet(help);
    return arguments;
}

bool hasDisplay()
{
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    return !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
#else
    return true;
#endif
}

std::vector<Explorer::PackageRecord> readRecords(QString const &path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return Explorer::readStatus(file.readAll().toStdString());
}

std::vector<Explorer::PackageRecord> readExtract()
{
    return readRecords(":/packages.status");
}

/// The packages of a database, or else the extract that comes with the program.
std::shared_ptr<Explorer::PackageModel> readPackages(QString &source)
{
    std::vector<Explorer::PackageRecord> records = readRecords(source);
    if (records.empty()) {
        records = readExtract();
        source = QCoreApplication::translate("Explorer", "extract of another machine");
    }
    return std::make_shared<Explorer::PackageModel>(records);
}

/// Null, with the reason on the standard error stream, when there is none.
std::shared_ptr<Explorer::PackageModel> readSavedModel(QString const &path)
{
    QString error;
    const std::shared_ptr<Explorer::PackageModel> model = Explorer::readModel(path, error);
    if (!model)
        std::cerr << "explorer: " << path.toStdString() << ": " << error.toStdString() << '\n';
    return model;
}

int shoot(int argc, char **argv, Arguments const &arguments)
{
    Explorer::prepareShots(arguments.scaled ? 2 : 1);
    QApplication::setStyle("fusion");
    const QApplication application(argc, argv);
    const auto shootThem = arguments.scaled ? Explorer::shootScaled : Explorer::shoot;
    return shootThem(readExtract(), arguments.shootFolder) ? Done : Failed;
}

int openWindow(int argc, char **argv, Arguments const &arguments)
{
    ZR::GUI::enableHighDpi();
    QApplication::setStyle("fusion");
    const QApplication application(argc, argv);

    QString source = arguments.modelFile.isEmpty() ? arguments.statusFile : arguments.modelFile;
    const std::shared_ptr<Explorer::PackageModel> model =
        arguments.modelFile.isEmpty() ? readPackages(source) : readSavedModel(source);
    if (!model)
        return Failed;
    Explorer::ExplorerWindow window(model, source);
    window.show();
    window.start(arguments.packageName);
    return QApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    const std::optional<Arguments> arguments = readArguments(argc, argv);
    if (!arguments)
        return Failed;
    if (arguments->help) {
        std::cout << usage;
        return Done;
    }
    if (!arguments->shootFolder.isEmpty())
        return shoot(argc, argv, *arguments);
    if (!hasDisplay()) {
        std::cerr << "explorer: there is no display to open a window on; "
                     "explorer --shoot DIR writes pictures instead\n";
        return NoDisplay;
    }
    return openWindow(argc, argv, *arguments);
}
