#pragma once

#include "zrVOMGUI/foundation/gui/export.h"

#include <QLineEdit>

#include <ios>
#include <sstream>

namespace ZR::GUI {

/// A line of text that shows a value and lets the user confirm another.
///
/// Derive from it and override onConfirm(). The user confirms by Return or Enter, where validator
/// and input mask, if there are any, let the text pass. Leaving the line isn't a confirmation: a
/// text that was typed stays there until the next setText().
///
/// How values are written and read is told by two streams, of which only the format counts: copy it
/// by copyfmt() to the streams that do the work. Both begin as streams do, with a precision of 6
/// and the global C++ locale.
class ZRGUI_EXPORT LineEdit : public QLineEdit {
    Q_OBJECT

public:
    explicit LineEdit(QWidget *parent = nullptr);
    ~LineEdit() override;

    /// Qt's size, wider where any number of the output format's precision needs that in scientific
    /// notation. A precision that has changed reaches layouts with the next setText().
    QSize sizeHint() const override;

    /// The format in which values are shown; the text in the stream means nothing.
    std::ostringstream &getOutputFormat() { return outputFormat; }
    std::ostringstream const &getOutputFormat() const { return outputFormat; }

    /// The format in which confirmed texts are read; the text in the stream means nothing.
    std::istringstream &getInputFormat() { return inputFormat; }
    std::istringstream const &getInputFormat() const { return inputFormat; }

public Q_SLOTS:
    /// Shows the text. The one that is shown already leaves cursor, selection and the texts that
    /// the user can take back to as they are. Another one forgets those; it is selected where all
    /// of the text was, and a line without focus shows its beginning. The text counts as
    /// unmodified.
    void setText(QString const &newText);

    /// The same with no text.
    void clear();

protected:
    /// The user confirmed the text; text() has it. Does nothing here. May destroy the line. What it
    /// raises goes to the error sink.
    virtual void onConfirm();

    void keyPressEvent(QKeyEvent *event) override;

private:
    std::ostringstream outputFormat;
    std::istringstream inputFormat;
    std::streamsize hintedPrecision; // What layouts have last been told of.
    bool confirmed = false;          // During a key press: it was a confirmation.
};

} // namespace ZR::GUI
