// NuVertexDataBuilder: tooth grades and gum band coordinates.
#include <shader/NuVertexDataBuilder.h>

#include <interfaces/VxCurvature.h>
#include <interfaces/VxFrame.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxTooth.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace {

// Grade of the crown band: heights below the 60 % mark grade towards the root tip.
constexpr double kTopShare = 0.6;
// The lowest point counts from here down; a tooth wholly above it grades from 10. This bound is a
// property of the look (it fixes the band on small crowns), not a sentinel.
constexpr double kBottomBound = 10.0;
constexpr double kLeastCurvatureStart = 10000.0;
// Deep grooves near the root end are graded by how much of the deepest curvature they reach.
constexpr double kGrooveGrade = 0.8;
constexpr double kGrooveCurvature = -0.25;
constexpr double kGrooveShare = 0.25;
// Cells in one row of a band: two faces each.
constexpr double kCellsPerRow = 19.0;
// Outside the image: the gum program's plain branch.
constexpr float kOutside = 2.5f;

} // namespace

std::vector<float> NuVertexDataBuilder::VxToothOrderMap(const VxTooth* tooth) {
    std::vector<float> order;
    if (tooth == nullptr || tooth->GetVertexCount() == 0) {
        return order;
    }
    const std::vector<VxVertex>& vertices = tooth->GetVertices();
    order.assign(vertices.size(), 1.0f);
    const std::vector<VxFace>& faces = tooth->GetFaces();
    const bool graded = std::any_of(faces.begin(), faces.end(), [](const VxFace& f) {
        return f.GetFaceStyle() == FaceStyle_BasicRoot;
    });
    if (!graded) {
        return order; // no crown area to grade
    }

    // Heights in the frame the tooth's own is carried onto; a copy, so the mesh stays put.
    const VxFrame target(VxPoint(0, 0, 0), VxVector(0, 1, 0), VxVector(1, 0, 0));
    const VxMatrix toTarget = tooth->GetFrame().GetTransformToNewFrame(target);
    std::vector<double> z(vertices.size());
    double greatest = -std::numeric_limits<double>::max();
    double bottom = kBottomBound;
    for (size_t i = 0; i < vertices.size(); ++i) {
        z[i] = toTarget.Transform(vertices[i].GetPos())[axis];
        greatest = std::max(greatest, z[i]);
        bottom = std::min(bottom, z[i]);
    }
    const double top = kTopShare * greatest;
    const double span = top - bottom;

    // Curvature does not change under the rigid move, so the mesh as it stands serves.
    VxCurvature curvature(const_cast<VxTooth*>(tooth));
    const std::vector<double>& mean = curvature.GetMeanCurvature();
    double least = kLeastCurvatureStart;
    for (double c : mean) {
        least = std::min(least, c);
    }
    for (size_t i = 0; i < vertices.size(); ++i) {
        vertexIds.insert(static_cast<int>(i));
        double t = span != 0.0 ? std::fabs((top - z[i]) / span) : 1.0;
        const double c = i < mean.size() ? mean[i] : 0.0;
        if (t > kGrooveGrade && c < kGrooveCurvature && least != 0.0 && c / least > kGrooveShare) {
            t = 1.0 - c / least;
        }
        order[i] = static_cast<float>(t);
    }
    return order;
}

NuVertexDataBuilder::FaceTexCoords NuVertexDataBuilder::VxGumTexCoordBuilder(const VxGum* gum) {
    FaceTexCoords out;
    if (gum == nullptr) {
        return out;
    }
    // First family: each band split at its middle into two halves that meet mirrored, so the
    // image runs symmetric about the split.
    const std::vector<int>& starts = gum->GetBandStartFaces(0);
    const std::vector<int>& ends = gum->GetBandEndFaces(0);
    for (size_t i = 0; i < starts.size() && i < ends.size(); ++i) {
        const int middle = (starts[i] + ends[i]) / 2;
        const int lower = (middle - starts[i]) / ringWidth;
        const int upper = (ends[i] - middle) / ringWidth;
        firstHalfRows.push_back(lower);
        secondHalfRows.push_back(upper);
        totalRows.push_back(lower + upper);
        MapBand(gum, starts[i], middle, false, out);
        MapBand(gum, middle, ends[i], true, out);
    }
    // The other two families: whole bands, mirrored on alternate bands.
    for (int family = 1; family <= 2; ++family) {
        const std::vector<int>& s = gum->GetBandStartFaces(family);
        const std::vector<int>& e = gum->GetBandEndFaces(family);
        for (size_t i = 0; i < s.size() && i < e.size(); ++i) {
            MapBand(gum, s[i], e[i], ((i + static_cast<size_t>(family)) % 2) == 0, out);
        }
    }
    return out;
}

