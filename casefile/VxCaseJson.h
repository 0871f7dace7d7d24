// VxCaseJson: the JSON forms of the value types a case manifest carries (points, matrices,
// frames, colours, B-spline curves, face-style runs) and the checked readers of plain fields.
// Every reader takes the field path it is reading ("teeth[2].frame.origin") and, on anything
// wrong, throws VxCaseFieldError with that path; VxCaseIO catches it at its entry points, so
// nothing thrown here leaves the case-file code. Writers refuse non-finite numbers the same way,
// since JSON has no form for them.
// It knows nothing about entities, keys or files: VxCaseIO does.
#pragma once

#include <interfaces/VxBSplineCurve.h>
#include <interfaces/VxColor.h>
#include <interfaces/VxFrame.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxModelEnums.h>
#include <interfaces/VxPoint.h>

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>
#include <vector>

class VxMesh;

struct VxCaseFieldError {
    std::string path; // field path inside the file
    std::string what;
};

class VxCaseJson {
public:
    using json = nlohmann::json;

    // Path building: Sub("teeth[0]", "frame") is "teeth[0].frame"; Idx("teeth", 2) "teeth[2]".
    static std::string Sub(const std::string& path, const char* key);
    static std::string Idx(const std::string& path, std::size_t index);
    [[noreturn]] static void Fail(const std::string& path, const std::string& what);

    // ---- reading; each throws VxCaseFieldError ----
    static void ExpectObject(const json& j, const std::string& path);
    static void ExpectArray(const json& j, const std::string& path);
    // A required member of an object.
    static const json& Field(const json& obj, const char* key, const std::string& path);
    // An optional member: null when absent or JSON null.
    static const json* OptField(const json& obj, const char* key);
    static bool Bool(const json& j, const std::string& path);
    static int Int(const json& j, const std::string& path, long long lo = INT32_MIN,
                   long long hi = INT32_MAX);
    // A finite number (integers are taken too).
    static double Num(const json& j, const std::string& path);
    static std::string Str(const json& j, const std::string& path);
    static VxPoint Point(const json& j, const std::string& path);
    static VxVector Vector(const json& j, const std::string& path);
    static std::vector<VxPoint> Points(const json& j, const std::string& path);
    static std::vector<int> Ints(const json& j, const std::string& path, long long lo = INT32_MIN,
                                 long long hi = INT32_MAX);
    // 16 numbers, row-major, into a 4 x 4 matrix.
    static VxMatrix Matrix(const json& j, const std::string& path);
    // {"origin": [..]} alone is a frame never set; with "x" and "y" the axes are rebuilt from
    // them as VxFrame does (refused when they are zero or parallel).
    static VxFrame Frame(const json& j, const std::string& path);
    // [r, g, b, a], each 0..255.
    static VxColor Color(const json& j, const std::string& path);
    static VxBSplineCurve Curve(const json& j, const std::string& path);
    // Applies {"style": s, "runs": [[first, count], ...]} entries to the mesh's faces.
    static void FaceStyles(const json& j, const std::string& path, VxMesh& mesh);

    // ---- writing; non-finite numbers throw VxCaseFieldError ----
    static json NumJ(double v, const std::string& path);
    static json PointJ(const VxPoint& p, const std::string& path);
    static json VectorJ(const VxVector& v, const std::string& path);
    static json PointsJ(const std::vector<VxPoint>& points, const std::string& path);
    // A matrix that is not 4 x 4 is refused.
    static json MatrixJ(const VxMatrix& m, const std::string& path);
    static json FrameJ(const VxFrame& f, const std::string& path);
    static json ColorJ(const VxColor& c);
    static json CurveJ(const VxBSplineCurve& c, const std::string& path);
    // Runs of faces whose style is not FaceStyle_Normal; null when every face is normal.
    static json FaceStylesJ(const VxMesh& mesh);
};
