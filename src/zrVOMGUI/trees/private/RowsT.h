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
#include <map>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

namespace ZR::VOM::GUI::Trees {

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

    /// The path of a value at a position of the field at the end of `path`. The same path if it
    /// ends at no field: the one of the row above is gone.
    static Path valuePath(Path path, std::size_t position)
    {
        if (path.getType() != Path::Field)
            return path;
        const PtrT<Field> field = path.getLast().field;
        path.pop();
        if (auto *const list = cast<MField>(field))
            path.pushValue(*list, position);
        else if (field)
            path.pushValue(*field);
        return path;
    }

    /// Opens a row, asks one of its children for a row, and closes it again unless it is to stay
    /// open on the way to what was found.
    template <class Ask>
    static RowHandle askOpened(VoidRow &row, bool keepOpen, Ask const &ask)
    {
        const Watch watch(row);
        const bool wasOpen = row.isOpen();
        row.setOpen(true);
        row.onUpdate(true);
        if (watch.isGone())
            return {};
        const RowHandle found = ask();
        if (!watch.isGone() && !(found && keepOpen))
            row.setOpen(wasOpen);
        return found;
    }

    static RowHandle askChild(VoidRow &row, std::size_t position, Path const &path,
                              std::size_t step, bool keepOpen)
    {
        VoidRow *const child = row.getVoidChild(position);
        return child ? child->makeRow(path, step, keepOpen) : RowHandle();
    }

    /// The children of a row while they are rebuilt: those that were there, by what they stand for
    /// and in their order, and those that will be.
    template <class Key>
    class Rebuild : DetachedRows {
    public:
        explicit Rebuild(View &ofView)
            : DetachedRows(ofView, ofView.detachedRows)
        {
        }
        void keep(Key key, OwnedRow &&row) { old.emplace(key, std::move(row)); }
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
        OwnedRows rows;
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
        if (!updateLabel(*view) || !obj)
            return;
        if (wanted && (this->isOpen() || view->isHideFields())) {
            if (rowsDirty)
                rebuild(*view);
        } else if (numDirty) {
            this->setNumChildRows(acceptedFields(*view).size());
            numDirty = false;
        }
    }

    Path getPath() override
    {
        if (lost && !View::Traits::lostRowsHavePaths)
            return Path(PtrT<VOM::Object>());
        const Path path = VoidRow::getPath();
        return isEmpty(path) ? Path(obj) : path;
    }

    RowHandle makeRow(Path const &path, std::size_t step, bool keepOpen) override
    {
        if (step == path.getNum())
            return this->getHandle();
        return askOpened(*this, keepOpen, [&] {
            return askChild(*this, childOf(path.get(step).field), path, step, keepOpen);
        });
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
        conAddField = obj->sigAddField.connect(
            [this](auto const &sigData) { onFieldsChanged(*obj->getField(sigData.index)); });
        conRemoveField = obj->sigRemoveField.connect(
            [this](auto const &sigData) { onFieldsChanged(**sigData.field); });
    }

    void watchName(View &view)
    {
        if (auto *const name = cast<FieldString>(obj->findField(view.getNameField())))
            conNameField = name->sigSet.connect([this](auto const &) { dirtyText(); });
    }

    /// KEPT: of a field that leaves, the look-up by name still finds it, and it is watched anew: a
    /// host that goes on with a field that it holds has the label asked for once more.
    void onFieldsChanged(Field &field)
    {
        View *const view = this->getView();
        if (!view)
            return;
        if (!view->getNameField().empty() && field.name == view->getNameField()) {
            conNameField.disconnect();
            dirtyText();
            watchName(*view);
        }
        if (view->isAccepted(field))
            dirtyRows();
    }

