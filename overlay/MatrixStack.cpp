#include "overlay/MatrixStack.h"

#include <array>
#include <optional>

#include "platform/OpenGL.h"

namespace Orvane {
namespace {

class Stack {
public:
    static constexpr std::size_t kLevels = 32;

    const Matrix3& top() const { return levels_[depth_]; }
    const std::optional<Matrix3>& inverse() const { return inverse_; }
    void push()
    {
        if (depth_ + 1 >= kLevels) return;
        ++depth_;
        levels_[depth_] = levels_[depth_ - 1];
    }
    void pop()
    {
        if (depth_ == 0) return;
        --depth_;
        inverse_ = inverseOf(top());
    }
    void multiply(const Matrix3& matrix)
    {
        levels_[depth_] = matrix * levels_[depth_];
        inverse_ = inverseOf(top());
    }

private:
    std::array<Matrix3, kLevels> levels_;
    std::size_t depth_ = 0;
    std::optional<Matrix3> inverse_ = Matrix3{};
};

Stack& stack()
{
    static Stack only;
    return only;
}

}  // namespace

Matrix3 operator*(const Matrix3& a, const Matrix3& b)
{
    Matrix3 product;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            product.m[row][column] = a.m[row][0] * b.m[0][column] + a.m[row][1] * b.m[1][column] +
                                     a.m[row][2] * b.m[2][column];
        }
    }
    return product;
}

std::optional<Matrix3> inverseOf(const Matrix3& matrix)
{
    // The adjugate over the determinant.
    const auto& m = matrix.m;
    const auto minor = [&m](int row, int column) {
        const int r1 = (row + 1) % 3, r2 = (row + 2) % 3;
        const int c1 = (column + 1) % 3, c2 = (column + 2) % 3;
        return m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1];
    };
    const float determinant = m[0][0] * minor(0, 0) + m[0][1] * minor(0, 1) + m[0][2] * minor(0, 2);
    if (determinant == 0.0f) return std::nullopt;
    Matrix3 inverse;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            inverse.m[row][column] = minor(column, row) / determinant;
        }
    }
    return inverse;
}

OvPoint transformed(OvPoint point, const Matrix3& matrix)
{
    const auto& m = matrix.m;
    return {.x = point.x * m[0][0] + point.y * m[1][0] + m[2][0],
            .y = point.x * m[0][1] + point.y * m[1][1] + m[2][1]};
}

const Matrix3& pushMatrixStack()
{
    stack().push();
    return stack().top();
}

const Matrix3& popMatrixStack()
{
    stack().pop();
    return stack().top();
}

void multMatrixStack(const Matrix3& matrix)
{
    stack().multiply(matrix);
}

const Matrix3& topOfMatrixStack()
{
    return stack().top();
}

const std::optional<Matrix3>& inverseOfMatrixStack()
{
    return stack().inverse();
}

void multiplyModelview(const Matrix3& matrix)
{
    const OpenGL* gl = openGL();
    if (gl == nullptr) return;
    const auto& m = matrix.m;
    // Column by column; the third dimension stays as it is.
    const std::array<GLfloat, 16> columns = {m[0][0], m[0][1], 0, 0, m[1][0], m[1][1], 0, 0,
                                             0,       0,       1, 0, m[2][0], m[2][1], 0, 1};
    gl->glMultMatrixf(columns.data());
}

void applyMatrixStack()
{
    multiplyModelview(stack().top());
}

}  // namespace Orvane
