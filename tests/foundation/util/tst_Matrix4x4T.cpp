#include "zrVOMGUI/foundation/util/Matrix4x4T.h"

#include <QTest>

#include <numeric>
#include <type_traits>

using ZR::Matrix4x4D;
using ZR::Matrix4x4T;

static_assert(sizeof(Matrix4x4D) == 128);
static_assert(std::is_trivially_copyable_v<Matrix4x4D>);

class tst_Matrix4x4T : public QObject {
    Q_OBJECT
private slots:
    void isTheIdentityAtFirst();
    void liesInMemoryRowByRow();
    void comparesValueByValue();
    void multipliesRowsByColumns();
};

namespace {

template <class T>
Matrix4x4T<T> counting(T first)
{
    std::array<T, 16> values;
    std::iota(values.begin(), values.end(), first);
    return Matrix4x4T<T>(values);
}

} // namespace

void tst_Matrix4x4T::isTheIdentityAtFirst()
{
    const Matrix4x4D matrix;
    for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t column = 0; column < 4; ++column)
            QCOMPARE(matrix(row, column), row == column ? 1.0 : 0.0);
}

void tst_Matrix4x4T::liesInMemoryRowByRow()
{
    Matrix4x4D matrix = counting(0.0);
    QCOMPARE(matrix(1, 0), 4.0);
    QCOMPARE(matrix(2, 3), 11.0);
    QCOMPARE(matrix.data()[11], 11.0);
    matrix(3, 1) = 99;
    QCOMPARE(matrix.data()[13], 99.0);
}

void tst_Matrix4x4T::comparesValueByValue()
{
    Matrix4x4D matrix = counting(0.0);
    QVERIFY(matrix == counting(0.0));
    matrix(3, 3) = 0;
    QVERIFY(matrix != counting(0.0));
}

void tst_Matrix4x4T::multipliesRowsByColumns()
{
    const Matrix4x4T<int> a = counting(1);
    const Matrix4x4T<int> identity;
    QVERIFY(a * identity == a);
    QVERIFY(identity * a == a);
    const Matrix4x4T<int> square = a * a;
    QCOMPARE(square(0, 0), 1 * 1 + 2 * 5 + 3 * 9 + 4 * 13);
    QCOMPARE(square(2, 1), 9 * 2 + 10 * 6 + 11 * 10 + 12 * 14);
}

QTEST_APPLESS_MAIN(tst_Matrix4x4T)
#include "tst_Matrix4x4T.moc"
