#pragma once

#include "support/QtStrings.h"
#include "zrVOMGUI/foundation/gui/TreeView.h"
#include "zrVOMGUI/foundation/gui/v2/TreeView.h"

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QPointer>
#include <QScrollBar>
#include <QStyle>
#include <QTest>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace TreeTest {

using ZR::GUI::TreeArea;
using ZR::GUI::TreeRow;

constexpr char mimeType[] = "test/rows";

/// What a row shows; a small model of a tree. Texts are unique.
struct Item;
using ItemPtr = std::shared_ptr<Item>;
struct Item {
    std::string text;
    std::vector<ItemPtr> children;
    bool hidden = false;
    bool open = false;
    /// Only told, never made.
    bool countOnly = false;
};

inline ItemPtr item(std::string const &text, std::vector<ItemPtr> const &children = {})
{
    auto made = std::make_shared<Item>();
    made->text = text;
    made->children = children;
    return made;
}

inline ItemPtr opened(ItemPtr made)
{
    made->open = true;
    return made;
}

inline ItemPtr hiddenItem(ItemPtr made)
{
    made->hidden = true;
    return made;
}

inline std::vector<ItemPtr> items(std::string const &prefix, int count)
{
    std::vector<ItemPtr> made;
    for (int i = 0; i < count; ++i)
        made.push_back(item(prefix + std::to_string(i)));
    return made;
}

/// What rows of both generations tell a test.
class RowAccess {
public:
    virtual ~RowAccess() = default;
    virtual TreeRow &row() = 0;
    virtual Item &item() = 0;
    virtual void changeText(std::string const &text) = 0;
    virtual void invalidateText() = 0;
    virtual void invalidateIcon() = 0;
    virtual void rebuild() = 0;
    virtual void dropChildren() = 0;
    virtual void showIcon(QIcon const &icon) = 0;
};

/// A view of one generation over a model of Items, and all that happened to it in words.
class Scene {
public:
    virtual ~Scene() = default;
    virtual TreeArea *view() = 0;
    virtual void destroyView() = 0;
    virtual std::vector<TreeRow *> getSel() = 0;
    virtual void setSel(std::vector<TreeRow *> const &rows) = 0;
    virtual TreeRow *getCurrent() = 0;
    virtual TreeRow *findRow(QPoint const &pos) = 0;
    virtual void editRow(TreeRow *row, std::string const &text) = 0;
    virtual void setRowText(TreeRow &row, std::string const &text) = 0;
    virtual QPoint menuPos() = 0;

    RowAccess *find(std::string const &text)
    {
        const auto found = rows.find(text);
        return found == rows.end() ? nullptr : found->second;
    }
    TreeRow &row(std::string const &text)
    {
        RowAccess *const found = find(text);
        if (!found)
            qFatal("There is no row %s.", text.c_str());
        return found->row();
    }
    std::string nameOf(TreeRow *row)
    {
        for (auto const &[text, access] : rows)
            if (&access->row() == row)
                return text;
        return row ? "?" : "-";
    }
    /// The names in the order in which they are answered.
    std::string sel()
    {
        std::string names;
        for (TreeRow *const row : getSel())
            names += (names.empty() ? "" : " ") + nameOf(row);
        return names;
    }
    std::string current() { return nameOf(getCurrent()); }
    void select(std::vector<std::string> const &names)
    {
        std::vector<TreeRow *> chosen;
        for (std::string const &name : names)
            chosen.push_back(&row(name));
        setSel(chosen);
    }
    /// All lines from the top, as the user sees them, an indented name each.
    std::string lines()
    {
        std::string text;
        for (int line = 0;; ++line) {
            TreeRow *const row = findRow({0, line * view()->getRowHeight()});
            if (!row)
                return text;
            text += (text.empty() ? "" : " ") + nameOf(row);
        }
    }
    std::string takeLog()
    {
        std::string taken;
        for (std::string const &entry : log)
            taken += (taken.empty() ? "" : "; ") + entry;
        log.clear();
        return taken;
    }
    void tell(std::string const &what)
    {
        log.push_back(what);
        if (react)
            react(what);
    }

