#include "tools/zmxf/analysis/machine.h"

#include <cmath>
#include <cstddef>
#include <numbers>
#include <random>

namespace zmxf {

namespace {

using Machine = MachineRecording;

constexpr unsigned kSeed = 20;
constexpr double kPulseVolts = 5.0;
constexpr double kPulseShare = 0.1; // of a revolution

// Amplitudes in m/s2.
struct Place {
    double firstOrder;
    double secondOrder;
    double bearing;
    double noise; // RMS
};

constexpr Place kDriveEnd{4.0, 1.5, 0.8, 1.0};
constexpr Place kFreeEnd{2.5, 2.0, 0.3, 0.6};

double Sine(double frequency, double time, double phase)
{
    return std::sin(2.0 * std::numbers::pi * frequency * time + phase);
}

double Vibration(const Place& place, double time, double noise)
{
    return place.firstOrder * Sine(Machine::kShaftFrequency, time, 0.0) +
           place.secondOrder * Sine(2.0 * Machine::kShaftFrequency, time, 1.0) +
           place.bearing * Sine(Machine::kBearingFrequency, time, 0.5) + place.noise * noise;
}

double Tacho(double time)
{
    const double revolutions = Machine::kShaftFrequency * time;
    return revolutions - std::floor(revolutions) < kPulseShare ? kPulseVolts : 0.0;
}

} // namespace

MachineRecording SynthesizeMachine()
{
    constexpr auto frames = static_cast<std::size_t>(Machine::kSampleRate * Machine::kSeconds);
    std::mt19937_64 random(kSeed);
    std::normal_distribution<double> noise;
    MachineRecording recording;
    recording.samples.reserve(frames * Machine::kChannels);
    for (std::size_t i = 0; i < frames; ++i) {
        const double time = static_cast<double>(i) / Machine::kSampleRate;
        for (const Place& place : {kDriveEnd, kFreeEnd})
            recording.samples.push_back(
                static_cast<float>(Vibration(place, time, noise(random)) / Machine::kVibrationFullScale));
        recording.samples.push_back(static_cast<float>(Tacho(time) / Machine::kTachoFullScale));
    }
    return recording;
}

} // namespace zmxf
