#pragma once

// Not for hosts: the rows of the two trees that are built of rows. What differs between them is how
// rows are owned, and a few behaviours that their views name.

#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/vom/Path.h"
#include "zrVOMGUI/foundation/vom/linkFields.h"
#include "zrVOMGUI/presentation/ItemLabel.h"
#include "zrVOMGUI/presentation/ObjectIconDB.h"
#include "zrVOMGUI/trees/private/DetachedRows.h"

#include <QIcon>
#include <QWidget>

#include <algorithm>
#include <deque>
#include <map>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

namespace ZR::VOM::GUI::Trees {

/// Where a path leads from a row on.
enum class Way { EndsHere, GoesOn, EndsNowhere };

/// Rows of objects, of their link fields, and of the values of these.
///
/// Model signals only mark a row and ask for a layout. The work is done in onUpdate(), where rows
/// that still stand for the same object or field are moved and not made anew.
///
/// `View` is a tree; its nested VoidRow is the base of all rows here and knows, beside the row
/// operations,
/// - getView(), null while the view is torn down, and getVoidParent(), null at the top;
/// - getVoidChild(), a child that exists, and getHandle(), by which rows are handed out;
/// - detachedRows, where a rebuild enters itself;
/// - Watch, which tells whether the row is still there after a host was called.
template <class View>
struct RowsT {
    using VoidRow = typename View::VoidRow;
    using ParentRow = typename View::Traits::RowArgument; // How a constructor takes the parent.
    using RowHandle = typename View::RowHandle;
    using OwnedRow = typename View::Traits::OwnedRow;
    using OwnedRows = std::vector<OwnedRow>;
    using Watch = typename VoidRow::Watch;

    class ObjectRow;
    class FieldRow;
    struct DirtyValue {
        bool value = true;
    };
    struct DirtyList {
        bool num = true, rows = true;
    };
    template <class FieldType, class Dirty>
    class LinkRow;
    template <class FieldType>
    class SingleLinkRow;
    template <class FieldType>
    class LinkListRow;
    class Root;

    static bool isEmpty(Path const &path)
    {
        return path.getType() == Path::Object && !path.getObj();
    }

    /// Leads on to a value at a position of the field at the end of the path. Nothing happens if it
    /// ends at no field: the one of the row above is gone.
    static void extendByValue(Path &path, std::size_t position)
    {
        if (path.getType() != Path::Field)
            return;
        const PtrT<Field> field = path.getLast().field;
        path.pop();
        if (auto *const list = cast<MField>(field))
            path.pushValue(*list, position);
        else if (field)
            path.pushValue(*field);
    }

    /// A row that a path goes on from.
    struct Passed {
        explicit Passed(VoidRow &passed)
            : row(passed)
            , watch(passed)
        {
        }
        VoidRow &row;
        const Watch watch;
    };

    /// Has a row make its children, for which it is open meanwhile. False if it is gone.
    ///
    /// It is closed at once and not when the search is over: what comes and goes below a closed row
    /// moves no line, whereas each row of an open chain would be told up to its top.
    static bool makeChildren(VoidRow &row)
    {
        const Watch watch(row);
        const bool wasOpen = row.isOpen();
        row.setOpen(true);
        row.onUpdate(true);
        if (watch.isGone())
            return false;
        row.setOpen(wasOpen);
        return true;
    }

    /// VoidRow::makeRow(), in a loop: models may be deep.
    static RowHandle followPath(VoidRow &from, Path const &path, std::size_t step, bool keepOpen)
    {
        std::deque<Passed> passed;
        VoidRow *row = &from;
        while (row && row->wayOf(path, step) == Way::GoesOn) {
            if (!makeChildren(*row))
                return {};
            if (keepOpen)
                passed.emplace_back(*row);
            row = row->getNext(path, step);
        }
        if (!row || row->wayOf(path, step) != Way::EndsHere)
            return {};
        // From the lowest on, again for the lines.
        for (; !passed.empty(); passed.pop_back())
            if (!passed.back().watch.isGone())
                passed.back().row.setOpen(true);
        return row->getHandle();
    }

