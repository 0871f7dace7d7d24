// VxCaseIO: the case directory reader and writer.
//
// Read flow: load the manifest, refuse it if it is too large or nested too deeply, parse it,
// then read the sections in dependency order (jaws, teeth, gums, skull, standard attachments,
// attachments, wedges, plan, scheme, references, records, pictures, measures) into a fresh case,
// resolving entity keys ("tooth:11", "gum:upper") against what was read before. Any failure is
// thrown as a field error and caught at the entry point, so the target is swapped only after the
// last check. Write flow: give every owned mesh its key, write mesh and picture files, build the
// manifest (refusing what has no file form) and write it last, so a directory never holds a
// manifest that names files not yet written.
#include "VxCaseIO.h"

#include "VxCase.h"
#include "VxCaseJson.h"
#include "VxMeshFile.h"

#include <interfaces/CImage.h>
#include <interfaces/VxPictureLayout.h>
#include <interfaces/CString.h>
#include <interfaces/VxFDI.h>
#include <interfaces/VxFilledWedgeTriTooth.h>
#include <interfaces/VxFilledWedgeTwoTooth.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

using json = nlohmann::json;
using J = VxCaseJson;

namespace {

// A failure in a file other than the manifest (a mesh or a picture it names).
struct CaseFileError {
    std::string file;
    std::string path;
    std::string what;
};

const char* const kImageNames[4] = {"panoramic", "profile", "frontalSmile", "cephalometric"};

std::string SideName(bool up) {
    return up ? "upper" : "lower";
}

std::string GumKey(bool up, bool cmp) {
    return "gum:" + SideName(up) + (cmp ? ":cmp" : "");
}

std::string ToothKey(int fdi) {
    return "tooth:" + std::to_string(fdi);
}

// Deepest bracket nesting outside strings. The document builder and everything that walks a
// document recurse per level, so a hostile file must not reach them.
int NestingDepth(const std::string& text, int limit) {
    int depth = 0;
    int deepest = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inString) {
            if (c == '\\') {
                ++i;
            } else if (c == '"') {
                inString = false;
            }
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            deepest = std::max(deepest, ++depth);
            if (deepest > limit) {
                return deepest;
            }
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
    return deepest;
}

// Names in the manifest stay inside the case directory.
bool SafeRelativePath(const std::string& name) {
    if (name.empty() || name[0] == '/' || name.find('\\') != std::string::npos ||
        name.find('\0') != std::string::npos) {
        return false;
    }
    std::size_t start = 0;
    while (start <= name.size()) {
        std::size_t end = name.find('/', start);
        if (end == std::string::npos) {
            end = name.size();
        }
        const std::string part = name.substr(start, end - start);
        if (part.empty() || part == "." || part == "..") {
            return false;
        }
        start = end + 1;
    }
    return true;
}

bool ReadWholeFile(const std::string& path, std::size_t limit, std::string& text,
                   std::string& what) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        what = "cannot be opened";
        return false;
    }
    in.seekg(0, std::ios::end);
    const std::streamoff size = in.tellg();
    if (size < 0) {
        what = "cannot be read";
        return false;
    }
    if (static_cast<std::uint64_t>(size) > limit) {
        what = "larger than " + std::to_string(limit >> 20) + " MiB";
        return false;
    }
    in.seekg(0, std::ios::beg);
    text.resize(static_cast<std::size_t>(size));
    if (size > 0 && !in.read(&text[0], size)) {
        what = "cannot be read";
        return false;
    }
    return true;
}

// ======================================================================================
// Reading
// ======================================================================================

class CaseReader {
public:
    CaseReader(const std::string& dir, VxCase& c) : m_dir(dir), m_case(c) {}

    void Read(const json& root) {
        J::ExpectObject(root, "");
        const int version = J::Int(J::Field(root, "version", ""), "version");
        if (version != VxCaseIO::kFormatVersion) {
            J::Fail("version", "unsupported version " + std::to_string(version) +
                                   " (this reader knows " +
                                   std::to_string(VxCaseIO::kFormatVersion) + ")");
        }
        if (const json* f = J::OptField(root, "format")) {
            if (J::Str(*f, "format") != "vxcase") {
                J::Fail("format", "expected \"vxcase\"");
            }
        }
        ForEach(root, "jaws", [this](const json& j, const std::string& p) { ReadJaw(j, p); });
        ForEach(root, "teeth", [this](const json& j, const std::string& p) { ReadTooth(j, p); });
        ForEach(root, "gums", [this](const json& j, const std::string& p) { ReadGum(j, p); });
        if (const json* s = J::OptField(root, "skull")) {
            ReadSkull(*s, "skull");
        }
        ForEach(root, "stdAttachments",
                [this](const json& j, const std::string& p) { ReadStdAttach(j, p); });
        ForEach(root, "attachments",
                [this](const json& j, const std::string& p) { ReadAttachment(j, p); });
        ForEach(root, "wedges", [this](const json& j, const std::string& p) { ReadWedge(j, p); });
        if (const json* p = J::OptField(root, "plan")) {
            ReadPlan(*p, "plan");
        }
        if (const json* s = J::OptField(root, "scheme")) {
            ReadScheme(*s, "scheme");
        }
        ForEach(root, "toothRefs",
                [this](const json& j, const std::string& p) { ReadToothRef(j, p); });
        if (const json* r = J::OptField(root, "jawRefs")) {
            ReadJawRefs(*r, "jawRefs");
        }
        ForEach(root, "movementDiffs",
                [this](const json& j, const std::string& p) { ReadMovementDiff(j, p); });
        ForEach(root, "gapInfos",
                [this](const json& j, const std::string& p) { ReadGapInfo(j, p); });
        if (const json* i = J::OptField(root, "images")) {
            ReadImages(*i, "images");
        }
        if (const json* m = J::OptField(root, "panMeasure")) {
            ReadPanMeasure(*m, "panMeasure");
        }
        if (const json* m = J::OptField(root, "cepMeasure")) {
            ReadCepMeasure(*m, "cepMeasure");
        }
        m_case.BuildModel();
    }

private:
    template <class F> void ForEach(const json& obj, const char* key, F&& f) {
        const json* a = J::OptField(obj, key);
        if (a == nullptr) {
            return;
        }
        J::ExpectArray(*a, key);
        for (std::size_t i = 0; i < a->size(); ++i) {
            f((*a)[i], J::Idx(key, i));
        }
    }

    static bool OptBool(const json& obj, const char* key, const std::string& path, bool def) {
        const json* b = J::OptField(obj, key);
        return b ? J::Bool(*b, J::Sub(path, key)) : def;
    }
    static int OptInt(const json& obj, const char* key, const std::string& path, int def,
                      long long lo = INT32_MIN, long long hi = INT32_MAX) {
        const json* b = J::OptField(obj, key);
        return b ? J::Int(*b, J::Sub(path, key), lo, hi) : def;
    }

    std::string FileName(const json& j, const std::string& path) {
        std::string name = J::Str(j, path);
        if (!SafeRelativePath(name)) {
            J::Fail(path, "\"" + name + "\" is not a relative path inside the case directory");
        }
        return name;
    }

    // {"file": ..., "faceStyles": [...]} into `mesh`, which keeps its own type and flags.
    void ReadMeshRef(const json& j, const std::string& path, VxMesh& mesh) {
        J::ExpectObject(j, path);
        const std::string fp = J::Sub(path, "file");
        const std::string name = FileName(J::Field(j, "file", path), fp);
        auto it = m_meshCache.find(name);
        if (it == m_meshCache.end()) {
            VxMesh loaded;
            std::string err;
            if (!VxMeshFile::Load(m_dir + "/" + name, loaded, err)) {
                const std::size_t colon = err.find(": ");
                const std::string where =
                    colon == std::string::npos ? "file" : err.substr(0, colon);
                const std::string what = colon == std::string::npos ? err : err.substr(colon + 2);
                throw CaseFileError{name, where, what + " (named by " + fp + ")"};
            }
            it = m_meshCache.emplace(name, std::move(loaded)).first;
        }
        static_cast<VxMesh&>(mesh) = it->second;
        if (const json* s = J::OptField(j, "faceStyles")) {
            J::FaceStyles(*s, J::Sub(path, "faceStyles"), mesh);
        }
    }

