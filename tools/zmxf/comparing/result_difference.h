#pragma once

#include "tools/zmxf/comparing/tolerance.h"
#include "tools/zmxf/showing/description.h"
#include "zelmresult/reading/labelled_result.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zmxf {

// The values of an array that are furthest apart.
struct LargestDifference {
    std::vector<std::size_t> index;
    double distance = 0.0; // in SI units
    double share = 0.0;    // of the largest value of the two arrays; infinite where one of the two is no number
    std::string place;     // "2996 rpm, 120 Hz"
    Json at;               // the same in SI units, by coordinate
    Json a;                // in SI units
    Json b;
};

// What is different in an array of two results, or in the results as such.
struct Difference {
    enum class What : std::uint8_t {
        OnlyInA,
        OnlyInB,
        Unit,
        Weighting,
        Shape,
        Values,
        NotCompared // since an axis differs
    };

    What what = What::Values;
    std::string array; // its name; empty for what is no array
    std::string title; // for people
    std::string a;     // what it is there, for people
    std::string b;
    bool isOfData = false; // and not of a coordinate
    // Of values alone.
    std::size_t differing = 0;
    std::size_t count = 0;
    std::optional<LargestDifference> largest = {};
};

const char* NameOf(Difference::What what); // "values"

// All that differs: first what concerns all of the result, then coordinates, then data. Data along axes that differ
// aren't compared.
std::vector<Difference> CompareResults(const ZelmResult::LabelledResult& a, const ZelmResult::LabelledResult& b,
                                       const Tolerance& tolerance);

} // namespace zmxf
