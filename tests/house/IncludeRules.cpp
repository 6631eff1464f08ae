#include "house/IncludeRules.h"

#include "support/QtVersion.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

namespace IncludeRules {
namespace {

struct Room {
    QString name;
    QStringList mayKnow; // Beside itself.
};

// A room stands before the rooms that it lies in. What the graph's widget and its engine share, the
// nodes, their links and a layout's figures, counts as a room of its own, "graph/nodes".
std::vector<Room> const &rooms()
{
    static const QStringList foundation{"foundation/util", "foundation/vom", "foundation/gui"};
    static const QStringList middle =
        foundation + QStringList{"presentation", "transfer", "export"};
    static const std::vector<Room> all{
        {"foundation/util", {}},
        {"foundation/vom", {"foundation/util"}},
        {"foundation/gui", {"foundation/util"}},
        {"presentation", foundation + QStringList{"export"}},
        {"transfer", foundation + QStringList{"export"}},
        {"graph/nodes", {"foundation/util", "foundation/vom"}},
        {"graph/layout", {"foundation/util", "foundation/vom", "graph/nodes", "export"}},
        {"graph", middle + QStringList{"graph/nodes", "graph/layout"}},
        {"trees", middle},
        {"widgets", middle},
    };
    return all;
}

QString roomOf(QString const &path)
{
    if (path == "export.h")
        return "export";
    static const QStringList shared{"graph/private/Node.h", "graph/private/NodeLinks.h",
                                    "graph/LayoutFigures.h"};
    if (shared.contains(path))
        return "graph/nodes";
    for (Room const &room : rooms()) {
        if (path.startsWith(room.name + '/'))
            return room.name;
    }
    return {};
}

bool mayKnow(QString const &room, QString const &other)
{
    if (room == other)
        return true;
    const auto found = std::find_if(rooms().begin(), rooms().end(),
                                    [&](Room const &candidate) { return candidate.name == room; });
    return found != rooms().end() && found->mayKnow.contains(other);
}

bool isStandardHeader(QString const &name)
{
    static const QStringList standard =
        QString("algorithm any array atomic bitset cassert cctype cerrno cfenv cfloat charconv "
                "chrono cinttypes climits clocale cmath complex condition_variable csetjmp csignal "
                "cstdarg cstddef cstdint cstdio cstdlib cstring ctime cuchar cwchar cwctype deque "
                "exception execution filesystem forward_list fstream functional future "
                "initializer_list iomanip ios iosfwd iostream istream iterator limits list locale "
                "map memory memory_resource mutex new numeric optional ostream queue random ratio "
                "regex scoped_allocator set shared_mutex sstream stack stdexcept streambuf string "
                "string_view system_error thread tuple type_traits typeindex typeinfo "
                "unordered_map unordered_set utility valarray variant vector")
            .split(' ');
    return standard.contains(name);
}

// The Qt module that a header belongs to, such as "QtCore"; empty for what isn't Qt's.
QString qtModuleOf(QString const &name)
{
    static const QRegularExpression named("^(Qt[A-Z][A-Za-z]*)(/.*)?$");
    const QRegularExpressionMatch match = named.match(name);
    if (match.hasMatch())
        return match.captured(1);
    const QString headers = qtHeadersFolder();
    for (char const *module : {"QtCore", "QtGui", "QtWidgets"}) {
        if (QFileInfo::exists(headers + '/' + module + '/' + name))
            return module;
    }
    return name.startsWith('Q') ? "Qt" : QString();
}

bool drawsOrWaits(QString const &name)
{
    static const QRegularExpression pattern(
        "^(Qt\\w+/)?q(paint\\w*|\\w*event|\\w*timer|timeline|\\w*animation\\w*)(\\.h)?$",
        QRegularExpression::CaseInsensitiveOption);
    return pattern.match(name).hasMatch() || name == "QtGui" || name == "QtGui/QtGui";
}

// The folder that a private header serves; empty for a header that hosts may include.
QString ownerOfPrivate(QString const &path)
{
    if (path.startsWith("graph/layout/"))
        return "graph/";
    const int index = path.indexOf("/private/");
    return index < 0 ? QString() : path.left(index + 1);
}

bool isPrivate(QString const &path)
{
    return !ownerOfPrivate(path).isEmpty();
}

QString baseNameOf(QString const &path)
{
    return QFileInfo(path).completeBaseName();
}

// The network simplex, and what it is made of.
bool isSolver(QString const &path)
{
    static const QRegularExpression solver(
        "^graph/layout/(NetworkSimplex|SpanningTree|CutValueIndex|CutSearch|FlatGraph|Tournament)");
    return solver.match(path).hasMatch();
}

// What isn't a stage of the layout but a search through nodes, for whoever needs it.
bool isSearch(QString const &path)
{
    return path == "graph/layout/Components.h" || path == "graph/layout/Routes.h";
}

// The rule that the include of a header of this project breaks, or nothing.
QString brokenByOwn(QString const &path, QString const &other)
{
    const QString room = roomOf(path);
    const QString otherRoom = roomOf(other);
    if (otherRoom.isEmpty())
        return "no room of that name";
    if (!mayKnow(room, otherRoom))
        return room + " may not know " + otherRoom;
    if (!path.startsWith(ownerOfPrivate(other)))
        return "what is private serves its own room alone";
    if (isPrivate(other) && path.endsWith(".h") && !isPrivate(path))
        return "a public header may not include a private one";
    if (isSolver(path) && !isSolver(other) && otherRoom != "foundation/util")
        return "NetworkSimplex knows only flat vertices and edges";
    if (room == "graph" && baseNameOf(path) != "LayoutDriver" && otherRoom == "graph/layout" &&
        !isSearch(other))
        return "in graph only LayoutDriver knows the layout's stages";
    return {};
}

// The rule that the include of a Qt header breaks, or nothing.
QString brokenByQt(QString const &path, QString const &name, QString const &module)
{
    const QString room = roomOf(path);
    if (room == "foundation/util")
        return "foundation/util includes only the standard library";
    if (room == "foundation/vom") {
        if (!baseNameOf(path).startsWith("Xml"))
            return "foundation/vom uses Qt only in its XML files";
        if (module != "QtCore")
            return "foundation/vom uses no Qt module but QtCore";
    }
    if (room == "graph/layout" || room == "graph/nodes") {
        if (module == "QtWidgets")
            return "the layout engine uses no widgets";
        if (drawsOrWaits(name))
            return "the layout engine knows no painter, event or timer";
        if (isSolver(path))
            return "NetworkSimplex knows only flat vertices and edges";
    }
    if (module != "QtCore" && module != "QtGui" && module != "QtWidgets")
        return "no such header in QtCore, QtGui or QtWidgets";
    return {};
}

QString brokenRule(QString const &path, Include const &include)
{
    static const QString root = "zrVOMGUI/";
    if (include.name.startsWith(root))
        return brokenByOwn(path, include.name.mid(root.size()));
    if (!include.angled) {
        const bool ownMoc = include.name == baseNameOf(path) + ".moc" ||
                            include.name == "moc_" + baseNameOf(path) + ".cpp";
        return ownMoc ? QString() : "own headers are named from the root, as \"zrVOMGUI/...\"";
    }
    if (isStandardHeader(include.name))
        return {};
    const QString module = qtModuleOf(include.name);
    if (!module.isEmpty())
        return brokenByQt(path, include.name, module);
    return "neither of this project, nor the standard library, nor Qt";
}

// The text with its comments blanked, line by line the same.
QString withoutComments(QString const &text)
{
    static const QRegularExpression tokens(
        R"re("(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])'|//[^\n]*|/\*.*?(?:\*/|\z))re",
        QRegularExpression::DotMatchesEverythingOption);
    QString result = text;
    QRegularExpressionMatchIterator match = tokens.globalMatch(text);
    while (match.hasNext()) {
        const QRegularExpressionMatch token = match.next();
        if (!token.captured().startsWith('/'))
            continue;
        for (int i = token.capturedStart(); i < token.capturedEnd(); ++i) {
            if (result[i] != '\n')
                result[i] = ' ';
        }
    }
    return result;
}

} // namespace

std::vector<Include> includesOf(QString const &text)
{
    static const QRegularExpression pattern(
        R"re(^\s*#\s*include\s*(?:"([^"]*)"|<([^>]*)>|(\S*)))re");
    std::vector<Include> includes;
    int line = 0;
    for (QString const &content : withoutComments(text).split('\n')) {
        ++line;
        const QRegularExpressionMatch match = pattern.match(content);
        if (match.hasMatch())
            includes.push_back(
                {line, match.captured(match.lastCapturedIndex()), match.lastCapturedIndex() == 2});
    }
    return includes;
}

QStringList violations(QString const &path, QString const &text)
{
    if (roomOf(path).isEmpty())
        return {path + ":1: lies in no room that the rules know"};
    QStringList result;
    for (Include const &include : includesOf(text)) {
        const QString rule = brokenRule(path, include);
        if (!rule.isEmpty())
            result << QString("%1:%2: includes %3: %4")
                          .arg(path, QString::number(include.line), include.name, rule);
    }
    return result;
}

} // namespace IncludeRules
