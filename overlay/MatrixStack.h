#pragma once

/// The stack of 2-D transforms that groups of manipulators nest in: 32 levels, level 0 the
/// identity, one stack for the process.

#include <optional>

#include "products/OFX/Support/Rect.h"

namespace Orvane {

/// A 2-D affine transform of row vectors: (x', y', 1) = (x, y, 1) times the matrix. The translation
/// stands in the third row.
struct Matrix3 {
    float m[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    friend bool operator==(const Matrix3&, const Matrix3&) = default;
};

Matrix3 operator*(const Matrix3& a, const Matrix3& b);
/// Nothing for a transform without an inverse.
std::optional<Matrix3> inverseOf(const Matrix3& matrix);
OvPoint transformed(OvPoint point, const Matrix3& matrix);

/// Copies the top one level up and answers it. At the last level nothing happens.
const Matrix3& pushMatrixStack();
/// Drops the top and answers the one below. At level 0 nothing happens.
const Matrix3& popMatrixStack();
/// The top becomes `matrix` times the top: what is drawn next is transformed by it first.
void multMatrixStack(const Matrix3& matrix);
const Matrix3& topOfMatrixStack();
/// Leads from outside of all groups into the coordinates of the top; kept with it.
const std::optional<Matrix3>& inverseOfMatrixStack();

/// Multiplies OpenGL's model-view matrix by a transform, or by the top.
void multiplyModelview(const Matrix3& matrix);
void applyMatrixStack();

}  // namespace Orvane
