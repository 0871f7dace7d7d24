// VxMatrix: dense row-major matrices and the 4 x 4 placements built from them. Inversion is
// Gauss-Jordan with partial pivoting on a copy, so a failed inversion leaves the matrix as it
// was. No decompositions beyond that, and no attempt to keep rotations orthonormal.
#include <interfaces/VxMatrix.h>

#include <interfaces/VxTolerance.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {
// Pivots below this fraction of the largest entry count as zero: the matrix is singular for
// every purpose we have (condition number beyond 1e12 loses all digits of a millimetre model).
constexpr double kRelativePivotTolerance = 1e-12;
} // namespace

VxMatrix::VxMatrix() : VxMatrix(4, 4) {}

VxMatrix::VxMatrix(int rows, int columns)
    : m_rows(std::max(rows, 0)), m_cols(std::max(columns, 0)),
      m_a(static_cast<std::size_t>(m_rows) * static_cast<std::size_t>(m_cols), 0.0) {}

std::vector<double> VxMatrix::GetRow(int r) const {
    if (r < 0 || r >= m_rows) {
        return {};
    }
    return std::vector<double>((*this)[r], (*this)[r] + m_cols);
}

std::vector<double> VxMatrix::GetCol(int c) const {
    if (c < 0 || c >= m_cols) {
        return {};
    }
    std::vector<double> col(static_cast<std::size_t>(m_rows));
    for (int r = 0; r < m_rows; ++r) {
        col[static_cast<std::size_t>(r)] = (*this)[r][c];
    }
    return col;
}

void VxMatrix::SetIdentity() {
    std::fill(m_a.begin(), m_a.end(), 0.0);
    for (int i = 0; i < std::min(m_rows, m_cols); ++i) {
        (*this)[i][i] = 1.0;
    }
}

bool VxMatrix::IsIdentity() const {
    if (m_rows != m_cols) {
        return false;
    }
    for (int r = 0; r < m_rows; ++r) {
        for (int c = 0; c < m_cols; ++c) {
            if (!VxTolerance::IsZero((*this)[r][c] - (r == c ? 1.0 : 0.0))) {
                return false;
            }
        }
    }
    return true;
}

bool VxMatrix::Inverse() {
    if (m_rows != m_cols || m_rows == 0) {
        return false;
    }
    const int n = m_rows;
    double scale = 0.0;
    for (double v : m_a) {
        if (!std::isfinite(v)) {
            return false;
        }
        scale = std::max(scale, std::fabs(v));
    }
    if (scale == 0.0) {
        return false;
    }
    const double tolerance = kRelativePivotTolerance * scale;

    VxMatrix a(*this);
    VxMatrix inv = Identity(n);
    for (int col = 0; col < n; ++col) {
        int pivotRow = col;
        double best = std::fabs(a[col][col]);
        for (int r = col + 1; r < n; ++r) {
            if (std::fabs(a[r][col]) > best) {
                best = std::fabs(a[r][col]);
                pivotRow = r;
            }
        }
        if (best <= tolerance) {
            return false;
        }
        if (pivotRow != col) {
            for (int c = 0; c < n; ++c) {
                std::swap(a[col][c], a[pivotRow][c]);
                std::swap(inv[col][c], inv[pivotRow][c]);
            }
        }
        const double p = a[col][col];
        for (int c = 0; c < n; ++c) {
            a[col][c] /= p;
            inv[col][c] /= p;
        }
        for (int r = 0; r < n; ++r) {
            if (r == col) {
                continue;
            }
            const double f = a[r][col];
            if (f == 0.0) {
                continue;
            }
            for (int c = 0; c < n; ++c) {
                a[r][c] -= f * a[col][c];
                inv[r][c] -= f * inv[col][c];
            }
        }
    }
    *this = inv;
    return true;
}

VxMatrix VxMatrix::Transposed() const {
    VxMatrix t(m_cols, m_rows);
    for (int r = 0; r < m_rows; ++r) {
        for (int c = 0; c < m_cols; ++c) {
            t[c][r] = (*this)[r][c];
        }
    }
    return t;
}