    /// The children of a row while they are rebuilt: those that were there, by what they stand for
    /// and in their order, and those that will be.
    ///
    /// What isn't wanted any more dies with this, of which a host is told, who may do anything. So
    /// a rebuild ends with it.
    template <class Key>
    class Rebuild : DetachedRows {
    public:
        explicit Rebuild(View &ofView)
            : DetachedRows(ofView, ofView.detachedRows)
        {
        }
        ~Rebuild() override { this->leave(); }
        void keep(Key key, OwnedRow &&row) { old.emplace(key, std::move(row)); }
        /// Takes a row that no longer stands for anything.
        void drop(OwnedRow &&row) { dropped.push_back(std::move(row)); }
        /// The first old row of the key, which isn't an old one any more; empty if there is none.
        OwnedRow take(Key key)
        {
            const auto found = old.find(key);
            if (found == old.end())
                return {};
            OwnedRow row = std::move(found->second);
            old.erase(found);
            return row;
        }
        void add(OwnedRow &&row) { rows.push_back(std::move(row)); }
        OwnedRows &&finish() { return std::move(rows); }

    private:
        void collect(std::vector<ZR::GUI::TreeRow *> &found) const override
        {
            for (auto const &[key, row] : old)
                found.push_back(row.get());
            for (OwnedRow const &row : rows)
                found.push_back(row.get());
        }

        std::multimap<Key, OwnedRow> old; // Keeps the order of equal keys.
        OwnedRows rows, dropped;
    };
};

/// One object.
template <class View>
class RowsT<View>::ObjectRow : public VoidRow {
public:
    ObjectRow(View &view, ParentRow parent, VOM::Object &shownObj)
        : VoidRow(view, parent)
        , obj(shownObj)
    {
        watchFields(view);
        conDelete = shownObj.sigDelete.connect([this](auto const &) { lost = true; });
    }
    ~ObjectRow() override { disconnectAll(); }

    /// Null once the object is gone.
    VOM::Object *getObj() const { return obj.get(); }
    bool isLost() const { return lost; }
    /// Whether the row may go on to stand for an object, or for none.
    bool standsFor(VOM::Object const *other) const { return !lost && obj && obj.get() == other; }

    void onUpdate(bool wanted) override
    {
        View *const view = this->getView();
        if (!view || !obj)
            return;
        const Watch watch(*this);
        updateLabel(*view);
        // A database is a host's code, and the label may have held the object last.
        if (watch.isGone() || !this->getView() || !obj)
            return;
        if (wanted && (this->isOpen() || view->isHideFields())) {
            if (rowsDirty && !isRebuilding)
                rebuild(*view);
        } else if (numDirty) {
            this->setNumChildRows(acceptedFields(*view).size());
            numDirty = false;
        }
    }

    void extendPath(Path &path) override
    {
        if (lost && !View::Traits::lostRowsHavePaths) {
            path = Path(PtrT<VOM::Object>());
            return;
        }
        VoidRow::extendPath(path);
        if (isEmpty(path))
            path = Path(obj);
    }

    Way wayOf(Path const &path, std::size_t step) const override
    {
        return step == path.getNum() ? Way::EndsHere : Way::GoesOn;
    }

    VoidRow *getNext(Path const &path, std::size_t &step) const override
    {
        PtrT<Field> const &field = path.get(step).field;
        const std::size_t num = field ? this->getNumMadeChildRows() : 0;
        for (std::size_t i = 0; i < num; ++i)
            if (auto *const row = dynamic_cast<FieldRow *>(this->getVoidChild(i));
                row && row->getField() == field.get())
                return row;
        return nullptr;
    }

    void onObjIconDBChanged() override
    {
        iconDirty = true;
        this->invalidateIconLayout();
        this->repaintView();
    }
    void onTypeNameChanged() override { dirtyText(); }
    void onAcceptedFieldsChanged() override { dirtyRows(); }

    /// KEPT: the death of the object isn't listened for again, so that the row no longer counts as
    /// lost afterwards. Hosts have rows that stay until their parents change.
    void onNameFieldChanged() override
    {
        View *const view = this->getView();
        if (!view)
            return;
        disconnectAll();
        dirtyText();
        if (obj)
            watchFields(*view);
    }

protected:
    void dirtyText()
    {
        if (!this->getView())
            return;
        textDirty = true;
        this->invalidateTextLayout();
        this->repaintView();
    }

private:
    void dirtyRows()
    {
        if (!this->getView())
            return;
        numDirty = rowsDirty = true;
        this->invalidateLayout();
        this->repaintView();
    }

    void disconnectAll()
    {
        for (Signal::Connection *connection :
             {&conDelete, &conAddField, &conRemoveField, &conNameField})
            connection->disconnect();
    }

