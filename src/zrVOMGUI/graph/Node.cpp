#include "zrVOMGUI/graph/private/Node.h"
#include "zrVOMGUI/graph/ObjectGraphView.h"

namespace ZR::VOM::GUI::Graph {

Node::Node(ObjectGraphView &owner, RefT<Object> const &object)
    : view(&owner)
    , obj(object)
    , visible(!object)
{
    if (object)
        watch = std::make_unique<ObjectWatch>();
    view->updateIcon(*this);
    view->updateLabel(*this);
    if (obj)
        view->watchObject(*this);
}

Node::~Node()
{
    if (watch || !linkedIn.empty() || !linkedOut.empty())
        leaveGraph();
}

void Node::leaveGraph()
{
    view->dropLinks(*this);
    visible = false;
    if (!watch)
        return;
    watch->addFieldConn.disconnect();
    watch->removeFieldConn.disconnect();
    watch->nameFieldConn.disconnect();
    watch.reset();
}

Bounds boundsOf(Node const &node)
{
    Bounds box;
    box.left = node.x - node.width / 2;
    box.top = node.y - node.height / 2;
    box.right = box.left + node.width;
    box.bottom = box.top + node.height;
    return box;
}

} // namespace ZR::VOM::GUI::Graph