void NuVertexDataBuilder::MapBand(const VxGum* gum, int start, int end, bool mirrorU,
                                  FaceTexCoords& out) {
    const int faceCount = gum->GetFaceCount();
    start = std::max(start, 0);
    end = std::min(end, faceCount);
    if (end <= start || ringWidth <= 0) {
        return;
    }
    const std::vector<VxFace>& faces = gum->GetFaces();
    for (int f = start; f < end; ++f) {
        for (int k = 0; k < 3; ++k) {
            out[f][faces[f].GetVtxId(k)] = glm::vec2(kOutside, kOutside);
        }
    }
    const int rows = (end - start) / ringWidth;
    const int cells = ringWidth / 2;
    for (int r = 0; r < rows; ++r) {
        const int rowStart = start + r * ringWidth;
        // Corners of each cell by vertex id: A (r, c), B (r + 1, c), C (r + 1, c + 1), D (r, c +
        // 1). The first face of a cell has A as its second vertex and B, D as the other two; C is
        // the second face's vertex that the first lacks. Which of the two is D is read off the next
        // cell, whose A it is (or, for the last cell, B off the previous cell, whose C it is).
        std::vector<std::array<int, 4>> corner(static_cast<size_t>(cells), {-1, -1, -1, -1});
        std::vector<std::array<int, 2>> pair(static_cast<size_t>(cells));
        for (int c = 0; c < cells; ++c) {
            const VxFace& first = faces[rowStart + 2 * c];
            const VxFace& second = faces[rowStart + 2 * c + 1];
            corner[c][0] = first.GetVtxId(1);
            pair[c] = {first.GetVtxId(0), first.GetVtxId(2)};
            for (int k = 0; k < 3; ++k) {
                const int v = second.GetVtxId(k);
                if (v != first.GetVtxId(0) && v != first.GetVtxId(1) && v != first.GetVtxId(2)) {
                    corner[c][2] = v;
                }
            }
        }
        for (int c = 0; c < cells; ++c) {
            int d = -1;
            if (c + 1 < cells) {
                d = corner[c + 1][0];
            } else if (c > 0) {
                const int b = corner[c - 1][2];
                d = pair[c][0] == b ? pair[c][1] : pair[c][0];
            }
            if (d == pair[c][0]) {
                corner[c][3] = pair[c][0];
                corner[c][1] = pair[c][1];
            } else if (d == pair[c][1]) {
                corner[c][3] = pair[c][1];
                corner[c][1] = pair[c][0];
            } else {
                continue; // not a grid cell: its faces keep the outside value
            }
            const float u0 = static_cast<float>(r) / rows;
            const float u1 = static_cast<float>(r + 1) / rows;
            const float v0 = static_cast<float>(std::pow(c / kCellsPerRow, 0.5));
            const float v1 = static_cast<float>(std::pow((c + 1) / kCellsPerRow, 0.5));
            const glm::vec2 uv[4] = {{mirrorU ? 1 - u0 : u0, v0},
                                     {mirrorU ? 1 - u1 : u1, v0},
                                     {mirrorU ? 1 - u1 : u1, v1},
                                     {mirrorU ? 1 - u0 : u0, v1}};
            for (int face = rowStart + 2 * c; face <= rowStart + 2 * c + 1; ++face) {
                for (int k = 0; k < 3; ++k) {
                    const int v = faces[face].GetVtxId(k);
                    for (int q = 0; q < 4; ++q) {
                        if (corner[c][q] == v) {
                            out[face][v] = uv[q];
                            vertexIds.insert(v);
                        }
                    }
                }
            }
        }
    }
}

