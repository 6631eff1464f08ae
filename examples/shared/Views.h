#pragma once

#include <zrVOMGUI/foundation/vom/Exporter.h>
#include <zrVOMGUI/foundation/vom/Importer.h>
#include <zrVOMGUI/foundation/vom/MField.h>
#include <zrVOMGUI/foundation/vom/Path.h>
#include <zrVOMGUI/presentation/ObjectIconDB.h>
#include <zrVOMGUI/trees/ObjectTreeView.h>

#include <Qt>

#include <vector>

namespace Example {

/// Icons for the classes of the project.
ZR::RefT<ZR::VOM::GUI::ObjectIconDB> makeIcons();

/// What writes and reads the XML that widgets exchange with other programs.
ZR::RefT<ZR::VOM::Exporter> makeExporter();
ZR::RefT<ZR::VOM::Xml::Importer> makeImporter();

//! [dropped]
/// What to put into the model on a drop. What came from another program is new, without copies.
inline auto const &dropped(Qt::DropAction action,
                           std::vector<ZR::RefT<ZR::VOM::Object>> const &objs,
                           std::vector<ZR::RefT<ZR::VOM::Object>> const &copies)
{
    return action == Qt::CopyAction && !copies.empty() ? copies : objs;
}
//! [dropped]

/// Makes the objects of a list the top rows of a tree, also when the list changes. The tree must
/// live as long as it does so.
void showList(ZR::VOM::GUI::ObjectTreeView &tree, ZR::VOM::MFieldRef &list);

//! [openRows]
/// Opens the rows that paths lead to, each after those that it lies in. They are selected then.
template <class Tree>
void openRows(Tree &tree, std::vector<ZR::VOM::Path> const &paths)
{
    for (ZR::VOM::Path const &path : paths) {
        tree.setSel({path});
        for (auto const &row : tree.getSel())
            row->setOpen(true);
    }
}
//! [openRows]

} // namespace Example
