#include "zrVOMGUI/foundation/vom/MField.h"
#include "zrVOMGUI/foundation/vom/Path.h"

#include <QTest>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;

namespace {

static_assert(Path::Object == 0 && Path::Field == 1 && Path::Value == 2);
static_assert(std::is_same_v<decltype(Path::Object), Path::Type>);
static_assert(std::is_copy_constructible_v<Path> && std::is_copy_assignable_v<Path>);
static_assert(std::is_constructible_v<Path, PtrT<Object> const &>);
static_assert(std::is_constructible_v<Path, Object const &>);
static_assert(std::is_same_v<decltype(Path::Entry::field), PtrT<Field>>);
static_assert(std::is_same_v<decltype(Path::Entry::index), std::size_t>);

} // namespace

class tst_Path : public QObject {
    Q_OBJECT

private slots:
    void init();

    void pathWithoutStepsEndsAtItsRoot();
    void pathOfNullLeadsNowhere();
    void deadRootReadsNull();

    void pushFieldEndsAtTheField_data();
    void pushFieldEndsAtTheField();
    void pushValueEndsAtTheValue_data();
    void pushValueEndsAtTheValue();
    void valueGoesOnFromItsFieldWithoutAStep();
    void valueOfAnotherFieldIsAFurtherStep();
    void secondValueOfTheSameListIsAFurtherStep();
    void pathDescendsThroughObjects();

    void popDropsTheLastStep();
    void popEndsAtTheObjectThatTheStepLeft();
    void popOfAFieldAloneEndsAtTheRoot();
    void popOfTheRootDoesNothing();
    void poppedFieldCanBeTurnedIntoItsValue();
    void clearKeepsTheRoot();

    void getObjFollowsTheModel();
    void nullLinkLeadsNowhere();
    void positionOutsideTheListLeadsNowhere();
    void deadFieldLeadsNowhere();
    void deadTargetLeadsNowhere();

    void getRefusesAStepPastTheEnd();
    void copyIsIndependent();
    void assignmentTakesStepsAndType();
    void pathOwnsNothing();

private:
    Field &field(int code) { return *root->getField(std::size_t(code)); }

    // One field of each kind; the single links lead to `target`, the lists to null and `target`.
    enum { Int, Real, String, PtrLink, RefLink, PtrList, RefList };
    RefT<Object> root, target;
};

void tst_Path::init()
{
    root = RefT<Object>(new Object(0));
    target = RefT<Object>(new Object(0));
    addField<FieldInt>(*root, "int", 5);
    addField<FieldReal>(*root, "real", 2.5);
    addField<FieldString>(*root, "string", "text");
    addField<FieldPtr>(*root, "ptr", target);
    addField<FieldRef>(*root, "ref", target);
    addField<MFieldPtr>(*root, "ptrs", std::vector<PtrT<Object>>{{}, target});
    addField<MFieldRef>(*root, "refs", std::vector<RefT<Object>>{{}, target});
    addField<FieldRef>(*target, "next");
}

void tst_Path::pathWithoutStepsEndsAtItsRoot()
{
    for (Path const &path : {Path(*root), Path(PtrT<Object>(root))}) {
        QCOMPARE(path.getNum(), std::size_t(0));
        QCOMPARE(path.getType(), Path::Object);
        QCOMPARE(path.getRoot().get(), root.get());
        QCOMPARE(path.getObj().get(), root.get());
    }
}

void tst_Path::pathOfNullLeadsNowhere()
{
    Path path{PtrT<Object>()};
    QCOMPARE(path.getType(), Path::Object);
    QVERIFY(!path.getObj());
    path.pushField(field(RefLink));
    QCOMPARE(path.getType(), Path::Field);
    QCOMPARE(path.getNum(), std::size_t(1));
    QVERIFY(!path.getRoot());
}

void tst_Path::deadRootReadsNull()
{
    const Path path(*root);
    root.reset();
    QVERIFY(!path.getObj());
    QVERIFY(!path.getRoot());
    QCOMPARE(path.getType(), Path::Object);
}

void tst_Path::pushFieldEndsAtTheField_data()
{
    QTest::addColumn<int>("code");
    char const *const names[] = {"int",
                                 "real",
                                 "string",
                                 "watching link",
                                 "owning link",
                                 "list of watching links",
                                 "list of owning links"};
    for (int i = Int; i <= RefList; ++i)
        QTest::newRow(names[i]) << i;
}

void tst_Path::pushFieldEndsAtTheField()
{
    QFETCH(int, code);
    Path path(*root);
    path.pushField(field(code));
    QCOMPARE(path.getType(), Path::Field);
    QCOMPARE(path.getNum(), std::size_t(1));
    QCOMPARE(path.getLast().field.get(), &field(code));
    QCOMPARE(path.getLast().index, std::size_t(0));
    QVERIFY(!path.getObj());
}

