// VxCacheStuff: the four patient pictures, the panoramic markers and the small image tools.
#include <overlays/VxCacheStuff.h>

void VxCacheStuff::PrepareXImg() {}
void VxCacheStuff::RemoveXimg() {}
void VxCacheStuff::PrepareFrontImg() {}
void VxCacheStuff::RemoveFrontImg() {}
void VxCacheStuff::PrepareProfile() {}
void VxCacheStuff::RemoveProfile() {}
void VxCacheStuff::PreparePanoramic() {}
void VxCacheStuff::RemovePanoramic() {}
void VxCacheStuff::UpdatePicture() {}
void VxCacheStuff::UpdateXImg() {}
void VxCacheStuff::UpdateFrontImg() {}
void VxCacheStuff::UpdateProfile() {}
void VxCacheStuff::UpdatePanoramic() {}
void VxCacheStuff::AdjustImageBrightness(int, CImage&) {}
void VxCacheStuff::AdjustImageContrast(int, CImage&) {}
bool VxCacheStuff::CreateCimage(const CString&, CImage&) {
    return false;
}
int VxCacheStuff::ImageCopy(const CImage&, CImage&) {
    return 0;
}
CPoint VxCacheStuff::CalScreenPt(const VxPoint&) {
    return CPoint();
}
CBitmap* VxCacheStuff::CreateBitmapFromText(const CString&, bool) {
    return nullptr;
}
CBitmap* VxCacheStuff::CreateCircleBitmap(const VxColor&, bool) {
    return nullptr;
}
BYTE* VxCacheStuff::MakeTransparent(int, int, const BYTE*, VxColor) {
    return nullptr;
}