    void ReadEntityCommon(const json& j, const std::string& path, VxMesh& mesh,
                          const std::string& key) {
        if (const json* m = J::OptField(j, "mesh")) {
            ReadMeshRef(*m, J::Sub(path, "mesh"), mesh);
        }
        mesh.SetVisible(OptBool(j, "visible", path, true) ? 1 : 0);
        AddKey(key, &mesh, path);
    }

    void AddKey(const std::string& key, VxMesh* mesh, const std::string& path) {
        if (!m_keys.emplace(key, mesh).second) {
            J::Fail(path, "a second \"" + key + "\"");
        }
    }

    VxMesh* MeshByKey(const json& j, const std::string& path) {
        const std::string key = J::Str(j, path);
        const auto it = m_keys.find(key);
        if (it == m_keys.end()) {
            J::Fail(path, "no entity \"" + key + "\" in the case");
        }
        return it->second;
    }

    // Null for JSON null.
    VxTooth* ToothByKey(const json& j, const std::string& path) {
        if (j.is_null()) {
            return nullptr;
        }
        auto* t = dynamic_cast<VxTooth*>(MeshByKey(j, path));
        if (t == nullptr) {
            J::Fail(path, "\"" + J::Str(j, path) + "\" is not a tooth");
        }
        return t;
    }

    VxJaw* JawByKey(const json& j, const std::string& path) {
        if (j.is_null()) {
            return nullptr;
        }
        auto* jaw = dynamic_cast<VxJaw*>(MeshByKey(j, path));
        if (jaw == nullptr) {
            J::Fail(path, "\"" + J::Str(j, path) + "\" is not a jaw");
        }
        return jaw;
    }

    int Fdi(const json& j, const std::string& path) {
        const int fdi = J::Int(j, path);
        if (!VxFDI(fdi).IsValid()) {
            J::Fail(path, std::to_string(fdi) + " is not an FDI tooth number");
        }
        return fdi;
    }

    void CheckStep(int step, int count, const std::string& path, const char* what) {
        if (step < 0 || step >= count) {
            J::Fail(path, "step " + std::to_string(step) + " is outside the " + what + " (" +
                              std::to_string(count) + " steps)");
        }
    }

    void ReadJaw(const json& j, const std::string& path) {
        const bool up = J::Bool(J::Field(j, "up", path), J::Sub(path, "up"));
        auto jaw = std::make_unique<VxJaw>(up);
        if (const json* f = J::OptField(j, "frame")) {
            jaw->SetFrame(J::Frame(*f, J::Sub(path, "frame")));
        }
        ReadEntityCommon(j, path, *jaw, "jaw:" + SideName(up));
        m_case.jaws.push_back(std::move(jaw));
    }

    void ReadTooth(const json& j, const std::string& path) {
        const int fdi = Fdi(J::Field(j, "fdi", path), J::Sub(path, "fdi"));
        auto tooth = std::make_unique<VxTooth>(fdi);
        tooth->SetToothKind(static_cast<ToothKind_e>(
            OptInt(j, "kind", path, ToothKind_Normal, ToothKind_Normal, ToothKind_Deciduous)));
        tooth->SetLockShown(OptBool(j, "lockShown", path, false));
        if (const json* jaw = J::OptField(j, "jaw")) {
            tooth->SetParent(JawByKey(*jaw, J::Sub(path, "jaw")));
        }
        if (const json* f = J::OptField(j, "frame")) {
            tooth->SetFrame(J::Frame(*f, J::Sub(path, "frame")));
        }
        ReadEntityCommon(j, path, *tooth, ToothKey(fdi));
        if (const json* r = J::OptField(j, "backupRoot")) {
            auto root = std::make_unique<VxMesh>();
            ReadMeshRef(*r, J::Sub(path, "backupRoot"), *root);
            AddKey("root:" + std::to_string(fdi), root.get(), path);
            tooth->SetBackupRoot(root.get());
            m_case.backupRoots.push_back(std::move(root));
        }
        m_case.teeth.push_back(std::move(tooth));
    }

    std::vector<int> FaceIds(const json& j, const std::string& path, const VxMesh& mesh,
                             bool endBound) {
        // Band and segment ends may sit one past the last face.
        return J::Ints(j, path, 0, mesh.GetFaceCount() - (endBound ? 0 : 1));
    }

    void ReadGum(const json& j, const std::string& path) {
        const bool up = J::Bool(J::Field(j, "up", path), J::Sub(path, "up"));
        const bool cmp = OptBool(j, "cmp", path, false);
        auto gum = std::make_unique<VxGum>(up);
        gum->SetCmp(cmp);
        ReadEntityCommon(j, path, *gum, GumKey(up, cmp));
        if (const json* bands = J::OptField(j, "bands")) {
            const std::string bp = J::Sub(path, "bands");
            J::ExpectArray(*bands, bp);
            if (bands->size() > VxGum::kBandFamilies) {
                J::Fail(bp, "more than " + std::to_string(VxGum::kBandFamilies) + " families");
            }
            for (std::size_t f = 0; f < bands->size(); ++f) {
                const std::string fp = J::Idx(bp, f);
                const json& fam = (*bands)[f];
                const auto starts =
                    FaceIds(J::Field(fam, "starts", fp), J::Sub(fp, "starts"), *gum, true);
                const auto ends =
                    FaceIds(J::Field(fam, "ends", fp), J::Sub(fp, "ends"), *gum, true);
                if (!gum->SetBands(static_cast<int>(f), starts, ends)) {
                    J::Fail(fp, "starts and ends differ in length");
                }
            }
        }
        if (const json* seg = J::OptField(j, "segments")) {
            const std::string sp = J::Sub(path, "segments");
            const auto first =
                FaceIds(J::Field(*seg, "first", sp), J::Sub(sp, "first"), *gum, false);
            const auto ends = FaceIds(J::Field(*seg, "ends", sp), J::Sub(sp, "ends"), *gum, true);
            if (!gum->SetSegments(first, ends)) {
                J::Fail(sp, "first and ends differ in length");
            }
        }
        m_case.gums.push_back(std::move(gum));
    }

    void ReadSkull(const json& j, const std::string& path) {
        J::ExpectObject(j, path);
        auto skull = std::make_unique<VxSkull>();
        ReadEntityCommon(j, path, *skull, "skull");
        m_case.skull = std::move(skull);
    }

    void ReadStdAttach(const json& j, const std::string& path) {
        auto s = std::make_unique<VxStdAttach>();
        s->SetAttachIdentifier(
            CString::FromUtf8(J::Str(J::Field(j, "identifier", path), J::Sub(path, "identifier"))));
        s->SetColor(J::Color(J::Field(j, "color", path), J::Sub(path, "color")));
        ReadEntityCommon(j, path, *s, "stdattach:" + std::to_string(m_case.stdAttachments.size()));
        m_case.stdAttachments.push_back(std::move(s));
    }

    void ReadAttachment(const json& j, const std::string& path) {
        auto a = std::make_unique<VxAttachment>();
        const std::string key = "attachment:" + std::to_string(m_case.attachments.size());
        const json& sj = J::Field(j, "std", path);
        if (!sj.is_null()) {
            auto* s = dynamic_cast<VxStdAttach*>(MeshByKey(sj, J::Sub(path, "std")));
            if (s == nullptr) {
                J::Fail(J::Sub(path, "std"), "not a standard attachment");
            }
            a->SetStdAttachment(s);
        }
        a->SetTooth(ToothByKey(J::Field(j, "tooth", path), J::Sub(path, "tooth")));
        if (const json* f = J::OptField(j, "frame")) {
            a->SetCurFrame(J::Frame(*f, J::Sub(path, "frame")));
        }
        if (const json* m = J::OptField(j, "currentMatrix")) {
            a->SetCurrentMatrix(J::Matrix(*m, J::Sub(path, "currentMatrix")));
        }
        const int start = OptInt(j, "startStep", path, 0, 0);
        const int end = OptInt(j, "endStep", path, 0, 0);
        if (end < start) {
            J::Fail(J::Sub(path, "endStep"), "before startStep");
        }
        a->SetSteps(start, end);
        a->SetCmp(OptBool(j, "cmp", path, false));
        ReadEntityCommon(j, path, *a, key);
        if (const json* parts = J::OptField(j, "parts")) {
            const std::string pp = J::Sub(path, "parts");
            J::ExpectArray(*parts, pp);
            for (std::size_t i = 0; i < parts->size(); ++i) {
                const std::string ip = J::Idx(pp, i);
                const json& pj = (*parts)[i];
                auto part = std::make_shared<VxAttachmentPart>(
                    J::Matrix(J::Field(pj, "matrix", ip), J::Sub(ip, "matrix")));
                ReadEntityCommon(pj, ip, *part, key + "/part:" + std::to_string(i));
                a->AttachParts().push_back(std::move(part));
            }
        }
        m_case.attachments.push_back(std::move(a));
    }

