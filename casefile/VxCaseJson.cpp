// VxCaseJson: checked JSON readers and writers of the manifest's value types. Numbers are
// written by the JSON library with enough digits to read back to the same double.
#include "VxCaseJson.h"

#include <interfaces/VxMesh.h>

#include <cmath>

using json = nlohmann::json;

namespace {
const char* TypeName(const json& j) {
    switch (j.type()) {
    case json::value_t::null:
        return "null";
    case json::value_t::object:
        return "an object";
    case json::value_t::array:
        return "an array";
    case json::value_t::string:
        return "a string";
    case json::value_t::boolean:
        return "a boolean";
    case json::value_t::number_integer:
    case json::value_t::number_unsigned:
        return "an integer";
    case json::value_t::number_float:
        return "a number";
    default:
        return "an unknown value";
    }
}

void ExpectSize(const json& j, const std::string& path, std::size_t n) {
    VxCaseJson::ExpectArray(j, path);
    if (j.size() != n) {
        VxCaseJson::Fail(path, "expected " + std::to_string(n) + " numbers, found " +
                                   std::to_string(j.size()));
    }
}
} // namespace

std::string VxCaseJson::Sub(const std::string& path, const char* key) {
    return path.empty() ? std::string(key) : path + "." + key;
}

std::string VxCaseJson::Idx(const std::string& path, std::size_t index) {
    return path + "[" + std::to_string(index) + "]";
}

void VxCaseJson::Fail(const std::string& path, const std::string& what) {
    throw VxCaseFieldError{path.empty() ? std::string("(root)") : path, what};
}

void VxCaseJson::ExpectObject(const json& j, const std::string& path) {
    if (!j.is_object()) {
        Fail(path, std::string("expected an object, found ") + TypeName(j));
    }
}

void VxCaseJson::ExpectArray(const json& j, const std::string& path) {
    if (!j.is_array()) {
        Fail(path, std::string("expected an array, found ") + TypeName(j));
    }
}

const json& VxCaseJson::Field(const json& obj, const char* key, const std::string& path) {
    ExpectObject(obj, path);
    const auto it = obj.find(key);
    if (it == obj.end()) {
        Fail(Sub(path, key), "missing");
    }
    return *it;
}

const json* VxCaseJson::OptField(const json& obj, const char* key) {
    if (!obj.is_object()) {
        return nullptr;
    }
    const auto it = obj.find(key);
    if (it == obj.end() || it->is_null()) {
        return nullptr;
    }
    return &*it;
}

bool VxCaseJson::Bool(const json& j, const std::string& path) {
    if (!j.is_boolean()) {
        Fail(path, std::string("expected true or false, found ") + TypeName(j));
    }
    return j.get<bool>();
}

int VxCaseJson::Int(const json& j, const std::string& path, long long lo, long long hi) {
    long long v = 0;
    if (j.is_number_integer() && !j.is_number_unsigned()) {
        v = j.get<long long>();
    } else if (j.is_number_unsigned()) {
        const auto u = j.get<unsigned long long>();
        if (u > static_cast<unsigned long long>(hi)) {
            Fail(path, std::to_string(u) + " is out of range (" + std::to_string(lo) + " to " +
                           std::to_string(hi) + ")");
        }
        v = static_cast<long long>(u);
    } else {
        Fail(path, std::string("expected an integer, found ") + TypeName(j));
    }
    if (v < lo || v > hi) {
        Fail(path, std::to_string(v) + " is out of range (" + std::to_string(lo) + " to " +
                       std::to_string(hi) + ")");
    }
    return static_cast<int>(v);
}

double VxCaseJson::Num(const json& j, const std::string& path) {
    if (!j.is_number()) {
        Fail(path, std::string("expected a number, found ") + TypeName(j));
    }
    const double v = j.get<double>();
    if (!std::isfinite(v)) {
        Fail(path, "number is not finite");
    }
    return v;
}

std::string VxCaseJson::Str(const json& j, const std::string& path) {
    if (!j.is_string()) {
        Fail(path, std::string("expected a string, found ") + TypeName(j));
    }
    return j.get<std::string>();
}

VxPoint VxCaseJson::Point(const json& j, const std::string& path) {
    ExpectSize(j, path, 3);
    return VxPoint(Num(j[0], Idx(path, 0)), Num(j[1], Idx(path, 1)), Num(j[2], Idx(path, 2)));
}

