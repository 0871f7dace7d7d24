// The shader path's vertex data without a GL context: the grades of a tooth (from its own shape,
// never moving it), the texture coordinates of a gum's strip bands, and the two interleaved
// layouts built from them, including the faces whose coordinates are missing or degenerate.
#include <VxSyntheticPatient.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxTooth.h>
#include <shader/NuVertexDataBuilder.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

constexpr int kPlain = 7;
constexpr int kGum = 17;

// A strip gum of `rows` rows of 19 cells laid as the gum generator lays them: vertex (r, c) at
// (c, r, 0); cell faces (B, A, D) and (B, D, C) with A (r, c), B (r + 1, c), C (r + 1, c + 1),
// D (r, c + 1).
void StripGum(VxGum& gum, int rows) {
    auto id = [](int r, int c) { return r * 20 + c; };
    for (int r = 0; r <= rows; ++r) {
        for (int c = 0; c <= 19; ++c) {
            gum.AddVertex(VxPoint(c, r, 0));
        }
    }
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < 19; ++c) {
            gum.AddFace(id(r + 1, c), id(r, c), id(r, c + 1));
            gum.AddFace(id(r + 1, c), id(r, c + 1), id(r + 1, c + 1));
        }
    }
    gum.Finish();
}

TEST(ShaderVertexDataTest, ToothGradesComeFromItsShapeAndLeaveTheMeshAlone) {
    std::unique_ptr<VxCase> patient = VxSyntheticPatient::Generate(1);
    ASSERT_FALSE(patient->teeth.empty());
    VxTooth* tooth = patient->teeth.front().get();
    const std::vector<VxVertex> before = tooth->GetVertices();
    const std::vector<float> first = NuVertexDataBuilder().VxToothOrderMap(tooth);
    ASSERT_EQ(first.size(), before.size());
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(NuVertexDataBuilder().VxToothOrderMap(tooth), first);
    }
    for (size_t i = 0; i < before.size(); ++i) {
        ASSERT_EQ(tooth->GetVertices()[i].GetPos(), before[i].GetPos()) << i;
    }
    // A tooth with a root is graded: some vertices near the 60 % mark (dark end of the tint),
    // the root tip at 1.
    const auto [lo, hi] = std::minmax_element(first.begin(), first.end());
    EXPECT_LT(*lo, 0.1f);
    EXPECT_NEAR(*hi, 1.0f, 0.35f);
    for (float t : first) {
        ASSERT_TRUE(std::isfinite(t));
    }

    // Without basic-root faces there is no crown to grade.
    VxTooth plain(11);
    plain.SetMeshData({VxPoint(0, 0, 0), VxPoint(1, 0, 0), VxPoint(0, 1, 5)}, {0, 1, 2});
    EXPECT_EQ(NuVertexDataBuilder().VxToothOrderMap(&plain), std::vector<float>(3, 1.0f));
    // A tooth's buffer carries its grades; any other mesh 1 - face / count.
    const std::vector<float> grades = {0.25f, 0.5f, 0.75f};
    const std::vector<float> data = NuVertexDataBuilder::PlainVertexData(&plain, &grades);
    ASSERT_EQ(data.size(), 3u * kPlain);
    EXPECT_EQ(data[6], 0.25f);
    EXPECT_EQ(data[kPlain + 6], 0.5f);
    VxMesh two;
    two.SetMeshData({VxPoint(0, 0, 0), VxPoint(1, 0, 0), VxPoint(0, 1, 0), VxPoint(1, 1, 0)},
                    {0, 1, 2, 1, 3, 2});
    const std::vector<float> mesh = NuVertexDataBuilder::PlainVertexData(&two, nullptr);
    EXPECT_EQ(mesh[6], 1.0f);
    EXPECT_EQ(mesh[3 * kPlain + 6], 0.5f);
    EXPECT_EQ(mesh[3 * kPlain + 3 * 0 + 5], 1.0f) << "the vertex normal faces +z";
}

