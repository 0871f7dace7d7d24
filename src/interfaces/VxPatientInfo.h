// VxPatientInfo: the patient's pictures: panoramic film, profile and frontal smile photographs
// and the cephalometric X-ray. It owns each picture it is given; readers get a pointer that
// stays valid until the picture is replaced or the record dies. It does not load files or
// adjust pictures (the image overlays work on their own copies).
#pragma once

#include <memory>

class CImage;

class VxPatientInfo {
public:
    VxPatientInfo();
    // Out of line: deleting a CImage needs its full type, which this header does not include.
    ~VxPatientInfo();
    VxPatientInfo(VxPatientInfo&&) noexcept;
    VxPatientInfo& operator=(VxPatientInfo&&) noexcept;
    VxPatientInfo(const VxPatientInfo&) = delete;
    VxPatientInfo& operator=(const VxPatientInfo&) = delete;

    // Null when the record has no such picture.
    CImage* GetPanoramicImg() const { return m_panoramic.get(); }
    CImage* GetProfileImg() const { return m_profile.get(); }
    CImage* GetFrontalSmileImg() const { return m_frontalSmile.get(); }
    CImage* GetCephalometricImg() const { return m_cephalometric.get(); }

    // Each takes ownership; a null pointer removes the picture.
    void SetPanoramicImg(std::unique_ptr<CImage> image);
    void SetProfileImg(std::unique_ptr<CImage> image);
    void SetFrontalSmileImg(std::unique_ptr<CImage> image);
    void SetCephalometricImg(std::unique_ptr<CImage> image);
    // Drops all four pictures.
    void Clear();

private:
    std::unique_ptr<CImage> m_panoramic;
    std::unique_ptr<CImage> m_profile;
    std::unique_ptr<CImage> m_frontalSmile;
    std::unique_ptr<CImage> m_cephalometric;
};
