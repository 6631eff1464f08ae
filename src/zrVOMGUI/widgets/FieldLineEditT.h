#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/gui/LineEdit.h"
#include "zrVOMGUI/widgets/FieldWidgetT.h"

namespace ZR::VOM::GUI {

/// A FieldWidgetT that is read-only where it isn't editable. What hosts derive their own from:
///
///     class FieldIntLineEdit : public FieldLineEditT<FieldInt> {
///     public:
///         using FieldLineEditT::FieldLineEditT;
///     };
template <class F, class LineEdit = ZR::GUI::LineEdit>
class ZRVOMGUI_EXPORT FieldLineEditT : public FieldWidgetT<LineEdit, F> {
    using Base = FieldWidgetT<LineEdit, F>;

public:
    using typename Base::ObjPtrs;

    /// Over an own list.
    explicit FieldLineEditT(QWidget *parent = nullptr)
        : Base(parent)
    {
    }
    /// Over the caller's list, which must outlive the line.
    FieldLineEditT(ObjPtrs &objs, QWidget *parent)
        : Base(objs, parent)
    {
    }
    /// Over the list of another editor or manager.
    FieldLineEditT(ObjsManager &objs, QWidget *parent)
        : Base(objs, parent)
    {
    }

    /// Whether a confirmed text is taken, and whether the user can type one; true by default.
    void setEditable(bool on)
    {
        this->setReadOnly(!on);
        Base::setEditable(on);
    }
};

} // namespace ZR::VOM::GUI
