#include "zrVOMGUI/foundation/vom/MField.h"

#include <QTest>

#include <cstddef>
#include <string>
#include <vector>

#include <malloc.h>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define HEAP_IS_INSTRUMENTED 1
#else
#define HEAP_IS_INSTRUMENTED 0
#endif

namespace {

/// An object with one field of each kind, and no listener.
RefT<Object> newFullObject()
{
    RefT<Object> object(new Object(0));
    addField<FieldInt>(*object, "int");
    addField<FieldReal>(*object, "real");
    addField<FieldString>(*object, "string");
    addField<FieldPtr>(*object, "ptr");
    addField<FieldRef>(*object, "ref");
    addField<MFieldPtr>(*object, "ptrs");
    addField<MFieldRef>(*object, "refs");
    return object;
}

std::size_t bytesInUse()
{
    return mallinfo2().uordblks;
}

constexpr int numMeasured = 1000;

} // namespace

/// What models of millions of objects cost.
class tst_ModelSize : public QObject {
    Q_OBJECT

private slots:
    void objectWithAllSevenFieldsStaysSmall();
    void namesCostNothingTheSecondTime();
    void deadObjectsGiveTheirMemoryBack();
    void listEntryCostsItsPointersAlone();
};

void tst_ModelSize::objectWithAllSevenFieldsStaysSmall()
{
    newFullObject();
    std::vector<RefT<Object>> objects(numMeasured);
    const std::size_t before = bytesInUse();
    for (RefT<Object> &object : objects)
        object = newFullObject();
    const std::size_t bytes = (bytesInUse() - before) / numMeasured;
    // A sanitizer's heap tells nothing by mallinfo2(), so there is no figure to compare.
    if (!HEAP_IS_INSTRUMENTED)
        QVERIFY2(bytes > 500 && bytes < 1228, qPrintable(QString::number(bytes)));
}

void tst_ModelSize::namesCostNothingTheSecondTime()
{
    // Longer than what the heap keeps at hand, and counts as in use, after it was given back.
    const std::string name(10000, 'n');
    Object object(0);
    addField<FieldInt>(object, name.c_str());
    const std::size_t before = bytesInUse();
    addField<FieldInt>(object, name.c_str());
    QVERIFY(HEAP_IS_INSTRUMENTED || bytesInUse() - before < 400);
}

void tst_ModelSize::deadObjectsGiveTheirMemoryBack()
{
    newFullObject();
    const std::size_t before = bytesInUse();
    {
        std::vector<RefT<Object>> objects;
        for (int i = 0; i < numMeasured; ++i)
            objects.push_back(newFullObject());
    }
    // The heap keeps a few pieces of each size at hand.
    QVERIFY(HEAP_IS_INSTRUMENTED || bytesInUse() - before < numMeasured * 1228 / 50);
}

void tst_ModelSize::listEntryCostsItsPointersAlone()
{
    const RefT<Object> target(new Object(0));
    Object object(0);
    const std::size_t before = bytesInUse();
    auto &refs = addField<MFieldRef>(object, "refs");
    refs.replace(0, 0, std::vector<RefT<Object>>(numMeasured, target));
    const std::size_t forRefs = bytesInUse() - before;
    auto &ptrs = addField<MFieldPtr>(object, "ptrs");
    ptrs.replace(0, 0, std::vector<PtrT<Object>>(numMeasured, target));
    const std::size_t forPtrs = bytesInUse() - before - forRefs;
    // A reference has 3 words; a watching link has as many again to hear of its target's death.
    const std::size_t word = sizeof(void *);
    QVERIFY(HEAP_IS_INSTRUMENTED || forRefs < numMeasured * 3 * word + 500);
    QVERIFY(HEAP_IS_INSTRUMENTED || forPtrs < numMeasured * 6 * word + 500);
}

QTEST_APPLESS_MAIN(tst_ModelSize)

#include "tst_ModelSize.moc"
