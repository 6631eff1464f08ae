#include "designer/catalogue.h"

#include "designer/icons.h"

#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/trees/ObjectTreeView.h"
#include "zrVOMGUI/trees/v1/ObjectTreeView.h"
#include "zrVOMGUI/trees/v2/ObjectTreeView.h"
#include "zrVOMGUI/widgets/FieldRealLineEdit.h"
#include "zrVOMGUI/widgets/ObjectView.h"
#include "zrVOMGUI/widgets/PathListView.h"

namespace Designer {
namespace {

namespace GUI = ZR::VOM::GUI;

template <class Widget>
QWidget *make(QWidget *parent)
{
    return new Widget(parent);
}

} // namespace

std::vector<WidgetEntry> const &catalogue()
{
    static const std::vector<WidgetEntry> entries{
        {"ZR::VOM::GUI::ObjectGraphView", "zrVOMGUI/graph/ObjectGraphView.h", "objectGraphView",
         "[Designer::GraphTip]Objects as a graph",
         "[Designer::GraphHelp]Shows objects as boxes in layers, joined by lines. The program adds "
         "the objects and names the fields that count as links.",
         QSize(480, 360), graphIcon, make<GUI::ObjectGraphView>},
        {"ZR::VOM::GUI::ObjectTreeView", "zrVOMGUI/trees/ObjectTreeView.h", "objectTreeView",
         "[Designer::TreeTip]Objects as a tree",
         "[Designer::TreeHelp]Shows objects, and what they link to, as rows that open. Names can "
         "be edited, and objects dragged and dropped.",
         QSize(240, 320), treeIcon, make<GUI::ObjectTreeView>},
        {"ZR::VOM::GUI::V2::ObjectTreeView", "zrVOMGUI/trees/v2/ObjectTreeView.h",
         "objectTreeViewV2", "[Designer::TreeV2Tip]Objects as a tree, second generation",
         "[Designer::TreeV2Help]Shows objects, and what they link to, as rows that open. Adding or "
         "removing a top row closes all of them.",
         QSize(240, 320), secondTreeIcon, make<GUI::V2::ObjectTreeView>},
        {"ZR::VOM::GUI::V1::ObjectTreeView", "zrVOMGUI/trees/v1/ObjectTreeView.h",
         "objectTreeViewV1", "[Designer::TreeV1Tip]Objects as a tree, first generation",
         "[Designer::TreeV1Help]Shows objects, and what they link to, as a tree view of Qt. Rows "
         "are fetched as they come into sight, and the program can save which are expanded.",
         QSize(240, 320), firstTreeIcon, make<GUI::V1::ObjectTreeView>},
        {"ZR::VOM::GUI::ObjectView", "zrVOMGUI/widgets/ObjectView.h", "objectView",
         "[Designer::SlotTip]A slot for one object",
         "[Designer::SlotHelp]Shows one object by icon and label. Another one can be dropped into "
         "it, and its own dragged out.",
         QSize(200, 32), slotIcon, make<GUI::ObjectView>},
        {"ZR::VOM::GUI::PathListView", "zrVOMGUI/widgets/PathListView.h", "pathListView",
         "[Designer::PathsTip]A list of paths",
         "[Designer::PathsHelp]Shows paths through the model, such as the results of a search: a "
         "row of cells for each.",
         QSize(320, 160), pathsIcon, make<GUI::PathListView>},
        {"ZR::VOM::GUI::FieldRealLineEdit", "zrVOMGUI/widgets/FieldRealLineEdit.h",
         "fieldRealLineEdit", "[Designer::RealTip]An editor of a real field",
         "[Designer::RealHelp]Shows and sets the field of one name on a whole list of objects. "
         "Empty where they don't agree.",
         QSize(120, 28), realIcon, make<GUI::FieldRealLineEdit>},
    };
    return entries;
}

} // namespace Designer
