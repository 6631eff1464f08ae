#pragma once

#include "PackageModel.h"

#include "zrVOMGUI/widgets/ObjectView.h"

namespace Explorer {

/// A slot for what a link field refers to: a single link, or the first entry of a list.
///
/// Follows the field. Carries out what the user drops, drags away or clears, as far as the model
/// lets it; what it refuses is said.
class FieldSlot : public ZR::VOM::GUI::ObjectView {
    Q_OBJECT

public:
    /// Takes objects of that class. `hint` is what an empty slot shows. The model isn't owned.
    FieldSlot(PackageModel &shownModel, char const *acceptedClass, QString const &hint,
              QWidget *parent = nullptr);
    ~FieldSlot() override;

    /// Null, or a field that holds no links, disables the slot.
    void setField(ZR::PtrT<ZR::VOM::Field> const &newField);
    /// Takes the link away.
    void unlink();

signals:
    /// The slot holds another object, or none.
    void changed();
    /// For the user to read once.
    void said(QString const &text);

protected:
    void onConfirm() override;
    QString onUpdateText() override;
    bool onCanDrop(Objects const &objects, bool copied, QDropEvent &event) override;
    void onDrop(Objects const &objects, bool copied, QDropEvent &event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void connectField();
    void disconnectField();
    void showField();
    bool canLink(ZR::RefT<Object> const &object);
    void sayRefusal(QString const &text);

    PackageModel &model;
    const std::string className;
    const QString emptyText;
    QLabel *const textLabel;
    ZR::PtrT<ZR::VOM::Field> field;
    std::vector<ZR::Signal::Connection> connections;
    QString lastRefusal; // Of the drag that is over the slot.
};

} // namespace Explorer
