// Enumerations shared by the frame, the views, the drawers and selection: what lies under the
// cursor, how meshes are shown, the layout mode and the per-view step and jaw mask.
// ObjectType_e lives in interfaces/VxObjectType.h; nothing here carries behaviour.
// Each has int as its fixed underlying type: hosts store and pass these as plain ints, values
// outside the names included (a compare mode of 2 draws as a normal view), and without a fixed
// type holding such a value in the enum would be undefined.
#pragma once

// The kind of entity under the cursor. Each value is also the stencil reference that the drawer
// of that kind writes, so ProcessFeedback can read the answer straight out of the stencil buffer.
enum FeedbackType_e : int {
    FeedbackType_None = 0,
    FeedbackType_Mesh = 1,
    FeedbackType_Tooth = 2,
    FeedbackType_Gum = 3,
    FeedbackType_UpperJaw = 4,
    FeedbackType_LowerJaw = 5,
    FeedbackType_Attachment = 6,
};

// How every drawer rasterises a mesh.
enum DisplayMode_e : int {
    DisplayMode_SolidEdges = 0,
    DisplayMode_Solid = 1, // the default
    DisplayMode_Edges = 2,
    DisplayMode_Points = 3,
};

// Layout mode held by VxViewManager.
enum Display_Mode : int {
    Display_Mode_Normal = 0,
    Display_Mode_Compare = 1, // side-by-side comparison of two treatment states
};

// Treatment step a view shows; read only in Display_Mode_Compare.
enum Display_Step : int {
    Display_Step_Initial = 0,
    Display_Step_Final = 1,
    Display_Step_Both = 2, // default of a new view
};

// Mask of what a view shows; a set bit shows that class of entity.
enum Display_Selec : int {
    Display_Selec_UpperTeeth = 0x01,
    Display_Selec_LowerTeeth = 0x02,
    Display_Selec_UpperGum = 0x04,
    Display_Selec_LowerGum = 0x08,
    Display_Selec_UpperJaw = 0x10,
    Display_Selec_LowerJaw = 0x20,
    // The three masks the layouts hand out.
    Display_Selec_All = 63,
    Display_Selec_Upper = 21,
    Display_Selec_Lower = 42,
};
