#include "tools/signal_processing/run_up.h"

#include <cmath>
#include <functional>
#include <gmock/gmock.h>
#include <numbers>
#include <random>
#include <string>

namespace zmxf {

namespace {

constexpr int kRate = 16000;
constexpr std::size_t kBlock = 8000;
constexpr std::int64_t kFrames = 20 * kRate;

TachoPulses PulsesOf(const std::vector<double>& samples)
{
    TachoExtent extent;
    for (const double x : samples) extent.Add(x);
    TachoMeter meter(extent, kBlock);
    for (const double x : samples) meter.Add(x);
    return meter.pulses();
}

TachoSpeed SpeedAt(const std::vector<double>& edges, double sample, double half)
{
    return SpeedAround({edges, std::vector<std::int64_t>(edges.size(), 5)}, 1.0, sample, half);
}

double Speed(double seconds) { return 10.0 + 4.5 * seconds; }
double Revolutions(double seconds) { return (10.0 + Speed(seconds)) / 2.0 * seconds; }

// What a tacho shows of a run-up from 10 to 100 revolutions per second.
struct Signal {
    std::string name;
    double pulses;                                               // per revolution
    std::function<double(double revolutions, std::int64_t i)> x; // with the sample's number
    std::size_t leastSlices;                                     // of 79; 0: no tacho
    bool isFlawed = true;                                        // which the tally must say
};

void PrintTo(const Signal& signal, std::ostream* out) { *out << signal.name; }

double Pulse(double revolutions, double share = 0.1) { return revolutions - std::floor(revolutions) < share ? 1 : 0; }
bool IsOneOf(double revolutions, int every) { return static_cast<int>(revolutions) % every == 7; }

double Noise(std::int64_t i)
{
    std::minstd_rand random(static_cast<unsigned>(i * 7919 + 1));
    random.discard(3);
    return std::generate_canonical<double, 24>(random) - 0.5;
}

RunUp RunUpOf(const Signal& signal, const TachoPulses& pulses)
{
    RunUp runUp{kBlock, 0, signal.pulses};
    CutIntoSlices(runUp, pulses, kFrames, kRate);
    return runUp;
}

class TachoSignals : public ::testing::TestWithParam<Signal> {};

} // namespace

TEST(Tacho, CountsRisingEdgesThatGoAllTheWay)
{
    // At 6 of 0 to 10; a start in the upper half, a bounce and a half-hearted pulse are none.
    const TachoPulses pulses = PulsesOf({10, 10, 0, 10, 5, 9, 0, 5, 0, 0, 8, 10});
    EXPECT_THAT(pulses.edges, ::testing::ElementsAre(::testing::DoubleEq(2.6), ::testing::DoubleEq(9.75)));
    EXPECT_THAT(pulses.widths, ::testing::ElementsAre(1, 4)) << "of the low part before, or of the pulse";
    EXPECT_TRUE(PulsesOf({3, 3, 3}).edges.empty());
    EXPECT_EQ(PulsesOf({-7, 0, -7, 0}).size(), 2U) << "negative pulses rise too";
}

TEST(Tacho, SpeedIsThatAroundTheSample)
{
    const std::vector<double> edges = {10, 20, 30, 42, 54};
    EXPECT_DOUBLE_EQ(*SpeedAt(edges, 20, 10).pulsesPerSample, 0.1);
    EXPECT_DOUBLE_EQ(*SpeedAt(edges, 30, 10).pulsesPerSample, (1.0 + 10.0 / 12.0) / 20.0);
    EXPECT_DOUBLE_EQ(*SpeedAt(edges, 51, 100).pulsesPerSample, 1.0 / 12.0) << "as far as edges reach on both sides";
    for (const double outside : {5.0, 10.0, 54.0, 80.0}) {
        EXPECT_FALSE(SpeedAt(edges, outside, 10).pulsesPerSample);
        EXPECT_EQ(SpeedAt(edges, outside, 10).flaw, SpeedFlaw::None);
    }
    EXPECT_FALSE(SpeedAt({5}, 5, 10).pulsesPerSample);
}

// Every second of them may have been missed, as regularly as those that were seen.
TEST(Tacho, PulsesNeedSamples)
{
    const auto flaw = [](double interval, std::int64_t width) {
        TachoPulses pulses;
        for (int i = 0; i < 40; ++i) pulses.edges.push_back(interval * i);
        pulses.widths.assign(pulses.edges.size(), width);
        return SpeedAround(pulses, 1.0, 15.0 * interval, 10.0 * interval).flaw;
    };
    EXPECT_EQ(flaw(3.0, 2), SpeedFlaw::TooFewSamples);
    EXPECT_EQ(flaw(5.0, 1), SpeedFlaw::TooFewSamples);
    EXPECT_EQ(flaw(5.0, 2), SpeedFlaw::None);
    EXPECT_EQ(flaw(30.0, 1), SpeedFlaw::None);
}

// A speed is right within a percent, or two where marks are uneven, or there is none and the tally says why.
TEST_P(TachoSignals, GiveTheTrueSpeedOrNone)
{
    const Signal& signal = GetParam();
    std::vector<double> samples;
    for (std::int64_t i = 0; i < kFrames; ++i)
        samples.push_back(signal.x(Revolutions(static_cast<double>(i) / kRate), i));
    const TachoPulses pulses = PulsesOf(samples);
    const RunUp runUp = RunUpOf(signal, pulses);
    EXPECT_EQ(WhyNoTacho(runUp, pulses).empty(), signal.leastSlices != 0) << WhyNoTacho(runUp, pulses);
    EXPECT_GE(runUp.slices.size(), signal.leastSlices);
    const SpeedTally& tally = runUp.tally;
    EXPECT_EQ(tally.irregular + tally.tooFewSamples + tally.noPulses + tally.bridged != 0, signal.isFlawed);
    if (signal.leastSlices == 0) return;
    for (const RunUpSlice& slice : runUp.slices)
        EXPECT_NEAR(slice.speed / Speed(slice.seconds), 1.0, 0.01 * signal.pulses) << slice.seconds << " s";
}

INSTANTIATE_TEST_SUITE_P(
    OfAllKinds, TachoSignals,
    ::testing::Values(
        Signal{"clean", 1, [](double r, auto) { return Pulse(r); }, 79, false},
        Signal{"inverted", 1, [](double r, auto) { return 5.0 - Pulse(r); }, 79, false},
        Signal{"a sine that grows with the speed", 1,
               [](double r, auto) { return std::sqrt(r + 10.0) * std::sin(2 * std::numbers::pi * r); }, 79, false},
        Signal{"clipped", 1, [](double r, auto) { return std::clamp(5 * std::sin(6.2831853 * r), -1.0, 1.0); }, 79,
               false},
        Signal{"noisy", 1, [](double r, auto i) { return Pulse(r) + 0.3 * Noise(i); }, 79, false},
        Signal{"one of 20 missing", 1, [](double r, auto) { return IsOneOf(r, 20) ? 0.0 : Pulse(r); }, 77},
        Signal{"two of 20 missing", 1,
               [](double r, auto) { return IsOneOf(r, 20) || IsOneOf(r + 1, 20) ? 0.0 : Pulse(r); }, 75},
        Signal{"every third missing", 1, [](double r, auto) { return static_cast<int>(r) % 3 ? Pulse(r) : 0; }, 0},
        Signal{"extra pulses", 1, [](double r, auto i) { return i % 6133 < 20 ? 1.0 : Pulse(r); }, 70},
        Signal{"a spike", 1, [](double r, auto i) { return i == 123456 ? 10.0 : Pulse(r); }, 79},
        Signal{"a base line that drifts", 1,
               [](double r, auto i) { return Pulse(r) + 10.0 * static_cast<double>(i) / kFrames; }, 75},
        Signal{"a pause", 1, [](double r, auto i) { return i / kRate >= 8 && i / kRate < 12 ? 0.0 : Pulse(r); }, 60},
        Signal{"two uneven marks", 2, [](double r, auto) { return Pulse(r, 0.05) + Pulse(r + 0.6, 0.05); }, 79, false},
        Signal{"60 narrow pulses", 60, [](double r, auto) { return Pulse(60 * r, 0.1); }, 0},
        Signal{"noise", 1, [](double, auto i) { return Noise(i); }, 0},
        Signal{"silence", 1, [](double, auto) { return 0.0; }, 0, false}),
    [](const auto& row) {
        std::string name = row.param.name;
        std::replace(name.begin(), name.end(), ' ', '_');
        return name;
    });

} // namespace zmxf
