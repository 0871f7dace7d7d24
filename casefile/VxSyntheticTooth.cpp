// VxSyntheticTooth: crown and root meshes of synthetic teeth; see the header
// for the design space. The crown rings, the split of a root trunk into roots
// and the apex fans are laid out so that every edge joins exactly two faces of
// opposite direction: readers of the case rely on the teeth being closed
// (inside tests, penetration depths, ray parity).
#include "VxSyntheticTooth.h"

#include "VxSyntheticRandom.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kPi = 3.14159265358979323846;

double Clamp01(double x) {
    return x < 0.0 ? 0.0 : (x > 1.0 ? 1.0 : x);
}

double Smooth(double x) {
    x = Clamp01(x);
    return x * x * (3.0 - 2.0 * x);
}

// A side-wall profile: c at the cervix, 1 at height fraction m, r at the rim;
// flat at the cervix and at the height of contour. A rounded wall keeps turning
// inwards up to the rim, so that it runs on into the occlusal surface as one
// convex face; otherwise it stands upright at the rim (the thin incisal edge).
double Profile(double t, double c, double m, double r, bool rounded) {
    if (t < m) {
        return c + (1.0 - c) * Smooth(t / m);
    }
    const double x = Clamp01((t - m) / (1.0 - m));
    return 1.0 + (r - 1.0) * (rounded ? std::pow(x, 1.7) : Smooth(x));
}

// Unit superellipse direction at parameter angle theta.
void SuperDir(double theta, double n, double& cu, double& cv) {
    const double c = std::cos(theta);
    const double s = std::sin(theta);
    cu = std::copysign(std::pow(std::fabs(c), 2.0 / n), c);
    cv = std::copysign(std::pow(std::fabs(s), 2.0 / n), s);
}

bool IsPosterior(VxToothClass c) {
    return c == VxToothClass::FirstPremolar || c == VxToothClass::SecondPremolar ||
           c == VxToothClass::FirstMolar || c == VxToothClass::SecondMolar;
}

bool IsMolar(VxToothClass c) {
    return c == VxToothClass::FirstMolar || c == VxToothClass::SecondMolar;
}

// Occlusal height above the occlusal base at normalised position (un, vn) of
// the outline.
double OcclusalHeight(const VxToothDesign& d, double un, double vn) {
    double h = 0.0;
    for (const VxToothCusp& c : d.cusps) {
        const double du = (un - c.u) / (c.sigmaU > 0.0 ? c.sigmaU : c.sigma);
        const double dv = (vn - c.v) / c.sigma;
        h += c.height * std::exp(-(du * du + dv * dv));
    }
    // Rounded incisal corners: the edge falls away along a quarter circle-like
    // curve over the outer third of the width.
    const double corner = un > 0.0 ? d.mesialCorner : d.distalCorner;
    if (corner > 0.0) {
        const double x = Clamp01((std::fabs(un) - 0.45) / 0.55);
        h -= corner * (1.0 - std::sqrt(std::max(0.0, 1.0 - x * x)));
    }
    if (d.fissureDepth > 0.0) {
        // Central groove mesio-distally; molars add the bucco-lingual one.
        h -= d.fissureDepth * std::exp(-vn * vn / 0.02) * Clamp01(1.0 - un * un);
        if (IsMolar(d.toothClass)) {
            h -= 0.8 * d.fissureDepth * std::exp(-un * un / 0.02) * Clamp01(1.0 - vn * vn);
        }
    }
    return h;
}

class MeshOut {
public:
    explicit MeshOut(VxToothGeometry& g) : m_g(g) {}
    int Add(double u, double v, double w) {
        m_g.positions.emplace_back(u, v, w);
        return static_cast<int>(m_g.positions.size()) - 1;
    }
    int Add(const VxPoint& p) { return Add(p.x(), p.y(), p.z()); }
    const VxPoint& P(int id) const { return m_g.positions[static_cast<size_t>(id)]; }
    void Face(int a, int b, int c, FaceStyle_e s) {
        m_g.triangles.push_back(a);
        m_g.triangles.push_back(b);
        m_g.triangles.push_back(c);
        m_g.styles.push_back(s);
    }
    // Rings counter-clockwise seen from +w; `upper` is the next ring towards the
    // crown's top pole along the surface (for a root, the ring nearer the
    // cervix).
    void Strip(const std::vector<int>& lower, const std::vector<int>& upper, FaceStyle_e s) {
        const size_t n = lower.size();
        for (size_t i = 0; i < n; ++i) {
            const size_t j = (i + 1) % n;
            Face(lower[i], lower[j], upper[j], s);
            Face(lower[i], upper[j], upper[i], s);
        }
    }
    void TopFan(const std::vector<int>& ring, int pole, FaceStyle_e s) {
        const size_t n = ring.size();
        for (size_t i = 0; i < n; ++i) {
            Face(ring[i], ring[(i + 1) % n], pole, s);
        }
    }
    void BottomFan(const std::vector<int>& ring, int apex, FaceStyle_e s) {
        const size_t n = ring.size();
        for (size_t i = 0; i < n; ++i) {
            Face(ring[(i + 1) % n], ring[i], apex, s);
        }
    }

private:
    VxToothGeometry& m_g;
};

