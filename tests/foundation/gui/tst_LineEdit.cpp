#include "support/ErrorReports.h"
#include "zrVOMGUI/foundation/gui/LineEdit.h"

#include <QDialog>
#include <QIntValidator>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QTest>
#include <QVBoxLayout>

#include <functional>
#include <iomanip>
#include <sstream>
#include <string>

using ZR::GUI::LineEdit;

class tst_LineEdit : public QObject {
    Q_OBJECT

private slots:
    void beginsEmptyWithTheFormatOfStreams();
    void confirmsByReturnAndEnter_data();
    void confirmsByReturnAndEnter();
    void confirmsAfterQtToldOfIt();
    void confirmsEachTime();
    void otherKeysAndWaysDontConfirm();
    void leavingKeepsTheTypedTextUnconfirmed();
    void readOnlyLineConfirms();
    void confirmsOnlyWhatTheValidatorAccepts();
    void keyGoesOnToTheDefaultButton();
    void confirmingMayDestroyTheLine();
    void disabledLineDoesntConfirm();

    void showsTheTextUnmodified();
    void tellsOfChangedTextOnce();
    void sameTextKeepsCursorSelectionAndUndo();
    void sameTextCountsAsUnmodified();
    void otherTextForgetsUndo();
    void otherTextIsSelectedWhereAllWas();
    void otherTextIsntSelectedWhereAPartWas();
    void unfocusedLineShowsTheBeginning_data();
    void unfocusedLineShowsTheBeginning();
    void clearShowsNothing();
    void slotsByNameActAlike();

    void tabbingInSelectsAll();

    void hintIsQtsForShortNumbers();
    void hintHasRoomForEveryNumber_data();
    void hintHasRoomForEveryNumber();
    void hintTakesAnyPrecision_data();
    void hintTakesAnyPrecision();
    void layoutHearsOfPrecisionWithTheNextText();

    void formatsOfBothStreamsAreCopied();
    void showsPaletteAndState_data();
    void showsPaletteAndState();
    void confirmationThatRaisesIsReported();
};

namespace {

/// Keeps what was confirmed.
class Line : public LineEdit {
public:
    using LineEdit::LineEdit;
    QStringList confirmed;
    std::function<void()> then;

protected:
    void onConfirm() override
    {
        confirmed += text();
        if (const auto next = then)
            next(); // May destroy this.
    }
};

/// A shown window with a line and another widget that takes focus.
struct Form {
    Form()
        : line(new Line)
        , other(new QLineEdit)
    {
        auto *const layout = new QVBoxLayout(&window);
        layout->addWidget(line);
        layout->addWidget(other);
        window.show();
        window.activateWindow();
        isActive = QTest::qWaitForWindowActive(&window);
        line->setFocus();
    }

    QWidget window;
    QPointer<Line> line;
    QLineEdit *other;
    bool isActive = false;
};

std::string written(LineEdit const &line, double value)
{
    std::ostringstream out;
    out.copyfmt(line.getOutputFormat());
    out << value;
    return out.str();
}

/// Room for text inside the line at its hinted width.
int hintedRoom(LineEdit &line)
{
    line.resize(line.sizeHint());
    QStyleOptionFrame option;
    option.initFrom(&line);
    option.rect = line.rect();
    option.lineWidth = line.style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, &line);
    return line.style()->subElementRect(QStyle::SE_LineEditContents, &option, &line).width();
}

QRgb colorAt(QWidget &widget, QPoint const &pos)
{
    return widget.grab().toImage().pixel(pos);
}

int countPixels(QImage const &image, QRgb color)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += image.pixel(x, y) == color ? 1 : 0;
    return count;
}

} // namespace

void tst_LineEdit::beginsEmptyWithTheFormatOfStreams()
{
    const LineEdit line;
    QCOMPARE(line.text(), QString());
    QCOMPARE(line.getOutputFormat().precision(), std::streamsize(6));
    QCOMPARE(line.getOutputFormat().flags(), std::ostringstream().flags());
    QCOMPARE(line.getInputFormat().flags(), std::istringstream().flags());
    QVERIFY(line.getOutputFormat().getloc() == std::locale());
}

void tst_LineEdit::confirmsByReturnAndEnter_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    const Qt::KeyboardModifiers none = Qt::NoModifier;
    QTest::newRow("Return") << Qt::Key_Return << none;
    QTest::newRow("Enter of the keypad")
        << Qt::Key_Enter << Qt::KeyboardModifiers(Qt::KeypadModifier);
    QTest::newRow("Return with Shift")
        << Qt::Key_Return << Qt::KeyboardModifiers(Qt::ShiftModifier);
}

