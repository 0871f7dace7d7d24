// VxPatientInfo: the special members live here, where CImage is a complete
// type.
#include <interfaces/VxPatientInfo.h>

#include <interfaces/CImage.h>

#include <utility>

VxPatientInfo::VxPatientInfo() = default;
VxPatientInfo::~VxPatientInfo() = default;
VxPatientInfo::VxPatientInfo(VxPatientInfo&&) noexcept = default;
VxPatientInfo& VxPatientInfo::operator=(VxPatientInfo&&) noexcept = default;

void VxPatientInfo::SetPanoramicImg(std::unique_ptr<CImage> image) {
    m_panoramic = std::move(image);
}
void VxPatientInfo::SetProfileImg(std::unique_ptr<CImage> image) {
    m_profile = std::move(image);
}
void VxPatientInfo::SetFrontalSmileImg(std::unique_ptr<CImage> image) {
    m_frontalSmile = std::move(image);
}
void VxPatientInfo::SetCephalometricImg(std::unique_ptr<CImage> image) {
    m_cephalometric = std::move(image);
}

void VxPatientInfo::Clear() {
    m_panoramic.reset();
    m_profile.reset();
    m_frontalSmile.reset();
    m_cephalometric.reset();
}