std::vector<float> NuVertexDataBuilder::PlainVertexData(const VxMesh* mesh,
                                                        const std::vector<float>* order) {
    std::vector<float> data;
    if (mesh == nullptr) {
        return data;
    }
    const std::vector<VxVertex>& vertices = mesh->GetVertices();
    const std::vector<VxFace>& faces = mesh->GetFaces();
    const int faceCount = static_cast<int>(faces.size());
    data.reserve(static_cast<size_t>(faceCount) * 21);
    for (int f = 0; f < faceCount; ++f) {
        const float faceGrade = static_cast<float>(1.0 - f * 1.0 / faceCount);
        for (int k = 0; k < 3; ++k) {
            const int id = faces[f].GetVtxId(k);
            const VxPoint& p = vertices[id].GetPos();
            const VxVector n = mesh->GetVertexNormal(id);
            const float grade =
                order != nullptr && id < static_cast<int>(order->size()) ? (*order)[id] : faceGrade;
            data.insert(data.end(), {static_cast<float>(p[0]), static_cast<float>(p[1]),
                                     static_cast<float>(p[2]), static_cast<float>(n[0]),
                                     static_cast<float>(n[1]), static_cast<float>(n[2]), grade});
        }
    }
    return data;
}

bool NuVertexDataBuilder::GumVertexData(const VxMesh* mesh, const FaceTexCoords& coords,
                                        std::vector<float>& out) {
    out.clear();
    if (mesh == nullptr) {
        return true;
    }
    bool complete = true;
    const std::vector<VxVertex>& vertices = mesh->GetVertices();
    const std::vector<VxFace>& faces = mesh->GetFaces();
    out.reserve(faces.size() * 51);
    for (size_t f = 0; f < faces.size(); ++f) {
        const auto mapIt = coords.find(static_cast<int>(f));
        const std::map<int, glm::vec2>* map = mapIt != coords.end() ? &mapIt->second : nullptr;
        glm::vec3 p[3];
        glm::vec2 uv[3];
        bool found[3] = {false, false, false};
        for (int k = 0; k < 3; ++k) {
            const int id = faces[f].GetVtxId(k);
            const VxPoint& q = vertices[id].GetPos();
            p[k] = glm::vec3(q[0], q[1], q[2]);
            if (map != nullptr) {
                const auto it = map->find(id);
                found[k] = it != map->end();
                uv[k] = found[k] ? it->second : glm::vec2(1.0f, 1.0f);
                complete = complete && found[k];
            } else {
                uv[k] = glm::vec2(0.0f, 0.0f);
            }
        }
        glm::vec3 tangent(0.0f), bitangent(0.0f);
        if (map != nullptr && found[0] && found[1] && found[2]) {
            const glm::vec3 e1 = p[1] - p[0], e2 = p[2] - p[0];
            const glm::vec2 d1 = uv[1] - uv[0], d2 = uv[2] - uv[0];
            const float det = d1.x * d2.y - d2.x * d1.y;
            if (det != 0.0f) {
                const float inv = 1.0f / det;
                const glm::vec3 t = inv * (d2.y * e1 - d1.y * e2);
                const glm::vec3 b = inv * (-d2.x * e1 + d1.x * e2);
                if (glm::length(t) > 0.0f && glm::length(b) > 0.0f) {
                    tangent = glm::normalize(t);
                    bitangent = glm::normalize(b);
                }
            }
        }
        for (int k = 0; k < 3; ++k) {
            const VxVector n = mesh->GetVertexNormal(faces[f].GetVtxId(k));
            out.insert(out.end(), {p[k].x, p[k].y, p[k].z, static_cast<float>(n[0]),
                                   static_cast<float>(n[1]), static_cast<float>(n[2]), 1.0f,
                                   uv[k].x, uv[k].y, uv[k].x, uv[k].y * uv[k].y, tangent.x,
                                   tangent.y, tangent.z, bitangent.x, bitangent.y, bitangent.z});
        }
    }
    return complete;
}
