#pragma once

#include "trees/v1/ModelScene.h"
#include "zrVOMGUI/transfer/MimeData.h"

#include <QMimeData>

namespace model_test {

/// What a host is told of a drop, or asked before one. Keeps what lies behind the pointers.
struct DropTold {
    explicit DropTold(ObjectTreeModel::SigDropData const &sigData)
        : action(sigData.action)
        , objs(*sigData.objs)
        , copies(*sigData.copyObjs)
        , fromXml(sigData.fromXml)
        , rowPath(textOf(*sigData.rowPath))
        , row(sigData.row)
        , fieldPath(textOf(*sigData.fieldPath))
        , index(sigData.index)
    {
    }
    std::string place() const
    {
        return rowPath + ' ' + std::to_string(row) + ": " + fieldPath + ' ' +
               std::to_string(static_cast<std::int64_t>(index));
    }

    Qt::DropAction action;
    Things objs, copies;
    bool fromXml;
    std::string rowPath;
    std::int64_t row;
    std::string fieldPath;
    std::uint64_t index;
};

/// A payload, and the lists that it names.
struct Payload {
    explicit Payload(Things const &dropped, Things const &copied = {},
                     RefT<Exporter> const &exporter = {})
        : objs(dropped)
        , copies(copied)
        , mime(GUI::createMimeData(exporter, &objs, copied.empty() ? nullptr : &copies))
    {
    }
    Things objs, copies;
    std::unique_ptr<QMimeData> mime;
};

struct DropScene : Scene {
    explicit DropScene(RefT<Xml::Importer> const &importer = {})
        : Scene({}, importer)
    {
        showFetched(3);
        model->sigDrop.connect([this](auto const &sigData) { drops.emplace_back(sigData); });
    }
    bool canDrop(QMimeData const *mime, QModelIndex const &parent, int row = -1,
                 Qt::DropAction action = Qt::CopyAction, int column = 0) const
    {
        return model->canDropMimeData(mime, action, row, column, parent);
    }
    bool drop(QMimeData const *mime, QModelIndex const &parent, int row = -1,
              Qt::DropAction action = Qt::CopyAction, int column = 0)
    {
        return model->dropMimeData(mime, action, row, column, parent);
    }
    /// A host that notes what it is asked and answers by the target field.
    void askHost(std::string const &allowedField)
    {
        model->sigCanDrop.connect([this, allowedField](auto const &sigData) {
            asked.push_back(DropTold(sigData).place());
            *sigData.result = sigData.fieldPath->getLast().field->name == allowedField;
        });
    }

    std::vector<DropTold> drops;
    std::vector<std::string> asked;
};

} // namespace model_test