    void ReadWedge(const json& j, const std::string& path) {
        const std::string kind = J::Str(J::Field(j, "kind", path), J::Sub(path, "kind"));
        const std::string tp = J::Sub(path, "teeth");
        const json& teeth = J::Field(j, "teeth", path);
        J::ExpectArray(teeth, tp);
        const std::size_t want = kind == "tri" ? 3 : 2;
        if (kind != "two" && kind != "tri" && kind != "plain") {
            J::Fail(J::Sub(path, "kind"), "\"" + kind + "\" is not \"two\", \"tri\" or \"plain\"");
        }
        if (teeth.size() != want) {
            J::Fail(tp, "a \"" + kind + "\" wedge names " + std::to_string(want) + " teeth");
        }
        std::vector<VxTooth*> t;
        for (std::size_t i = 0; i < want; ++i) {
            t.push_back(ToothByKey(teeth[i], J::Idx(tp, i)));
        }
        std::unique_ptr<VxFilledWedge> w;
        if (kind == "two") {
            w = std::make_unique<VxFilledWedgeTwoTooth>(t[0], t[1]);
        } else if (kind == "tri") {
            w = std::make_unique<VxFilledWedgeTriTooth>(t[0], t[1], t[2]);
        } else {
            w = std::make_unique<VxFilledWedge>(t[0], t[1]);
        }
        ReadEntityCommon(j, path, *w, "wedge:" + std::to_string(m_case.wedges.size()));
        m_case.wedges.push_back(std::move(w));
    }

    void ReadPlan(const json& j, const std::string& path) {
        J::ExpectObject(j, path);
        const int count = OptInt(j, "stepCount", path, 0, 0);
        m_case.stepCount = count;
        const int current = OptInt(j, "currentStep", path, 0);
        if (current != 0) {
            CheckStep(current, count, J::Sub(path, "currentStep"), "plan");
        }
        m_case.currentStep = current;
        const json* pl = J::OptField(j, "placements");
        if (pl == nullptr) {
            return;
        }
        const std::string pp = J::Sub(path, "placements");
        J::ExpectArray(*pl, pp);
        for (std::size_t i = 0; i < pl->size(); ++i) {
            const std::string ip = J::Idx(pp, i);
            const json& e = (*pl)[i];
            const VxEntity* entity = MeshByKey(J::Field(e, "entity", ip), J::Sub(ip, "entity"));
            auto& steps = m_case.placements[entity];
            if (!steps.empty()) {
                J::Fail(J::Sub(ip, "entity"), "placements of this entity given twice");
            }
            const std::string sp = J::Sub(ip, "steps");
            const json& sj = J::Field(e, "steps", ip);
            J::ExpectArray(sj, sp);
            for (std::size_t s = 0; s < sj.size(); ++s) {
                const std::string stp = J::Idx(sp, s);
                const int step = J::Int(J::Field(sj[s], "step", stp), J::Sub(stp, "step"));
                CheckStep(step, count, J::Sub(stp, "step"), "plan");
                if (steps.count(step) != 0) {
                    J::Fail(J::Sub(stp, "step"), "step " + std::to_string(step) + " given twice");
                }
                std::set<DrawInfo_s>& infos = steps[step];
                const std::string dp = J::Sub(stp, "draws");
                const json& dj = J::Field(sj[s], "draws", stp);
                J::ExpectArray(dj, dp);
                for (std::size_t d = 0; d < dj.size(); ++d) {
                    const std::string ddp = J::Idx(dp, d);
                    infos.insert(DrawInfo_s(
                        OptBool(dj[d], "limited", ddp, false),
                        J::Matrix(J::Field(dj[d], "matrix", ddp), J::Sub(ddp, "matrix"))));
                }
            }
            if (steps.empty()) {
                m_case.placements.erase(entity);
            }
        }
    }

    VxArchForm ReadArch(const json& j, const std::string& path) {
        J::ExpectObject(j, path);
        VxArchForm arch;
        if (const json* c = J::OptField(j, "curve")) {
            arch.SetCurve(J::Curve(*c, J::Sub(path, "curve")));
            return arch;
        }
        // Points that make no curve are kept as they are: the arch then simply has no curve.
        arch.SetPoints(J::Points(J::Field(j, "points", path), J::Sub(path, "points")),
                       OptBool(j, "closed", path, false));
        return arch;
    }

    VxOcclusalPlane ReadOccPlane(const json& j, const std::string& path) {
        return VxOcclusalPlane(J::Frame(J::Field(j, "frame", path), J::Sub(path, "frame")),
                               J::Num(J::Field(j, "length", path), J::Sub(path, "length")));
    }

    void ReadScheme(const json& j, const std::string& path) {
        J::ExpectObject(j, path);
        VxScheme& s = m_case.scheme;
        const int count = OptInt(j, "stepCount", path, 0, 0);
        if (const json* a = J::OptField(j, "upArch")) {
            s.SetUpArch(ReadArch(*a, J::Sub(path, "upArch")));
        }
        if (const json* a = J::OptField(j, "lowArch")) {
            s.SetLowArch(ReadArch(*a, J::Sub(path, "lowArch")));
        }
        if (const json* o = J::OptField(j, "upOcclusalPlane")) {
            s.SetUpOccPlane(ReadOccPlane(*o, J::Sub(path, "upOcclusalPlane")));
        }
        if (const json* o = J::OptField(j, "lowOcclusalPlane")) {
            s.SetLowOccPlane(ReadOccPlane(*o, J::Sub(path, "lowOcclusalPlane")));
        }
        if (const json* ts = J::OptField(j, "treatSteps")) {
            const std::string tp = J::Sub(path, "treatSteps");
            J::ExpectArray(*ts, tp);
            for (std::size_t i = 0; i < ts->size(); ++i) {
                const std::string ip = J::Idx(tp, i);
                const json& t = (*ts)[i];
                const int fdi = Fdi(J::Field(t, "fdi", ip), J::Sub(ip, "fdi"));
                const int step = J::Int(J::Field(t, "step", ip), J::Sub(ip, "step"));
                CheckStep(step, count, J::Sub(ip, "step"), "scheme");
                if (s.GetTreatStep(fdi, step) != nullptr) {
                    J::Fail(ip, "tooth " + std::to_string(fdi) + " at step " +
                                    std::to_string(step) + " given twice");
                }
                s.AddTreatStep(VxTreatStep(
                    fdi, step, J::Matrix(J::Field(t, "placement", ip), J::Sub(ip, "placement"))));
            }
        }
        s.SetStepCount(count);
        if (const json* iprs = J::OptField(j, "iprs")) {
            const std::string ip0 = J::Sub(path, "iprs");
            J::ExpectArray(*iprs, ip0);
            for (std::size_t i = 0; i < iprs->size(); ++i) {
                const std::string ip = J::Idx(ip0, i);
                const json& r = (*iprs)[i];
                const std::string tp = J::Sub(ip, "teeth");
                const json& teeth = J::Field(r, "teeth", ip);
                J::ExpectArray(teeth, tp);
                if (teeth.size() != 2) {
                    J::Fail(tp, "expected two teeth (or nulls)");
                }
                const int step = J::Int(J::Field(r, "step", ip), J::Sub(ip, "step"));
                CheckStep(step, std::max(count, 1), J::Sub(ip, "step"), "scheme");
                s.AddIPR(VxIPR(ToothByKey(teeth[0], J::Idx(tp, 0)),
                               ToothByKey(teeth[1], J::Idx(tp, 1)), step,
                               J::Num(J::Field(r, "value", ip), J::Sub(ip, "value")),
                               J::Num(J::Field(r, "maxGap", ip), J::Sub(ip, "maxGap")),
                               J::Point(J::Field(r, "gapPos", ip), J::Sub(ip, "gapPos"))));
            }
        }
    }

    std::vector<VxVertex*> Vertices(const json& j, const std::string& path, VxTooth* tooth,
                                    int fdi) {
        J::ExpectArray(j, path);
        if (!j.empty() && tooth == nullptr) {
            J::Fail(path, "vertex ids need tooth " + std::to_string(fdi) + " in the case");
        }
        std::vector<VxVertex*> out;
        if (tooth == nullptr) {
            return out;
        }
        for (const int id : J::Ints(j, path, 0, tooth->GetVertexCount() - 1)) {
            out.push_back(tooth->GetVertex(id));
        }
        return out;
    }