    /// False when the row or its view is gone, since a database is a host's code.
    bool updateLabel(View &view)
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
                return false;
            this->setIcon(icon);
            iconDirty = false;
        }
        if (textDirty) {
            this->setText(getItemLabel(held, view.getNameField(), view.isTypeName(),
                                       View::Traits::hasAddress(view)));
            textDirty = false;
        }
        return true;
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
        Rebuild<Field const *> children(view);
        for (OwnedRow &row : this->releaseChildRows())
            if (auto *const fieldRow = dynamic_cast<FieldRow *>(row.get());
                fieldRow && fieldRow->getField() && !fieldRow->isLost())
                children.keep(fieldRow->getField(), std::move(row));
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
        this->setChildRows(children.finish());
    }

    std::size_t childOf(PtrT<Field> const &field) const
    {
        const std::size_t num = this->getNumMadeChildRows();
        for (std::size_t i = 0; i < num; ++i)
            if (auto const *const row = dynamic_cast<FieldRow const *>(this->getVoidChild(i));
                row && field && row->getField() == field.get())
                return i;
        return num;
    }

    const PtrT<VOM::Object> obj;
    bool lost = false;
    bool iconDirty = true, textDirty = true;
    bool numDirty = true, rowsDirty = true;
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

    Path getPath() override
    {
        if (!View::Traits::lostRowsHavePaths && (lost || !field))
            return Path(PtrT<VOM::Object>());
        VoidRow *const parent = this->getVoidParent();
        Path path = parent ? parent->getPath() : Path(PtrT<VOM::Object>());
        // Of a field that is gone, nothing but its place is left.
        if (!field)
            return path;
        if (isEmpty(path) && field->owner)
            path = Path(*field->owner);
        path.pushField(*field);
        return path;
    }

    void onHideFieldsChanged() override
    {
        if (View const *const view = this->getView())
            this->setHidden(view->isHideFields());
    }

protected:
    /// Hidden rows count as open: their children stand in their place.
    bool showsChildren() const { return this->isOpen() || this->isHidden(); }

    /// Whether a path ends at this row's field.
    static bool endsHere(Path const &path, std::size_t step)
    {
        return step + 1 == path.getNum() && path.getType() == Path::Field;
    }

    OwnedRow makeValueRow(View &view, RefT<VOM::Object> const &value)
    {
        return value ? view.makeRow(*this, *value) : view.makeRow(*this);
    }

    const PtrT<Field> field;
    bool lost = false;
    Signal::Connection conDelete;
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
        if (view && this->getLinks() && wanted && this->showsChildren() && this->dirty.value)
            rebuild(*view);
    }

    RowHandle makeRow(Path const &path, std::size_t step, bool keepOpen) override
    {
        if (this->endsHere(path, step))
            return this->getHandle();
        return askOpened(*this, keepOpen,
                         [&] { return askChild(*this, 0, path, step + 1, keepOpen); });
    }

private:
    void rebuild(View &view)
    {
        const Watch watch(*this);
        const RefT<VOM::Object> value(this->getLinks()->get());
        this->dirty.value = false;
        OwnedRows rows = this->releaseChildRows();
        if (rows.empty() || !canStay(*rows.front(), value)) {
            rows.clear();
            OwnedRow row = this->makeValueRow(view, value);
            if (watch.isGone() || !this->getView())
                return;
            rows.push_back(std::move(row));
        }
        this->setChildRows(std::move(rows));
    }

    template <class Row>
    static bool canStay(Row const &row, RefT<VOM::Object> const &value)
    {
        auto const *const objectRow = dynamic_cast<ObjectRow const *>(&row);
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
            if (this->dirty.rows)
                rebuild(*view);
        } else if (this->dirty.num) {
            this->setNumChildRows(this->getLinks()->getNum());
            this->dirty.num = false;
        }
    }

    RowHandle makeRow(Path const &path, std::size_t step, bool keepOpen) override
    {
        if (this->endsHere(path, step))
            return this->getHandle();
        return askOpened(*this, keepOpen, [&] {
            return askChild(*this, path.get(step).index, path, step + 1, keepOpen);
        });
    }

