// Linked to every example: with the arguments `--shoot FILE` it saves a picture of its window a
// moment after the start, and ends. So the examples themselves are hosts and nothing else.

#include <QApplication>
#include <QFont>
#include <QTimer>
#include <QWidget>

#include <iostream>

namespace {

void useFixedLooks()
{
    QFont font("DejaVu Sans");
    font.setPixelSize(12);
    font.setHintingPreference(QFont::PreferNoHinting);
    QApplication::setFont(font);
    QApplication::setCursorFlashTime(0); // Always there, whenever the picture is taken.
}

void shoot(QString const &file)
{
    for (QWidget *const window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->grab().save(file)) {
            std::cout << file.toStdString() << '\n';
            QCoreApplication::quit();
            return;
        }
    }
    std::cerr << "cannot write " << file.toStdString() << '\n';
    QCoreApplication::exit(1);
}

/// Before the application object is complete: the rest is for the event loop.
void readArguments()
{
    const QStringList arguments = QCoreApplication::arguments();
    const int position = arguments.indexOf("--shoot");
    if (position < 0)
        return;
    const auto begin = [file = arguments.value(position + 1)] {
        constexpr int longestAnimation = 2500; // Milliseconds.
        useFixedLooks();
        QTimer::singleShot(longestAnimation, [file] { shoot(file); });
    };
    QMetaObject::invokeMethod(QCoreApplication::instance(), begin, Qt::QueuedConnection);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(readArguments)
