// VxSystemOption: process-wide options that the host sets and the library reads; for now the pick
// tolerance of auxiliary objects. No persistence: the host decides where options come from.
#pragma once

class VxSystemOption {
public:
    // Function-local static: built on first use, thread-safely, and destroyed at exit.
    static VxSystemOption* GetInstance();

    // Pick tolerance in window pixels: a point-like aux object is hit when the Manhattan
    // distance from the cursor is below this. Default 5.
    int GetHitPrecision() const { return m_hitPrecision; }
    // Negative values are stored as 0, which makes such objects unpickable rather than
    // turning the "distance < precision" test inside out.
    void SetHitPrecision(int pixels) { m_hitPrecision = pixels < 0 ? 0 : pixels; }

    VxSystemOption(const VxSystemOption&) = delete;
    VxSystemOption& operator=(const VxSystemOption&) = delete;

private:
    VxSystemOption() = default;

    int m_hitPrecision = 5;
};
