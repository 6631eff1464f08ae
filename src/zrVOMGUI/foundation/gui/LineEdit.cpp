#include "zrVOMGUI/foundation/gui/LineEdit.h"

#include "zrVOMGUI/foundation/util/Error.h"

#include <QFontMetrics>
#include <QStyle>
#include <QStyleOptionFrame>

#include <algorithm>

namespace ZR::GUI {

namespace {

/// Digits that a layout grants at most, whatever the precision: a double has no more to tell.
constexpr std::streamsize maxHintedPrecision = 40;
/// Characters of a number beside its digits: a sign, a point, one digit before it, "e-308".
constexpr std::streamsize numOtherChars = 8;

} // namespace

LineEdit::LineEdit(QWidget *parent)
    : QLineEdit(parent)
    , hintedPrecision(outputFormat.precision())
{
    connect(this, &QLineEdit::returnPressed, this, [this] { confirmed = true; });
}

LineEdit::~LineEdit() = default;

QSize LineEdit::sizeHint() const
{
    ensurePolished();
    const QSize plain = QLineEdit::sizeHint();
    const auto precision =
        std::clamp<std::streamsize>(outputFormat.precision(), 0, maxHintedPrecision);
    const QFontMetrics metrics = fontMetrics();
    // An x more is room for the cursor and for what Qt leaves free on both sides.
    const int number =
        metrics.horizontalAdvance(QLatin1Char('0')) * int(precision + numOtherChars) +
        metrics.horizontalAdvance(QLatin1Char('x'));
    const QMargins margins = textMargins() + contentsMargins();
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QSize content(number + margins.left() + margins.right(), 0);
    const int width =
        style()->sizeFromContents(QStyle::CT_LineEdit, &option, content, this).width();
    return {std::max(plain.width(), width), plain.height()};
}

void LineEdit::setText(QString const &newText)
{
    if (newText == text()) {
        setModified(false);
    } else {
        const bool wasAllSelected = hasSelectedText() && selectedText() == text();
        QLineEdit::setText(newText);
        if (wasAllSelected)
            selectAll();
        else if (!hasFocus())
            setCursorPosition(0);
    }
    if (hintedPrecision != outputFormat.precision()) {
        hintedPrecision = outputFormat.precision();
        updateGeometry();
    }
}

void LineEdit::clear()
{
    setText(QString());
}

void LineEdit::onConfirm() {}

void LineEdit::keyPressEvent(QKeyEvent *event)
{
    // Qt is done with the key before onConfirm() runs, which may destroy the line.
    confirmed = false;
    QLineEdit::keyPressEvent(event);
    if (confirmed)
        tryCatch("ZR::GUI::LineEdit::onConfirm", [this] { onConfirm(); });
}

} // namespace ZR::GUI
