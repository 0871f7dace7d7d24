// Mesh buffers on a real context, read back with glGetBufferSubData and compared with the mesh
// itself: unindexed corners, flat face normals (not the mesh's vertex normals), edge ends and
// vertices; a build only when the update flag asks; the basic root left out while the backup
// root shows; the texture buffer only with a bitmap beside the library, sized by vertex count
// for a tooth and by face count for a gum.
#include "VxGLTest.h"
#include "VxTestBmp.h"
#include "VxTestPaths.h"

#include <frame/VxRenderStatus.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxMesh.h>
#include <interfaces/VxTooth.h>
#include <mesh/VxDrawerFiles.h>
#include <mesh/VxVBOHandleMgr.h>

#include <sys/stat.h>

#include <cmath>
#include <cstdio>
#include <fstream>

namespace {

// A closed box: 8 vertices, 12 faces, 18 edges. Two faces (the bottom) carry the basic-root
// style.
void MakeBox(VxMesh& m) {
    const double c[8][3] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0},
                            {0, 0, 2}, {1, 0, 2}, {1, 1, 2}, {0, 1, 2}};
    for (const auto& p : c) {
        m.AddVertex(VxPoint(p[0], p[1], p[2]));
    }
    const int f[12][3] = {{0, 2, 1}, {0, 3, 2}, {4, 5, 6}, {4, 6, 7}, {0, 1, 5}, {0, 5, 4},
                          {1, 2, 6}, {1, 6, 5}, {2, 3, 7}, {2, 7, 6}, {3, 0, 4}, {3, 4, 7}};
    for (int i = 0; i < 12; ++i) {
        m.AddFace(f[i][0], f[i][1], f[i][2], i < 2 ? FaceStyle_BasicRoot : FaceStyle_Crown);
    }
    m.Finish();
}

std::vector<float> ReadBuffer(unsigned int name) {
    GLint size = 0;
    glBindBuffer(GL_ARRAY_BUFFER, name);
    glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_SIZE, &size);
    std::vector<float> data(static_cast<size_t>(size) / sizeof(float));
    if (size > 0) {
        glGetBufferSubData(GL_ARRAY_BUFFER, 0, size, data.data());
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    return data;
}

// Bytes in a buffer object.
int BufferBytes(unsigned int name) {
    return static_cast<int>(ReadBuffer(name).size() * sizeof(float));
}

class MeshVboGLTest : public VxGLTest {
protected:
    void SetUp() override {
        VxGLTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        m_dir = VxTestOutputDir() + "/mesh_vbo_files";
        ::mkdir(m_dir.c_str(), 0755);
        std::remove((m_dir + "/teeth.bmp").c_str());
        std::remove((m_dir + "/gum.bmp").c_str());
        VxDrawerFiles::SetDirectoryOverride(CString::FromUtf8(m_dir));
        VxRenderStatus::GetInstance()->SetShowBackupRoot(false);
    }
    void TearDown() override {
        VxVBOHandleMgr::GetInstance()->Clear();
        VxDrawerFiles::SetDirectoryOverride(CString());
        VxRenderStatus::GetInstance()->SetShowBackupRoot(false);
    }
    // A 2 x 2, 24-bit, bottom-up BMP.
    void WriteTinyBmp(const std::string& name) {
        VxWriteBmp24(m_dir + "/" + name, 2, 2, VxTestRgb{200, 120, 40});
    }
    std::string m_dir;
};

