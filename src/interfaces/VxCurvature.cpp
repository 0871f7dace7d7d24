// VxCurvature: mean curvature from the cotangent Laplacian. Per face, the cotangents of the three
// angles weight the edge vectors into each vertex's Laplacian and give the mixed Voronoi areas
// (Voronoi area for non-obtuse triangles, half or a quarter of the triangle for obtuse ones, so
// that the areas tile the surface). H = (K . n) / 2 with K = Laplacian / (2 A) pointing away from
// the centre of curvature and n the vertex normal.
#include <interfaces/VxCurvature.h>

#include <interfaces/VxMesh.h>

#include <cmath>

const std::vector<double>& VxCurvature::GetMeanCurvature() {
    Compute();
    return m_mean;
}

const std::vector<double>& VxCurvature::GetVertexAreas() {
    Compute();
    return m_area;
}

void VxCurvature::Compute() {
    if (m_done) {
        return;
    }
    m_done = true;
    if (m_mesh == nullptr) {
        return;
    }
    const auto& verts = m_mesh->GetVertices();
    const auto& faces = m_mesh->GetFaces();
    const size_t nv = verts.size();
    m_mean.assign(nv, 0.0);
    m_area.assign(nv, 0.0);
    std::vector<VxVector> lap(nv);
    // Border detection counts face uses per undirected edge; it does not depend on Finish having
    // built the edges.
    std::vector<char> border(nv, 0);
    if (m_mesh->GetEdgeCount() > 0) {
        for (const VxEdge& e : m_mesh->GetEdges()) {
            if (e.GetFaceUseCount() == 1) {
                int a = 0;
                int b = 0;
                e.Get2VtxId(a, b);
                border[static_cast<size_t>(a)] = border[static_cast<size_t>(b)] = 1;
            }
        }
    }

    for (const VxFace& f : faces) {
        const int* id = f.GetVtxIds();
        bool ok = true;
        for (int k = 0; k < 3; ++k) {
            ok = ok && id[k] >= 0 && static_cast<size_t>(id[k]) < nv;
        }
        if (!ok) {
            continue;
        }
        const VxPoint p[3] = {verts[static_cast<size_t>(id[0])].GetPos(),
                              verts[static_cast<size_t>(id[1])].GetPos(),
                              verts[static_cast<size_t>(id[2])].GetPos()};
        const double twiceArea = ((p[1] - p[0]) * (p[2] - p[0])).Magnitude();
        if (!(twiceArea > 0.0) || !std::isfinite(twiceArea)) {
            continue;
        }
        const double area = 0.5 * twiceArea;
        double cot[3];
        bool obtuse[3];
        for (int k = 0; k < 3; ++k) {
            const VxVector a = p[(k + 1) % 3] - p[k];
            const VxVector b = p[(k + 2) % 3] - p[k];
            const double dot = a % b;
            cot[k] = dot / twiceArea; // |a x b| is the same for every corner
            obtuse[k] = dot < 0.0;
        }
        const bool anyObtuse = obtuse[0] || obtuse[1] || obtuse[2];
        for (int k = 0; k < 3; ++k) {
            // Edge (i, j) opposite corner k.
            const int i = (k + 1) % 3;
            const int j = (k + 2) % 3;
            const VxVector eij = p[i] - p[j];
            lap[static_cast<size_t>(id[i])] += eij * cot[k];
            lap[static_cast<size_t>(id[j])] -= eij * cot[k];
            double& a = m_area[static_cast<size_t>(id[k])];
            if (!anyObtuse) {
                // Voronoi part of corner k: the two edges leaving it, each weighted by the
                // cotangent of the angle opposite that edge.
                a += ((p[i] - p[k]).SquareMagnitude() * cot[j] +
                      (p[j] - p[k]).SquareMagnitude() * cot[i]) /
                     8.0;
            } else {
                a += obtuse[k] ? area / 2.0 : area / 4.0;
            }
        }
    }

    for (size_t v = 0; v < nv; ++v) {
        if (border[v] || !(m_area[v] > 0.0)) {
            continue;
        }
        const VxVector k = lap[v] / (2.0 * m_area[v]);
        const VxVector n = m_mesh->GetVertexNormal(static_cast<int>(v));
        m_mean[v] = 0.5 * (k % n);
    }
}
