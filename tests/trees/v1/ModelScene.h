#pragma once

#include "support/ErrorReports.h"
#include "support/QtStrings.h"
#include "support/Things.h"
#include "support/itemModelDump.h"
#include "zrVOMGUI/trees/v1/ObjectTreeModel.h"

#include <QTest>

#include <functional>
#include <memory>
#include <string>

namespace model_test {

using namespace ZR::VOM;
using GUI::V1::ObjectTreeModel;
using ZR::PtrT;
using ZR::RefT;

/// What a model tells, in words, such as "insert own 0-1" or "added 'd' 'e'". Rows go by their
/// text, the top is "top". A removal is noted when it is about to be, all else when it is done.
class Told {
public:
    explicit Told(ObjectTreeModel &toldModel)
        : model(toldModel)
    {
        const auto rows = [this](char const *what) {
            return [this, what](QModelIndex const &parent, int first, int last) {
                note(what + nameOf(parent) + ' ' + range(first, last));
            };
        };
        QObject::connect(&model, &QAbstractItemModel::rowsInserted, &context, rows("insert "));
        QObject::connect(&model, &QAbstractItemModel::rowsAboutToBeRemoved, &context,
                         rows("remove "));
        QObject::connect(
            &model, &QAbstractItemModel::rowsMoved, &context,
            [this](QModelIndex const &parent, int first, int last, QModelIndex const &, int to) {
                note("move " + nameOf(parent) + ' ' + range(first, last) + " to " +
                     std::to_string(to));
            });
        QObject::connect(&model, &QAbstractItemModel::dataChanged, &context,
                         [this](QModelIndex const &first, QModelIndex const &last) {
                             note("changed " + nameOf(first) + (first == last ? "" : " and more"));
                         });
        QObject::connect(&model, &QAbstractItemModel::layoutAboutToBeChanged, &context,
                         [this](auto const &parents, auto hint) {
                             note("layout" + std::string(parents.isEmpty() ? "" : " of some") +
                                  (hint == QAbstractItemModel::NoLayoutChangeHint ? "" : " hint"));
                         });
        QObject::connect(&model, &QAbstractItemModel::layoutChanged, &context,
                         [this] { note("laid out"); });
        QObject::connect(&model, &QAbstractItemModel::modelReset, &context,
                         [this] { note("reset"); });
        connections = {
            model.sigRowsAdded.connect([this](auto const &s) { note("added" + namesOf(*s.rows)); }),
            model.sigRowsRemoved.connect(
                [this](auto const &s) { note("removed" + namesOf(*s.rows)); }),
            model.sigClear.connect([this](auto const &) { note("clear"); }),
            model.sigUpdate.connect([this](auto const &) { note("update"); })};
    }
    ~Told()
    {
        for (auto &connection : connections)
            connection.disconnect();
    }
    Told(Told const &) = delete;
    Told &operator=(Told const &) = delete;

    /// All since the last call, joined by ", ".
    std::string take() { return std::exchange(text, {}); }

private:
    void note(std::string const &what) { text += (text.empty() ? "" : ", ") + what; }
    std::string nameOf(QModelIndex const &index) const
    {
        return index == model.index(0, 0) ? "top" : index.data().toString().toStdString();
    }
    static std::string range(int first, int last)
    {
        return std::to_string(first) + (first == last ? "" : '-' + std::to_string(last));
    }
    static std::string namesOf(std::vector<ObjectTreeModel::ObjRow> const &rows)
    {
        std::string names;
        for (auto const &row : rows) {
            auto const *const name =
                row.obj ? ZR::cast<FieldString>(row.obj->findField("name")) : nullptr;
            names += ' ' + (name ? name->get() : "-");
        }
        return names;
    }

    ObjectTreeModel &model;
    std::string text;
    std::vector<ZR::Signal::Connection> connections;
    QObject context; // Ends Qt's connections first.
};

/// a owns b by "part", watches c by "next", lists b, c by "all" (watching) and owns d, e by "own".
/// The model labels objects by name alone. b watches a by "back".
struct Scene {
    explicit Scene(RefT<Exporter> const &exporter = {}, RefT<Xml::Importer> const &importer = {})
        : things(makeThings("abcde"))
        , model(std::make_unique<ObjectTreeModel>(exporter, importer))
    {
        addField<FieldRef>(*a(), "part", b());
        addField<FieldPtr>(*a(), "next", PtrT<Object>(c()));
        addField<MFieldPtr>(*a(), "all", MFieldPtr::Values{b(), c()});
        addField<MFieldRef>(*a(), "own", Things{d(), e()});
        addField<FieldPtr>(*b(), "back", PtrT<Object>(a()));
        model->setTypeName(false);
        model->setFieldName("name");
    }
    RefT<Object> &a() { return things[0]; }
    RefT<Object> &b() { return things[1]; }
    RefT<Object> &c() { return things[2]; }
    RefT<Object> &d() { return things[3]; }
    RefT<Object> &e() { return things[4]; }
    Field &field(char const *name) { return *a()->findField(name); }
    FieldRef &part() { return fieldOf<FieldRef>(a(), "part"); }
    FieldPtr &next() { return fieldOf<FieldPtr>(a(), "next"); }
    MFieldPtr &all() { return fieldOf<MFieldPtr>(a(), "all"); }
    MFieldRef &own() { return fieldOf<MFieldRef>(a(), "own"); }

    void show() { model->addRow(PtrT<Object>(a()), 0); }
    /// a's row and those below it, to a depth.
    void showFetched(int depth)
    {
        show();
        GUI::fetchRows(*model, top(), depth);
    }
    QModelIndex top() const { return model->index(0, 0); }
    /// By the positions on the way from the top.
    QModelIndex at(std::vector<int> const &positions) const
    {
        QModelIndex index = top();
        for (const int position : positions)
            index = model->index(position, 0, index);
        return index;
    }
    std::string dump(int depth = 100) const { return GUI::dumpRows(*model, top(), depth); }
    std::string dump(QModelIndex const &below) const { return GUI::dumpRows(*model, below); }

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

    Things things;
    std::unique_ptr<ObjectTreeModel> model;
};

inline std::string textOf(QModelIndex const &index)
{
    return index.data().toString().toStdString();
}

/// A path as text, such as "a/own[1]/name".
inline std::string textOf(Path const &path)
{
    auto const *const name =
        path.getRoot() ? ZR::cast<FieldString>(path.getRoot()->findField("name")) : nullptr;
    std::string text = name ? name->get() : "-";
    for (std::size_t i = 0; i < path.getNum(); ++i) {
        text += '/' + (path.get(i).field ? path.get(i).field->name : std::string("-"));
        if (i + 1 < path.getNum() || path.getType() == Path::Value)
            text += '[' + std::to_string(path.get(i).index) + ']';
    }
    return text;
}

} // namespace model_test