    void ReadToothRef(const json& j, const std::string& path) {
        const int fdi = Fdi(J::Field(j, "fdi", path), J::Sub(path, "fdi"));
        VxTooth* tooth = m_case.FindTooth(fdi);
        VxToothRef ref(fdi);
        ref.SetToothKind(static_cast<ToothKind_e>(
            OptInt(j, "kind", path, ToothKind_Normal, ToothKind_Normal, ToothKind_Deciduous)));
        if (const json* jaw = J::OptField(j, "jaw")) {
            ref.SetOwnJaw(JawByKey(*jaw, J::Sub(path, "jaw")));
        }
        if (const json* f = J::OptField(j, "facc")) {
            const std::string fp = J::Sub(path, "facc");
            J::ExpectObject(*f, fp);
            VxFacc facc;
            if (const json* c = J::OptField(*f, "curve")) {
                facc.SetCurve(J::Curve(*c, J::Sub(fp, "curve")));
            }
            if (const json* c = J::OptField(*f, "toothCurve")) {
                facc.SetToothCurve(J::Curve(*c, J::Sub(fp, "toothCurve")));
            }
            if (const json* v = J::OptField(*f, "vertices")) {
                facc.SetAllRefVtx(Vertices(*v, J::Sub(fp, "vertices"), tooth, fdi));
            }
            ref.SetFacc(facc);
        }
        if (const json* m = J::OptField(j, "midCurve")) {
            const std::string mp = J::Sub(path, "midCurve");
            J::ExpectObject(*m, mp);
            VxMidCurve mid;
            if (const json* c = J::OptField(*m, "curve")) {
                mid.SetCurve(J::Curve(*c, J::Sub(mp, "curve")));
            }
            if (const json* v = J::OptField(*m, "midVertex")) {
                const int hi = tooth ? tooth->GetVertexCount() - 1 : -1;
                mid.SetMidVtxId(J::Int(*v, J::Sub(mp, "midVertex"), -1, hi));
            }
            if (const json* v = J::OptField(*m, "vertices")) {
                mid.SetAllRefVtx(Vertices(*v, J::Sub(mp, "vertices"), tooth, fdi));
            }
            ref.SetMidCurve(mid);
        }
        if (const json* fps = J::OptField(j, "featurePoints")) {
            const std::string fp = J::Sub(path, "featurePoints");
            J::ExpectArray(*fps, fp);
            for (std::size_t i = 0; i < fps->size(); ++i) {
                const std::string ip = J::Idx(fp, i);
                const int kind = OptInt((*fps)[i], "kind", ip, 0);
                const std::string vp = J::Sub(ip, "vertex");
                const json& vj = J::Field((*fps)[i], "vertex", ip);
                if (tooth == nullptr) {
                    J::Fail(vp, "vertex ids need tooth " + std::to_string(fdi) + " in the case");
                }
                const int id = J::Int(vj, vp, 0, tooth->GetVertexCount() - 1);
                ref.AddFeaturePoint(VxFeaturePoint(kind, tooth->GetVertex(id)));
            }
        }
        m_case.toothRefs.push_back(std::move(ref));
    }

    void ReadJawRef(const json& j, const std::string& path, bool up, std::optional<VxJawRef>& out) {
        J::ExpectObject(j, path);
        VxJawRef ref(up);
        if (const json* b = J::OptField(j, "beautyPlane")) {
            const std::string bp = J::Sub(path, "beautyPlane");
            std::vector<VxPoint> pts;
            if (const json* p = J::OptField(*b, "points")) {
                pts = J::Points(*p, J::Sub(bp, "points"));
            }
            ref.SetBeautyPlane(
                VxBeautyPlane(J::Frame(J::Field(*b, "frame", bp), J::Sub(bp, "frame")),
                              J::Num(J::Field(*b, "length", bp), J::Sub(bp, "length")), pts));
        }
        if (const json* m = J::OptField(j, "middlePlane")) {
            const std::string mp = J::Sub(path, "middlePlane");
            if (!ref.SetMiddlePlane(J::Frame(J::Field(*m, "frame", mp), J::Sub(mp, "frame")),
                                    J::Num(J::Field(*m, "length", mp), J::Sub(mp, "length")))) {
                J::Fail(J::Sub(mp, "frame"), "a plane needs a frame with axes");
            }
        }
        if (const json* m = J::OptField(j, "backBoundaryPlane")) {
            const std::string mp = J::Sub(path, "backBoundaryPlane");
            if (!ref.SetBackBoundaryPlane(
                    J::Frame(J::Field(*m, "frame", mp), J::Sub(mp, "frame")),
                    J::Num(J::Field(*m, "length", mp), J::Sub(mp, "length")))) {
                J::Fail(J::Sub(mp, "frame"), "a plane needs a frame with axes");
            }
        }
        if (const json* p = J::OptField(j, "backBoundaryPoints")) {
            ref.SetBackBoundaryPlanePts(J::Points(*p, J::Sub(path, "backBoundaryPoints")));
        }
        out = std::move(ref);
    }

    void ReadJawRefs(const json& j, const std::string& path) {
        J::ExpectObject(j, path);
        if (const json* u = J::OptField(j, "upper")) {
            ReadJawRef(*u, J::Sub(path, "upper"), true, m_case.upperJawRef);
        }
        if (const json* l = J::OptField(j, "lower")) {
            ReadJawRef(*l, J::Sub(path, "lower"), false, m_case.lowerJawRef);
        }
    }

    void ReadMovementDiff(const json& j, const std::string& path) {
        const int fdi = Fdi(J::Field(j, "fdi", path), J::Sub(path, "fdi"));
        if (m_case.movementDiffs.count(fdi) != 0) {
            J::Fail(J::Sub(path, "fdi"), "tooth " + std::to_string(fdi) + " given twice");
        }
        ThreeMovementDiff_s d;
        const auto pair = [&](const char* key, double& lo, double& hi) {
            const std::string p = J::Sub(path, key);
            const json& a = J::Field(j, key, path);
            J::ExpectArray(a, p);
            if (a.size() != 2) {
                J::Fail(p, "expected [minimum, maximum]");
            }
            lo = J::Num(a[0], J::Idx(p, 0));
            hi = J::Num(a[1], J::Idx(p, 1));
        };
        pair("moveX", d.moveXMin, d.moveXMax);
        pair("rotateX", d.rotateXMin, d.rotateXMax);
        pair("moveY", d.moveYMin, d.moveYMax);
        pair("rotateY", d.rotateYMin, d.rotateYMax);
        pair("moveZ", d.moveZMin, d.moveZMax);
        pair("rotateZ", d.rotateZMin, d.rotateZMax);
        m_case.movementDiffs[fdi] = d;
    }

    void ReadGapInfo(const json& j, const std::string& path) {
        VxGapInfo g;
        g.SetIsGap(J::Bool(J::Field(j, "gap", path), J::Sub(path, "gap")));
        g.SetValue(J::Num(J::Field(j, "value", path), J::Sub(path, "value")));
        g.SetValuePos(J::Point(J::Field(j, "valuePos", path), J::Sub(path, "valuePos")));
        const std::string sp = J::Sub(path, "sides");
        const json& sides = J::Field(j, "sides", path);
        J::ExpectArray(sides, sp);
        if (sides.size() > 2) {
            J::Fail(sp, "at most two sides");
        }
        for (std::size_t i = 0; i < sides.size(); ++i) {
            const std::string ip = J::Idx(sp, i);
            const json& s = sides[i];
            J::ExpectObject(s, ip);
            const json* mj = J::OptField(s, "mesh");
            VxMesh* mesh = mj ? MeshByKey(*mj, J::Sub(ip, "mesh")) : nullptr;
            const int side = static_cast<int>(i);
            g.SetMesh(side, mesh);
            const int faces = mesh ? mesh->GetFaceCount() : 0;
            const int verts = mesh ? mesh->GetVertexCount() : 0;
            if (const json* f = J::OptField(s, "faces")) {
                g.SetFaces(side, J::Ints(*f, J::Sub(ip, "faces"), 0, faces - 1));
            }
            if (const json* d = J::OptField(s, "depths")) {
                const std::string dp = J::Sub(ip, "depths");
                J::ExpectArray(*d, dp);
                for (std::size_t k = 0; k < d->size(); ++k) {
                    const std::string kp = J::Idx(dp, k);
                    const json& e = (*d)[k];
                    J::ExpectArray(e, kp);
                    if (e.size() != 2) {
                        J::Fail(kp, "expected [vertex id, depth]");
                    }
                    const int v = J::Int(e[0], J::Idx(kp, 0), 0, verts - 1);
                    if (g.GetVertexDepth(side).count(v) != 0) {
                        J::Fail(J::Idx(kp, 0), "vertex " + std::to_string(v) + " given twice");
                    }
                    g.AddVertexDepth(side, v, J::Num(e[1], J::Idx(kp, 1)));
                }
            }
        }
        m_case.gapInfos.push_back(g);
    }

