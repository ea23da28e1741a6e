#pragma once

#include "zelmresult/quantities/grandeur.h"

#include <memory>
#include <string>
#include <vector>

namespace zmxf {

// What the values of a recorded channel mean. Default constructed: nothing is known, values are parts of full scale.
struct Calibration {
    std::string unit = {};     // one of UnitNames, or empty
    double fullScale = 1.0;    // the value of the recorded number 1, in the unit
    bool hasFullScale = false; // it was given, so that 1 is the end of the range
    bool isRecorded = false;   // the recording says its unit itself
    std::string means = {};    // what full scale was worked out by, for people; may be empty

    [[nodiscard]] bool IsKnown() const { return !unit.empty(); }
    // From recorded values to SI units, or to parts of full scale.
    [[nodiscard]] double FactorToSI() const;
    // "full scale is 2.828427 Pa" or "uncalibrated, values are parts of full scale"
    [[nodiscard]] std::string Text() const;
    bool operator==(const Calibration&) const = default;
};

// The units that a calibration may name.
std::vector<std::string> UnitNames();

// The one of them that a recording means by its own way to write it, "m/s^2"; empty when it is none.
std::string RecordedUnit(const std::string& text);

// What a channel measures, shown in the calibration's unit, with the decibel reference of its field. Its units live as
// long as the quantity.
std::unique_ptr<ZelmResult::CGrandeur> SignalQuantity(const Calibration& calibration);
// A plain number, which has no unit and no decibels.
std::unique_ptr<ZelmResult::CGrandeur> NumberQuantity(const ZelmResult::wstring& name);
// The X axes of spectra, in Hz, and of samples, in s.
std::unique_ptr<ZelmResult::CGrandeur> FrequencyQuantity();
std::unique_ptr<ZelmResult::CGrandeur> TimeQuantity();
// Revolutions per second, shown as rpm.
std::unique_ptr<ZelmResult::CGrandeur> SpeedQuantity();
// The quotient of two of the above in their current units, with 1 as the decibel reference. Keeps pointers to both.
std::unique_ptr<ZelmResult::CGrandeur> QuotientQuantity(ZelmResult::CGrandeur& numerator,
                                                        ZelmResult::CGrandeur& denominator);

} // namespace zmxf