    /// KEPT: without a name field nobody watches fields come and go. Large models without names pay
    /// for no connection, and such a row meets a new field when its parent is rebuilt.
    void watchFields(View &view)
    {
        if (view.getNameField().empty())
            return;
        watchName(view);
        conAddField =
            obj->sigAddField.connect([this](auto const &sigData) { onFieldAdded(sigData.index); });
        conRemoveField = obj->sigRemoveField.connect(
            [this](auto const &sigData) { onFieldsChanged(**sigData.field); });
    }

    void watchName(View &view)
    {
        if (auto *const name = cast<FieldString>(obj->findField(view.getNameField())))
            conNameField = name->sigSet.connect([this](auto const &) { dirtyText(); });
    }

    /// A new field is the last one, unless a listener before this one has changed the fields again.
    /// Then any may be new.
    void onFieldAdded(std::size_t index)
    {
        View *const view = this->getView();
        if (!view)
            return;
        if (index + 1 == obj->getNumFields()) {
            onFieldsChanged(*obj->getField(index));
            return;
        }
        renewName(*view);
        dirtyRows();
    }

    void renewName(View &view)
    {
        conNameField.disconnect();
        dirtyText();
        watchName(view);
    }

    /// KEPT: of a field that leaves, the look-up by name still finds it, and it is watched anew: a
    /// host that goes on with a field that it holds has the label asked for once more.
    void onFieldsChanged(Field &field)
    {
        View *const view = this->getView();
        if (!view)
            return;
        if (!view->getNameField().empty() && field.name == view->getNameField())
            renewName(*view);
        if (view->isAccepted(field))
            dirtyRows();
    }

    void updateLabel(View &view)
    {
        const Watch watch(*this);
        const RefT<VOM::Object> held(obj);
        if (iconDirty) {
            QIcon icon;
            tryCatch(std::string(View::Traits::name) + "::ObjectRow::onUpdate", [&] {
                if (RefT<ObjectIconDB> const db = view.getObjIconDB())
                    icon = db->find(held);
            });
            if (watch.isGone() || !this->getView())
                return;
            this->setIcon(icon);
            iconDirty = false;
        }
        if (textDirty) {
            this->setText(getItemLabel(held, view.getNameField(), view.isTypeName(),
                                       View::Traits::hasAddress(view)));
            textDirty = false;
        }
    }

    std::vector<PtrT<Field>> acceptedFields(View const &view) const
    {
        std::vector<PtrT<Field>> fields;
        for (std::size_t i = 0; i < obj->getNumFields(); ++i)
            if (RefT<Field> const &field = obj->getField(i); view.isAccepted(*field))
                fields.emplace_back(field);
        return fields;
    }

    void rebuild(View &view)
    {
        const Watch watch(*this);
        const std::vector<PtrT<Field>> fields = acceptedFields(view);
        numDirty = rowsDirty = false;
        isRebuilding = true;
        Rebuild<Field const *> children(view);
        for (OwnedRow &row : this->releaseChildRows()) {
            auto *const fieldRow = dynamic_cast<FieldRow *>(row.get());
            if (fieldRow && fieldRow->getField() && !fieldRow->isLost())
                children.keep(fieldRow->getField(), std::move(row));
            else
                children.drop(std::move(row));
        }
        for (PtrT<Field> const &field : fields) {
            if (!field)
                continue;
            OwnedRow row = children.take(field.get());
            if (!row)
                row = view.makeRow(*this, *field);
            if (watch.isGone() || !this->getView())
                return;
            children.add(std::move(row));
        }
        isRebuilding = false;
        this->setChildRows(children.finish());
    }

    const PtrT<VOM::Object> obj;
    bool lost = false;
    bool iconDirty = true, textDirty = true;
    bool numDirty = true, rowsDirty = true;
    bool isRebuilding = false; // What a host changes meanwhile is for the next layout.
    Signal::Connection conDelete, conAddField, conRemoveField, conNameField;
};

/// One link field.
template <class View>
class RowsT<View>::FieldRow : public VoidRow {
public:
    FieldRow(View &view, ParentRow parent, Field &shownField)
        : VoidRow(view, parent)
        , field(shownField)
    {
        this->setHidden(view.isHideFields());
        this->setText(shownField.name);
        // KEPT: only a field that says so is listened to. Hosts flag the few fields that die on
        // their own; for all others the row's object tells that they leave.
        constexpr unsigned watched = 1;
        if (shownField.getFlags() & watched)
            conDelete = shownField.sigDelete.connect([this](auto const &) { lost = true; });
    }
    ~FieldRow() override { conDelete.disconnect(); }