    void ReadImages(const json& j, const std::string& path) {
        J::ExpectObject(j, path);
        VxPatientInfo& info = m_case.patientInfo;
        void (VxPatientInfo::*setters[4])(std::unique_ptr<CImage>) = {
            &VxPatientInfo::SetPanoramicImg, &VxPatientInfo::SetProfileImg,
            &VxPatientInfo::SetFrontalSmileImg, &VxPatientInfo::SetCephalometricImg};
        for (int i = 0; i < 4; ++i) {
            const json* f = J::OptField(j, kImageNames[i]);
            if (f == nullptr) {
                continue;
            }
            const std::string fp = J::Sub(path, kImageNames[i]);
            const std::string name = FileName(*f, fp);
            auto img = std::make_unique<CImage>();
            const std::string full = m_dir + "/" + name;
            if (!std::filesystem::is_regular_file(full)) {
                throw CaseFileError{name, "file", "cannot be opened (named by " + fp + ")"};
            }
            if (img->Load(CString::FromUtf8(full)) != S_OK) {
                throw CaseFileError{
                    name, "file", "not a readable PNG, JPEG or BMP picture (named by " + fp + ")"};
            }
            // Held in the layout the picture overlays upload as it stands.
            auto held = std::make_unique<CImage>();
            if (!VxPictureLayout::ToOverlayLayout(*img, *held)) {
                throw CaseFileError{name, "file",
                                    "too small a picture or of a depth other than 8, 24 or 32 "
                                    "bits (named by " +
                                        fp + ")"};
            }
            (info.*setters[i])(std::move(held));
        }
    }

    void ReadPanMeasure(const json& j, const std::string& path) {
        J::ExpectObject(j, path);
        VxPanMeasure& m = m_case.panMeasure;
        m.SetBrightPos(OptInt(j, "bright", path, 0));
        m.SetContrastPos(OptInt(j, "contrast", path, 0));
        if (const json* d = J::OptField(j, "data")) {
            const std::string dp = J::Sub(path, "data");
            J::ExpectArray(*d, dp);
            for (std::size_t i = 0; i < d->size(); ++i) {
                const std::string ip = J::Idx(dp, i);
                const json& e = (*d)[i];
                m.AddData(PanAttribute(J::Int(J::Field(e, "kind", ip), J::Sub(ip, "kind")),
                                       J::Int(J::Field(e, "number", ip), J::Sub(ip, "number")),
                                       J::Point(J::Field(e, "point", ip), J::Sub(ip, "point"))));
            }
        }
    }

    void ReadCepMeasure(const json& j, const std::string& path) {
        J::ExpectObject(j, path);
        VxCepMeasure& m = m_case.cepMeasure;
        m.SetBrightPos(OptInt(j, "bright", path, 0));
        m.SetContrastPos(OptInt(j, "contrast", path, 0));
        if (const json* d = J::OptField(j, "points")) {
            const std::string dp = J::Sub(path, "points");
            J::ExpectArray(*d, dp);
            for (std::size_t i = 0; i < d->size(); ++i) {
                const std::string ip = J::Idx(dp, i);
                const json& e = (*d)[i];
                const auto id = static_cast<MEASURE_POINT>(
                    J::Int(J::Field(e, "id", ip), J::Sub(ip, "id"), 0, MEASURE_POINT_Count - 1));
                CephalometricPt unused;
                if (m.GetMeasurePt(id, unused)) {
                    J::Fail(J::Sub(ip, "id"), "landmark " + std::to_string(id) + " given twice");
                }
                m.SetMeasurePt(
                    CephalometricPt(id, J::Point(J::Field(e, "pos", ip), J::Sub(ip, "pos"))));
            }
        }
    }

    std::string m_dir;
    VxCase& m_case;
    std::map<std::string, VxMesh*> m_keys;
    std::map<std::string, VxMesh> m_meshCache;
};

// ======================================================================================
// Writing
// ======================================================================================

class CaseWriter {
public:
    CaseWriter(const VxCase& c, const std::string& dir) : m_case(c), m_dir(dir) {}

    json Build() {
        AssignKeys();
        json root = json::object();
        root["format"] = "vxcase";
        root["version"] = VxCaseIO::kFormatVersion;
        root["units"] = "mm";
        WriteEntities(root);
        WritePlan(root);
        WriteScheme(root);
        WriteRefs(root);
        WriteRecords(root);
        return root;
    }

private:
    void Key(const VxMesh* mesh, const std::string& key, const std::string& path) {
        if (mesh == nullptr) {
            return;
        }
        if (m_usedKeys.count(key) != 0) {
            J::Fail(path, "a second \"" + key + "\" (two objects with the same key)");
        }
        if (!m_keys.emplace(mesh, key).second) {
            J::Fail(path, "the same object is listed twice");
        }
        m_usedKeys.insert(key);
    }

    void AssignKeys() {
        for (std::size_t i = 0; i < m_case.jaws.size(); ++i) {
            const VxJaw* jaw = m_case.jaws[i].get();
            Key(jaw, "jaw:" + SideName(jaw->IsUp()), J::Idx("jaws", i));
        }
        for (std::size_t i = 0; i < m_case.teeth.size(); ++i) {
            const VxTooth* t = m_case.teeth[i].get();
            const std::string path = J::Idx("teeth", i);
            if (!VxFDI(t->GetFDI()).IsValid()) {
                J::Fail(J::Sub(path, "fdi"),
                        std::to_string(t->GetFDI()) + " is not an FDI tooth number");
            }
            Key(t, ToothKey(t->GetFDI()), path);
            Key(t->GetBackupRoot(), "root:" + std::to_string(t->GetFDI()),
                J::Sub(path, "backupRoot"));
        }
        for (std::size_t i = 0; i < m_case.gums.size(); ++i) {
            const VxGum* g = m_case.gums[i].get();
            Key(g, GumKey(g->IsUp(), g->IsCmp()), J::Idx("gums", i));
        }
        Key(m_case.skull.get(), "skull", "skull");
        for (std::size_t i = 0; i < m_case.stdAttachments.size(); ++i) {
            Key(m_case.stdAttachments[i].get(), "stdattach:" + std::to_string(i),
                J::Idx("stdAttachments", i));
        }
        for (std::size_t i = 0; i < m_case.attachments.size(); ++i) {
            const VxAttachment* a = m_case.attachments[i].get();
            const std::string key = "attachment:" + std::to_string(i);
            Key(a, key, J::Idx("attachments", i));
            for (std::size_t p = 0; p < a->AttachParts().size(); ++p) {
                Key(a->AttachParts()[p].get(), key + "/part:" + std::to_string(p),
                    J::Idx(J::Sub(J::Idx("attachments", i), "parts"), p));
            }
        }
        for (std::size_t i = 0; i < m_case.wedges.size(); ++i) {
            Key(m_case.wedges[i].get(), "wedge:" + std::to_string(i), J::Idx("wedges", i));
        }
        for (const auto& r : m_case.backupRoots) {
            if (m_keys.count(r.get()) == 0) {
                J::Fail("teeth", "a backup root that no tooth points to");
            }
        }
    }

    // The key of an owned object; JSON null for null.
    json Ref(const VxMesh* mesh, const std::string& path) const {
        if (mesh == nullptr) {
            return json();
        }
        const auto it = m_keys.find(mesh);
        if (it == m_keys.end()) {
            J::Fail(path, "points to an object the case does not own");
        }
        return it->second;
    }