VxVector VxCaseJson::Vector(const json& j, const std::string& path) {
    ExpectSize(j, path, 3);
    return VxVector(Num(j[0], Idx(path, 0)), Num(j[1], Idx(path, 1)), Num(j[2], Idx(path, 2)));
}

std::vector<VxPoint> VxCaseJson::Points(const json& j, const std::string& path) {
    ExpectArray(j, path);
    std::vector<VxPoint> out;
    out.reserve(j.size());
    for (std::size_t i = 0; i < j.size(); ++i) {
        out.push_back(Point(j[i], Idx(path, i)));
    }
    return out;
}

std::vector<int> VxCaseJson::Ints(const json& j, const std::string& path, long long lo,
                                  long long hi) {
    ExpectArray(j, path);
    std::vector<int> out;
    out.reserve(j.size());
    for (std::size_t i = 0; i < j.size(); ++i) {
        out.push_back(Int(j[i], Idx(path, i), lo, hi));
    }
    return out;
}

VxMatrix VxCaseJson::Matrix(const json& j, const std::string& path) {
    ExpectSize(j, path, 16);
    VxMatrix m(4, 4);
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c) {
            const std::size_t k = static_cast<std::size_t>(r * 4 + c);
            m[r][c] = Num(j[k], Idx(path, k));
        }
    }
    return m;
}

VxFrame VxCaseJson::Frame(const json& j, const std::string& path) {
    ExpectObject(j, path);
    VxFrame f;
    f.SetOrigin(Point(Field(j, "origin", path), Sub(path, "origin")));
    const json* x = OptField(j, "x");
    const json* y = OptField(j, "y");
    if (x == nullptr && y == nullptr) {
        return f;
    }
    if (x == nullptr || y == nullptr) {
        Fail(Sub(path, x == nullptr ? "x" : "y"), "missing (a frame needs both axes or neither)");
    }
    f.SetFrame(Vector(*x, Sub(path, "x")), Vector(*y, Sub(path, "y")));
    if (!f.IsValid()) {
        Fail(path, "x and y are zero or parallel");
    }
    return f;
}

VxColor VxCaseJson::Color(const json& j, const std::string& path) {
    ExpectArray(j, path);
    if (j.size() != 4) {
        Fail(path, "expected 4 integers (r, g, b, a), found " + std::to_string(j.size()));
    }
    return VxColor(Int(j[0], Idx(path, 0), 0, 255), Int(j[1], Idx(path, 1), 0, 255),
                   Int(j[2], Idx(path, 2), 0, 255), Int(j[3], Idx(path, 3), 0, 255));
}

VxBSplineCurve VxCaseJson::Curve(const json& j, const std::string& path) {
    ExpectObject(j, path);
    const int degree = Int(Field(j, "degree", path), Sub(path, "degree"), 1, 32);
    const std::vector<VxPoint> ctrl = Points(Field(j, "ctrlPoints", path), Sub(path, "ctrlPoints"));
    const json& kj = Field(j, "knots", path);
    ExpectArray(kj, Sub(path, "knots"));
    std::vector<double> knots;
    knots.reserve(kj.size());
    for (std::size_t i = 0; i < kj.size(); ++i) {
        knots.push_back(Num(kj[i], Idx(Sub(path, "knots"), i)));
    }
    bool periodic = false;
    if (const json* p = OptField(j, "closed")) {
        periodic = Bool(*p, Sub(path, "closed"));
    }
    VxBSplineCurve c;
    if (!c.Set(degree, ctrl, VxKnotVec(std::move(knots)), periodic)) {
        Fail(path, "degree, control points and knots do not make a B-spline");
    }
    return c;
}

void VxCaseJson::FaceStyles(const json& j, const std::string& path, VxMesh& mesh) {
    ExpectArray(j, path);
    const long long faceCount = mesh.GetFaceCount();
    for (std::size_t i = 0; i < j.size(); ++i) {
        const std::string ip = Idx(path, i);
        const int style =
            Int(Field(j[i], "style", ip), Sub(ip, "style"), FaceStyle_Normal, FaceStyle_BasicRoot);
        const std::string rp = Sub(ip, "runs");
        const json& runs = Field(j[i], "runs", ip);
        ExpectArray(runs, rp);
        for (std::size_t r = 0; r < runs.size(); ++r) {
            const std::string p = Idx(rp, r);
            ExpectArray(runs[r], p);
            if (runs[r].size() != 2) {
                Fail(p, "expected [first face, count]");
            }
            const long long first = Int(runs[r][0], Idx(p, 0), 0);
            const long long count = Int(runs[r][1], Idx(p, 1), 1);
            if (first + count > faceCount) {
                Fail(p, "faces " + std::to_string(first) + " to " +
                            std::to_string(first + count - 1) + " out of range (" +
                            std::to_string(faceCount) + " faces)");
            }
            auto& faces = mesh.GetFaces();
            for (long long f = first; f < first + count; ++f) {
                faces[static_cast<std::size_t>(f)].SetFaceStyle(static_cast<FaceStyle_e>(style));
            }
        }
    }
}

