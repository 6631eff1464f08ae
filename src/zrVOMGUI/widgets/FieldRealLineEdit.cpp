#include "zrVOMGUI/widgets/FieldRealLineEdit.h"

namespace ZR::VOM::GUI {

template class FieldManagerT<FieldReal>;
template class FieldWidgetT<ZR::GUI::LineEdit, FieldReal>;
template class FieldLineEditT<FieldReal, ZR::GUI::LineEdit>;

FieldRealLineEdit::FieldRealLineEdit(QWidget *parent)
    : FieldLineEditT(parent)
{
}

FieldRealLineEdit::FieldRealLineEdit(ObjPtrs &objs, QWidget *parent)
    : FieldLineEditT(objs, parent)
{
}

FieldRealLineEdit::FieldRealLineEdit(ObjsManager &objs, QWidget *parent)
    : FieldLineEditT(objs, parent)
{
}

FieldRealLineEdit::~FieldRealLineEdit() = default;

void FieldRealLineEdit::setPrec(unsigned int newPrec)
{
    getOutputFormat().precision(newPrec);
    update();
}

} // namespace ZR::VOM::GUI
