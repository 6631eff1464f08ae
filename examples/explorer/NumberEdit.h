#pragma once

#include "zrVOMGUI/widgets/FieldRealLineEdit.h"

namespace Explorer {

/// A field editor that tells what it found.
class NumberEdit : public ZR::VOM::GUI::FieldRealLineEdit {
    Q_OBJECT

public:
    using FieldRealLineEdit::FieldRealLineEdit;

signals:
    /// `count` of the objects have the field, and whether they differ.
    void found(std::size_t count, bool mixed);

protected:
    void onUpdate(std::size_t count, bool mixed, double const &value) override
    {
        FieldRealLineEdit::onUpdate(count, mixed, value);
        emit found(count, mixed);
    }
};

} // namespace Explorer
