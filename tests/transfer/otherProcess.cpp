// A second program for tests of the clipboard: what it does is its first argument. It tells of it
// on the standard output.

#include "Payloads.h"
#include "ThingNames.h"

#include "support/XmlModel.h"

#include "zrVOMGUI/foundation/util/Matrix4x4T.h"
#include "zrVOMGUI/transfer/Clipboard.h"
#include "zrVOMGUI/transfer/ClipboardObject.h"
#include "zrVOMGUI/transfer/MimeData.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSocketNotifier>

#include <cstdlib>
#include <iostream>

using namespace ZR;
namespace Board = ZR::VOM::GUI::Clipboard;
using Model = VOM::Object;

namespace {

void show(Bool value)
{
    std::cout << (value ? "true" : "false");
}

void show(int value)
{
    std::cout << value;
}

void show(double value)
{
    std::cout << value;
}

void show(std::string const &value)
{
    std::cout << QByteArray::fromStdString(value).toPercentEncoding().constData();
}

template <class T>
void show(std::vector<T> const &values)
{
    if (values.size() > 10) {
        std::cout << values.size() << " values";
        return;
    }
    std::cout << '[';
    for (std::size_t i = 0; i < values.size(); ++i) {
        std::cout << (i > 0 ? " " : "");
        show(values[i]);
    }
    std::cout << ']';
}

template <class T>
void paste(char const *name)
{
    T value{};
    if (!Board::paste(value))
        return;
    std::cout << name << ' ';
    show(value);
    std::cout << '\n';
}

void pasteStrings()
{
    std::vector<std::string> strings;
    QMimeData const *const data = QGuiApplication::clipboard()->mimeData();
    if (!data || !VOM::GUI::getFromMimeData(*data, strings))
        return;
    std::cout << "strings ";
    show(strings);
    std::cout << '\n';
}

void pasteObjects()
{
    Things things;
    if (Board::pasteObjs(things))
        std::cout << "reference " << namesOf(things) << '\n';
    VOM::XmlImporter importer(xmlRegistry());
    if (!Board::pasteObjs(things, importer))
        return;
    // Written once more, so that the first process sees whether all of it arrived.
    XmlErrors errors;
    const std::string xml = toXml(RefT<Model>(new VOM::Clipboard(things)), errors.manager);
    std::cout << "objects " << namesOf(things) << "\nXML ";
    show(xml);
    std::cout << '\n';
}

/// A line for each paste that finds something.
void pasteAll()
{
    paste<Bool>("bool");
    paste<int>("int");
    paste<double>("real");
    paste<std::string>("text");
    paste<std::vector<Bool>>("bools");
    paste<std::vector<int>>("ints");
    paste<std::vector<double>>("reals");
    pasteObjects();
}

void copyAll()
{
    const Bool truth = true;
    const int integer = 1;
    const double real = 0.5;
    const std::string text = "word";
    Board::copy(truth);
    Board::copy(integer);
    Board::copy(real);
    Board::copy(text);
    Board::copy(1, &truth);
    Board::copy(1, &integer);
    Board::copy(1, &real);
    Board::copy(1, &text);
    Board::copyMat(Matrix4x4D());
    Board::copyObjs({}, makeThings("a"));
}

/// Serves the clipboard until the standard input ends. Without a running event loop nobody could
/// paste.
int serve()
{
    std::cout << "ready" << std::endl;
    QSocketNotifier notifier(0, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, qApp, &QCoreApplication::quit);
    return QGuiApplication::exec();
}

int runWithGui(QString const &deed)
{
    if (deed == "paste") {
        pasteAll();
        pasteStrings();
    } else if (deed == "serve a text") {
        Board::copy(std::string("theirs"));
    } else if (deed == "serve objects") {
        Board::copyObjs(RefT<VOM::Exporter>(new VOM::XmlExporter), makeThings("yz"));
    } else {
        return EXIT_FAILURE;
    }
    return deed.startsWith("serve") ? serve() : EXIT_SUCCESS;
}

void showFormats(QMimeData *data)
{
    std::cout << MimeData(data)->formats().join(' ').toStdString() << '\n';
}

/// Hands null over where a list is claimed.
bool claimNull(QString const &deed)
{
    if (deed == "claim ints")
        showFormats(VOM::GUI::createMimeData(3, static_cast<int const *>(nullptr)));
    else if (deed == "claim strings")
        showFormats(VOM::GUI::createMimeData(3, static_cast<std::string const *>(nullptr)));
    else if (deed == "claim objects")
        showFormats(VOM::GUI::createMimeData({}, nullptr, nullptr));
    else
        return false;
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    const QString deed = QString::fromLocal8Bit(argv[argc - 1]);
    if (claimNull(deed))
        return EXIT_SUCCESS;
    if (deed == "use no application") {
        copyAll();
        pasteAll();
        return EXIT_SUCCESS;
    }
    if (deed == "use an application without windows") {
        const QCoreApplication application(argc, argv);
        copyAll();
        pasteAll();
        return EXIT_SUCCESS;
    }
    const QGuiApplication application(argc, argv);
    return runWithGui(deed);
}