    // Events. Positions are the middle of a row's line in the viewport.
    QWidget *viewport() { return view()->viewport(); }
    int lineOf(std::string const &name)
    {
        for (int line = 0;; ++line) {
            TreeRow *const found = findRow({0, line * view()->getRowHeight()});
            if (!found)
                qFatal("Row %s isn't shown.", name.c_str());
            if (nameOf(found) == name)
                return line;
        }
    }
    QPoint at(std::string const &name, int quarter = 2)
    {
        const int height = view()->getRowHeight();
        const int top = lineOf(name) * height - view()->verticalScrollBar()->value();
        return {viewport()->width() / 2, top + quarter * height / 4 - (quarter == 4 ? 1 : 0)};
    }
    void click(std::string const &name, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(viewport(), Qt::LeftButton, modifiers, at(name));
        clearDoubleClick();
    }
    void key(int key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(view(), Qt::Key(key), modifiers);
    }
    /// The point of a row's expander, in left-to-right reading.
    QPoint expander(std::string const &name, int level)
    {
        const int indent = view()->style()->pixelMetric(QStyle::PM_TreeViewIndentation);
        return {level * indent + indent / 2, at(name).y()};
    }
    /// So that the next click isn't taken for the second one of a double click.
    static void clearDoubleClick() { QTest::qWait(0); }

    ItemPtr model = item("root");
    RowAccess *root = nullptr;
    std::map<std::string, RowAccess *> rows;
    std::vector<std::string> log;
    bool logUpdates = false;
    std::size_t numRows = 0, numUpdates = 0;
    /// Called with each entry of the log; may destroy the view.
    std::function<void(std::string const &)> react;
    std::function<bool(TreeRow *, std::size_t)> canDrop;
    bool editsRows = true;
    bool offersDrag = true;
    bool carriesOut = true; ///< Drops.
};

struct SharedRows {
    using View = ZR::GUI::TreeView;
    using Row = ZR::GUI::TreeViewRow;
    using Handle = std::shared_ptr<Row>;
    using Param = std::shared_ptr<Row> const &;
    using Children = std::vector<std::shared_ptr<Row>>;
    static Row *plain(Handle const &handle) { return handle.get(); }
    static Handle handle(TreeRow *row)
    {
        return row ? static_cast<Row *>(row)->shared_from_this() : nullptr;
    }
    template <class T, class... Args>
    static Handle make(Args &&...args)
    {
        return std::make_shared<T>(args...);
    }
    static Handle own(Row &row) { return row.shared_from_this(); }
};

struct UniqueRows {
    using View = ZR::GUI::V2::TreeView;
    using Row = View::Row;
    using Handle = Row *;
    using Param = Row *;
    using Children = std::vector<std::unique_ptr<Row>>;
    static Row *plain(Handle handle) { return handle; }
    static Handle handle(TreeRow *row) { return static_cast<Row *>(row); }
    template <class T, class... Args>
    static std::unique_ptr<Row> make(Args &&...args)
    {
        return std::make_unique<T>(args...);
    }
    static Row *own(Row &row) { return &row; }
};

/// Shows an Item; makes its children when it is open or hidden, and keeps rows whose item stays.
template <class Gen>
class TestRow final : public Gen::Row, public RowAccess {
public:
    TestRow(typename Gen::View &view, typename Gen::Param parent, Scene &testScene,
            ItemPtr const &shown, bool isRoot = false)
        : Gen::Row(view, parent)
        , scene(testScene)
        , shownItem(shown)
    {
        if (isRoot) {
            scene.root = this;
            return;
        }
        scene.rows[shown->text] = this;
        ++scene.numRows;
        this->setHidden(shown->hidden);
        this->setOpen(shown->open);
        counted = true;
    }
    ~TestRow() override
    {
        if (!counted)
            return;
        --scene.numRows;
        const auto found = scene.rows.find(shownItem->text);
        if (found != scene.rows.end() && found->second == this)
            scene.rows.erase(found);
    }

