#include "zrVOMGUI/foundation/gui/QtTranslation.h"

#include "zrVOMGUI/foundation/util/text.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>

#include <map>
#include <set>
#include <string>

namespace ZR::GUI {

namespace {

/// Every translation that was ever handed out. Callers keep the pointers, so none is ever taken
/// back; there are no more of them than texts in the program's tables.
char const *keepForever(std::string text)
{
    static std::set<std::string> texts;
    return texts.insert(std::move(text)).first->c_str();
}

/// Belongs to the application, and stands behind getLocText() as long as that lives.
class Translation : public QObject {
public:
    Translation(QCoreApplication &app, char const *textContext)
        : QObject(&app)
        , context(textContext)
    {
        app.installEventFilter(this);
        setTextTranslation([this](char const *text) { return find(text); });
    }

    ~Translation() override { setTextTranslation({}); }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::LanguageChange)
            known.clear();
        return false;
    }

private:
    /// Null when no translator knows the text.
    char const *find(char const *text)
    {
        const auto remembered = known.find(text);
        if (remembered != known.end())
            return remembered->second;
        return known.emplace(text, ask(text)).first->second;
    }

    char const *ask(char const *text) const
    {
        const std::string source = sourceOf(text);
        if (source.empty())
            return nullptr;
        const QString translated = QCoreApplication::translate(context.c_str(), source.c_str());
        // Qt answers the source itself when no translator knows it.
        if (translated == QString::fromStdString(source))
            return nullptr;
        return keepForever(translated.toStdString());
    }

    /// The key of "[KEY]default", and otherwise the whole text.
    static std::string sourceOf(std::string const &text)
    {
        const std::size_t end = text.find(']');
        if (text.empty() || text.front() != '[' || end == std::string::npos)
            return text;
        return text.substr(1, end - 1);
    }

    std::string context;
    std::map<std::string, char const *, std::less<>> known;
};

} // namespace

void installQtTranslation(char const *context)
{
    static QPointer<Translation> current;
    QCoreApplication *const app = QCoreApplication::instance();
    if (!app)
        return;
    delete current;
    current = new Translation(*app, context);
}

} // namespace ZR::GUI
