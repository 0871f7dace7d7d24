// The process-wide render records: select types, the state holder, the zoom rectangle, the
// version test on version strings, the path toggle, and the per-mesh update flags.
#include <frame/CStateHolder.h>
#include <frame/NuRenderStatus.h>
#include <frame/OpenGLVersion.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxMesh.h>

#include <gtest/gtest.h>

namespace {

const std::vector<ObjectType_e> kDefaultSelectTypes = {
    ObjectType_Jaw,         ObjectType_Gum,        ObjectType_Tooth,
    ObjectType_Reserved400, ObjectType_Attachment, ObjectType_Mesh};

class RenderStatusTest : public ::testing::Test {
protected:
    void TearDown() override {
        status->SetSelectType(kDefaultSelectTypes);
        status->SetAllowMultiSel(false);
        status->FinishZoomArea();
    }
    VxRenderStatus* status = VxRenderStatus::GetInstance();
};

} // namespace

TEST_F(RenderStatusTest, ExistSelectType) {
    // The default list is what the selection code relies on when nothing set it.
    EXPECT_EQ(status->GetSelectType(), kDefaultSelectTypes);
    EXPECT_TRUE(status->ExistSelectType(ObjectType_Tooth));
    EXPECT_TRUE(status->ExistSelectType(ObjectType_Reserved400));
    EXPECT_FALSE(status->ExistSelectType(ObjectType_Vertex));
    // 0 is "anything" only on an empty list.
    EXPECT_FALSE(status->ExistSelectType(ObjectType_None));
    status->SetSelectType({});
    EXPECT_TRUE(status->ExistSelectType(ObjectType_None));
    EXPECT_FALSE(status->ExistSelectType(ObjectType_Tooth));
    // The list form: any element; an empty argument is false even on an empty list.
    EXPECT_FALSE(status->ExistSelectType(std::vector<ObjectType_e>{}));
    EXPECT_TRUE(status->ExistSelectType(std::vector<ObjectType_e>{ObjectType_None}));
    status->SetSelectType({ObjectType_Edge});
    EXPECT_TRUE(status->ExistSelectType({ObjectType_Face, ObjectType_Edge}));
    EXPECT_FALSE(status->ExistSelectType({ObjectType_Face, ObjectType_Vertex}));
    // Exact values, not masks: a combination of bits is not a member.
    EXPECT_FALSE(status->ExistSelectType(static_cast<ObjectType_e>(ObjectType_Edge | 0x8)));
}

TEST_F(RenderStatusTest, StateHolderRestoresOnScopeExit) {
    status->SetAllowMultiSel(true);
    {
        CStateHolder holder;
        status->SetSelectType({ObjectType_Vertex});
        status->SetAllowMultiSel(false);
        {
            CStateHolder inner;
            status->SetSelectType({ObjectType_Face, ObjectType_Edge});
        }
        EXPECT_EQ(status->GetSelectType(), std::vector<ObjectType_e>{ObjectType_Vertex});
    }
    EXPECT_EQ(status->GetSelectType(), kDefaultSelectTypes);
    EXPECT_TRUE(status->IsAllowMultiSel());

    // Copies carry the saved values, not the state at the time of the copy.
    CStateHolder* first = new CStateHolder;
    status->SetSelectType({ObjectType_Gum});
    CStateHolder copy(*first);
    delete first; // restores the default list
    status->SetSelectType({ObjectType_Skull});
    copy.ReSetState();
    EXPECT_EQ(status->GetSelectType(), kDefaultSelectTypes);
}

TEST_F(RenderStatusTest, ZoomArea) {
    EXPECT_TRUE(status->GetZoomArea() == CRect(0, 0, 0, 0));
    status->UnderZoomArea(CPoint(50, 60));
    status->StartZoomArea(CPoint(10, 20));
    EXPECT_TRUE(status->GetZoomArea() == CRect(10, 20, 50, 60));
    status->StartZoomArea(CPoint(5, 6)); // right-bottom keeps its value
    EXPECT_TRUE(status->GetZoomArea() == CRect(5, 6, 50, 60));
    status->FinishZoomArea();
    EXPECT_TRUE(status->GetZoomArea() == CRect(0, 0, 0, 0));
}

TEST(OpenGLVersionTest, TwoCharacterVersionTest) {
    struct Case {
        const char* version;
        bool keepsShaderPath;
    };
    const Case cases[] = {
        {"3.3", false},
        {"4.0", false},
        {"4.1", false},
        {"4.2", false},
        {"4.3", true},
        {"4.5", true},
        {"4.6", true},
        {"5.0", false},
        {"5.3", true},
        {"3.3.0", false},
        {"4.2.0", false},
        {"4.6.0", true},
        {"4.5 (Compatibility Profile) Mesa 22.3.6", true},
        {"4.1 (Compatibility Profile) Mesa 22.3.6", false},
        // Two-digit majors are not provided for: '1' is below '4'.
        {"10.0", false},
        {"12.3", false},
        {"", false},
        {"4", false},
        {"4.", false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(OpenGLVersion::VersionPassesTest(c.version), c.keepsShaderPath) << c.version;
    }
    EXPECT_FALSE(OpenGLVersion::VersionPassesTest(nullptr));
}

TEST(OpenGLVersionTest, ArgumentlessSettersToggle) {
    OpenGLVersion* v = OpenGLVersion::GetInstance();
    v->Set_btestversion(true);
    v->Set_btestversion();
    EXPECT_FALSE(v->Get_btestversion());
    v->Set_btestversion();
    EXPECT_TRUE(v->Get_btestversion());
    // The glaze position alternates between 1 and 2, never 0 or 3.
    EXPECT_EQ(v->Getmy_GlazePos_state(), 1);
    v->SetGlazePos();
    EXPECT_EQ(v->Getmy_GlazePos_state(), 2);
    v->SetGlazePos();
    EXPECT_EQ(v->Getmy_GlazePos_state(), 1);
}

TEST(NuRenderStatusTest, FlagsAreRegisteredOnce) {
    NuRenderStatus* s = NuRenderStatus::GetInstance();
    VxMesh a, b;
    a.SetUpdateVBO(true);
    b.SetUpdateVBO(false);
    s->Set_bIsUpdateVBO(&a);
    s->Set_bIsUpdateVBO(&b);
    EXPECT_TRUE(s->Get_bIsUpdateVBO(&a));
    EXPECT_FALSE(s->Get_bIsUpdateVBO(&b));
    // An existing entry stays as it is, whichever form is called.
    s->Set_bIsUpdateVBO(&a, false);
    b.SetUpdateVBO(true);
    s->Set_bIsUpdateVBO(&b);
    EXPECT_TRUE(s->Get_bIsUpdateVBO(&a));
    EXPECT_FALSE(s->Get_bIsUpdateVBO(&b));

    VxMesh c;
    EXPECT_FALSE(s->IsRegistered(&c));
    s->Set_bIsUpdateVBO(&c, true);
    EXPECT_TRUE(s->Get_bIsUpdateVBO(&c));
}