TEST_F(MeshVboGLTest, BuffersHoldTheMeshUnindexedWithFlatNormals) {
    VxMesh mesh;
    MakeBox(mesh);
    VxVBOHandleMgr* mgr = VxVBOHandleMgr::GetInstance();
    ASSERT_TRUE(mesh.IsUpdateVBO());
    mgr->BuildVBO(&mesh);
    EXPECT_FALSE(mesh.IsUpdateVBO());
    const VxVBOHandle& h = mgr->GetVBOHandle(&mesh);
    EXPECT_EQ(h.GetOwner(), &mesh);
    EXPECT_EQ(h.GetFaceCount(), 12);
    EXPECT_EQ(h.GetTextureHandle(), 0u) << "no bitmap beside the library";

    const std::vector<float> pos = ReadBuffer(h.GetPosHandle());
    const std::vector<float> nor = ReadBuffer(h.GetNormalHandle());
    const std::vector<float> edg = ReadBuffer(h.GetEdgeHandle());
    const std::vector<float> vtx = ReadBuffer(h.GetVertexHandle());
    ASSERT_EQ(pos.size(), 12u * 9);
    ASSERT_EQ(nor.size(), 12u * 9);
    ASSERT_EQ(edg.size(), static_cast<size_t>(mesh.GetEdgeCount()) * 6);
    ASSERT_EQ(vtx.size(), 8u * 3);
    EXPECT_EQ(mesh.GetEdgeCount(), 18);

    auto at = [&](int v, int k) { return static_cast<float>(mesh.GetVertices()[v].GetPos()[k]); };
    bool normalsDifferFromVertexNormals = false;
    for (int f = 0; f < 12; ++f) {
        const VxFace& face = mesh.GetFaces()[f];
        for (int k = 0; k < 9; ++k) {
            EXPECT_FLOAT_EQ(pos[f * 9 + k], at(face.GetVtxId(k / 3), k % 3));
            EXPECT_FLOAT_EQ(nor[f * 9 + k], static_cast<float>(face.GetNormal()[k % 3]));
            normalsDifferFromVertexNormals |=
                std::fabs(mesh.GetVertexNormal(face.GetVtxId(k / 3))[k % 3] -
                          face.GetNormal()[k % 3]) > 1e-3;
        }
    }
    EXPECT_TRUE(normalsDifferFromVertexNormals) << "a box's corners are not flat: the test "
                                                   "would not tell flat from smooth normals";
    for (int e = 0; e < mesh.GetEdgeCount(); ++e) {
        int ends[2];
        mesh.GetEdges()[e].Get2VtxId(ends[0], ends[1]);
        for (int k = 0; k < 6; ++k) {
            EXPECT_FLOAT_EQ(edg[e * 6 + k], at(ends[k / 3], k % 3));
        }
    }
    for (int k = 0; k < 24; ++k) {
        EXPECT_FLOAT_EQ(vtx[k], at(k / 3, k % 3));
    }
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(MeshVboGLTest, RebuildsOnlyWhenTheMeshAsks) {
    VxVBOHandleMgr* mgr = VxVBOHandleMgr::GetInstance();
    VxMesh fresh;
    MakeBox(fresh);
    fresh.SetUpdateVBO(false);
    mgr->BuildVBO(&fresh);
    EXPECT_FALSE(mgr->HasVBOHandle(&fresh)) << "flag false: nothing is made";
    EXPECT_EQ(mgr->GetVBOHandle(&fresh).GetPosHandle(), 0u);

    VxMesh mesh;
    MakeBox(mesh);
    mgr->BuildVBO(&mesh);
    const unsigned int firstPos = mgr->GetVBOHandle(&mesh).GetPosHandle();
    // Moved behind the cache's back: without the flag the buffers keep the old corner.
    mesh.GetVertices()[0].SetPos(VxPoint(-5, -6, -7));
    mgr->BuildVBO(&mesh);
    EXPECT_EQ(mgr->GetVBOHandle(&mesh).GetPosHandle(), firstPos);
    EXPECT_FLOAT_EQ(ReadBuffer(firstPos)[0], 0.0f);

    mesh.SetUpdateVBO(true);
    mgr->BuildVBO(&mesh);
    EXPECT_FALSE(mesh.IsUpdateVBO());
    const std::vector<float> pos = ReadBuffer(mgr->GetVBOHandle(&mesh).GetPosHandle());
    ASSERT_FALSE(pos.empty());
    EXPECT_EQ(std::vector<float>(pos.begin(), pos.begin() + 3), (std::vector<float>{-5, -6, -7}));

    // RemoveMesh: an unknown mesh changes nothing; a known one loses its buffers.
    const unsigned int pos2 = mgr->GetVBOHandle(&mesh).GetPosHandle();
    mgr->RemoveMesh(&fresh);
    EXPECT_TRUE(mgr->HasVBOHandle(&mesh));
    EXPECT_TRUE(glIsBuffer(pos2));
    mgr->RemoveMesh(&mesh);
    EXPECT_FALSE(mgr->HasVBOHandle(&mesh));
    EXPECT_FALSE(glIsBuffer(pos2));
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(MeshVboGLTest, BackupRootLeavesOutTheBasicRoot) {
    VxVBOHandleMgr* mgr = VxVBOHandleMgr::GetInstance();
    VxMesh root;
    VxTooth tooth(11);
    MakeBox(tooth);
    VxMesh plain;
    MakeBox(plain);

    // No backup root, or not shown, or shown without the update flag set again: every face.
    const struct {
        VxMesh* backup;
        bool shown, update;
    } steps[] = {{nullptr, true, true}, {&root, false, true}, {&root, true, false}};
    for (const auto& st : steps) {
        tooth.SetBackupRoot(st.backup);
        VxRenderStatus::GetInstance()->SetShowBackupRoot(st.shown);
        tooth.SetUpdateVBO(st.update);
        mgr->BuildVBO(&tooth);
        EXPECT_EQ(mgr->GetVBOHandle(&tooth).GetFaceCount(), 12);
    }

    tooth.SetUpdateVBO(true);
    mgr->BuildVBO(&tooth);
    const VxVBOHandle& h = mgr->GetVBOHandle(&tooth);
    EXPECT_EQ(h.GetFaceCount(), 10);
    const std::vector<float> pos = ReadBuffer(h.GetPosHandle());
    ASSERT_EQ(pos.size(), 10u * 9);
    // The first buffered face is the mesh's face 2, the first that is not basic root.
    const VxPoint& p = tooth.GetVertices()[tooth.GetFaces()[2].GetVtxId(0)].GetPos();
    EXPECT_FLOAT_EQ(pos[2], static_cast<float>(p[2]));
    EXPECT_EQ(BufferBytes(h.GetNormalHandle()), 10 * 9 * 4);
    // Edges and vertices are not filtered.
    EXPECT_EQ(BufferBytes(h.GetEdgeHandle()), 18 * 6 * 4);

    // Only teeth skip: a plain mesh with the same styles keeps every face.
    mgr->BuildVBO(&plain);
    EXPECT_EQ(mgr->GetVBOHandle(&plain).GetFaceCount(), 12);
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(MeshVboGLTest, TextureBufferOnlyWithABitmapAndSizedAsItWas) {
    VxVBOHandleMgr* mgr = VxVBOHandleMgr::GetInstance();
    VxTooth tooth(11);
    MakeBox(tooth);
    VxGum gum(true);
    MakeBox(gum);
    mgr->BuildVBO(&tooth);
    mgr->BuildVBO(&gum);
    EXPECT_EQ(mgr->GetVBOHandle(&tooth).GetTextureHandle(), 0u);
    EXPECT_EQ(mgr->GetVBOHandle(&gum).GetTextureHandle(), 0u);

    WriteTinyBmp("teeth.bmp");
    WriteTinyBmp("gum.bmp");
    tooth.SetUpdateVBO(true);
    gum.SetUpdateVBO(true);
    mgr->BuildVBO(&tooth);
    mgr->BuildVBO(&gum);
    const VxVBOHandle& th = mgr->GetVBOHandle(&tooth);
    const VxVBOHandle& gh = mgr->GetVBOHandle(&gum);
    ASSERT_NE(th.GetTextureHandle(), 0u);
    ASSERT_NE(gh.GetTextureHandle(), 0u);
    // Tooth: vertex count x 9 floats; gum: face count x 9 floats.
    EXPECT_EQ(BufferBytes(th.GetTextureHandle()), 8 * 9 * 4);
    EXPECT_EQ(BufferBytes(gh.GetTextureHandle()), 12 * 9 * 4);
    // The coordinates are the face normals.
    const std::vector<float> tex = ReadBuffer(gh.GetTextureHandle());
    const std::vector<float> nor = ReadBuffer(gh.GetNormalHandle());
    EXPECT_EQ(tex, nor);

    // Destroy takes the texture buffer while "teeth.bmp" is there.
    const unsigned int toothTex = th.GetTextureHandle();
    mgr->RemoveMesh(&tooth);
    EXPECT_FALSE(glIsBuffer(toothTex));
    EXPECT_EQ(GLErrors(), "");
}

} // namespace
