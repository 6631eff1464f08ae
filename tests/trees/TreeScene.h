#pragma once

#include "support/QtStrings.h"
#include "support/Things.h"
#include "zrVOMGUI/trees/ObjectTreeView.h"

#include <QApplication>
#include <QScrollBar>
#include <QTest>

#include <functional>
#include <memory>
#include <string>

namespace tree_test {

using namespace ZR::VOM;
using GUI::ObjectTreeView;
using ZR::PtrT;
using ZR::RefT;
using Row = ObjectTreeView::Row;
using RowHandle = ObjectTreeView::RowHandle;

/// A view whose rows the tests can make by path.
template <class View>
class TreeT : public View {
public:
    using View::makeMimeData;
    using View::makeRow;
    using View::onCanDrop;
    using View::onDrop;
    using View::onEditRow;
    using View::onEditRowConfirm;
    using View::onRequestContextMenu;
    using View::View;
    std::function<void()> onDelete; ///< Called when a row dies.

protected:
    void onDeleteRow(typename View::Row &row) override
    {
        View::onDeleteRow(row);
        // It may destroy the view.
        if (const std::function<void()> call = onDelete)
            call();
    }
};
using Tree = TreeT<ObjectTreeView>;

/// a owns b by "part", watches c by "next", lists b, c by "all" (watching) and owns d, e by "own".
/// The view, of either generation, shows a by its name, without its class.
template <class View>
struct SceneT {
    using RowHandle = typename View::RowHandle;

    explicit SceneT(RefT<Exporter> const &exporter = {}, RefT<Xml::Importer> const &importer = {})
        : things(makeThings("abcde"))
        , view(std::make_unique<TreeT<View>>(exporter, importer))
    {
        addField<FieldRef>(*a(), "part", b());
        addField<FieldPtr>(*a(), "next", PtrT<Object>(c()));
        addField<MFieldPtr>(*a(), "all", MFieldPtr::Values{b(), c()});
        addField<MFieldRef>(*a(), "own", Things{d(), e()});
        view->setTypeName(false);
        view->setNameField("name");
        view->resize(300, 400);
        view->show();
    }
    RefT<Object> const &a() const { return things[0]; }
    RefT<Object> const &b() const { return things[1]; }
    RefT<Object> const &c() const { return things[2]; }
    RefT<Object> const &d() const { return things[3]; }
    RefT<Object> const &e() const { return things[4]; }
    void show() { view->addRow(a(), 0); }
    Field &field(char const *name) { return *a()->findField(name); }
    MFieldRef &own() { return fieldOf<MFieldRef>(a(), "own"); }
    MFieldPtr &all() { return fieldOf<MFieldPtr>(a(), "all"); }

    /// a's path, and on from there.
    Path path() const { return Path(PtrT<Object>(a())); }
    Path path(char const *name)
    {
        Path to = path();
        to.pushField(field(name));
        return to;
    }
    Path path(char const *name, std::size_t index)
    {
        Path to = path();
        if (auto *const list = dynamic_cast<MField *>(&field(name)))
            to.pushValue(*list, index);
        else
            to.pushValue(field(name));
        return to;
    }
    RowHandle row(Path const &to) { return view->makeRow(to, false); }
    void open(Path const &to) { row(to)->setOpen(true); }

    /// The lines that are in sight, each with a dot for every level: "a .part ..b".
    std::string dump()
    {
        view->viewport()->grab();
        std::string text;
        const int height = view->getRowHeight();
        for (int y = height / 2;; y += height) {
            const RowHandle found = view->findRow({5, y});
            if (!found)
                return text;
            std::string dots;
            for (RowHandle up = found->getParent(); up && up->getParent(); up = up->getParent())
                dots += '.';
            text += (text.empty() ? "" : " ") + dots + found->getText().toStdString();
        }
    }

    Things things;
    std::unique_ptr<TreeT<View>> view;
};
using Scene = SceneT<ObjectTreeView>;

} // namespace tree_test