    /// Null once the field is gone.
    Field *getField() const { return field.get(); }
    bool isLost() const { return lost; }

    void extendPath(Path &path) override
    {
        if (!View::Traits::lostRowsHavePaths && (lost || !field))
            path = Path(PtrT<VOM::Object>());
        // Of a field that is gone, nothing but its place is left.
        else if (field)
            extendByField(path);
    }

    Way wayOf(Path const &path, std::size_t step) const override
    {
        return step + 1 == path.getNum() && path.getType() == Path::Field ? Way::EndsHere
                                                                          : Way::GoesOn;
    }

    void onHideFieldsChanged() override
    {
        if (View const *const view = this->getView())
            this->setHidden(view->isHideFields());
    }

protected:
    /// Hidden rows count as open: their children stand in their place.
    bool showsChildren() const { return this->isOpen() || this->isHidden(); }

    OwnedRow makeValueRow(View &view, RefT<VOM::Object> const &value)
    {
        return value ? view.makeRow(*this, *value) : view.makeRow(*this);
    }

    const PtrT<Field> field;
    bool lost = false;
    Signal::Connection conDelete;

private:
    void extendByField(Path &path) const
    {
        if (isEmpty(path) && field->owner)
            path = Path(*field->owner);
        path.pushField(*field);
    }
};

/// What single links and lists of links share: two signals that mark the row. `Dirty` is what they
/// mark, all of it, as it is at first.
template <class View>
template <class FieldType, class Dirty>
class RowsT<View>::LinkRow : public View::FieldRow {
public:
    LinkRow(View &view, ParentRow parent, FieldType &shownField)
        : View::FieldRow(view, parent, shownField)
    {
        const auto mark = [this](auto const &) { markChanged(); };
        if constexpr (std::is_base_of_v<MField, FieldType>)
            conChange = shownField.sigReplace.connect(mark);
        else
            conChange = shownField.sigSet.connect(mark);
        conLost = shownField.sigLost.connect(mark);
    }
    ~LinkRow() override
    {
        conChange.disconnect();
        conLost.disconnect();
    }

protected:
    /// Null once the field is gone.
    FieldType *getLinks() const { return static_cast<FieldType *>(this->field.get()); }

    Dirty dirty;
    bool isRebuilding = false; // What a host changes meanwhile is for the next layout.

private:
    void markChanged()
    {
        if (!this->getView())
            return;
        dirty = Dirty();
        this->invalidateLayout();
        this->repaintView();
    }

    Signal::Connection conChange, conLost;
};

/// A field of one link, which always has one child.
template <class View>
template <class FieldType>
class RowsT<View>::SingleLinkRow : public LinkRow<FieldType, DirtyValue> {
public:
    SingleLinkRow(View &view, ParentRow parent, FieldType &shownField)
        : LinkRow<FieldType, DirtyValue>(view, parent, shownField)
    {
        this->setNumChildRows(1);
    }

    void onUpdate(bool wanted) override
    {
        View *const view = this->getView();
        if (view && this->getLinks() && wanted && this->showsChildren() && this->dirty.value &&
            !this->isRebuilding)
            rebuild(*view);
    }

    VoidRow *getNext(Path const &, std::size_t &step) const override
    {
        ++step;
        return this->getVoidChild(0);
    }

private:
    void rebuild(View &view)
    {
        const Watch watch(*this);
        const RefT<VOM::Object> value(this->getLinks()->get());
        this->dirty.value = false;
        this->isRebuilding = true;
        Rebuild<VOM::Object const *> children(view);
        for (OwnedRow &row : this->releaseChildRows())
            if (canStay(row, value))
                children.keep(value.get(), std::move(row));
            else
                children.drop(std::move(row));
        OwnedRow row = children.take(value.get());
        if (!row)
            row = this->makeValueRow(view, value);
        if (watch.isGone() || !this->getView())
            return;
        children.add(std::move(row));
        this->isRebuilding = false;
        this->setChildRows(children.finish());
    }

    static bool canStay(OwnedRow const &row, RefT<VOM::Object> const &value)
    {
        auto const *const objectRow = dynamic_cast<ObjectRow const *>(row.get());
        return objectRow ? objectRow->standsFor(value.get()) : !value;
    }
};

/// A list of links, with a child for each value.
template <class View>
template <class FieldType>
class RowsT<View>::LinkListRow : public LinkRow<FieldType, DirtyList> {
public:
    using LinkRow<FieldType, DirtyList>::LinkRow;