struct RootParams {
    double lengthScale = 1.0;
    double bendScale = 1.0;
    FaceStyle_e style = FaceStyle_BasicRoot;
};

// Root sectors as parameter angles of the cervix ring where the trunk splits,
// by tooth.
std::vector<double> SplitAngles(const VxToothDesign& d) {
    if (d.rootCount == 2 && d.upper) {
        return {0.0, kPi}; // buccal and palatal roots
    }
    if (d.rootCount == 2) {
        return {0.5 * kPi, 1.5 * kPi}; // mesial and distal roots
    }
    if (d.rootCount == 3) {
        return {0.5 * kPi, 7.0 * kPi / 6.0, 11.0 * kPi / 6.0}; // MB | DB | palatal
    }
    return {};
}

// Root length factor of the root whose sector starts at split k: palatal roots
// are the longest.
double RootLengthFactor(const VxToothDesign& d, size_t k) {
    if (d.rootCount == 3) {
        static const double f[3] = {0.9, 1.05, 0.95}; // DB, palatal, MB
        return f[k];
    }
    if (d.rootCount == 2) {
        return k == 0 ? 0.95 : 1.0;
    }
    return 1.0;
}

// Builds the roots below `ring` (the cervix ring, counter-clockwise from +w)
// down to the apices.
void BuildRoots(MeshOut& out, const VxToothDesign& d, const std::vector<int>& cervix,
                const RootParams& rp) {
    const int n = static_cast<int>(cervix.size());
    std::vector<int> ring = cervix;
    double wSplit = out.P(cervix[0]).z();
    const std::vector<double> splits = SplitAngles(d);

    // A multi-rooted tooth has a short trunk first, so that the furcation sits
    // below the cervix.
    if (!splits.empty()) {
        double cu = 0.0;
        double cv = 0.0;
        for (int id : cervix) {
            cu += out.P(id).x();
            cv += out.P(id).y();
        }
        cu /= n;
        cv /= n;
        const double trunk = 0.32 * d.crownHeight;
        const int trunkRings = 3;
        for (int j = 1; j <= trunkRings; ++j) {
            const double s = 1.0 - 0.04 * j;
            std::vector<int> next(static_cast<size_t>(n));
            for (int i = 0; i < n; ++i) {
                const VxPoint& p = out.P(cervix[static_cast<size_t>(i)]);
                next[static_cast<size_t>(i)] = out.Add(cu + (p.x() - cu) * s, cv + (p.y() - cv) * s,
                                                       wSplit - trunk * j / trunkRings);
            }
            out.Strip(next, ring, rp.style);
            ring = next;
        }
        wSplit -= trunk;
    }

    // The loops the roots grow from: the whole ring for one root; otherwise each
    // sector of the ring closed by two chords to the ring's centre, so every
    // chord edge is shared by the two neighbouring roots and the centre by all of
    // them.
    std::vector<std::vector<int>> loops;
    if (splits.empty()) {
        loops.push_back(ring);
    } else {
        double cu = 0.0;
        double cv = 0.0;
        for (int id : ring) {
            cu += out.P(id).x();
            cv += out.P(id).y();
        }
        cu /= n;
        cv /= n;
        const int centre = out.Add(cu, cv, wSplit);
        const int chordInner = 5;
        std::vector<int> splitIdx;
        for (double a : splits) {
            splitIdx.push_back(static_cast<int>(std::lround(a / (2.0 * kPi) * n)) % n);
        }
        std::vector<std::vector<int>> chords; // from the ring towards the centre, inner points
        for (int s : splitIdx) {
            const VxPoint& p = out.P(ring[static_cast<size_t>(s)]);
            std::vector<int> c;
            for (int m = 1; m <= chordInner; ++m) {
                const double f = static_cast<double>(m) / (chordInner + 1);
                c.push_back(out.Add(p.x() + (cu - p.x()) * f, p.y() + (cv - p.y()) * f, wSplit));
            }
            chords.push_back(c);
        }
        const size_t k = splitIdx.size();
        for (size_t j = 0; j < k; ++j) {
            const int s = splitIdx[j];
            const int e = splitIdx[(j + 1) % k];
            std::vector<int> loop;
            for (int i = s;; i = (i + 1) % n) {
                loop.push_back(ring[static_cast<size_t>(i)]);
                if (i == e) {
                    break;
                }
            }
            const std::vector<int>& ce = chords[(j + 1) % k];
            loop.insert(loop.end(), ce.begin(), ce.end());
            loop.push_back(centre);
            const std::vector<int>& cs = chords[j];
            loop.insert(loop.end(), cs.rbegin(), cs.rend());
            loops.push_back(loop);
        }
    }

    const int rings = splits.empty() ? 18 : 14;
    const double bend = (splits.empty() ? 0.8 : 0.45) * rp.bendScale;
    const double diverge = splits.empty() ? 0.0 : 1.1;
    for (size_t j = 0; j < loops.size(); ++j) {
        const std::vector<int>& loop = loops[j];
        const size_t m = loop.size();
        double cu = 0.0;
        double cv = 0.0;
        for (int id : loop) {
            cu += out.P(id).x();
            cv += out.P(id).y();
        }
        cu /= static_cast<double>(m);
        cv /= static_cast<double>(m);
        double ext = 0.0;
        double eyt = 0.0;
        std::vector<double> psi(m);
        std::vector<double> rad(m);
        for (size_t i = 0; i < m; ++i) {
            const VxPoint& p = out.P(loop[i]);
            ext = std::max(ext, std::fabs(p.x() - cu));
            eyt = std::max(eyt, std::fabs(p.y() - cv));
            psi[i] = std::atan2(p.y() - cv, p.x() - cu);
        }
        const double alpha = (splits.empty() ? 0.9 : 0.72) * ext;
        const double beta = (splits.empty() ? 0.9 : 0.72) * eyt;
        for (size_t i = 0; i < m; ++i) {
            const double c = std::cos(psi[i]);
            const double s = std::sin(psi[i]);
            rad[i] = alpha * beta / std::sqrt(beta * c * beta * c + alpha * s * alpha * s);
        }
        double du = 0.0;
        double dv = 0.0;
        if (!splits.empty()) {
            const double len = std::hypot(cu, cv);
            if (len > 1e-9) {
                du = cu / len;
                dv = cv / len;
            }
        }
        const double length = d.rootLength * rp.lengthScale * RootLengthFactor(d, j) -
                              (splits.empty() ? 0.0 : 0.32 * d.crownHeight);
        auto centreAt = [&](double tau, double& x, double& y) {
            x = cu + tau * diverge * du - bend * tau * tau;
            y = cv + tau * diverge * dv;
        };
        std::vector<int> prev = loop;
        for (int r = 1; r < rings; ++r) {
            const double tau = static_cast<double>(r) / rings;
            const double taper =
                std::sqrt(std::max(0.0, 1.0 - std::pow(tau, 2.5))) * (1.0 - 0.3 * tau);
            const double b = Smooth(tau / 0.35);
            double x0 = 0.0;
            double y0 = 0.0;
            centreAt(tau, x0, y0);
            std::vector<int> next(m);
            for (size_t i = 0; i < m; ++i) {
                const VxPoint& p = out.P(loop[i]);
                // The loop point moved with the root's centre, blended towards the
                // tapering ellipse on the same ray, so the tube never folds over
                // itself.
                const double lx = p.x() + (x0 - cu);
                const double ly = p.y() + (y0 - cv);
                const double ex = x0 + taper * rad[i] * std::cos(psi[i]);
                const double ey = y0 + taper * rad[i] * std::sin(psi[i]);
                next[i] = out.Add(lx + (ex - lx) * b, ly + (ey - ly) * b, wSplit - tau * length);
            }
            out.Strip(next, prev, rp.style);
            prev = next;
        }
        double ax = 0.0;
        double ay = 0.0;
        centreAt(1.0, ax, ay);
        const int apex = out.Add(ax, ay, wSplit - length);
        out.BottomFan(prev, apex, rp.style);
    }
}