json VxCaseJson::NumJ(double v, const std::string& path) {
    if (!std::isfinite(v)) {
        Fail(path, "number is not finite");
    }
    return json(v);
}

json VxCaseJson::PointJ(const VxPoint& p, const std::string& path) {
    return json::array(
        {NumJ(p[0], Idx(path, 0)), NumJ(p[1], Idx(path, 1)), NumJ(p[2], Idx(path, 2))});
}

json VxCaseJson::VectorJ(const VxVector& v, const std::string& path) {
    return json::array(
        {NumJ(v[0], Idx(path, 0)), NumJ(v[1], Idx(path, 1)), NumJ(v[2], Idx(path, 2))});
}

json VxCaseJson::PointsJ(const std::vector<VxPoint>& points, const std::string& path) {
    json a = json::array();
    for (std::size_t i = 0; i < points.size(); ++i) {
        a.push_back(PointJ(points[i], Idx(path, i)));
    }
    return a;
}

json VxCaseJson::MatrixJ(const VxMatrix& m, const std::string& path) {
    if (m.Rows() != 4 || m.Cols() != 4) {
        Fail(path, "matrix is " + std::to_string(m.Rows()) + " x " + std::to_string(m.Cols()) +
                       ", not 4 x 4");
    }
    json a = json::array();
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c) {
            a.push_back(NumJ(m[r][c], Idx(path, static_cast<std::size_t>(r * 4 + c))));
        }
    }
    return a;
}

json VxCaseJson::FrameJ(const VxFrame& f, const std::string& path) {
    json o = json::object();
    o["origin"] = PointJ(f.GetOrigin(), Sub(path, "origin"));
    if (f.IsValid()) {
        o["x"] = VectorJ(f.DirX(), Sub(path, "x"));
        o["y"] = VectorJ(f.DirY(), Sub(path, "y"));
    }
    return o;
}

json VxCaseJson::ColorJ(const VxColor& c) {
    return json::array({c.GetR(), c.GetG(), c.GetB(), c.GetA()});
}

json VxCaseJson::CurveJ(const VxBSplineCurve& c, const std::string& path) {
    json o = json::object();
    o["degree"] = c.Degree();
    o["ctrlPoints"] = PointsJ(c.CtrlPoints(), Sub(path, "ctrlPoints"));
    json k = json::array();
    const auto& knots = c.KnotVec().GetKnots();
    for (std::size_t i = 0; i < knots.size(); ++i) {
        k.push_back(NumJ(knots[i], Idx(Sub(path, "knots"), i)));
    }
    o["knots"] = std::move(k);
    if (c.IsClosed()) {
        o["closed"] = true;
    }
    return o;
}

json VxCaseJson::FaceStylesJ(const VxMesh& mesh) {
    // Style -> runs, in order of the style's first face, so a file reads top to bottom.
    json out = json::array();
    const auto& faces = mesh.GetFaces();
    std::vector<std::pair<int, json>> byStyle;
    std::size_t f = 0;
    while (f < faces.size()) {
        const int style = faces[f].GetFaceStyle();
        std::size_t e = f + 1;
        while (e < faces.size() && faces[e].GetFaceStyle() == style) {
            ++e;
        }
        if (style != FaceStyle_Normal) {
            auto it = byStyle.begin();
            while (it != byStyle.end() && it->first != style) {
                ++it;
            }
            if (it == byStyle.end()) {
                byStyle.emplace_back(style, json::array());
                it = byStyle.end() - 1;
            }
            it->second.push_back(json::array({f, e - f}));
        }
        f = e;
    }
    if (byStyle.empty()) {
        return json();
    }
    for (auto& [style, runs] : byStyle) {
        out.push_back(json{{"style", style}, {"runs", std::move(runs)}});
    }
    return out;
}
