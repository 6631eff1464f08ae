#pragma once

#include "zrVOMGUI/widgets/FieldLineEditT.h"

namespace ZR::VOM::GUI {

extern template class FieldManagerT<FieldReal>;
extern template class FieldWidgetT<ZR::GUI::LineEdit, FieldReal>;
extern template class FieldLineEditT<FieldReal, ZR::GUI::LineEdit>;

/// A line that edits one real field on a whole list of objects.
///
///     auto *const editor = new FieldRealLineEdit(form);
///     editor->setField("size");
///     editor->setObjs({house, door});
///
/// What is a plain value is also a Qt property, for forms and style sheets; `precision` is the one
/// in force.
class ZRVOMGUI_EXPORT FieldRealLineEdit : public FieldLineEditT<FieldReal, ZR::GUI::LineEdit> {
    Q_OBJECT
    Q_PROPERTY(QString field READ readField WRITE writeField)
    Q_PROPERTY(uint precision READ readPrecision WRITE writePrecision)
    Q_PROPERTY(bool sensitive READ isSensitive WRITE setSensitive)
    Q_PROPERTY(bool editable READ isEditable WRITE setEditable)
    Q_PROPERTY(bool createOnDemand READ isCreateOnDemand WRITE setCreateOnDemand)

public:
    /// Over an own list.
    explicit FieldRealLineEdit(QWidget *parent = nullptr);
    /// Over the caller's list, which must outlive the line.
    FieldRealLineEdit(ObjPtrs &objs, QWidget *parent);
    /// Over the list of another editor or manager.
    FieldRealLineEdit(ObjsManager &objs, QWidget *parent);
    ~FieldRealLineEdit() override;

    /// Sets the precision of the output format: how many digits a value is shown with.
    void setPrec(unsigned int newPrec);
    /// 0, whatever setPrec() was told; getOutputFormat().precision() is what values are shown with.
    unsigned int getPrec() const { return prec; }

private:
    // The settings, as Qt's properties have them.
    QString readField() const { return QString::fromStdString(getField()); }
    void writeField(QString const &name) { setField(name.toStdString()); }
    uint readPrecision() const { return static_cast<uint>(getOutputFormat().precision()); }
    void writePrecision(uint digits) { setPrec(digits); }

    // KEPT: setPrec() doesn't write it, so that it stays 0. The precision in force is the stream's,
    // for hosts that set the stream's format themselves.
    const unsigned int prec = 0;
};

} // namespace ZR::VOM::GUI
