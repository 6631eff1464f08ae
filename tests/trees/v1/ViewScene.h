#pragma once

#include "support/QtStrings.h"
#include "support/Things.h"
#include "zrVOMGUI/trees/v1/ObjectTreeView.h"

#include <QApplication>
#include <QTest>

#include <memory>
#include <string>

namespace view_test {

using namespace ZR::VOM;
using ZR::PtrT;
using ZR::RefT;
using View1 = GUI::V1::ObjectTreeView;

/// A view whose handlers the tests can call.
class Tree1 : public View1 {
public:
    using View1::dragEnterEvent;
    using View1::dragMoveEvent;
    using View1::dropEvent;
    using View1::View1;

    QAbstractItemModel &items() const { return *model(); }
};

/// a owns b by "part", watches c by "next", lists b, c by "all" (watching) and owns d, e by "own".
/// The view labels objects by name alone.
struct ViewScene {
    explicit ViewScene(RefT<Exporter> const &exporter = {},
                       RefT<Xml::Importer> const &importer = {})
        : things(makeThings("abcde"))
        , view(std::make_unique<Tree1>(exporter, importer))
    {
        addField<FieldRef>(*a(), "part", b());
        addField<FieldPtr>(*a(), "next", PtrT<Object>(c()));
        addField<MFieldPtr>(*a(), "all", MFieldPtr::Values{b(), c()});
        addField<MFieldRef>(*a(), "own", Things{d(), e()});
        view->setTypeName(false);
        view->setFieldName("name");
        view->setHeaderHidden(true);
        view->resize(300, 400);
        view->show();
    }
    RefT<Object> &a() { return things[0]; }
    RefT<Object> &b() { return things[1]; }
    RefT<Object> &c() { return things[2]; }
    RefT<Object> &d() { return things[3]; }
    RefT<Object> &e() { return things[4]; }
    void show() { view->addRow(PtrT<Object>(a()), 0); }
    Field &field(char const *name) { return *a()->findField(name); }
    MFieldRef &own() { return fieldOf<MFieldRef>(a(), "own"); }
    MFieldPtr &all() { return fieldOf<MFieldPtr>(a(), "all"); }

    /// a's path, and on from there.
    Path path() { return Path(PtrT<Object>(a())); }
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
    QModelIndex row(Path const &to) { return view->makeIndex(to, true); }
    void open(Path const &to)
    {
        const QModelIndex index = row(to);
        view->items().fetchMore(index);
        view->expand(index);
    }
    void paint() { view->viewport()->grab(); }

    /// The lines that are in sight, each with a dot for every level: "a .part ..b".
    std::string dump()
    {
        paint();
        return dumpPainted();
    }
    /// The same, as of the last paint.
    std::string dumpPainted() const
    {
        std::string text;
        for (QModelIndex index = view->indexAt({5, 3}); index.isValid();
             index = view->indexBelow(index)) {
            std::string dots;
            for (QModelIndex up = index.parent(); up != view->rootIndex(); up = up.parent())
                dots += '.';
            text += (text.empty() ? "" : " ") + dots + index.data().toString().toStdString();
        }
        return text;
    }

    Things things;
    std::unique_ptr<Tree1> view;
};

} // namespace view_test
