#include "support/GraphModel.h"

using namespace ZR;
using VOM::FieldString;
using VOM::MFieldPtr;

namespace {

constexpr char nameField[] = "number";
constexpr char linksField[] = "links";
constexpr std::size_t nameIndex = 0, linksIndex = 1;

} // namespace

GraphModel::GraphModel(unsigned numNodes)
{
    objs.reserve(numNodes);
    for (unsigned i = 0; i < numNodes; ++i) {
        objs.emplace_back(new VOM::Object);
        VOM::addField<FieldString>(*objs.back(), nameField);
        VOM::addField<MFieldPtr>(*objs.back(), linksField);
    }
}

void GraphModel::fill(NumberedGraph const &graph)
{
    std::vector<std::vector<PtrT<VOM::Object>>> heads(objs.size());
    for (auto const &[tail, head] : graph.links)
        heads[tail].emplace_back(objs[head]);
    for (unsigned i = 0; i < objs.size(); ++i) {
        static_cast<FieldString &>(*objs[i]->getField(nameIndex)).set(std::to_string(i));
        links(i).replace(0, links(i).getNum(), heads[i]);
    }
}

MFieldPtr &GraphModel::links(unsigned node) const
{
    return static_cast<MFieldPtr &>(*objs[node]->getField(linksIndex));
}

void GraphModel::addTo(VOM::GUI::ObjectGraphView &view) const
{
    view.setFieldName(nameField);
    view.setTypeName(false);
    view.addOutLinkField({}, linksField);
    view.add(objs, false);
}
