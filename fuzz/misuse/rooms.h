#pragma once

#include "fuzz/laws.h"
#include "zelmresult/support/idn.h"

#include <array>
#include <initializer_list>

// What a host does wrong, room by room: legal calls in any order, with odd arguments, on objects in any state. The
// input says which. No call breaks anything or leaks, and each answers as its header promises for such a case.

namespace ZelmResult::fuzz {

// The input as odd arguments.
class Odd : public Input {
public:
    using Input::Input;

    template <class T>
    T pick(std::initializer_list<T> values)
    {
        return *(values.begin() + choice(values.size()));
    }
    bool flag() { return choice(2) == 0; }
    std::int32_t number();
    std::int16_t shortNumber();
    std::uint32_t word();
    float value();
    std::int32_t size(); // 3 at most
    wstring text();
    idn::Idn idn();

    // One of the calls.
    template <class... Calls>
    void call(const Calls&... calls)
    {
        std::size_t left = choice(sizeof...(calls));
        ((left-- == 0 ? calls() : void()), ...);
    }
};

// A room; each has steps.
class Room {
public:
    explicit Room(Odd& odd) : m_odd(odd) {}
    Room(const Room&) = delete;
    Room& operator=(const Room&) = delete;

protected:
    ~Room() = default;

    Odd& m_odd;
};

// One step after another until the input ends.
template <class Misuse>
void Run(Odd& odd)
{
    constexpr int kMost = 300;
    Misuse misuse(odd);
    for (int steps = 0; steps < kMost && !odd.empty(); ++steps) misuse.Step();
}

// A copy of n values fills that many places, and none after them.
template <class Copy>
void CheckCopy(Odd& odd, Copy copy)
{
    constexpr float untouched = 12345.0F;
    std::array<float, 16> places;
    places.fill(untouched);
    const auto n = odd.pick<std::int32_t>({INT32_MIN, -1, 0, 1, 3, 12});
    copy(places.data(), n);
    for (std::int32_t i = 0; i < std::ssize(places); ++i)
        Require((places[static_cast<std::size_t>(i)] == untouched) == (i >= n), "a copy fills as many places as asked");
}

void MisuseFiles(Odd& odd);
void MisuseQuantities(Odd& odd);
void MisuseResults(Odd& odd);
void MisuseWaterfalls(Odd& odd);
void MisuseReferences(Odd& odd);
void MisuseSettings(Odd& odd);
void MisuseRecordings(Odd& odd);
void MisuseDocuments(Odd& odd);

} // namespace ZelmResult::fuzz
