// VxCacheStuff: tooth numbers, movement marks, Facc curves, the reference overlay, the key point
// and the FA and see-centre queries.
#include <overlays/VxCacheStuff.h>

void VxCacheStuff::PrepareToothFDI() {}
void VxCacheStuff::RemoveToothFDI() {}
void VxCacheStuff::PrepareToothRef() {}
void VxCacheStuff::RemoveToothRef() {}
void VxCacheStuff::PrepareFacc() {}
void VxCacheStuff::RemoveFacc() {}
void VxCacheStuff::PrepareToothMoveDiff() {}
void VxCacheStuff::RemoveToothMoveDiff() {}
void VxCacheStuff::PrepareKeyPoint() {}
void VxCacheStuff::RemoveKeyPoint() {}
void VxCacheStuff::UpdateToothRef() {}
void VxCacheStuff::CalculateFDIPosition(VxTooth*, VxPoint*, bool) {}
void VxCacheStuff::CalculateMDPosition(VxTooth*, VxPoint*, bool) {}
VxPoint VxCacheStuff::GetToothSeeCenter(VxTooth*) {
    return VxPoint();
}
VxPoint VxCacheStuff::GetFApnt(VxTooth*, int) {
    return VxPoint();
}
int VxCacheStuff::GetFApntIndex(VxTooth*, int) {
    return -1;
}
VxPoint VxCacheStuff::GetFApntIndex(VxTooth*, bool, int&) {
    return VxPoint();
}
void VxCacheStuff::GetSeeCenterPoint(VxTooth*, VxPoint&) {}
