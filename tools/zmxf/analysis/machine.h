#pragma once

#include <vector>

namespace zmxf {

// A synthesised machine that turns steadily, as three channels would record it: vibration at the drive end and at the
// free end, and a tacho with one pulse per revolution. The same at every call.
struct MachineRecording {
    static constexpr int kChannels = 3;
    static constexpr int kSampleRate = 16000; // Hz
    static constexpr double kSeconds = 10.0;
    static constexpr double kShaftFrequency = 25.0;                     // Hz
    static constexpr double kBearingFrequency = 3.58 * kShaftFrequency; // of a defect of the outer ring
    static constexpr double kVibrationFullScale = 50.0;                 // m/s2
    static constexpr double kTachoFullScale = 10.0;                     // V

    std::vector<float> samples; // in parts of full scale, the channels of each frame side by side
};

MachineRecording SynthesizeMachine();

} // namespace zmxf