void tst_LineEdit::confirmsByReturnAndEnter()
{
    QFETCH(Qt::Key, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    Form form;
    QTest::keyClicks(form.line, "12.5");
    QCOMPARE(form.line->confirmed, QStringList());
    QTest::keyClick(form.line, key, modifiers);
    QCOMPARE(form.line->confirmed, QStringList("12.5"));
}

void tst_LineEdit::confirmsAfterQtToldOfIt()
{
    Form form;
    QStringList order;
    connect(form.line, &QLineEdit::returnPressed, this, [&] { order += "return"; });
    connect(form.line, &QLineEdit::editingFinished, this, [&] { order += "finished"; });
    form.line->then = [&] { order += "confirmed"; };
    QTest::keyClick(form.line, Qt::Key_Return);
    QCOMPARE(order, QStringList({"return", "finished", "confirmed"}));
}

void tst_LineEdit::confirmsEachTime()
{
    Form form;
    form.line->setText("1");
    QTest::keyClick(form.line, Qt::Key_Return);
    QTest::keyClick(form.line, Qt::Key_Return);
    QCOMPARE(form.line->confirmed, QStringList({"1", "1"}));
}

void tst_LineEdit::otherKeysAndWaysDontConfirm()
{
    Form form;
    form.line->setText("1");
    QTest::keyClick(form.line, Qt::Key_2);
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Down, Qt::Key_Space, Qt::Key_Backspace})
        QTest::keyClick(form.line, key);
    form.line->setText("3");
    form.line->clear();
    // Somebody else's signal isn't the user's key, not even when a key follows.
    Q_EMIT form.line->returnPressed();
    QTest::keyClick(form.line, Qt::Key_4);
    QCOMPARE(form.line->confirmed, QStringList());
}

void tst_LineEdit::leavingKeepsTheTypedTextUnconfirmed()
{
    Form form;
    QVERIFY(form.isActive);
    QTest::keyClicks(form.line, "7");
    QTest::keyClick(form.line, Qt::Key_Tab);
    QVERIFY(form.other->hasFocus());
    QCOMPARE(form.line->confirmed, QStringList());
    QCOMPARE(form.line->text(), QString("7"));
}

void tst_LineEdit::readOnlyLineConfirms()
{
    Form form;
    form.line->setText("1");
    form.line->setReadOnly(true);
    QTest::keyClicks(form.line, "2");
    QTest::keyClick(form.line, Qt::Key_Return);
    QCOMPARE(form.line->confirmed, QStringList("1"));
}

void tst_LineEdit::confirmsOnlyWhatTheValidatorAccepts()
{
    Form form;
    QIntValidator validator(10, 20);
    form.line->setValidator(&validator);
    QTest::keyClick(form.line, Qt::Key_1);
    QTest::keyClick(form.line, Qt::Key_Return);
    QCOMPARE(form.line->confirmed, QStringList());
    QTest::keyClick(form.line, Qt::Key_2);
    QTest::keyClick(form.line, Qt::Key_Return);
    QCOMPARE(form.line->confirmed, QStringList("12"));
}

void tst_LineEdit::keyGoesOnToTheDefaultButton()
{
    QDialog dialog;
    auto *const layout = new QVBoxLayout(&dialog);
    auto *const line = new Line;
    auto *const button = new QPushButton("OK");
    button->setDefault(true);
    layout->addWidget(line);
    layout->addWidget(button);
    dialog.show();
    QSignalSpy clicks(button, &QPushButton::clicked);
    QTest::keyClick(line, Qt::Key_Return);
    QCOMPARE(line->confirmed.size(), 1);
    QCOMPARE(clicks.size(), 1);
}

void tst_LineEdit::confirmingMayDestroyTheLine()
{
    Form form;
    form.line->then = [&] { delete form.line; };
    QTest::keyClick(form.line, Qt::Key_Return);
    QVERIFY(!form.line);
}

void tst_LineEdit::disabledLineDoesntConfirm()
{
    Form form;
    form.line->setEnabled(false);
    QTest::keyClick(form.line, Qt::Key_Return);
    QCOMPARE(form.line->confirmed, QStringList());
}

void tst_LineEdit::showsTheTextUnmodified()
{
    Form form;
    QTest::keyClicks(form.line, "5");
    QVERIFY(form.line->isModified());
    form.line->setText("größer");
    QCOMPARE(form.line->text(), QString("größer"));
    QVERIFY(!form.line->isModified());
}