    TreeRow &row() override { return *this; }
    Item &item() override { return *shownItem; }
    void changeText(std::string const &text) override { this->setText(text); }
    void invalidateText() override { this->invalidateTextLayout(); }
    void invalidateIcon() override { this->invalidateIconLayout(); }
    void rebuild() override { this->invalidateLayout(); }
    void dropChildren() override { this->setChildRows({}); }
    void showIcon(QIcon const &icon) override { this->setIcon(icon); }

protected:
    void onUpdate(bool wanted) override
    {
        ++scene.numUpdates;
        if (scene.logUpdates)
            scene.tell("update " + shownItem->text + (wanted ? " wanted" : ""));
        const bool makesChildren =
            (wanted && (this->isOpen() || this->isHidden()) && !shownItem->countOnly) || !counted;
        // The view may be gone by what the scene did with the news.
        if (!scene.view())
            return;
        this->setText(shownItem->text);
        if (!makesChildren)
            this->setNumChildRows(shownItem->children.size());
        else if (!showsChildren())
            makeChildren();
    }

private:
    bool showsChildren() const
    {
        auto const &wanted = shownItem->children;
        bool same = this->getNumMadeChildRows() == wanted.size();
        for (std::size_t i = 0; same && i < wanted.size(); ++i)
            same = static_cast<TestRow &>(*this->getChildRow(i)).shownItem == wanted[i];
        return same;
    }
    void makeChildren()
    {
        typename Gen::Children old = this->releaseChildRows(), rebuilt;
        for (ItemPtr const &child : shownItem->children) {
            typename Gen::Children::value_type reused;
            for (auto &candidate : old) {
                if (candidate && static_cast<TestRow &>(*candidate).shownItem == child) {
                    reused = std::move(candidate);
                    break;
                }
            }
            if (!reused)
                reused =
                    Gen::template make<TestRow>(static_cast<typename Gen::View &>(*scene.view()),
                                                Gen::own(*this), scene, child);
            rebuilt.push_back(std::move(reused));
        }
        this->setChildRows(std::move(rebuilt));
    }

    Scene &scene;
    const ItemPtr shownItem;
    bool counted = false;
};

/// Tells the scene of every virtual operation.
template <class Gen>
class TestView final : public Gen::View {
public:
    using Base = typename Gen::View;

    explicit TestView(Scene &testScene)
        : TestView(testScene, std::is_same<Gen, SharedRows>())
    {
        this->addMimeType(mimeType);
        this->setDropActions(Qt::CopyAction | Qt::MoveAction, Qt::CopyAction);
    }

    QMimeData *makeMimeData(std::vector<typename Gen::Handle> const &rows) override
    {
        std::string names;
        for (auto const &row : rows)
            names += ' ' + scene.nameOf(Gen::plain(row));
        auto mimeData = std::make_unique<QMimeData>();
        mimeData->setData(mimeType, QByteArray::fromStdString(names));
        const bool offers = scene.offersDrag;
        scene.tell("makeMimeData" + names);
        return offers ? mimeData.release() : nullptr;
    }
    void onDeleteRow(typename Gen::Row &) override { scene.tell("deleteRow"); }
    void onConfirm() override { scene.tell("confirm"); }
    void onRequestContextMenu(typename Gen::Param row, QPoint const &pos) override
    {
        menuPos = pos;
        scene.tell("menu " + scene.nameOf(Gen::plain(row)));
    }
    void onEditRow(typename Gen::Row &row) override
    {
        const std::string name = scene.nameOf(&row);
        if (scene.editsRows)
            Base::editRow(Gen::handle(&row), name);
        scene.tell("edit " + name);
    }
    void onEditRowConfirm(typename Gen::Row &row, std::string const &text) override
    {
        scene.tell("edited " + scene.nameOf(&row) + " to " + text);
    }
    bool onCanDrop(QDropEvent &, typename Gen::Param row, std::size_t index) override
    {
        TreeRow *const plain = Gen::plain(row);
        const bool answer = !scene.canDrop || scene.canDrop(plain, index);
        scene.tell("canDrop " + place(plain, index));
        return answer;
    }
    void onDrop(QDropEvent &event, typename Gen::Param row, std::size_t index) override
    {
        if (!scene.carriesOut)
            event.ignore();
        scene.tell("drop " + place(Gen::plain(row), index) + " action " +
                   std::to_string(int(event.dropAction())));
    }

