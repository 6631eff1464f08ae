#pragma once

#include <array>
#include <cstddef>

namespace ZR {

/// A matrix of 4 rows and 4 columns. The 16 values lie in memory row by row, with nothing between
/// them.
template <class T>
class Matrix4x4T {
public:
    static constexpr std::size_t size = 4;

    /// The identity.
    Matrix4x4T()
    {
        for (std::size_t i = 0; i < size; ++i)
            (*this)(i, i) = T(1);
    }
    /// Row by row.
    explicit Matrix4x4T(std::array<T, size * size> const &rowByRow)
        : values(rowByRow)
    {
    }

    /// \pre row and column are below 4.
    T &operator()(std::size_t row, std::size_t column) { return values[row * size + column]; }
    T const &operator()(std::size_t row, std::size_t column) const
    {
        return values[row * size + column];
    }

    /// All 16 values in memory order.
    T *data() { return values.data(); }
    T const *data() const { return values.data(); }

    friend bool operator==(Matrix4x4T const &a, Matrix4x4T const &b)
    {
        return a.values == b.values;
    }
    friend bool operator!=(Matrix4x4T const &a, Matrix4x4T const &b) { return !(a == b); }

    friend Matrix4x4T operator*(Matrix4x4T const &a, Matrix4x4T const &b)
    {
        Matrix4x4T product{std::array<T, size * size>()};
        for (std::size_t row = 0; row < size; ++row)
            for (std::size_t column = 0; column < size; ++column)
                for (std::size_t i = 0; i < size; ++i)
                    product(row, column) += a(row, i) * b(i, column);
        return product;
    }

private:
    std::array<T, size * size> values{};
};

using Matrix4x4D = Matrix4x4T<double>;

} // namespace ZR
