#pragma once

#include <algorithm>
#include <cstdint>

namespace ZelmResult {

// A pointer to floats that knows how many there are. Internal to the results: copies are flat, and the object that
// holds one knows whether the array is owned.
struct FloatArray {
    float* data = nullptr;
    std::int32_t count = 0;
    bool isOfHost = false; // the host sets its length by the size of the object

    static FloatArray OfHost(float* floats, std::int32_t n) { return {floats, LengthOf(floats, n), true}; }
    // A part of an array of the library: its length is fixed, whatever size a host sets later.
    static FloatArray Lent(float* floats, std::int32_t n) { return {floats, LengthOf(floats, n), false}; }
    // The size of the object has become n.
    void Follow(std::int32_t n)
    {
        if (isOfHost) count = LengthOf(data, n);
    }
    // Does not free what was there.
    void Allocate(std::int32_t floats)
    {
        *this = {new float[static_cast<std::size_t>((std::max)(floats, 0))](), (std::max)(floats, 0), false};
    }
    // Whether n values fit into the array, if there is one.
    [[nodiscard]] bool Holds(std::int32_t n) const { return data == nullptr || n <= count; }
    void Free()
    {
        delete[] data;
        *this = {};
    }
    static std::int32_t LengthOf(const float* floats, std::int32_t n)
    {
        return floats == nullptr ? 0 : (std::max)(n, 0);
    }
    // The value at i, 0 past the end.
    [[nodiscard]] float At(std::int32_t i) const { return data != nullptr && i >= 0 && i < count ? data[i] : 0.0F; }
    // Copies n values, zeros past the end.
    template <class T>
    void CopyTo(T* target, std::int32_t n) const
    {
        const std::int32_t held = data == nullptr ? 0 : std::clamp(n, 0, count);
        std::copy(data, data + held, target);
        if (held < n) std::fill(target + held, target + n, T{0});
    }
    // A new array of n floats with a copy of these.
    [[nodiscard]] FloatArray Copy(std::int32_t n) const
    {
        FloatArray copy;
        copy.Allocate(n);
        CopyTo(copy.data, copy.count);
        return copy;
    }
};

} // namespace ZelmResult
