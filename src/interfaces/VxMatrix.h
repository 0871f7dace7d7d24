// VxMatrix: a dense rows x columns matrix of doubles, row-major. 4 x 4 matrices act on column
// vectors (p' = M p) with the translation in the last column, the convention the placements of
// the model use; ToArray turns that into the column-major array glMultMatrixd takes.
#pragma once

#include <interfaces/VxPoint.h>
#include <interfaces/VxVector.h>

#include <cstddef>
#include <vector>

class VxMatrix {
public:
    // A new matrix is all zero. The default size is 4 x 4.
    VxMatrix();
    VxMatrix(int rows, int columns);
    VxMatrix(const VxMatrix&) = default;
    VxMatrix& operator=(const VxMatrix&) = default;

    int Rows() const { return m_rows; }
    int Cols() const { return m_cols; }
    // Pointer to the first element of row r; rows are contiguous.
    double* operator[](int r) { return m_a.data() + static_cast<std::size_t>(r) * m_cols; }
    const double* operator[](int r) const {
        return m_a.data() + static_cast<std::size_t>(r) * m_cols;
    }
    std::vector<double> GetRow(int r) const;
    std::vector<double> GetCol(int c) const;

    // Sets the diagonal to one and everything else to zero (also for non-square matrices).
    void SetIdentity();
    bool IsIdentity() const;
    // Inverts in place. A non-square or singular matrix answers false and stays unchanged.
    bool Inverse();
    VxMatrix Transposed() const;
    // Writes a 4 x 4 matrix column by column: the 16 numbers glMultMatrixd and glLoadMatrixd take.
    // Always writes 16 numbers: a smaller matrix (a 3 x 3 rotation) fills the upper-left block
    // of an identity, a larger one gives its upper-left 4 x 4 block.
    void ToArray(double* out) const;
    // Reads 16 numbers in the column-major order of ToArray.
    static VxMatrix FromArray(const double* in);

    // Matrix product; when the inner sizes differ the result is a zero rows x m.Cols() matrix.
    VxMatrix operator*(const VxMatrix& m) const;
    bool operator==(const VxMatrix& m) const;
    bool operator!=(const VxMatrix& m) const { return !(*this == m); }

    // For 4 x 4 (or 3 x 3) matrices: applies the matrix to a point (with translation) or a
    // vector (linear part only). A 4 x 4 with a projective bottom row divides by w (unless w is
    // 0); other sizes give the argument back.
    VxPoint Transform(const VxPoint& p) const;
    VxVector Transform(const VxVector& v) const;

    static VxMatrix Identity(int n = 4);
    // 4 x 4 rotation of angle radians about axis through the origin, right-handed.
    static VxMatrix s_GetRotationMatrix(const VxVector& axis, double angle);
    static VxMatrix Translation(const VxVector& t);

private:
    int m_rows = 4;
    int m_cols = 4;
    std::vector<double> m_a;
};
