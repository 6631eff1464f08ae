#pragma once

#include "trees/TreeScene.h"
#include "zrVOMGUI/transfer/MimeData.h"

#include <QDropEvent>
#include <QMimeData>

#include <memory>

namespace tree_test {

/// A drop of a scene's "e" by copy.
struct DroppedObject {
    template <class Scene>
    explicit DroppedObject(Scene &scene)
        : objs{scene.e()}
        , mime(GUI::createMimeData({}, &objs, nullptr))
        , event(QPointF(1, 1), Qt::CopyAction, mime.get(), Qt::LeftButton, {})
    {
    }
    Things objs;
    std::unique_ptr<QMimeData> mime;
    QDropEvent event;
};

} // namespace tree_test
