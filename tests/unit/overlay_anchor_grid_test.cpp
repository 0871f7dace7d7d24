// The anchor grid data of the overlay cache without GL: a tooth's first grid stays, the grid
// queries fill or leave their outputs as each form says, and the FA point and see-centre queries
// read the grid's FA indices and side lists, falling back to the bounding box centre.
#include "VxCacheStuffProbe.h"

#include <interfaces/VxBBox.h>
#include <interfaces/VxTooth.h>
#include <overlays/VxAttachAnchorGrid.h>
#include <overlays/VxCacheStuff.h>

#include <gtest/gtest.h>

namespace {

class OverlayAnchorGridTest : public ::testing::Test {
protected:
    void SetUp() override {
        tooth.SetMeshData({VxPoint(0, 0, 0), VxPoint(2, 0, 0), VxPoint(0, 4, 0), VxPoint(0, 0, 6)},
                          {0, 1, 2, 0, 2, 3, 0, 3, 1, 1, 3, 2});
        lip = {VxPoint(1, 0, 0), VxPoint(1, 1, 0), VxPoint(1, 2, 0)};
        tongue = {VxPoint(-1, 0, 0), VxPoint(-1, 1, 0)};
        grid.SetGridPoints({VxPoint(5, 5, 5), VxPoint(6, 6, 6), VxPoint(7, 7, 7)});
        grid.SetFAIndices(0, 2);
        grid.SetSide(21, 0, 2, lip);
        grid.SetSide(21, 1, 1, tongue);
        grid.SetCenterLipsGrids({VxPoint(9, 0, 0)});
        grid.SetCenterTongueGrids({VxPoint(-9, 0, 0)});
    }
    void TearDown() override { cache->Clear(); }

    VxCacheStuff* cache = VxCacheStuff::GetInstance();
    VxTooth tooth{21};
    VxAttachAnchorGrid grid;
    std::vector<VxPoint> lip, tongue;
};

TEST_F(OverlayAnchorGridTest, WithoutAGridQueriesLeaveTheirOutputsAndFallBack) {
    std::vector<VxPoint> out{VxPoint(1, 2, 3)};
    cache->GetAttachGrids(&tooth, out);
    cache->GetAttachGrids2(&tooth, out);
    cache->GetAttachCenterLipsGrids(&tooth, out);
    cache->GetAttachCenterTongueGrids(&tooth, out);
    EXPECT_EQ(out, std::vector<VxPoint>{VxPoint(1, 2, 3)});
    cache->GetAttachGrids(&tooth, true, out); // the side form empties it
    EXPECT_TRUE(out.empty());
    EXPECT_EQ(cache->GetFApntIndex(&tooth, 0), -1);
    EXPECT_EQ(cache->GetFApnt(&tooth, 1), VxPoint(0, 0, 0));
    int index = 42;
    EXPECT_EQ(cache->GetFApntIndex(&tooth, true, index), VxPoint(0, 0, 0));
    EXPECT_EQ(index, 42);
    VxPoint see(8, 8, 8);
    cache->GetSeeCenterPoint(&tooth, see);
    EXPECT_EQ(see, VxPoint(8, 8, 8));
    EXPECT_EQ(VxCacheStuffProbe::SeeCenter(&tooth), tooth.GetBBox().Center());
}

TEST_F(OverlayAnchorGridTest, TheFirstGridOfAToothStaysAndTheFormsReadIt) {
    cache->AddAttachAnchorGrids(&tooth, grid);
    VxAttachAnchorGrid other;
    other.SetGridPoints({VxPoint(0, 0, 1)});
    cache->AddAttachAnchorGrids(&tooth, other);
    std::vector<VxPoint> out;
    cache->GetAttachGrids(&tooth, out);
    EXPECT_EQ(out, grid.GetGridPoints());
    cache->GetAttachGrids(&tooth, true, out); // key 0 skipped: the tongue list
    EXPECT_EQ(out, tongue);
    cache->GetAttachGrids(&tooth, false, out);
    EXPECT_EQ(out, lip);
    out = {VxPoint(3, 3, 3)};
    cache->GetAttachGrids2(&tooth, out);
    std::vector<VxPoint> both{VxPoint(3, 3, 3)};
    both.insert(both.end(), lip.begin(), lip.end());
    both.insert(both.end(), tongue.begin(), tongue.end());
    EXPECT_EQ(out, both);
    cache->GetAttachCenterLipsGrids(&tooth, out);
    EXPECT_EQ(out, std::vector<VxPoint>{VxPoint(9, 0, 0)});
    cache->GetAttachCenterTongueGrids(&tooth, out);
    EXPECT_EQ(out, std::vector<VxPoint>{VxPoint(-9, 0, 0)});
    cache->Clear();
    out.clear();
    cache->GetAttachGrids(&tooth, out);
    EXPECT_TRUE(out.empty()) << "Clear forgets the grids";
}

TEST_F(OverlayAnchorGridTest, FaPointsAndSeeCentresReadIndicesAndSides) {
    cache->AddAttachAnchorGrids(&tooth, grid);
    EXPECT_EQ(cache->GetFApntIndex(&tooth, 0), 0);
    EXPECT_EQ(cache->GetFApntIndex(&tooth, 1), 2);
    EXPECT_EQ(cache->GetFApnt(&tooth, 0), VxPoint(5, 5, 5));
    EXPECT_EQ(cache->GetFApnt(&tooth, 7), VxPoint(7, 7, 7));
    int index = -5;
    EXPECT_EQ(cache->GetFApntIndex(&tooth, true, index), VxPoint(-1, 1, 0));
    EXPECT_EQ(index, 1);
    EXPECT_EQ(cache->GetFApntIndex(&tooth, false, index), VxPoint(1, 2, 0));
    EXPECT_EQ(index, 2);
    // The two FA points differ: their midpoint.
    EXPECT_EQ(VxCacheStuffProbe::SeeCenter(&tooth), VxPoint(6, 6, 6));
    // Key 1 gives the first point, key 0 the second: (-1, 1, 0) and (1, 2, 0).
    VxPoint see;
    cache->GetSeeCenterPoint(&tooth, see);
    EXPECT_EQ(see, VxPoint(0, 1.5, 0));
}

TEST_F(OverlayAnchorGridTest, SeeCentreFallsBackWhenTheSidesDoNotSayEnough) {
    // Both FA indices 0: the box centre.
    VxAttachAnchorGrid zero = grid;
    zero.SetSide(21, 0, 0, lip);
    zero.SetSide(21, 1, 0, tongue);
    zero.SetFAIndices(1, 1); // equal indices: the box centre as well
    cache->AddAttachAnchorGrids(&tooth, zero);
    VxPoint see;
    cache->GetSeeCenterPoint(&tooth, see);
    EXPECT_EQ(see, tooth.GetBBox().Center());
    EXPECT_EQ(VxCacheStuffProbe::SeeCenter(&tooth), tooth.GetBBox().Center());
    cache->Clear();
    // One side only: the box centre.
    VxAttachAnchorGrid oneSide;
    oneSide.SetSide(21, 0, 1, lip);
    cache->AddAttachAnchorGrids(&tooth, oneSide);
    see = VxPoint(9, 9, 9);
    cache->GetSeeCenterPoint(&tooth, see);
    EXPECT_EQ(see, tooth.GetBBox().Center());
}

} // namespace