    // Writes the mesh file when the mesh has geometry; null otherwise.
    json MeshRef(const VxMesh& mesh, const std::string& path) {
        if (mesh.GetVertexCount() == 0 && mesh.GetFaceCount() == 0) {
            return json();
        }
        std::string name = m_keys.at(&mesh);
        for (char& c : name) {
            if (c == ':' || c == '/') {
                c = '_';
            }
        }
        name = "meshes/" + name + ".ply";
        std::string err;
        if (!VxMeshFile::WritePly(mesh, m_dir + "/" + name, err)) {
            const std::size_t colon = err.find(": ");
            throw CaseFileError{name, colon == std::string::npos ? "file" : err.substr(0, colon),
                                (colon == std::string::npos ? err : err.substr(colon + 2)) +
                                    " (mesh of " + path + ")"};
        }
        json o = json::object();
        o["file"] = name;
        json styles = J::FaceStylesJ(mesh);
        if (!styles.is_null()) {
            o["faceStyles"] = std::move(styles);
        }
        return o;
    }

    void Common(json& o, const VxMesh& mesh, const std::string& path) {
        json m = MeshRef(mesh, path);
        if (!m.is_null()) {
            o["mesh"] = std::move(m);
        }
        if (!mesh.IsVisible()) {
            o["visible"] = false;
        }
    }

    void WriteEntities(json& root) {
        json jaws = json::array();
        for (std::size_t i = 0; i < m_case.jaws.size(); ++i) {
            const VxJaw& jaw = *m_case.jaws[i];
            const std::string p = J::Idx("jaws", i);
            json o{{"up", jaw.IsUp()}};
            o["frame"] = J::FrameJ(jaw.GetFrame(), J::Sub(p, "frame"));
            Common(o, jaw, p);
            jaws.push_back(std::move(o));
        }
        root["jaws"] = std::move(jaws);

        json teeth = json::array();
        for (std::size_t i = 0; i < m_case.teeth.size(); ++i) {
            const VxTooth& t = *m_case.teeth[i];
            const std::string p = J::Idx("teeth", i);
            json o{{"fdi", t.GetFDI()},
                   {"kind", static_cast<int>(t.GetToothKind())},
                   {"lockShown", t.IsLockShown()}};
            o["jaw"] = Ref(t.GetParent(), J::Sub(p, "jaw"));
            o["frame"] = J::FrameJ(t.GetFrame(), J::Sub(p, "frame"));
            Common(o, t, p);
            if (t.GetBackupRoot() != nullptr) {
                json r = MeshRef(*t.GetBackupRoot(), J::Sub(p, "backupRoot"));
                if (!r.is_null()) {
                    o["backupRoot"] = std::move(r);
                }
            }
            teeth.push_back(std::move(o));
        }
        root["teeth"] = std::move(teeth);

        json gums = json::array();
        for (std::size_t i = 0; i < m_case.gums.size(); ++i) {
            const VxGum& g = *m_case.gums[i];
            const std::string p = J::Idx("gums", i);
            json o{{"up", g.IsUp()}, {"cmp", g.IsCmp()}};
            Common(o, g, p);
            json bands = json::array();
            for (int f = 0; f < VxGum::kBandFamilies; ++f) {
                bands.push_back(
                    json{{"starts", g.GetBandStartFaces(f)}, {"ends", g.GetBandEndFaces(f)}});
            }
            o["bands"] = std::move(bands);
            o["segments"] =
                json{{"first", g.GetSegmentFirstFaces()}, {"ends", g.GetSegmentEndFaces()}};
            gums.push_back(std::move(o));
        }
        root["gums"] = std::move(gums);

        if (m_case.skull) {
            json o = json::object();
            Common(o, *m_case.skull, "skull");
            root["skull"] = std::move(o);
        }

        json stds = json::array();
        for (std::size_t i = 0; i < m_case.stdAttachments.size(); ++i) {
            const VxStdAttach& s = *m_case.stdAttachments[i];
            json o{{"identifier", s.GetAttachIdentifier().ToUtf8()},
                   {"color", J::ColorJ(s.GetColor())}};
            Common(o, s, J::Idx("stdAttachments", i));
            stds.push_back(std::move(o));
        }
        root["stdAttachments"] = std::move(stds);

        json atts = json::array();
        for (std::size_t i = 0; i < m_case.attachments.size(); ++i) {
            const VxAttachment& a = *m_case.attachments[i];
            const std::string p = J::Idx("attachments", i);
            json o = json::object();
            o["std"] = Ref(a.GetStdAttachment(), J::Sub(p, "std"));
            o["tooth"] = Ref(a.GetTooth(), J::Sub(p, "tooth"));
            o["frame"] = J::FrameJ(a.GetCurFrame(), J::Sub(p, "frame"));
            o["currentMatrix"] = J::MatrixJ(a.GetCurrentMatrix(), J::Sub(p, "currentMatrix"));
            o["startStep"] = a.GetStartStep();
            o["endStep"] = a.GetEndStep();
            o["cmp"] = a.IsCmp();
            Common(o, a, p);
            json parts = json::array();
            for (std::size_t k = 0; k < a.AttachParts().size(); ++k) {
                const std::string pp = J::Idx(J::Sub(p, "parts"), k);
                const auto& part = a.AttachParts()[k];
                if (!part) {
                    J::Fail(pp, "null part");
                }
                json po{{"matrix", J::MatrixJ(part->matrix, J::Sub(pp, "matrix"))}};
                Common(po, *part, pp);
                parts.push_back(std::move(po));
            }
            o["parts"] = std::move(parts);
            atts.push_back(std::move(o));
        }
        root["attachments"] = std::move(atts);

        json wedges = json::array();
        for (std::size_t i = 0; i < m_case.wedges.size(); ++i) {
            const VxFilledWedge& w = *m_case.wedges[i];
            const std::string p = J::Idx("wedges", i);
            const std::string tp = J::Sub(p, "teeth");
            json o = json::object();
            if (const auto* tri = dynamic_cast<const VxFilledWedgeTriTooth*>(&w)) {
                o["kind"] = "tri";
                o["teeth"] = json::array({Ref(w.GetToothLeft(), tp), Ref(tri->GetToothMiddle(), tp),
                                          Ref(w.GetToothRight(), tp)});
            } else {
                o["kind"] = dynamic_cast<const VxFilledWedgeTwoTooth*>(&w) ? "two" : "plain";
                o["teeth"] = json::array({Ref(w.GetToothLeft(), tp), Ref(w.GetToothRight(), tp)});
            }
            Common(o, w, p);
            wedges.push_back(std::move(o));
        }
        root["wedges"] = std::move(wedges);
    }

    void WritePlan(json& root) {
        json plan = json::object();
        plan["stepCount"] = m_case.stepCount;
        plan["currentStep"] = m_case.currentStep;
        // In the order of the case's own lists, not pointer order, so that the same case always
        // gives the same file.
        const auto ordered = KeyOrder();
        std::size_t seen = 0;
        json pl = json::array();
        for (const auto& [mesh, key] : ordered) {
            const auto it = m_case.placements.find(mesh);
            if (it == m_case.placements.end()) {
                continue;
            }
            ++seen;
            const std::string p = J::Idx("plan.placements", pl.size());
            json steps = json::array();
            for (const auto& [step, infos] : it->second) {
                const std::string sp = J::Idx(J::Sub(p, "steps"), steps.size());
                json draws = json::array();
                for (const DrawInfo_s& d : infos) {
                    draws.push_back(
                        json{{"limited", d.limited},
                             {"matrix",
                              J::MatrixJ(d.matrix, J::Sub(J::Idx(J::Sub(sp, "draws"), draws.size()),
                                                          "matrix"))}});
                }
                steps.push_back(json{{"step", step}, {"draws", std::move(draws)}});
            }
            pl.push_back(json{{"entity", key}, {"steps", std::move(steps)}});
        }
        if (seen != m_case.placements.size()) {
            J::Fail("plan.placements", "placements of an entity the case does not own");
        }
        plan["placements"] = std::move(pl);
        root["plan"] = std::move(plan);
    }

