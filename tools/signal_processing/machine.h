#pragma once

#include <cstddef>
#include <vector>

namespace zmxf {

// A synthesised machine that runs up, as three channels would record it: vibration at the drive end and at the free
// end, and a tacho with one pulse per revolution. The same at every call.
struct MachineRecording {
    static constexpr int kChannels = 3;
    static constexpr std::size_t kTachoChannel = 2;
    static constexpr int kSampleRate = 16000;           // Hz
    static constexpr std::size_t kBlockSize = 8000;     // whose lines lie 2 Hz apart
    static constexpr double kSeconds = 40.0;            // in which the speed rises evenly
    static constexpr double kFirstSpeed = 10.0;         // revolutions per second
    static constexpr double kLastSpeed = 100.0;         // revolutions per second
    static constexpr double kGearTeeth = 23.0;          // the order of the gear mesh
    static constexpr double kResonance = 120.0;         // Hz
    static constexpr double kVibrationFullScale = 50.0; // m/s2
    static constexpr double kTachoFullScale = 10.0;     // V

    std::vector<float> samples; // in parts of full scale, the channels of each frame side by side
};

MachineRecording SynthesizeMachine();

} // namespace zmxf