void tst_Path::pushValueEndsAtTheValue_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("index"); // -1 for the single value.
    QTest::addColumn<bool>("leadsToTheTarget");
    QTest::newRow("int") << int(Int) << -1 << false;
    QTest::newRow("real") << int(Real) << -1 << false;
    QTest::newRow("string") << int(String) << -1 << false;
    QTest::newRow("watching link") << int(PtrLink) << -1 << true;
    QTest::newRow("owning link") << int(RefLink) << -1 << true;
    QTest::newRow("null in a list of watching links") << int(PtrList) << 0 << false;
    QTest::newRow("list of watching links") << int(PtrList) << 1 << true;
    QTest::newRow("null in a list of owning links") << int(RefList) << 0 << false;
    QTest::newRow("list of owning links") << int(RefList) << 1 << true;
}

void tst_Path::pushValueEndsAtTheValue()
{
    QFETCH(int, code);
    QFETCH(int, index);
    QFETCH(bool, leadsToTheTarget);
    Path path(*root);
    if (index < 0)
        path.pushValue(field(code));
    else
        path.pushValue(static_cast<MField &>(field(code)), std::size_t(index));
    QCOMPARE(path.getType(), Path::Value);
    QCOMPARE(path.getNum(), std::size_t(1));
    QCOMPARE(path.getLast().field.get(), &field(code));
    QCOMPARE(path.getLast().index, std::size_t(index < 0 ? 0 : index));
    QCOMPARE(path.getObj().get(), leadsToTheTarget ? target.get() : nullptr);
}

void tst_Path::valueGoesOnFromItsFieldWithoutAStep()
{
    Path path(*root);
    path.pushField(field(RefList));
    path.pushValue(static_cast<MField &>(field(RefList)), 1);
    QCOMPARE(path.getNum(), std::size_t(1));
    QCOMPARE(path.getType(), Path::Value);
    QCOMPARE(path.getLast().index, std::size_t(1));
    QCOMPARE(path.getObj().get(), target.get());
}

void tst_Path::valueOfAnotherFieldIsAFurtherStep()
{
    Path path(*root);
    path.pushField(field(RefLink));
    path.pushValue(field(PtrLink));
    QCOMPARE(path.getNum(), std::size_t(2));
    QCOMPARE(path.get(0).field.get(), &field(RefLink));
    QCOMPARE(path.get(1).field.get(), &field(PtrLink));
}

void tst_Path::secondValueOfTheSameListIsAFurtherStep()
{
    Path path(*root);
    path.pushValue(static_cast<MField &>(field(RefList)), 1);
    path.pushValue(static_cast<MField &>(field(RefList)), 0);
    QCOMPARE(path.getNum(), std::size_t(2));
    QCOMPARE(path.get(0).index, std::size_t(1));
    QCOMPARE(path.get(1).index, std::size_t(0));
}

void tst_Path::pathDescendsThroughObjects()
{
    const RefT<Object> last(new Object(0));
    FieldRef &next = static_cast<FieldRef &>(*target->findField("next"));
    next.set(last);
    Path path(*root);
    path.pushValue(static_cast<MField &>(field(RefList)), 1);
    path.pushField(next);
    QCOMPARE(path.getType(), Path::Field);
    QVERIFY(!path.getObj());
    path.pushValue(next);
    QCOMPARE(path.getNum(), std::size_t(2));
    QCOMPARE(path.getObj().get(), last.get());
}

void tst_Path::popDropsTheLastStep()
{
    Path path(*root);
    path.pushValue(field(RefLink));
    path.pushField(*target->findField("next"));
    path.pop();
    QCOMPARE(path.getNum(), std::size_t(1));
    QCOMPARE(path.getLast().field.get(), &field(RefLink));
}

void tst_Path::popEndsAtTheObjectThatTheStepLeft()
{
    Path path(*root);
    path.pushValue(field(RefLink));
    path.pushField(*target->findField("next"));
    path.pop();
    QCOMPARE(path.getType(), Path::Object);
    QCOMPARE(path.getObj().get(), target.get());
}

void tst_Path::popOfAFieldAloneEndsAtTheRoot()
{
    Path path(*root);
    path.pushField(field(RefLink));
    path.pop();
    QCOMPARE(path.getType(), Path::Object);
    QCOMPARE(path.getNum(), std::size_t(0));
    QCOMPARE(path.getObj().get(), root.get());
}