    std::vector<std::pair<const VxMesh*, std::string>> KeyOrder() const {
        std::vector<const VxMesh*> meshes;
        for (const auto& j : m_case.jaws) {
            meshes.push_back(j.get());
        }
        for (const auto& t : m_case.teeth) {
            meshes.push_back(t.get());
            if (t->GetBackupRoot()) {
                meshes.push_back(t->GetBackupRoot());
            }
        }
        for (const auto& g : m_case.gums) {
            meshes.push_back(g.get());
        }
        if (m_case.skull) {
            meshes.push_back(m_case.skull.get());
        }
        for (const auto& s : m_case.stdAttachments) {
            meshes.push_back(s.get());
        }
        for (const auto& a : m_case.attachments) {
            meshes.push_back(a.get());
            for (const auto& p : a->AttachParts()) {
                meshes.push_back(p.get());
            }
        }
        for (const auto& w : m_case.wedges) {
            meshes.push_back(w.get());
        }
        std::vector<std::pair<const VxMesh*, std::string>> out;
        for (const VxMesh* m : meshes) {
            out.emplace_back(m, m_keys.at(m));
        }
        return out;
    }

    json ArchJ(const VxArchForm& a, const std::string& path) {
        if (a.GetPoints().empty() && a.GetCurve() != nullptr) {
            return json{{"curve", J::CurveJ(*a.GetCurve(), J::Sub(path, "curve"))}};
        }
        return json{{"points", J::PointsJ(a.GetPoints(), J::Sub(path, "points"))},
                    {"closed", a.IsClosed()}};
    }

    json OccJ(const VxOcclusalPlane& o, const std::string& path) {
        return json{{"frame", J::FrameJ(o.GetPlaneFrame(), J::Sub(path, "frame"))},
                    {"length", J::NumJ(o.GetLength(), J::Sub(path, "length"))}};
    }

    void WriteScheme(json& root) {
        const VxScheme& s = m_case.scheme;
        json o = json::object();
        o["stepCount"] = s.GetStepCount();
        if (s.GetUpArch()) {
            o["upArch"] = ArchJ(*s.GetUpArch(), "scheme.upArch");
        }
        if (s.GetLowArch()) {
            o["lowArch"] = ArchJ(*s.GetLowArch(), "scheme.lowArch");
        }
        if (s.GetUpOccPlane()) {
            o["upOcclusalPlane"] = OccJ(*s.GetUpOccPlane(), "scheme.upOcclusalPlane");
        }
        if (s.GetLowOccPlane()) {
            o["lowOcclusalPlane"] = OccJ(*s.GetLowOccPlane(), "scheme.lowOcclusalPlane");
        }
        // GetAllTreatSteps only reads; it is not const because it hands out mutable pointers.
        std::vector<VxTreatStep*> steps;
        const_cast<VxScheme&>(s).GetAllTreatSteps(steps);
        json ts = json::array();
        for (const VxTreatStep* t : steps) {
            const std::string p = J::Idx("scheme.treatSteps", ts.size());
            ts.push_back(
                json{{"fdi", t->GetFDI()},
                     {"step", t->GetStep()},
                     {"placement", J::MatrixJ(t->GetPlacement(), J::Sub(p, "placement"))}});
        }
        o["treatSteps"] = std::move(ts);
        json iprs = json::array();
        for (const VxIPR& r : s.GetIPRInfo()) {
            const std::string p = J::Idx("scheme.iprs", iprs.size());
            iprs.push_back(
                json{{"teeth", json::array({Ref(r.GetFirstTooth(), J::Sub(p, "teeth")),
                                            Ref(r.GetSecondTooth(), J::Sub(p, "teeth"))})},
                     {"step", r.GetStep()},
                     {"value", J::NumJ(r.GetValue(), J::Sub(p, "value"))},
                     {"maxGap", J::NumJ(r.GetmaxGapValue(), J::Sub(p, "maxGap"))},
                     {"gapPos", J::PointJ(r.GetGapPos(), J::Sub(p, "gapPos"))}});
        }
        o["iprs"] = std::move(iprs);
        root["scheme"] = std::move(o);
    }

    json VertexIds(const std::vector<VxVertex*>& verts, const VxTooth* tooth,
                   const std::string& path) const {
        json a = json::array();
        for (std::size_t i = 0; i < verts.size(); ++i) {
            a.push_back(VertexId(verts[i], tooth, J::Idx(path, i)));
        }
        return a;
    }

    int VertexId(const VxVertex* v, const VxTooth* tooth, const std::string& path) const {
        if (tooth != nullptr && !tooth->GetVertices().empty()) {
            const VxVertex* first = tooth->GetVertices().data();
            const VxVertex* last = first + tooth->GetVertices().size();
            // Compared as addresses: the landmark must be one of the tooth's own vertices.
            if (std::less_equal<const VxVertex*>()(first, v) &&
                std::less<const VxVertex*>()(v, last)) {
                return static_cast<int>(v - first);
            }
        }
        J::Fail(path, "vertex is not one of its tooth's vertices");
    }

    json PlaneJ(const VxFrame& f, double length, const std::string& path) {
        return json{{"frame", J::FrameJ(f, J::Sub(path, "frame"))},
                    {"length", J::NumJ(length, J::Sub(path, "length"))}};
    }

    void WriteRefs(json& root) {
        json refs = json::array();
        for (std::size_t i = 0; i < m_case.toothRefs.size(); ++i) {
            const VxToothRef& r = m_case.toothRefs[i];
            const std::string p = J::Idx("toothRefs", i);
            const VxTooth* tooth = m_case.FindTooth(r.GetFDI());
            json o{{"fdi", r.GetFDI()}, {"kind", static_cast<int>(r.GetToothKind())}};
            o["jaw"] = Ref(r.GetOwnJaw(), J::Sub(p, "jaw"));
            json facc = json::object();
            const std::string fp = J::Sub(p, "facc");
            if (r.GetFacc().GetCurve()) {
                facc["curve"] = J::CurveJ(*r.GetFacc().GetCurve(), J::Sub(fp, "curve"));
            }
            if (r.GetFacc().GetToothCurve()) {
                facc["toothCurve"] =
                    J::CurveJ(*r.GetFacc().GetToothCurve(), J::Sub(fp, "toothCurve"));
            }
            facc["vertices"] = VertexIds(r.GetFacc().GetAllRefVtx(), tooth, J::Sub(fp, "vertices"));
            o["facc"] = std::move(facc);
            json mid = json::object();
            const std::string mp = J::Sub(p, "midCurve");
            if (r.GetMidCurve().GetCurve()) {
                mid["curve"] = J::CurveJ(*r.GetMidCurve().GetCurve(), J::Sub(mp, "curve"));
            }
            mid["midVertex"] = r.GetMidCurve().GetMidVtxId();
            mid["vertices"] =
                VertexIds(r.GetMidCurve().GetAllRefVtx(), tooth, J::Sub(mp, "vertices"));
            o["midCurve"] = std::move(mid);
            json fps = json::array();
            for (const VxFeaturePoint& f : r.GetFeaturePoint()) {
                const std::string ip = J::Idx(J::Sub(p, "featurePoints"), fps.size());
                fps.push_back(json{{"kind", f.GetKind()},
                                   {"vertex", VertexId(f.GetVtx(), tooth, J::Sub(ip, "vertex"))}});
            }
            o["featurePoints"] = std::move(fps);
            refs.push_back(std::move(o));
        }
        root["toothRefs"] = std::move(refs);

        json jr = json::object();
        const std::optional<VxJawRef>* sides[2] = {&m_case.upperJawRef, &m_case.lowerJawRef};
        for (int s = 0; s < 2; ++s) {
            if (!*sides[s]) {
                continue;
            }
            const VxJawRef& r = **sides[s];
            const std::string p = J::Sub("jawRefs", s == 0 ? "upper" : "lower");
            json o = json::object();
            if (const VxBeautyPlane* b = r.GetBeautyPlane()) {
                std::vector<VxPoint> pts;
                b->GetBeauPt(pts);
                json bo = PlaneJ(b->GetPlaneFrame(), b->GetLength(), J::Sub(p, "beautyPlane"));
                bo["points"] = J::PointsJ(pts, J::Sub(J::Sub(p, "beautyPlane"), "points"));
                o["beautyPlane"] = std::move(bo);
            }
            VxFrame f;
            double len = 0.0;
            if (r.GetMiddlePlane(f, len)) {
                o["middlePlane"] = PlaneJ(f, len, J::Sub(p, "middlePlane"));
            }
            if (r.GetBackBoundaryPlane(f, len)) {
                o["backBoundaryPlane"] = PlaneJ(f, len, J::Sub(p, "backBoundaryPlane"));
            }
            std::vector<VxPoint> pts;
            if (r.GetBackBoundaryPlanePts(pts)) {
                o["backBoundaryPoints"] = J::PointsJ(pts, J::Sub(p, "backBoundaryPoints"));
            }
            jr[s == 0 ? "upper" : "lower"] = std::move(o);
        }
        root["jawRefs"] = std::move(jr);
    }

