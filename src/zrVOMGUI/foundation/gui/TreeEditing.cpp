// Editing a row's text in its place.

#include "zrVOMGUI/foundation/gui/private/TreeEditor.h"
#include "zrVOMGUI/foundation/gui/private/TreeEngine.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QStyle>
#include <QStyleOptionViewItem>

#include <algorithm>

namespace ZR::GUI {

namespace {

constexpr int minEditorWidth = 80;

/// The widget that gets the focus in place of another one: Qt goes on with the one that it is told
/// of, which may be destroyed when it isn't the one that gets it.
QWidget &focusOf(QWidget &widget)
{
    QWidget *proxy = &widget;
    while (proxy->focusProxy())
        proxy = proxy->focusProxy();
    return *proxy;
}

} // namespace

TreeEditor::TreeEditor(TreeEngine &treeEngine, QWidget *viewport)
    : QLineEdit(viewport)
    , engine(treeEngine)
{
    engine.ref();
    setFrame(false);
    setAutoFillBackground(true);
}

TreeEditor::~TreeEditor()
{
    engine.unref();
}

/// Keys that are shortcuts elsewhere, too, belong to the text while it is edited.
bool TreeEditor::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter) {
            event->accept();
            return true;
        }
    }
    return QLineEdit::event(event);
}

void TreeEditor::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        done(false);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        done(true);
        break;
    default:
        QLineEdit::keyPressEvent(event);
        // What the line has no use for isn't for the tree either.
        event->accept();
        break;
    }
}

void TreeEditor::focusOutEvent(QFocusEvent *event)
{
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason)
        done(true);
}

void TreeEditor::done(bool confirmed)
{
    if (isDone)
        return;
    isDone = true;
    const TreeEngine::Ref ref(engine);
    ref->editorDone(confirmed);
}

void TreeEngine::edit(TreeRow &row, std::string const &text)
{
    const TreeRowWatch watch(*this, &row);
    if (editor)
        editorDone(true);
    if (!watch || !view || !isInTree(row))
        return;
    for (TreeRow *above = row.rowParent; above && above != root; above = above->rowParent)
        above->setOpen(true);
    if (!settle() || !watch || lineOf(row) == TreeRow::npos)
        return;
    setCurrent(&row);
    scrollTo(row);
    if (!settle() || !watch)
        return;
    edited = &row;
    editor = new TreeEditor(*this, view->viewport());
    editor->setFont(view->font());
    editor->setText(QString::fromUtf8(text.data(), int(text.size())));
    placeEditor();
    editor->selectAll();
    editor->show();
    editor->setFocus();
}

/// Over the row's text. The editor of a row that has gone goes, too.
void TreeEngine::placeEditor()
{
    if (!editor || !view)
        return;
    const std::size_t line = edited ? lineOf(*edited) : TreeRow::npos;
    if (line == TreeRow::npos) {
        closeEditor();
        return;
    }
    QStyleOptionViewItem option = makeOption();
    initItem(option, *edited);
    option.rect = itemRect(*edited, line);
    QRect rect = view->style()->subElementRect(QStyle::SE_ItemViewItemText, &option, view);
    const QRect viewport = view->viewport()->rect();
    rect = rect.intersected(viewport);
    if (rect.width() < minEditorWidth)
        rect.setWidth(std::min(minEditorWidth, viewport.width()));
    rect.setTop(option.rect.top());
    rect.setHeight(rowHeight);
    editor->setGeometry(rect);
}

/// The editor may be the sender of what runs: it dies later.
void TreeEngine::closeEditor()
{
    const QPointer<TreeEditor> closing = editor;
    editor = nullptr;
    edited = nullptr;
    if (!closing)
        return;
    closing->dismiss();
    // Who hears of the focus may destroy the view, and the editor with it.
    if (view && closing->hasFocus())
        focusOf(*view).setFocus();
    if (closing)
        closing->hide();
    if (closing)
        closing->deleteLater();
}

void TreeEngine::editorDone(bool confirmed)
{
    if (!editor || !view)
        return;
    const std::string text = editor->text().toStdString();
    const TreeRowWatch row(*this, edited);
    closeEditor();
    if (confirmed && row && view)
        hooks->onEditRowConfirm(*row, text);
}

} // namespace ZR::GUI
