#pragma once

// Not for hosts.

#include <QLineEdit>

namespace ZR::GUI {

class TreeEngine;

/// The line in which a row's text is edited. Tells the engine once when it is done: with Enter,
/// with Escape, or when the focus goes elsewhere, which confirms as well.
class TreeEditor : public QLineEdit {
public:
    TreeEditor(TreeEngine &treeEngine, QWidget *viewport);
    ~TreeEditor() override;
    /// It tells nothing any more.
    void dismiss() { isDone = true; }

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void done(bool confirmed);

    TreeEngine &engine; // Counted.
    bool isDone = false;
};

} // namespace ZR::GUI
