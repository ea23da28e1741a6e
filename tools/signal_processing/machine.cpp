#include "tools/signal_processing/machine.h"

#include <cmath>
#include <numbers>
#include <random>

namespace zmxf {

namespace {

using Machine = MachineRecording;

constexpr unsigned kSeed = 20;
constexpr double kPulseVolts = 5.0;
constexpr double kPulseShare = 0.1; // of a revolution
constexpr double kDamping = 0.03;   // of the resonance, in parts of the critical one

// Amplitudes in m/s2, far below the resonance.
struct Place {
    double firstOrder;
    double secondOrder;
    double gearMesh;
    double noise; // RMS
};

constexpr Place kDriveEnd{2.0, 0.5, 0.8, 0.5};
constexpr Place kFreeEnd{1.2, 0.4, 0.3, 0.3};

double Speed(double time)
{
    return Machine::kFirstSpeed + (Machine::kLastSpeed - Machine::kFirstSpeed) * time / Machine::kSeconds;
}

double Revolutions(double time) { return (Machine::kFirstSpeed + Speed(time)) / 2.0 * time; }

// By how much the structure amplifies a frequency.
double Gain(double frequency)
{
    const double ratio = frequency / Machine::kResonance;
    return 1.0 / std::hypot(1.0 - ratio * ratio, 2.0 * kDamping * ratio);
}

double Order(double order, double time, double phase)
{
    return std::sin(2.0 * std::numbers::pi * order * Revolutions(time) + phase);
}

double Vibration(const Place& place, double time, double noise)
{
    const double speed = Speed(time);
    return place.firstOrder * Gain(speed) * Order(1.0, time, 0.0) +
           place.secondOrder * Gain(2.0 * speed) * Order(2.0, time, 1.0) +
           place.gearMesh * Order(Machine::kGearTeeth, time, 0.5) + place.noise * noise;
}

double Tacho(double time)
{
    const double revolutions = Revolutions(time);
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
