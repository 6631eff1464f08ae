#include "support/LiteralRoutes.h"

using namespace ZR;
using namespace ZR::VOM::GUI;
using Graph::Node;

bool findAllRoutesLiterally(RefT<Node> const &node, std::set<RefT<Node>> &targets,
                            std::set<RefT<Node>> &path, std::set<RefT<Node>> &route)
{
    bool found = false;
    RefT<Node> saved;
    if (targets.count(node) != 0) {
        if (targets.size() == 1) {
            route.insert(node);
            return true;
        }
        saved = node;
        found = true;
        targets.erase(node);
    }
    path.insert(node);
    for (Graph::LinkMap const *links : {&node->linkedOut, &node->linkedIn}) {
        for (auto const &[farPtr, entry] : *links) {
            const RefT<Node> far(farPtr);
            if (path.count(far) == 0)
                found |= findAllRoutesLiterally(far, targets, path, route);
        }
    }
    if (found) {
        route.insert(node);
        if (saved)
            targets.insert(saved);
    }
    path.erase(node);
    return found;
}