    void onUpdate(bool wanted) override
    {
        View *const view = this->getView();
        if (!view || !this->getLinks())
            return;
        if (wanted && this->showsChildren()) {
            if (this->dirty.rows && !this->isRebuilding)
                rebuild(*view);
        } else if (this->dirty.num) {
            this->setNumChildRows(this->getLinks()->getNum());
            this->dirty.num = false;
        }
    }

    VoidRow *getNext(Path const &path, std::size_t &step) const override
    {
        return this->getVoidChild(path.get(step++).index);
    }

private:
    using Children = Rebuild<VOM::Object const *>;

    void rebuild(View &view)
    {
        const Watch watch(*this);
        this->dirty.num = this->dirty.rows = false;
        this->isRebuilding = true;
        Children children(view);
        for (OwnedRow &row : this->releaseChildRows())
            keep(children, std::move(row));
        // A host that is told of a new row may change the field.
        auto const values = this->getLinks()->getAll();
        for (auto const &link : values) {
            addChild(children, view, RefT<VOM::Object>(link));
            // That reference may have been the last one.
            if (watch.isGone() || !this->getView())
                return;
        }
        this->isRebuilding = false;
        this->setChildRows(children.finish());
    }

    static void keep(Children &children, OwnedRow &&row)
    {
        auto const *const objectRow = dynamic_cast<ObjectRow const *>(row.get());
        if (!objectRow)
            children.keep(nullptr, std::move(row));
        else if (objectRow->getObj() && !objectRow->isLost())
            children.keep(objectRow->getObj(), std::move(row));
        else
            children.drop(std::move(row));
    }

    /// This row may be gone afterwards.
    void addChild(Children &children, View &view, RefT<VOM::Object> const &value)
    {
        OwnedRow row = children.take(value.get());
        if (!row)
            row = this->makeValueRow(view, value);
        children.add(std::move(row));
    }
};

/// The invisible top: objects and fields that the host put there.
template <class View>
class RowsT<View>::Root : public VoidRow {
public:
    using VoidRow::VoidRow;
    ~Root() override { disconnectItems(); }

    /// Puts an item before a position, or at the end, and returns where it is. Null shows an empty
    /// link. Items aren't owned; they leave when they die.
    std::size_t addItem(Class *item, std::size_t position)
    {
        position = makeRoom(position, 1);
        setItem(position, item);
        markDirty();
        return position;
    }

    /// The same with many, in their order.
    void addItems(std::vector<PtrT<VOM::Object>> const &objs, std::size_t position)
    {
        position = makeRoom(position, objs.size());
        for (PtrT<VOM::Object> const &item : objs)
            setItem(position++, item.get());
        markDirty();
    }

    /// Does nothing for a position that isn't there.
    void removeItem(std::size_t position)
    {
        removeGone();
        if (position >= items.size())
            return;
        const auto offset = static_cast<std::ptrdiff_t>(position);
        itemCons[position].disconnect();
        itemCons.erase(itemCons.begin() + offset);
        Class const *const item = items[position];
        items.erase(items.begin() + offset);
        if (isRebuilding && std::find(items.begin(), items.end(), item) == items.end())
            left.insert(item);
        markDirty();
    }

    void clearItems()
    {
        disconnectItems();
        if (isRebuilding)
            left.insert(items.begin(), items.end());
        items.clear();
        itemCons.clear();
        gone.clear();
        markDirty();
    }

    /// A host that changes the top rows while it is told of new ones finds them changed after the
    /// next layout.
    void onUpdate(bool) override
    {
        View *const view = this->getView();
        if (view && dirty && !isRebuilding)
            rebuild(*view);
    }

    using VoidRow::makeRow;
    RowHandle makeRow(Path const &path, bool keepOpen)
    {
        const Watch watch(*this);
        onUpdate(true);
        PtrT<VOM::Object> const root = path.getRoot();
        for (std::size_t i = 0; root && !watch.isGone() && this->getView() && i < items.size(); ++i)
            if (items[i] == root.get())
                if (VoidRow *const child = findChild(i, *root))
                    if (const RowHandle found = child->makeRow(path, 0, keepOpen))
                        return found;
        return {};
    }

private:
    /// The row of an item. A host that was told of new rows may have changed the items, so that the
    /// rows stand elsewhere until the next layout.
    VoidRow *findChild(std::size_t position, VOM::Object const &obj) const
    {
        if (VoidRow *const child = this->getVoidChild(position); child && isRowOf(*child, obj))
            return child;
        for (std::size_t i = 0; i < this->getNumMadeChildRows(); ++i)
            if (VoidRow *const child = this->getVoidChild(i); child && isRowOf(*child, obj))
                return child;
        return nullptr;
    }

