#pragma once

#include "zelmresult/reading/labelled_quantity.h"
#include "zelmresult/reading/read_error.h"
#include "zelmresult/support/time.h"
#include "zelmresult/support/wstring.h"

#include <complex>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace ZelmResult {

// Results as labelled arrays: what printing, exports, bindings and viewers need of a result, without its class. All of
// these are plain values: they own what they hold, and know neither the reader nor its file.
//
// Values  are float32 in SI units, as they are stored. The shown unit is a conversion that the quantity offers. A NaN
//         is a missing value. In a vector along references an infinity is a block that was left out.
// Arrays  are row-major. An array without dimensions holds one value. A coordinate that has the name of its only
//         dimension is the index of that dimension.
//
// Names of dimensions, coordinates and data, by form:
//
//   Level          data value, minimum, maximum
//   BroadBand      (weighting) coordinate weighting, as text; data short_lpk, and along weighting leq, short_leq,
//                  instant_leq
//   GlobalLevel    data dc, max, min, rms, energy, skewness, kurtosis, peak, peak_to_peak, crest_factor
//   OrderLevels    (order) coordinate order; data level along order, and overall
//   Vector         (frequency) or (point): coordinate frequency, time or x; data value, which may be complex. Along
//                  references (point): a coordinate per reference
//   Bands          (band) coordinates band, the nominal middles, and exact_middle; data value, minimum, maximum, as far
//                  as they are stored, and the levels of all bands: global, global_weighted, global_minimum,
//                  global_minimum_weighted, global_maximum, global_maximum_weighted
//   OrderTrack     (order, point) coordinates order, where the numbers are known, order_name, where orders are named,
//                  and those of points as in a vector; data value
//   Overview       (point) coordinate time or x, where a point begins; data upper, lower, and level_1 to level_4 where
//                  there are further tables
//   Pair           (of its minimum) coordinates as in a vector or bands; data minimum, maximum
//   Waterfall      (slice, and frequency, point or band) coordinates block and one per reference along slice, and those
//                  of a vector or of bands; data as in these, along slice
//
// Each level of BroadBand, GlobalLevel and OrderLevels has its extremes beside it: leq_minimum, leq_maximum. A series
// along a waterfall has the coordinate block too.

// One array with its labels.
struct LabelledArray {
    using Values = std::variant<std::vector<float>, std::vector<std::complex<float>>, std::vector<std::int32_t>,
                                std::vector<wstring>>;

    wstring name;  // no other coordinate, or no other data, of the result has it
    wstring title; // for people: "Short Leq"
    std::vector<wstring> dimensions;
    std::vector<std::size_t> shape; // as many as dimensions
    std::optional<LabelledQuantity> quantity;
    std::uint32_t weighting = 0; // a constant of a frequency weighting, 0 for none
    // Which digits are worth printing, in SI units and in parts of the value.
    float absolutePrecision = 0.0F;
    float relativePrecision = 0.0F;
    bool isReference = false; // a coordinate that a reference gives
    Values values;

    [[nodiscard]] std::size_t Size() const; // of the values, which is the product of the shape
    // The values, null for those of another type.
    [[nodiscard]] const std::vector<float>* Floats() const { return std::get_if<0>(&values); }
    [[nodiscard]] const std::vector<std::complex<float>>* Complexes() const { return std::get_if<1>(&values); }
    [[nodiscard]] const std::vector<std::int32_t>* Numbers() const { return std::get_if<2>(&values); }
    [[nodiscard]] const std::vector<wstring>* Texts() const { return std::get_if<3>(&values); }
};

// What a result is and where it comes from.
struct LabelledInformation {
    std::size_t number = 0; // in the listing of its document
    std::int32_t system = 0;
    std::uint32_t processType = 0;
    wstring group;   // what people call it: "autospectrum", also "waterfall" whatever its slices hold
    wstring kind;    // what the process type is called in the field: "Autospectrum"
    wstring process; // the name that the program gave, which made it
    wstring channel; // of the response
    std::int32_t channelNumber = 0;
    wstring reference; // channel; of results that have one, such as a transfer function
    std::int32_t referenceNumber = 0;
    OTime date;
    wstring caption;
    wstring comment;
    wstring analyzer;
    std::uint32_t weighting = 0; // constants of the host
    std::uint32_t timeWeighting = 0;
    std::int32_t window = -1;
};

enum class LabelledForm : std::uint8_t {
    Level,
    BroadBand,
    GlobalLevel,
    OrderLevels,
    Vector,
    Bands,
    OrderTrack,
    Overview,
    Pair,
    Waterfall
};

struct LabelledResult {
    LabelledForm form = LabelledForm::Level;
    LabelledInformation information;
    std::optional<LabelledQuantity> quantity; // of the values, unless an array has another one
    std::vector<LabelledArray> coordinates;
    std::vector<LabelledArray> data;
    // The name of the coordinate that gives points or slices their meaning, when there are references. Empty without a
    // choice: then points are counted.
    wstring chosenReference;
    std::optional<ReadError> lostReferences; // why references could not be read; the rest is whole

    // lend; null for what isn't there
    [[nodiscard]] const LabelledArray* Coordinate(wstring_view name) const;
    [[nodiscard]] const LabelledArray* Data(wstring_view name) const;
    // The coordinate that a dimension is shown along: the chosen reference, or the first float coordinate that is no
    // reference. Null where points are only counted.
    [[nodiscard]] const LabelledArray* Axis(wstring_view dimension) const;
};

// Which slice of a waterfall: by its index, counted from 0 in the order of blocks, or by the number of its block.
struct SliceChoice {
    enum class By : std::uint8_t { Index, Block };

    By by = By::Index;
    std::int64_t number = 0;
};

} // namespace ZelmResult