// Cervix ring of a design, counter-clockwise from +w.
std::vector<VxPoint> CervixRing(const VxToothDesign& d, double wc) {
    const int n = VxSyntheticTooth::kRingSize;
    std::vector<VxPoint> ring;
    for (int i = 0; i < n; ++i) {
        double cu = 0.0;
        double cv = 0.0;
        SuperDir(2.0 * kPi * i / n, d.exponent, cu, cv);
        ring.emplace_back(0.5 * d.width * d.aCervix * cu, 0.5 * d.thickness * d.bCervix * cv, wc);
    }
    return ring;
}

} // namespace

VxToothClass VxSyntheticTooth::ClassOf(int position) {
    switch (position) {
    case 1:
        return VxToothClass::CentralIncisor;
    case 2:
        return VxToothClass::LateralIncisor;
    case 3:
        return VxToothClass::Canine;
    case 4:
        return VxToothClass::FirstPremolar;
    case 5:
        return VxToothClass::SecondPremolar;
    case 6:
        return VxToothClass::FirstMolar;
    default:
        return VxToothClass::SecondMolar;
    }
}

VxToothDesign VxSyntheticTooth::Design(int fdi, VxSyntheticRandom& rng) {
    VxToothDesign d;
    d.fdi = fdi;
    const int q = fdi / 10;
    d.upper = q == 1 || q == 2;
    d.toothClass = ClassOf(fdi % 10);
    // Mean sizes of permanent teeth (mm): width, thickness, crown height, root
    // length.
    struct Size {
        double w, t, h, r;
        int roots;
    };
    static const Size kUpper[7] = {{8.6, 7.0, 10.5, 13.0, 1}, {6.6, 6.0, 9.0, 13.0, 1},
                                   {7.6, 8.0, 10.0, 17.0, 1}, {7.0, 9.0, 8.2, 14.0, 2},
                                   {6.6, 9.0, 7.8, 14.0, 1},  {10.2, 11.2, 7.2, 12.5, 3},
                                   {9.2, 11.0, 7.0, 12.0, 3}};
    static const Size kLower[7] = {{5.2, 6.0, 9.0, 12.5, 1},  {5.8, 6.4, 9.5, 14.0, 1},
                                   {6.8, 7.6, 11.0, 16.0, 1}, {7.0, 7.6, 8.5, 14.0, 1},
                                   {7.2, 8.2, 8.0, 14.5, 1},  {11.2, 10.4, 7.5, 14.0, 2},
                                   {10.6, 10.0, 7.0, 13.0, 2}};
    // Chosen as a pointer: GCC 12 with AddressSanitizer computed wrong addresses for the
    // subscript of a conditional between the two arrays themselves.
    const Size* table = d.upper ? kUpper : kLower;
    const Size& s = table[fdi % 10 - 1];
    d.width = s.w * (1.0 + rng.Uniform(-0.03, 0.03));
    d.thickness = s.t * (1.0 + rng.Uniform(-0.03, 0.03));
    d.crownHeight = s.h * (1.0 + rng.Uniform(-0.03, 0.03));
    d.rootLength = s.r * (1.0 + rng.Uniform(-0.05, 0.05));
    d.rootCount = s.roots;

    switch (d.toothClass) {
    case VxToothClass::CentralIncisor:
    case VxToothClass::LateralIncisor:
        d.aCervix = 0.7;
        d.aMaxAt = 0.75;
        d.aRim = 0.97;
        d.bCervix = 0.95;
        d.bMaxAt = 0.2;
        d.bRim = 0.2;
        d.exponent = 2.3;
        d.facialShift = d.upper ? 0.6 : 0.3;
        d.mesialCorner = d.toothClass == VxToothClass::CentralIncisor ? 1.1 : 1.4;
        d.distalCorner = d.toothClass == VxToothClass::CentralIncisor ? 1.7 : 2.2;
        for (double u : {-0.55, 0.0, 0.55}) {
            d.cusps.push_back({u, 0.0, 0.25 * (1.0 + rng.Uniform(-0.2, 0.2)), 0.25});
        }
        break;
    case VxToothClass::Canine:
        d.aCervix = 0.7;
        d.aMaxAt = 0.5;
        d.aRim = 0.62;
        d.bCervix = 0.95;
        d.bMaxAt = 0.3;
        d.bRim = 0.45;
        d.exponent = 2.2;
        d.facialShift = 0.5;
        d.mesialCorner = 0.4;
        d.distalCorner = 0.7;
        d.cusps.push_back({0.0, 0.1, 1.8 * (1.0 + rng.Uniform(-0.1, 0.1)), 0.6, 0.62});
        break;
    default: {
        d.aCervix = IsMolar(d.toothClass) ? 0.78 : 0.72;
        d.aMaxAt = 0.55;
        d.aRim = 0.93;
        d.bCervix = 0.82;
        d.bMaxAt = 0.3;
        d.bRim = 0.8;
        d.exponent = 2.5;
        d.fissureDepth = IsMolar(d.toothClass) ? 0.6 : 0.5;
        auto jitter = [&rng](double h) { return h * (1.0 + rng.Uniform(-0.1, 0.1)); };
        switch (d.toothClass) {
        case VxToothClass::FirstPremolar:
            d.cusps.push_back({0.0, 0.55, jitter(d.upper ? 1.45 : 1.3), 0.48, 0.62});
            d.cusps.push_back({0.0, -0.55, jitter(d.upper ? 1.2 : 0.6), 0.42, 0.5});
            break;
        case VxToothClass::SecondPremolar:
            d.cusps.push_back({0.0, 0.55, jitter(1.3), 0.46, 0.6});
            d.cusps.push_back({0.0, -0.55, jitter(d.upper ? 1.25 : 0.95), 0.42, 0.5});
            break;
        default:
            if (!d.upper && d.toothClass == VxToothClass::FirstMolar) {
                d.cusps.push_back({0.5, 0.52, jitter(1.35), 0.36, 0.4});
                d.cusps.push_back({-0.1, 0.55, jitter(1.3), 0.34, 0.38});
                d.cusps.push_back({-0.72, 0.3, jitter(1.0), 0.3, 0.34});
                d.cusps.push_back({0.45, -0.5, jitter(1.6), 0.38, 0.42});
                d.cusps.push_back({-0.4, -0.5, jitter(1.5), 0.38, 0.42});
            } else {
                d.cusps.push_back({0.45, 0.52, jitter(1.5), 0.38, 0.44});
                d.cusps.push_back({-0.45, 0.52, jitter(1.35), 0.38, 0.44});
                d.cusps.push_back({0.45, -0.5, jitter(d.upper ? 1.7 : 1.5), 0.42, 0.46});
                d.cusps.push_back({-0.5, -0.52, jitter(d.upper ? 1.05 : 1.35), 0.36, 0.4});
            }
            break;
        }
        break;
    }
    }
    return d;
}

