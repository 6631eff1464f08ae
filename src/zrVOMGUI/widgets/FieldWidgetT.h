#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/widgets/FieldManagerT.h"

#include <QByteArray>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <algorithm>
#include <ios>
#include <optional>
#include <sstream>
#include <string>

class QHideEvent;
class QShowEvent;

namespace ZR::VOM::GUI {

/// A line that shows and edits the field of one name on a whole list of objects.
///
/// Shows the value on which all objects that have the field agree; where they don't agree, and
/// where none has it, the line is empty. The user confirms a text by Return or Enter, and each
/// object gets the value. A text that is none is replaced by what the model says.
///
/// `LineEdit` is ZR::GUI::LineEdit or derived from it, and has a constructor with a parent. `F` is
/// a field class of one value, whose value goes into a stream and comes out of one. The format
/// streams of the line tell how.
///
/// The line follows the model only while it is visible: a hidden one is empty and costs the model
/// nothing. It is disabled at first, and enabled by itself where there is something to edit; use
/// setSensitive() in place of setEnabled(). Owns no object. Listeners of the model may destroy the
/// line at any moment. GUI thread only.
template <class LineEdit, class F>
class ZRVOMGUI_EXPORT FieldWidgetT : public LineEdit, public ObjsManager {
public:
    using Value = typename F::Value;

    /// Over an own list.
    explicit FieldWidgetT(QWidget *parent)
        : LineEdit(parent)
        , manager(static_cast<ObjsManager &>(*this))
    {
        begin();
    }
    /// Over the caller's list, which must outlive the line.
    FieldWidgetT(ObjPtrs &objs, QWidget *parent)
        : LineEdit(parent)
        , ObjsManager(objs)
        , manager(static_cast<ObjsManager &>(*this))
    {
        begin();
    }
    /// Over the list of another editor or manager.
    FieldWidgetT(ObjsManager &objs, QWidget *parent)
        : LineEdit(parent)
        , ObjsManager(objs)
        , manager(static_cast<ObjsManager &>(*this))
    {
        begin();
    }

    /// The name of the field; empty by default, which is none.
    std::string const &getField() const { return manager.getField(); }
    /// The name that is set already does nothing.
    void setField(std::string const &name)
    {
        if (name == getField())
            return;
        const QPointer<QWidget> self(this);
        manager.setField(name);
        // A line that was shown without a name isn't bound yet.
        if (self)
            bindIfVisible();
    }

    /// Whether the line may be enabled at all; true by default.
    bool isSensitive() const { return sensitive; }
    void setSensitive(bool on)
    {
        sensitive = on;
        update();
    }

    /// Whether a confirmed text is taken; true by default. Otherwise it is replaced by the model's
    /// value.
    /// KEPT: doesn't touch whether the line is read-only, for derived classes that show by other
    /// means that it can't be edited. FieldLineEditT does.
    bool isEditable() const { return editable; }
    void setEditable(bool on)
    {
        editable = on;
        update();
    }

    /// Whether a confirmed value creates the field on objects that lack it; false by default.
    bool isCreateOnDemand() const { return createOnDemand; }
    void setCreateOnDemand(bool on)
    {
        createOnDemand = on;
        update();
    }

    /// Repaints of a part, as Qt has them.
    using LineEdit::update;
    /// Reads the model again. A text that was typed and not confirmed is replaced.
    void update() { manager.update(); }

protected:
    FieldManagerT<F> &field() { return manager; }

    void showEvent(QShowEvent *event) override
    {
        LineEdit::showEvent(event);
        bindIfVisible();
    }
    void hideEvent(QHideEvent *event) override
    {
        LineEdit::hideEvent(event);
        manager.unbindObjs();
    }

    /// Sets what the text says on all objects.
    void onConfirm() override
    {
        const std::optional<Value> value = editable ? readValue() : std::nullopt;
        if (value)
            manager.set(*value, createOnDemand);
        else
            update();
    }

    /// After each look at the model: `count` objects have the field, `mixed` says that they don't
    /// agree, `value` is that of the first of them. Enables the line and shows the value.
    /// KEPT: a line that may create the field is enabled also while it is hidden, when no object
    /// counts. So hosts tell before a form is shown where users will be able to type.
    virtual void onUpdate(std::size_t count, bool mixed, Value const &value)
    {
        const bool canCreate = createOnDemand && !getObjs().empty() && !getField().empty();
        const QPointer<QWidget> self(this);
        this->setEnabled(sensitive && (manager.getFieldCount() != 0 || canCreate));
        if (!self)
            return;
        // KEPT: mixed values have no text of their own, so that users type into an empty line.
        if (count != 0 && !mixed)
            showValue(value);
        else
            LineEdit::clear();
    }

    /// KEPT: a visible line is disabled before it is bound again, so that the focus goes on to
    /// another widget. Users type no number for objects that they didn't see.
    void onSetObjs() override
    {
        const QPointer<QWidget> self(this);
        manager.unbindObjs();
        if (self)
            bindIfVisible();
        if (self)
            update();
    }

private:
    void begin()
    {
        this->setEnabled(false);
        manager.sigModify.connect(
            [this](auto const &found) { onUpdate(found.count, found.mixed, *found.value); });
    }

    void bindIfVisible()
    {
        if (this->isVisible() && !getField().empty() && !getObjs().empty())
            manager.bindObjs();
    }

    void showValue(Value const &value)
    {
        std::ostringstream out;
        out.copyfmt(this->getOutputFormat());
        out.exceptions(std::ios::goodbit);
        // No value has more to tell, and a stream takes as much memory as it is asked for.
        constexpr std::streamsize maxLength = 1100;
        out.precision(std::min(out.precision(), maxLength));
        out.width(std::min(out.width(), maxLength));
        out << value;
        if (out)
            LineEdit::setText(QString::fromStdString(out.str()));
        else
            LineEdit::clear();
    }

    /// Up to the first NUL.
    /// KEPT: what stands behind the value plays no part, for users who type a unit.
    std::optional<Value> readValue() const
    {
        const QByteArray bytes = this->text().toUtf8();
        std::istringstream in(std::string(bytes.constData()));
        in.copyfmt(this->getInputFormat());
        in.exceptions(std::ios::goodbit);
        Value value{};
        in >> value;
        return in.fail() ? std::nullopt : std::optional<Value>(std::move(value));
    }

    FieldManagerT<F> manager; // Over the list of this line.
    bool sensitive = true;
    bool editable = true;
    bool createOnDemand = false;
};

} // namespace ZR::VOM::GUI