void VxMatrix::ToArray(double* out) const {
    if (out == nullptr) {
        return;
    }
    // GL reads element (row r, column c) at out[c * 4 + r]. A matrix smaller than 4 x 4 (the
    // 3 x 3 rotations) lands in the upper-left block of an identity, so callers always get 16.
    for (int c = 0; c < 4; ++c) {
        for (int r = 0; r < 4; ++r) {
            out[c * 4 + r] = (r < m_rows && c < m_cols) ? (*this)[r][c] : (r == c ? 1.0 : 0.0);
        }
    }
}

VxMatrix VxMatrix::FromArray(const double* in) {
    VxMatrix m = Identity(4);
    if (in == nullptr) {
        return m;
    }
    for (int c = 0; c < 4; ++c) {
        for (int r = 0; r < 4; ++r) {
            m[r][c] = in[c * 4 + r];
        }
    }
    return m;
}

VxMatrix VxMatrix::operator*(const VxMatrix& m) const {
    VxMatrix p(m_rows, m.m_cols);
    if (m_cols != m.m_rows) {
        return p;
    }
    for (int r = 0; r < m_rows; ++r) {
        for (int k = 0; k < m_cols; ++k) {
            const double a = (*this)[r][k];
            if (a == 0.0) {
                continue;
            }
            for (int c = 0; c < m.m_cols; ++c) {
                p[r][c] += a * m[k][c];
            }
        }
    }
    return p;
}

bool VxMatrix::operator==(const VxMatrix& m) const {
    return m_rows == m.m_rows && m_cols == m.m_cols && m_a == m.m_a;
}

VxPoint VxMatrix::Transform(const VxPoint& p) const {
    if (m_rows < 3 || m_cols < 3) {
        return p;
    }
    const bool affine = m_rows >= 4 && m_cols >= 4;
    double out[3];
    for (int r = 0; r < 3; ++r) {
        const double* row = (*this)[r];
        out[r] = row[0] * p[0] + row[1] * p[1] + row[2] * p[2] + (affine ? row[3] : 0.0);
    }
    if (affine) {
        // A projective bottom row (a projection matrix) divides through; placements have w = 1.
        const double* row = (*this)[3];
        const double w = row[0] * p[0] + row[1] * p[1] + row[2] * p[2] + row[3];
        if (w != 1.0 && w != 0.0) {
            return VxPoint(out[0] / w, out[1] / w, out[2] / w);
        }
    }
    return VxPoint(out[0], out[1], out[2]);
}

VxVector VxMatrix::Transform(const VxVector& v) const {
    if (m_rows < 3 || m_cols < 3) {
        return v;
    }
    double out[3];
    for (int r = 0; r < 3; ++r) {
        const double* row = (*this)[r];
        out[r] = row[0] * v[0] + row[1] * v[1] + row[2] * v[2];
    }
    return VxVector(out[0], out[1], out[2]);
}

VxMatrix VxMatrix::Identity(int n) {
    VxMatrix m(n, n);
    m.SetIdentity();
    return m;
}

VxMatrix VxMatrix::s_GetRotationMatrix(const VxVector& axis, double angle) {
    VxMatrix m = Identity(4);
    VxVector k(axis);
    if (!k.Normalize()) {
        return m;
    }
    // Rodrigues: R = cos I + sin [k]x + (1 - cos) k k^T.
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double t = 1.0 - c;
    const double x = k[0], y = k[1], z = k[2];
    m[0][0] = c + t * x * x;
    m[0][1] = t * x * y - s * z;
    m[0][2] = t * x * z + s * y;
    m[1][0] = t * x * y + s * z;
    m[1][1] = c + t * y * y;
    m[1][2] = t * y * z - s * x;
    m[2][0] = t * x * z - s * y;
    m[2][1] = t * y * z + s * x;
    m[2][2] = c + t * z * z;
    return m;
}

VxMatrix VxMatrix::Translation(const VxVector& t) {
    VxMatrix m = Identity(4);
    m[0][3] = t[0];
    m[1][3] = t[1];
    m[2][3] = t[2];
    return m;
}