    void WriteRecords(json& root) {
        json diffs = json::array();
        for (const auto& [fdi, d] : m_case.movementDiffs) {
            const std::string p = J::Idx("movementDiffs", diffs.size());
            const auto pair = [&](const char* key, double lo, double hi) {
                return json::array({J::NumJ(lo, J::Idx(J::Sub(p, key), 0)),
                                    J::NumJ(hi, J::Idx(J::Sub(p, key), 1))});
            };
            diffs.push_back(json{{"fdi", fdi},
                                 {"moveX", pair("moveX", d.moveXMin, d.moveXMax)},
                                 {"rotateX", pair("rotateX", d.rotateXMin, d.rotateXMax)},
                                 {"moveY", pair("moveY", d.moveYMin, d.moveYMax)},
                                 {"rotateY", pair("rotateY", d.rotateYMin, d.rotateYMax)},
                                 {"moveZ", pair("moveZ", d.moveZMin, d.moveZMax)},
                                 {"rotateZ", pair("rotateZ", d.rotateZMin, d.rotateZMax)}});
        }
        root["movementDiffs"] = std::move(diffs);

        json gaps = json::array();
        for (std::size_t i = 0; i < m_case.gapInfos.size(); ++i) {
            const VxGapInfo& g = m_case.gapInfos[i];
            const std::string p = J::Idx("gapInfos", i);
            json sides = json::array();
            for (int s = 0; s < 2; ++s) {
                const std::string sp = J::Idx(J::Sub(p, "sides"), static_cast<std::size_t>(s));
                json depths = json::array();
                for (const auto& [v, d] : g.GetVertexDepth(s)) {
                    depths.push_back(json::array({v, J::NumJ(d, J::Sub(sp, "depths"))}));
                }
                sides.push_back(json{{"mesh", Ref(g.GetMesh(s), J::Sub(sp, "mesh"))},
                                     {"faces", g.GetFaces(s)},
                                     {"depths", std::move(depths)}});
            }
            gaps.push_back(json{{"gap", g.IsGap()},
                                {"value", J::NumJ(g.GetValue(), J::Sub(p, "value"))},
                                {"valuePos", J::PointJ(g.GetValuePos(), J::Sub(p, "valuePos"))},
                                {"sides", std::move(sides)}});
        }
        root["gapInfos"] = std::move(gaps);

        const VxPatientInfo& info = m_case.patientInfo;
        const CImage* imgs[4] = {info.GetPanoramicImg(), info.GetProfileImg(),
                                 info.GetFrontalSmileImg(), info.GetCephalometricImg()};
        json images = json::object();
        for (int i = 0; i < 4; ++i) {
            if (imgs[i] == nullptr || imgs[i]->IsNull()) {
                continue;
            }
            const std::string name = std::string("images/") + kImageNames[i] + ".png";
            // Back to an ordinary picture for the file; one the layout refuses goes as it is.
            CImage plain;
            const CImage& out =
                VxPictureLayout::FromOverlayLayout(*imgs[i], plain) ? plain : *imgs[i];
            if (out.Save(CString::FromUtf8(m_dir + "/" + name)) != S_OK) {
                throw CaseFileError{name, "file",
                                    std::string("cannot be written (picture images.") +
                                        kImageNames[i] + ")"};
            }
            images[kImageNames[i]] = name;
        }
        root["images"] = std::move(images);

        const VxPanMeasure& pan = m_case.panMeasure;
        json pdata = json::array();
        for (const PanAttribute& a : pan.GetDatas()) {
            const std::string p = J::Idx("panMeasure.data", pdata.size());
            pdata.push_back(json{{"kind", a.kind},
                                 {"number", a.number},
                                 {"point", J::PointJ(a.point, J::Sub(p, "point"))}});
        }
        root["panMeasure"] = json{{"bright", pan.GetBrightPos()},
                                  {"contrast", pan.GetContrastPos()},
                                  {"data", std::move(pdata)}};

        const VxCepMeasure& cep = m_case.cepMeasure;
        json cpts = json::array();
        for (const auto& [id, pt] : cep.GetAllMeasurePts()) {
            const std::string p = J::Idx("cepMeasure.points", cpts.size());
            cpts.push_back(
                json{{"id", static_cast<int>(id)}, {"pos", J::PointJ(pt.pos, J::Sub(p, "pos"))}});
        }
        root["cepMeasure"] = json{{"bright", cep.GetBrightPos()},
                                  {"contrast", cep.GetContrastPos()},
                                  {"points", std::move(cpts)}};
    }

    const VxCase& m_case;
    std::string m_dir;
    std::map<const VxMesh*, std::string> m_keys;
    std::set<std::string> m_usedKeys;
};

} // namespace

bool VxCaseIO::Read(const std::string& dir, VxCase& out, std::string& error) {
    std::string text;
    std::string what;
    if (!ReadWholeFile(dir + "/" + kManifestName, kMaxManifestBytes, text, what)) {
        error = std::string(kManifestName) + ": (file): " + what;
        return false;
    }
    return ReadManifest(text, dir, out, error);
}

bool VxCaseIO::ReadManifest(const std::string& manifestText, const std::string& dir, VxCase& out,
                            std::string& error) {
    const std::string file = kManifestName;
    if (manifestText.size() > kMaxManifestBytes) {
        error = file + ": (file): larger than " + std::to_string(kMaxManifestBytes >> 20) + " MiB";
        return false;
    }
    if (NestingDepth(manifestText, kMaxNesting) > kMaxNesting) {
        error = file + ": (file): nested deeper than " + std::to_string(kMaxNesting) + " levels";
        return false;
    }
    json root;
    try {
        root = json::parse(manifestText);
    } catch (const json::parse_error& e) {
        // The library's text starts with its own error id; the byte offset is what helps.
        std::string msg = e.what();
        const std::size_t colon = msg.rfind(": ");
        msg = colon == std::string::npos ? msg : msg.substr(colon + 2);
        error = file + ": byte " + std::to_string(e.byte) + ": malformed JSON: " + msg;
        return false;
    } catch (const std::exception& e) {
        // Number overflow ("1e999") lands here; it has no byte offset.
        std::string msg = e.what();
        const std::size_t bracket = msg.find("] ");
        msg = bracket == std::string::npos ? msg : msg.substr(bracket + 2);
        error = file + ": (file): malformed JSON: " + msg;
        return false;
    }
    VxCase fresh;
    try {
        CaseReader(dir, fresh).Read(root);
    } catch (const VxCaseFieldError& e) {
        error = file + ": " + e.path + ": " + e.what;
        return false;
    } catch (const CaseFileError& e) {
        error = e.file + ": " + e.path + ": " + e.what;
        return false;
    } catch (const std::bad_alloc&) {
        error = file + ": (file): out of memory while reading the case";
        return false;
    } catch (const std::exception& e) {
        error = file + ": (file): " + e.what();
        return false;
    }
    out.Swap(fresh);
    return true;
}

bool VxCaseIO::Write(const VxCase& c, const std::string& dir, std::string& error) {
    const std::string file = kManifestName;
    std::error_code ec;
    std::filesystem::create_directories(dir + "/meshes", ec);
    if (!ec) {
        std::filesystem::create_directories(dir + "/images", ec);
    }
    if (ec) {
        error = file + ": (file): cannot create the case directory: " + ec.message();
        return false;
    }
    std::string text;
    try {
        text = CaseWriter(c, dir).Build().dump(1, '\t');
    } catch (const VxCaseFieldError& e) {
        error = file + ": " + e.path + ": " + e.what;
        return false;
    } catch (const CaseFileError& e) {
        error = e.file + ": " + e.path + ": " + e.what;
        return false;
    } catch (const std::exception& e) {
        error = file + ": (file): " + e.what();
        return false;
    }
    text += '\n';
    const std::string final = dir + "/" + kManifestName;
    const std::string temp = final + ".tmp";
    {
        std::ofstream os(temp, std::ios::binary | std::ios::trunc);
        os.write(text.data(), static_cast<std::streamsize>(text.size()));
        if (!os.flush()) {
            error = file + ": (file): cannot be written";
            return false;
        }
    }
    std::filesystem::rename(temp, final, ec);
    if (ec) {
        error = file + ": (file): cannot be written: " + ec.message();
        return false;
    }
    return true;
}
