#pragma once

#include "zelmresult/reading/labelled_result.h"

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

// What the builders of labelled results share. Internal to reading.

namespace ZelmResult {

class CReferencedAxis;
class CResult;
class CVector;
class CVectorRef;

namespace labelled {

// The names of one result's coordinates: each is given once.
class Names {
public:
    // The name, or the name with a number when it is taken.
    wstring Take(const wstring& name);

private:
    std::map<wstring, int> m_taken;
};

// One dimension.
struct Dimension {
    wstring name;
    std::size_t size = 0;
};

// An array of values; arrays of the quantity and the precision of Y, or of X, of a result.
LabelledArray Array(wstring name, wstring title, const std::vector<Dimension>& dimensions,
                    LabelledArray::Values values);
void DescribeAsY(const CResult& result, LabelledArray& array);
void DescribeAsX(const CResult& result, LabelledArray& array);

[[nodiscard]] std::size_t PointsOf(CVector& vector); // that it holds
[[nodiscard]] bool IsBands(const CVector& vector);

// Axes: each adds its coordinates, and gives its dimension. The first takes the axis that the vector has.
Dimension AddAxis(CVector& vector, Names& names, LabelledResult& labelled);
Dimension AddEvenAxis(const CResult& result, std::size_t size, Names& names, LabelledResult& labelled);
Dimension AddStepAxis(const CResult& result, double first, double step, std::size_t size, LabelledResult& labelled);
Dimension AddReferenceAxis(const CReferencedAxis& axis, const CResult& result, std::size_t size, Names& names,
                           LabelledResult& labelled);
// One reference; gives its coordinate.
LabelledArray& AddReference(const CVectorRef& reference, bool isChosen, const Dimension& dimension,
                            std::vector<float> values, Names& names, LabelledResult& labelled);

// The values of a vector that is no overview: value, or all that bands hold.
std::vector<LabelledArray> PartsOf(CVector& vector, const Dimension& axis);

// Each fills form, coordinates and data; false for a result of another class.
bool AddLevels(const CResult& result, LabelledResult& labelled);
bool AddVector(CResult& result, LabelledResult& labelled);
bool AddWaterfall(CResult& result, bool hasSlices, LabelledResult& labelled);

} // namespace labelled

} // namespace ZelmResult