void tst_LineEdit::tellsOfChangedTextOnce()
{
    LineEdit line;
    QSignalSpy changes(&line, &QLineEdit::textChanged);
    QSignalSpy edits(&line, &QLineEdit::textEdited);
    line.setText("1");
    line.setText("1");
    line.clear();
    line.clear();
    QCOMPARE(changes.size(), 2);
    QCOMPARE(edits.size(), 0);
}

void tst_LineEdit::sameTextKeepsCursorSelectionAndUndo()
{
    Form form;
    QTest::keyClicks(form.line, "1234");
    form.line->setSelection(1, 2);
    form.line->setText("1234");
    QCOMPARE(form.line->selectedText(), QString("23"));
    QCOMPARE(form.line->cursorPosition(), 3);
    QVERIFY(form.line->isUndoAvailable());
}

void tst_LineEdit::sameTextCountsAsUnmodified()
{
    Form form;
    QTest::keyClicks(form.line, "1");
    form.line->setText("1");
    QVERIFY(!form.line->isModified());
}

void tst_LineEdit::otherTextForgetsUndo()
{
    Form form;
    QTest::keyClicks(form.line, "1");
    form.line->setText("2");
    QVERIFY(!form.line->isUndoAvailable());
    QTest::keyClicks(form.line, "3");
    form.line->clear();
    QVERIFY(!form.line->isUndoAvailable());
}

void tst_LineEdit::otherTextIsSelectedWhereAllWas()
{
    Form form;
    form.line->setText("1");
    form.line->selectAll();
    form.line->setText("234");
    QCOMPARE(form.line->selectedText(), QString("234"));
    QTest::keyClick(form.line, Qt::Key_5);
    QCOMPARE(form.line->text(), QString("5"));
}

void tst_LineEdit::otherTextIsntSelectedWhereAPartWas()
{
    Form form;
    form.line->setText("12");
    form.line->setSelection(0, 1);
    form.line->setText("34");
    QCOMPARE(form.line->selectedText(), QString());
}

void tst_LineEdit::unfocusedLineShowsTheBeginning_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("atLeft");
    QTest::newRow("from left to right") << QString("0123456789").repeated(20) << true;
    QTest::newRow("from right to left") << QString("שלום עולם ").repeated(20) << false;
}

void tst_LineEdit::unfocusedLineShowsTheBeginning()
{
    QFETCH(QString, text);
    QFETCH(bool, atLeft);
    Form form;
    form.other->setFocus();
    form.line->setText(text);
    QCOMPARE(form.line->cursorPosition(), 0);
    form.line->grab(); // Scrolls.
    // Where the cursor would stand: at the edge where such a text begins.
    const QRect cursor = form.line->inputMethodQuery(Qt::ImCursorRectangle).toRect();
    QVERIFY(form.line->rect().contains(cursor.center()));
    QCOMPARE(cursor.center().x() < form.line->width() / 2, atLeft);
}

void tst_LineEdit::clearShowsNothing()
{
    Form form;
    form.line->setText("1");
    form.line->clear();
    QCOMPARE(form.line->text(), QString());
    QVERIFY(!form.line->isModified());
}

void tst_LineEdit::slotsByNameActAlike()
{
    Form form;
    QTest::keyClicks(form.line, "1234");
    form.line->setSelection(1, 2);
    QVERIFY(QMetaObject::invokeMethod(form.line, "setText", Q_ARG(QString, "1234")));
    QCOMPARE(form.line->selectedText(), QString("23"));
    QVERIFY(QMetaObject::invokeMethod(form.line, "clear"));
    QVERIFY(!form.line->isUndoAvailable());
}

void tst_LineEdit::tabbingInSelectsAll()
{
    Form form;
    form.line->setText("12");
    form.other->setFocus();
    QTest::keyClick(form.other, Qt::Key_Backtab, Qt::ShiftModifier);
    QVERIFY(form.line->hasFocus());
    QCOMPARE(form.line->selectedText(), QString("12"));
}

void tst_LineEdit::hintIsQtsForShortNumbers()
{
    LineEdit line;
    const QLineEdit plain;
    line.getOutputFormat().precision(3);
    QCOMPARE(line.sizeHint(), plain.sizeHint());
}

void tst_LineEdit::hintHasRoomForEveryNumber_data()
{
    QTest::addColumn<int>("precision");
    QTest::addColumn<bool>("scientific");
    QTest::addColumn<int>("pixelSize");
    QTest::newRow("6 digits") << 6 << false << 12;
    QTest::newRow("17 digits") << 17 << false << 12;
    QTest::newRow("17 digits behind the point") << 17 << true << 12;
    QTest::newRow("large font") << 17 << true << 40;
}