private:
    void rebuild(View &view)
    {
        const Watch watch(*this);
        this->dirty.num = this->dirty.rows = false;
        Rebuild<VOM::Object const *> children(view);
        for (OwnedRow &row : this->releaseChildRows()) {
            auto const *const objectRow = dynamic_cast<ObjectRow const *>(row.get());
            if (!objectRow)
                children.keep(nullptr, std::move(row));
            else if (objectRow->getObj() && !objectRow->isLost())
                children.keep(objectRow->getObj(), std::move(row));
        }
        // A host that is told of a new row may change the field.
        auto const values = this->getLinks()->getAll();
        for (auto const &link : values) {
            const RefT<VOM::Object> value(link);
            OwnedRow row = children.take(value.get());
            if (!row)
                row = this->makeValueRow(view, value);
            if (watch.isGone() || !this->getView())
                return;
            children.add(std::move(row));
        }
        this->setChildRows(children.finish());
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
        removeGone();
        position = std::min(position, items.size());
        const auto offset = static_cast<std::ptrdiff_t>(position);
        items.insert(items.begin() + offset, item);
        itemCons.emplace(itemCons.begin() + offset);
        if (item)
            itemCons[position] = item->sigDelete.connect(
                [this](SigVoidData const &sigData) { onItemDelete(sigData); }, PtrT<Class>(*item));
        markDirty();
        return position;
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
        items.erase(items.begin() + offset);
        markDirty();
    }

    void clearItems()
    {
        disconnectItems();
        items.clear();
        itemCons.clear();
        gone.clear();
        markDirty();
    }

    void onUpdate(bool) override
    {
        View *const view = this->getView();
        if (view && dirty)
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
                if (const RowHandle found = askChild(*this, i, path, 0, keepOpen))
                    return found;
        return {};
    }

private:
    /// Items often die together: those that have died are taken out at once, before the next look
    /// at any of them.
    void onItemDelete(SigVoidData const &sigData)
    {
        gone.insert(sigData.ptr.get());
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
        Rebuild<Class const *> children(view);
        for (OwnedRow &row : this->releaseChildRows())
            if (View::Traits::keepsTopRows)
                keep(children, std::move(row));
        const std::vector<Class *> shown = items;
        for (Class *item : shown) {
            // A host that is told of a new row may let items die.
            if (gone.count(item) ||
                (dirty && item && std::find(items.begin(), items.end(), item) == items.end()))
                continue;
            OwnedRow row = children.take(item);
            if (!row)
                row = makeItemRow(view, item);
            if (watch.isGone() || !this->getView())
                return;
            if (row)
                children.add(std::move(row));
        }
        this->setChildRows(children.finish());
    }

    static void keep(Rebuild<Class const *> &children, OwnedRow &&row)
    {
        if (auto const *const objectRow = dynamic_cast<ObjectRow const *>(row.get())) {
            if (objectRow->getObj() && !objectRow->isLost())
                children.keep(objectRow->getObj(), std::move(row));
        } else if (auto const *const fieldRow = dynamic_cast<FieldRow const *>(row.get())) {
            if (fieldRow->getField() && !fieldRow->isLost())
                children.keep(fieldRow->getField(), std::move(row));
        } else {
            children.keep(nullptr, std::move(row));
        }
    }

    OwnedRow makeItemRow(View &view, Class *item)
    {
        if (auto *const obj = dynamic_cast<VOM::Object *>(item))
            return view.makeRow(*this, *obj);
        if (auto *const field = dynamic_cast<Field *>(item))
            return view.makeRow(*this, *field);
        return view.makeRow(*this);
    }

    std::vector<Class *> items;
    bool dirty = false;
    std::vector<Signal::Connection> itemCons; // Position by position.
    std::unordered_set<Class const *> gone;   // Of the items, those that are dying or have died.
};

} // namespace ZR::VOM::GUI::Trees
