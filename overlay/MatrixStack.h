#pragma once

/// The stack of 2-D transforms of nested manipulator groups: 32 levels, level 0 the identity, one
/// stack for the process.

#include <optional>

#include "products/OFX/Support/Rect.h"

namespace Orvane {

/// A 2-D affine transform of row vectors: (x', y', 1) = (x, y, 1) times the matrix. The translation
/// is in the third row.
struct Matrix3 {
    float m[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    friend bool operator==(const Matrix3&, const Matrix3&) = default;
};

Matrix3 operator*(const Matrix3& a, const Matrix3& b);
/// Empty for a transform without an inverse.
std::optional<Matrix3> inverseOf(const Matrix3& matrix);
OvPoint transformed(OvPoint point, const Matrix3& matrix);

/// Copies the top one level up and returns it. At the last level nothing happens.
const Matrix3& pushMatrixStack();
/// Drops the top and returns the one below. At level 0 nothing happens.
const Matrix3& popMatrixStack();
/// Replaces the top by `matrix` times the top: later drawing is transformed by `matrix` first.
void multMatrixStack(const Matrix3& matrix);
const Matrix3& topOfMatrixStack();
/// Converts from outside of all groups to the coordinates of the top; stored with it.
const std::optional<Matrix3>& inverseOfMatrixStack();

/// Multiplies OpenGL's model-view matrix by a transform, or by the top.
void multiplyModelview(const Matrix3& matrix);
void applyMatrixStack();

}  // namespace Orvane