    QPoint menuPos;

private:
    using Root = TestRow<Gen>;

    TestView(Scene &testScene, std::true_type /*shared rows*/)
        : Base(nullptr)
        , scene(testScene)
    {
        this->setRoot(std::make_shared<Root>(*this, nullptr, scene, scene.model, true));
    }
    TestView(Scene &testScene, std::false_type /*shared rows*/)
        : Base(std::make_unique<Root>(*this, nullptr, testScene, testScene.model, true), nullptr)
        , scene(testScene)
    {
    }

    std::string place(TreeRow *row, std::size_t index)
    {
        const std::string name = scene.nameOf(row);
        return (name == "?" ? "root" : name) +
               (index == TreeRow::npos ? "" : '[' + std::to_string(index) + ']');
    }

    Scene &scene;
};

template <class Gen>
class SceneT final : public Scene {
public:
    explicit SceneT(ItemPtr const &shown)
    {
        model = shown;
        treeView = std::make_unique<TestView<Gen>>(*this);
        watch = treeView.get();
        treeView->resize(300, 400);
    }
    ~SceneT() override { react = nullptr; }

    TreeArea *view() override { return watch; }
    void destroyView() override { treeView.reset(); }
    std::vector<TreeRow *> getSel() override
    {
        std::vector<TreeRow *> sel;
        for (auto const &row : treeView->getSel())
            sel.push_back(Gen::plain(row));
        return sel;
    }
    void setSel(std::vector<TreeRow *> const &sel) override
    {
        std::vector<typename Gen::Handle> handles;
        for (TreeRow *const row : sel)
            handles.push_back(Gen::handle(row));
        treeView->setSel(handles);
    }
    TreeRow *getCurrent() override { return Gen::plain(treeView->getCurrentRow()); }
    TreeRow *findRow(QPoint const &pos) override { return Gen::plain(treeView->findRow(pos)); }
    void editRow(TreeRow *row, std::string const &text) override
    {
        treeView->editRow(Gen::handle(row), text);
    }
    void setRowText(TreeRow &row, std::string const &text) override
    {
        treeView->setRowText(static_cast<typename Gen::Row &>(row), text);
    }
    QPoint menuPos() override { return treeView->menuPos; }

private:
    std::unique_ptr<TestView<Gen>> treeView;
    QPointer<TestView<Gen>> watch;
};

/// For every test of a program: QFETCH_GLOBAL(bool, shared).
inline void addGenerations()
{
    QTest::addColumn<bool>("shared");
    QTest::newRow("shared rows") << true;
    QTest::newRow("unique rows") << false;
}

/// A view of the generation that is under test, shown and active unless told otherwise.
inline std::unique_ptr<Scene> makeScene(std::vector<ItemPtr> const &top, bool shown = true)
{
    QFETCH_GLOBAL(bool, shared);
    const ItemPtr root = item("root", top);
    std::unique_ptr<Scene> scene;
    if (shared)
        scene = std::make_unique<SceneT<SharedRows>>(root);
    else
        scene = std::make_unique<SceneT<UniqueRows>>(root);
    if (shown) {
        scene->view()->show();
        QApplication::setActiveWindow(scene->view());
        scene->view()->setFocus();
        QTest::qWait(0);
    }
    return scene;
}

} // namespace TreeTest