    static bool isRowOf(VoidRow const &row, VOM::Object const &obj)
    {
        auto const *const objectRow = dynamic_cast<ObjectRow const *>(&row);
        return objectRow && objectRow->getObj() == &obj;
    }

    /// Puts empty items before a position, or at the end, and returns where they are.
    std::size_t makeRoom(std::size_t position, std::size_t num)
    {
        removeGone();
        position = std::min(position, items.size());
        const auto offset = static_cast<std::ptrdiff_t>(position);
        items.insert(items.begin() + offset, num, nullptr);
        itemCons.insert(itemCons.begin() + offset, num, Signal::Connection());
        return position;
    }

    void setItem(std::size_t position, Class *item)
    {
        items[position] = item;
        if (!item)
            return;
        left.erase(item);
        itemCons[position] = item->sigDelete.connect(
            [this](SigVoidData const &sigData) { onItemDelete(sigData); }, PtrT<Class>(*item));
    }

    /// Items often die together: those that have died are taken out at once, before the next look
    /// at any of them.
    void onItemDelete(SigVoidData const &sigData)
    {
        gone.insert(sigData.ptr.get());
        if (isRebuilding)
            left.insert(sigData.ptr.get());
        markDirty();
    }

    void removeGone()
    {
        if (gone.empty())
            return;
        std::size_t numKept = 0;
        for (std::size_t i = 0; i < items.size(); ++i) {
            if (gone.count(items[i])) {
                itemCons[i].disconnect();
                continue;
            }
            items[numKept] = items[i];
            itemCons[numKept++] = itemCons[i];
        }
        items.resize(numKept);
        itemCons.resize(numKept);
        gone.clear();
    }

    void disconnectItems()
    {
        for (Signal::Connection &connection : itemCons)
            connection.disconnect();
    }

    void markDirty()
    {
        if (!this->getView())
            return;
        dirty = true;
        this->invalidateLayout();
        this->repaintView();
    }

    void rebuild(View &view)
    {
        const Watch watch(*this);
        dirty = false;
        removeGone();
        isRebuilding = true;
        Rebuild<Class const *> children(view);
        for (OwnedRow &row : this->releaseChildRows())
            if (canStay(row))
                children.keep(getItem(row), std::move(row));
            else
                children.drop(std::move(row));
        const std::deque<Class *> shown = items;
        for (Class *item : shown) {
            // A host that is told of a new row may remove items, or let them die.
            if (left.count(item))
                continue;
            OwnedRow row = children.take(item);
            if (!row)
                row = makeItemRow(view, item);
            if (watch.isGone() || !this->getView())
                return;
            if (row)
                children.add(std::move(row));
        }
        isRebuilding = false;
        left.clear();
        this->setChildRows(children.finish());
    }

    /// What a top row shows. Null for one that is gone, and for an empty link.
    static Class const *getItem(OwnedRow const &row)
    {
        if (auto const *const objectRow = dynamic_cast<ObjectRow const *>(row.get()))
            return objectRow->getObj();
        auto const *const fieldRow = dynamic_cast<FieldRow const *>(row.get());
        return fieldRow ? fieldRow->getField() : nullptr;
    }

    static bool canStay(OwnedRow const &row)
    {
        if (!View::Traits::keepsTopRows)
            return false;
        if (auto const *const objectRow = dynamic_cast<ObjectRow const *>(row.get()))
            return objectRow->getObj() && !objectRow->isLost();
        auto const *const fieldRow = dynamic_cast<FieldRow const *>(row.get());
        return !fieldRow || (fieldRow->getField() && !fieldRow->isLost());
    }

    OwnedRow makeItemRow(View &view, Class *item)
    {
        if (auto *const obj = dynamic_cast<VOM::Object *>(item))
            return view.makeRow(*this, *obj);
        if (auto *const field = dynamic_cast<Field *>(item))
            return view.makeRow(*this, *field);
        return view.makeRow(*this);
    }

    // Not vectors: hosts remove many items at the front, one by one.
    std::deque<Class *> items;
    bool dirty = false, isRebuilding = false;
    std::deque<Signal::Connection> itemCons; // Position by position.
    std::unordered_set<Class const *> gone;  // Of the items, those that are dying or have died.
    std::unordered_set<Class const *> left;  // That were items when the rebuild began.
};

} // namespace ZR::VOM::GUI::Trees