void tst_Path::popOfTheRootDoesNothing()
{
    Path path(*root);
    path.pop();
    QCOMPARE(path.getType(), Path::Object);
    QCOMPARE(path.getObj().get(), root.get());
}

// How a row of a value makes its path from that of its field's row.
void tst_Path::poppedFieldCanBeTurnedIntoItsValue()
{
    Path path(*root);
    path.pushField(field(RefList));
    const PtrT<Field> last = path.getLast().field;
    path.pop();
    path.pushValue(static_cast<MField &>(*last), 1);
    QCOMPARE(path.getNum(), std::size_t(1));
    QCOMPARE(path.getType(), Path::Value);
    QCOMPARE(path.getObj().get(), target.get());
}

void tst_Path::clearKeepsTheRoot()
{
    Path path(*root);
    path.pushValue(field(RefLink));
    path.pushField(*target->findField("next"));
    path.clear();
    QCOMPARE(path.getNum(), std::size_t(0));
    QCOMPARE(path.getType(), Path::Object);
    QCOMPARE(path.getObj().get(), root.get());
}

void tst_Path::getObjFollowsTheModel()
{
    Path path(*root);
    path.pushValue(field(RefLink));
    const RefT<Object> other(new Object(0));
    static_cast<FieldRef &>(field(RefLink)).set(other);
    QCOMPARE(path.getObj().get(), other.get());
}

void tst_Path::nullLinkLeadsNowhere()
{
    Path path(*target);
    path.pushValue(*target->findField("next"));
    QCOMPARE(path.getType(), Path::Value);
    QVERIFY(!path.getObj());
}

void tst_Path::positionOutsideTheListLeadsNowhere()
{
    auto &list = static_cast<MFieldRef &>(field(RefList));
    Path path(*root);
    path.pushValue(list, 1);
    Path far(*root);
    far.pushValue(list, std::size_t(-1));
    QVERIFY(!far.getObj());
    list.replace(0, 1, {});
    QVERIFY(!path.getObj());
    QCOMPARE(path.getType(), Path::Value);
    list.replace(0, 0, {nullptr});
    QCOMPARE(path.getObj().get(), target.get());
}

void tst_Path::deadFieldLeadsNowhere()
{
    Path path(*root);
    path.pushValue(field(RefLink));
    Path ended(*root);
    ended.pushField(field(RefLink));
    removeField(*root, field(RefLink));
    QVERIFY(!path.getObj());
    QVERIFY(!path.getLast().field);
    QCOMPARE(path.getType(), Path::Value);
    QVERIFY(!ended.getLast().field);
    QCOMPARE(ended.getType(), Path::Field);
    QCOMPARE(ended.getNum(), std::size_t(1));
}

void tst_Path::deadTargetLeadsNowhere()
{
    Path path(*root);
    path.pushValue(static_cast<MField &>(field(PtrList)), 1);
    static_cast<FieldRef &>(field(RefLink)).set(nullptr);
    static_cast<MFieldRef &>(field(RefList)).replace(0, 2, {});
    target.reset();
    QVERIFY(!path.getObj());
}

void tst_Path::getRefusesAStepPastTheEnd()
{
    Path path(*root);
    QVERIFY_EXCEPTION_THROWN(path.getLast(), std::out_of_range);
    QVERIFY_EXCEPTION_THROWN(path.get(0), std::out_of_range);
    path.pushField(field(Int));
    QVERIFY_EXCEPTION_THROWN(path.get(1), std::out_of_range);
}

void tst_Path::copyIsIndependent()
{
    Path path(*root);
    path.pushField(field(RefLink));
    const Path copy(path);
    path.pushValue(field(RefLink));
    path.pushField(*target->findField("next"));
    QCOMPARE(copy.getNum(), std::size_t(1));
    QCOMPARE(copy.getType(), Path::Field);
    QCOMPARE(copy.getRoot().get(), root.get());
}

void tst_Path::assignmentTakesStepsAndType()
{
    Path path(*root);
    path.pushValue(field(RefLink));
    Path other(*target);
    other = path;
    QCOMPARE(other.getRoot().get(), root.get());
    QCOMPARE(other.getType(), Path::Value);
    QCOMPARE(other.getObj().get(), target.get());
    other = Path(*target);
    QCOMPARE(other.getNum(), std::size_t(0));
    QCOMPARE(other.getObj().get(), target.get());
}

void tst_Path::pathOwnsNothing()
{
    Path path(*root);
    path.pushValue(field(RefLink));
    const PtrT<Object> watcher(root);
    root.reset();
    QVERIFY(!watcher);
    QVERIFY(!path.getRoot());
    QVERIFY(!path.get(0).field);
}

QTEST_APPLESS_MAIN(tst_Path)

#include "tst_Path.moc"