void tst_LineEdit::hintHasRoomForEveryNumber()
{
    QFETCH(int, precision);
    QFETCH(bool, scientific);
    QFETCH(int, pixelSize);
    Form form;
    QFont font("DejaVu Sans");
    font.setPixelSize(pixelSize);
    form.line->setFont(font);
    form.line->getOutputFormat() << std::setprecision(precision);
    if (scientific)
        form.line->getOutputFormat() << std::scientific;
    const QString text = QString::fromStdString(written(*form.line, -2.2250738585072014e-308));
    // Qt leaves two pixels free on both sides, and the cursor takes one.
    QVERIFY(hintedRoom(*form.line) >= form.line->fontMetrics().horizontalAdvance(text) + 5);
}

void tst_LineEdit::hintTakesAnyPrecision_data()
{
    QTest::addColumn<qlonglong>("precision");
    QTest::addColumn<qlonglong>("asWith");
    QTest::newRow("none") << 0LL << 0LL;
    QTest::newRow("less than none") << -5LL << 0LL;
    QTest::newRow("absurd") << 4000000000LL << 40LL;
}

void tst_LineEdit::hintTakesAnyPrecision()
{
    QFETCH(qlonglong, precision);
    QFETCH(qlonglong, asWith);
    LineEdit line, like;
    line.getOutputFormat().precision(std::streamsize(precision));
    like.getOutputFormat().precision(std::streamsize(asWith));
    QCOMPARE(line.sizeHint(), like.sizeHint());
}

void tst_LineEdit::layoutHearsOfPrecisionWithTheNextText()
{
    QWidget window;
    auto *const layout = new QHBoxLayout(&window);
    auto *const line = new LineEdit;
    line->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    layout->addWidget(line);
    window.resize(800, 100);
    window.show();
    const int before = line->width();
    line->getOutputFormat().precision(30);
    line->setText("1");
    QTRY_VERIFY(line->width() > before);
    QCOMPARE(line->width(), line->sizeHint().width());
}

void tst_LineEdit::formatsOfBothStreamsAreCopied()
{
    LineEdit line;
    line.getOutputFormat() << std::fixed << std::setprecision(2) << std::showpos;
    line.getInputFormat() >> std::hex;
    QCOMPARE(written(line, 1.5), std::string("+1.50"));
    std::istringstream in("ff");
    in.copyfmt(line.getInputFormat());
    int value = 0;
    in >> value;
    QCOMPARE(value, 255);
}

void tst_LineEdit::showsPaletteAndState_data()
{
    QTest::addColumn<bool>("enabled");
    QTest::newRow("enabled") << true;
    QTest::newRow("disabled") << false;
}

void tst_LineEdit::showsPaletteAndState()
{
    QFETCH(bool, enabled);
    Form form;
    QPalette dark;
    const QColor base(20, 24, 28), disabledBase(50, 50, 50), text(240, 240, 240),
        dim(130, 130, 130);
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        dark.setColor(group, QPalette::Base, base);
        dark.setColor(group, QPalette::Text, text);
    }
    dark.setColor(QPalette::Disabled, QPalette::Base, disabledBase);
    dark.setColor(QPalette::Disabled, QPalette::Text, dim);
    form.line->setPalette(dark);
    form.line->setEnabled(enabled);
    form.other->setFocus();
    form.line->setText("||||");

    const QPoint nearRightEdge(form.line->width() - 8, form.line->height() / 2);
    QCOMPARE(colorAt(*form.line, nearRightEdge), (enabled ? base : disabledBase).rgb());
    // Strokes are smoothed; few pixels have the full colour, but none has that of the other state.
    QFont font("DejaVu Sans");
    font.setPixelSize(40);
    form.line->setFont(font);
    form.line->resize(200, 60);
    const QImage image = form.line->grab().toImage();
    QVERIFY(countPixels(image, (enabled ? text : dim).rgb()) > 20);
    QCOMPARE(countPixels(image, (enabled ? dim : text).rgb()), 0);
}

void tst_LineEdit::confirmationThatRaisesIsReported()
{
    const ZR::VOM::GUI::Reports reports;
    Form form;
    form.line->setText("a");
    form.line->then = [&] {
        delete form.line.data();
        throw ZR::Error("no");
    };
    QTest::keyClick(form.line.data(), Qt::Key_Return);
    QVERIFY(!form.line);
    QCOMPARE(reports.texts, std::vector<std::string>{"ZR::GUI::LineEdit::onConfirm: no"});
}

QTEST_MAIN(tst_LineEdit)

#include "tst_LineEdit.moc"