TEST(ShaderVertexDataTest, GumBandsMapToTheirGrid) {
    VxGum gum(true);
    StripGum(gum, 4);
    // First family: the 4 rows split in two halves of 2 that meet mirrored; the last two faces
    // of the list lie outside every band.
    gum.SetBands(0, {0}, {4 * 38});
    NuVertexDataBuilder builder;
    const NuVertexDataBuilder::FaceTexCoords uv = builder.VxGumTexCoordBuilder(&gum);
    EXPECT_EQ(builder.firstHalfRows, std::vector<int>{2});
    EXPECT_EQ(builder.secondHalfRows, std::vector<int>{2});
    EXPECT_EQ(builder.totalRows, std::vector<int>{4});
    ASSERT_EQ(uv.size(), 4u * 38);
    auto at = [&](int face, int r, int c) { return uv.at(face).at(r * 20 + c); };
    // Row 1, cell 4 (first half): u = 1 / 2 at A, 2 / 2 at B, v = sqrt(4 / 19), sqrt(5 / 19).
    const int f = 38 + 8;
    EXPECT_NEAR(at(f, 1, 4).x, 0.5f, 1e-6);
    EXPECT_NEAR(at(f, 2, 4).x, 1.0f, 1e-6);
    EXPECT_NEAR(at(f, 1, 4).y, std::sqrt(4.0f / 19), 1e-6);
    EXPECT_NEAR(at(f, 1, 5).y, std::sqrt(5.0f / 19), 1e-6);
    EXPECT_NEAR(at(f + 1, 2, 5).x, 1.0f, 1e-6);
    // Second half, row 0 of it (grid row 2): mirrored, so the halves meet at u = 1.
    const int g = 2 * 38 + 2 * 18; // last cell of the row
    EXPECT_NEAR(at(g, 2, 18).x, 1.0f, 1e-6);
    EXPECT_NEAR(at(g, 3, 18).x, 0.5f, 1e-6);
    EXPECT_NEAR(at(g, 2, 19).y, 1.0f, 1e-6);

    std::vector<float> data;
    EXPECT_TRUE(NuVertexDataBuilder::GumVertexData(&gum, uv, data));
    ASSERT_EQ(data.size(), static_cast<size_t>(gum.GetFaceCount()) * 3 * kGum);
    // Bump v is the square of the colour v: linear in the column.
    const float* v0 = &data[static_cast<size_t>(f) * 3 * kGum];
    EXPECT_NEAR(v0[10], v0[8] * v0[8], 1e-6);
    // On this flat grid the tangent follows u (rows, +y) and the bitangent v (columns, +x).
    EXPECT_NEAR(v0[12], 1.0f, 1e-5);
    EXPECT_NEAR(v0[14], 1.0f, 1e-5);
}

TEST(ShaderVertexDataTest, MissingAndDegenerateCoordinatesNeverGiveNaN) {
    VxGum gum(true);
    StripGum(gum, 1);
    NuVertexDataBuilder::FaceTexCoords uv;
    uv[0] = {{20, {0.5f, 0.5f}}, {0, {0.5f, 0.5f}}, {1, {0.5f, 0.5f}}}; // one point: no area
    uv[1] = {{20, {0.0f, 0.0f}}, {1, {1.0f, 0.0f}}};                    // a vertex missing
    std::vector<float> data;
    EXPECT_FALSE(NuVertexDataBuilder::GumVertexData(&gum, uv, data));
    for (float x : data) {
        ASSERT_TRUE(std::isfinite(x));
    }
    auto vertex = [&](int face, int k) { return &data[(face * 3 + k) * kGum]; };
    for (int k = 0; k < 3; ++k) {
        for (int face : {0, 1}) {
            for (int i = 11; i < 17; ++i) {
                EXPECT_EQ(vertex(face, k)[i], 0.0f) << face << " " << k << " " << i;
            }
        }
        // No map at all: (0, 0).
        EXPECT_EQ(vertex(2, k)[7], 0.0f);
        EXPECT_EQ(vertex(2, k)[9], 0.0f);
    }
    // Face 1's third vertex (id 21) is the missing one: (1, 1).
    EXPECT_EQ(vertex(1, 2)[7], 1.0f);
    EXPECT_EQ(vertex(1, 2)[8], 1.0f);
    EXPECT_EQ(vertex(1, 0)[7], 0.0f);

    // Bands past the face list are clipped; an empty gum gives nothing.
    VxGum short_(true);
    StripGum(short_, 1);
    short_.SetBands(1, {0}, {1000});
    const auto clipped = NuVertexDataBuilder().VxGumTexCoordBuilder(&short_);
    EXPECT_EQ(clipped.size(), 38u);
    VxGum empty(true);
    EXPECT_TRUE(NuVertexDataBuilder().VxGumTexCoordBuilder(&empty).empty());
}

} // namespace
