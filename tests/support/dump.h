#pragma once

#include "zrVOMGUI/graph/ObjectGraphView.h"

#include <string>
#include <vector>

namespace ZR::VOM::GUI {

/// What tests compare of a view, as text that tells nothing of addresses. Objects go by their
/// string field "name", and are sorted by it.
///
/// Links that don't agree with themselves at both ends and along their chain say so, with a "!".

/// Such as "a>b a>c:2 b>c/1": from, to, the number of references if it isn't 1, and the number of
/// intermediate nodes if there are any.
std::string dumpLinks(ObjectGraphView &view);

/// Such as "a b+ c+*": each node, with + if it is visible and * if it is selected.
std::string dumpNodes(ObjectGraphView &view);

/// The label of each node, such as "a=Thing 'a'", each on a line of its own.
std::string dumpLabels(ObjectGraphView &view);

/// The names of objects, sorted, such as "a b c".
std::string namesOf(std::vector<RefT<VOM::Object>> const &objs);
/// The same in the order given.
std::string namesInOrder(std::vector<RefT<VOM::Object>> const &objs);
std::string nameOf(Ptr const &obj);

} // namespace ZR::VOM::GUI
