#include "trees/SharedBehaviour.h"
#include "trees/TreeScene.h"
#include "trees/v1/ViewScene.h"
#include "zrVOMGUI/foundation/util/text.h"
#include "zrVOMGUI/trees/v2/ObjectTreeView.h"

#include <QDropEvent>

#include <iostream>
#include <sstream>

using namespace tree_test;

namespace {

/// A tree of rows, of either generation.
template <class RowView>
struct RowScene : SceneT<RowView> {
    using View = RowView;
    using Handle = typename View::RowHandle;

    RowScene()
        : outputBefore(std::cout.rdbuf(output.rdbuf()))
    {
    }
    ~RowScene() { std::cout.rdbuf(outputBefore); }

    static std::string emptyLabel() { return ZR::getLocText(GUI::_ObjectTreeViewVoidRowLabel); }
    std::size_t add(RefT<Object> const &obj, std::size_t pos)
    {
        return this->view->addRow(obj, pos);
    }
    bool accepts(Field &field) const { return this->view->isAccepted(field); }
    void close(Path const &to) { this->row(to)->setOpen(false); }
    bool hasRow(Path const &to) { return this->row(to) != nullptr; }
    bool hasIcon(Path const &to) { return !this->row(to)->getIcon().isNull(); }
    void setHideFields(bool on) { this->view->setHideFields(on); }

    /// As dump(), but for rows that have no line of their own.
    std::string dumpRows()
    {
        this->view->viewport()->grab();
        std::string text;
        const int height = this->view->getRowHeight();
        for (int y = height / 2;; y += height) {
            const Handle found = this->view->findRow({5, y});
            if (!found)
                return text;
            std::string dots;
            for (Handle up = found->getParent(); up && up->getParent(); up = up->getParent())
                if (!up->isHidden())
                    dots += '.';
            text += (text.empty() ? "" : " ") + dots + found->getText().toStdString();
        }
    }

    std::unique_ptr<QMimeData> dragged(std::vector<Path> const &paths)
    {
        std::vector<Handle> rows;
        for (Path const &to : paths)
            rows.push_back(this->row(to));
        return std::unique_ptr<QMimeData>(this->view->makeMimeData(rows));
    }
    bool canDrop(QMimeData const &mime, Path const &onto, std::size_t index, Qt::DropAction action)
    {
        QDropEvent event = eventOf(mime, action);
        return this->view->onCanDrop(event, this->row(onto), index);
    }
    void drop(QMimeData const &mime, Path const &onto, std::size_t index, Qt::DropAction action)
    {
        QDropEvent event = eventOf(mime, action);
        this->view->onDrop(event, this->row(onto), index);
    }
    static Path fieldPathOf(typename View::SigDropData const &sigData) { return sigData.path; }
    static Things objsOf(typename View::SigDropData const &sigData) { return sigData.objs; }

private:
    static QDropEvent eventOf(QMimeData const &mime, Qt::DropAction action)
    {
        // The proposed action follows the modifiers.
        const Qt::KeyboardModifiers modifiers = action == Qt::MoveAction   ? Qt::ShiftModifier
                                                : action == Qt::LinkAction ? Qt::AltModifier
                                                                           : Qt::NoModifier;
        return QDropEvent(QPointF(1, 1), Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, &mime,
                          Qt::LeftButton, modifiers);
    }

    // The second generation traces drops.
    std::ostringstream output;
    std::streambuf *const outputBefore;
};

/// The view on the item model.
struct ItemScene : view_test::ViewScene {
    using View = view_test::View1;

    static std::string emptyLabel()
    {
        return ZR::getLocText(GUI::V1::_ObjectTreeModelRowLabelObj0);
    }
    std::size_t add(RefT<Object> const &obj, std::size_t pos)
    {
        return view->addRow(PtrT<Object>(obj), pos);
    }
    bool accepts(Field &field) const { return view->isAccepted(PtrT<Field>(field)); }
    void close(Path const &to) { view->collapse(row(to)); }
    bool hasRow(Path const &to) { return row(to).isValid(); }
    bool hasIcon(Path const &to)
    {
        return !row(to).data(Qt::DecorationRole).value<QIcon>().isNull();
    }
    void setHideFields(bool on) { view->hideFields(on); }
    std::string dumpRows() { return dump(); }

    std::unique_ptr<QMimeData> dragged(std::vector<Path> const &paths)
    {
        QModelIndexList rows;
        for (Path const &to : paths)
            rows.append(row(to));
        return std::unique_ptr<QMimeData>(view->items().mimeData(rows));
    }
    bool canDrop(QMimeData const &mime, Path const &onto, std::size_t index, Qt::DropAction action)
    {
        return view->items().canDropMimeData(&mime, action, int(index), 0, row(onto));
    }
    void drop(QMimeData const &mime, Path const &onto, std::size_t index, Qt::DropAction action)
    {
        view->items().dropMimeData(&mime, action, int(index), 0, row(onto));
    }
    static Path fieldPathOf(View::SigDropData const &sigData) { return *sigData.fieldPath; }
    static Things objsOf(View::SigDropData const &sigData) { return *sigData.objs; }
};

template <class Scene>
void addClaims()
{
    QTest::addColumn<int>("claim");
    int number = 0;
    for (Claim const &claim : SharedBehaviourT<Scene>::claims())
        QTest::newRow(claim.name) << number++;
}

template <class Scene>
void checkClaim()
{
    QFETCH(int, claim);
    SharedBehaviourT<Scene>::claims().at(std::size_t(claim)).check();
}

using First = RowScene<ObjectTreeView>;
using Second = RowScene<GUI::V2::ObjectTreeView>;

} // namespace

/// What the three trees do alike, told once.
class tst_SharedBehaviour : public QObject {
    Q_OBJECT

private slots:
    void firstGeneration_data() { addClaims<First>(); }
    void firstGeneration() { checkClaim<First>(); }
    void secondGeneration_data() { addClaims<Second>(); }
    void secondGeneration() { checkClaim<Second>(); }
    void itemModel_data() { addClaims<ItemScene>(); }
    void itemModel() { checkClaim<ItemScene>(); }
};

QTEST_MAIN(tst_SharedBehaviour)
#include "tst_SharedBehaviour.moc"