VxToothGeometry VxSyntheticTooth::Build(const VxToothDesign& d) {
    VxToothGeometry g;
    MeshOut out(g);
    const int n = kRingSize;
    const int sideRings = 22; // strips of the side wall
    const int capRings = 12;  // strips of the cap, the last one a fan
    const bool posterior = IsPosterior(d.toothClass);
    double maxCusp = 0.0;
    for (const VxToothCusp& c : d.cusps) {
        maxCusp = std::max(maxCusp, c.height);
    }
    const double wc = -0.5 * d.crownHeight;
    const double wb = 0.5 * d.crownHeight - 0.5 * maxCusp;
    const double dome = posterior ? 0.5 : 0.0;
    const double a0 = 0.5 * d.width;
    const double b0 = 0.5 * d.thickness;

    std::vector<double> cu(static_cast<size_t>(n));
    std::vector<double> cv(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i) {
        SuperDir(2.0 * kPi * i / n, d.exponent, cu[static_cast<size_t>(i)],
                 cv[static_cast<size_t>(i)]);
    }

    std::vector<std::vector<int>> side;
    for (int r = 0; r <= sideRings; ++r) {
        const double t = static_cast<double>(r) / sideRings;
        const double a = a0 * Profile(t, d.aCervix, d.aMaxAt, d.aRim, posterior);
        const double b = b0 * Profile(t, d.bCervix, d.bMaxAt, d.bRim, posterior);
        const double shift = d.facialShift * Smooth(t);
        std::vector<int> ring(static_cast<size_t>(n));
        for (int i = 0; i < n; ++i) {
            const size_t k = static_cast<size_t>(i);
            const double wr = wb + OcclusalHeight(d, cu[k], cv[k]);
            ring[k] = out.Add(a * cu[k], b * cv[k] + shift, wc + (wr - wc) * t);
        }
        if (r > 0) {
            out.Strip(side.back(), ring, FaceStyle_Crown);
        }
        side.push_back(ring);
    }
    const double aRim = a0 * d.aRim;
    const double bRim = b0 * d.bRim;
    std::vector<int> prev = side.back();
    struct CapVertex {
        int id;
        double un, vn;
    };
    std::vector<CapVertex> cap;
    for (int i = 0; i < n; ++i) {
        cap.push_back(
            {prev[static_cast<size_t>(i)], cu[static_cast<size_t>(i)], cv[static_cast<size_t>(i)]});
    }
    std::vector<std::vector<int>> capRingIds;
    for (int k = 1; k < capRings; ++k) {
        const double rho = 1.0 - static_cast<double>(k) / capRings;
        std::vector<int> ring(static_cast<size_t>(n));
        for (int i = 0; i < n; ++i) {
            const size_t s = static_cast<size_t>(i);
            const double un = rho * cu[s];
            const double vn = rho * cv[s];
            ring[s] = out.Add(aRim * un, bRim * vn + d.facialShift,
                              wb + OcclusalHeight(d, un, vn) + dome * (1.0 - rho * rho));
            cap.push_back({ring[s], un, vn});
        }
        out.Strip(prev, ring, FaceStyle_Crown);
        prev = ring;
        capRingIds.push_back(ring);
    }
    const int pole = out.Add(0.0, d.facialShift, wb + OcclusalHeight(d, 0.0, 0.0) + dome);
    cap.push_back({pole, 0.0, 0.0});
    out.TopFan(prev, pole, FaceStyle_Crown);

    BuildRoots(out, d, side.front(), RootParams{});

    // Put the origin at the crown's centre: halfway between cervix and top.
    double top = wc;
    for (size_t i = 0; i < static_cast<size_t>(pole) + 1; ++i) {
        top = std::max(top, g.positions[i].z());
    }
    const double mid = 0.5 * (wc + top);
    for (VxPoint& p : g.positions) {
        p[2] -= mid;
    }
    g.cervixW = wc - mid;
    g.topW = top - mid;

    const size_t facialCol = static_cast<size_t>(n / 4);
    const size_t distalCol = static_cast<size_t>(n / 2);
    for (const std::vector<int>& ring : side) {
        g.facialAxis.push_back(ring[facialCol]);
    }
    g.facialCentre = side[static_cast<size_t>(std::lround(0.45 * sideRings))][facialCol];
    const size_t contactRow = static_cast<size_t>(std::lround(d.aMaxAt * sideRings));
    g.mesialContact = side[contactRow][0];
    g.distalContact = side[contactRow][distalCol];
    g.midRidge.push_back(side.back()[0]);
    for (const std::vector<int>& ring : capRingIds) {
        g.midRidge.push_back(ring[0]);
    }
    g.midRidge.push_back(pole);
    for (auto it = capRingIds.rbegin(); it != capRingIds.rend(); ++it) {
        g.midRidge.push_back((*it)[distalCol]);
    }
    g.midRidge.push_back(side.back()[distalCol]);
    g.midVertex = pole;
    if (posterior) {
        for (const VxToothCusp& c : d.cusps) {
            int best = pole;
            double bestD = 1e300;
            for (const CapVertex& v : cap) {
                const double dd = (v.un - c.u) * (v.un - c.u) + (v.vn - c.v) * (v.vn - c.v);
                if (dd < bestD) {
                    bestD = dd;
                    best = v.id;
                }
            }
            g.cuspTips.push_back(best);
        }
    } else {
        g.cuspTips.push_back(pole);
    }
    return g;
}

VxToothGeometry VxSyntheticTooth::BuildBackupRoot(const VxToothDesign& d, double cervixW) {
    VxToothGeometry g;
    MeshOut out(g);
    const double wc = cervixW;
    std::vector<int> ring;
    double cu = 0.0;
    double cv = 0.0;
    for (const VxPoint& p : CervixRing(d, wc)) {
        ring.push_back(out.Add(p));
        cu += p.x();
        cv += p.y();
    }
    cu /= static_cast<double>(ring.size());
    cv /= static_cast<double>(ring.size());
    const int centre = out.Add(cu, cv, wc);
    out.TopFan(ring, centre, FaceStyle_Root);
    RootParams rp;
    rp.lengthScale = 1.12;
    rp.bendScale = 1.8;
    rp.style = FaceStyle_Root;
    BuildRoots(out, d, ring, rp);
    g.cervixW = wc;
    g.topW = wc;
    return g;
}
