#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>
#include <kissfft.hh>
#include <limits>
#include <optional>
#include <vector>

namespace zmxf {

// A block of samples for one transform: an even number with no prime factor above 5, so that no size is slow.
inline constexpr std::size_t kSmallestBlock = 16;
inline constexpr std::size_t kLargestBlock = 1048576;
bool IsBlockSize(std::size_t samples);
// The block size next to a wish, one way or the other; 0 when there is none.
std::size_t BlockSizeAtMost(std::size_t samples);
std::size_t BlockSizeAtLeast(std::size_t samples);

// What blocks are weighted with: Hann's for what lasts, none for what begins and ends within a block, a flat top for
// the level of a tone wherever it lies between the lines.
enum class Window { Hann, Uniform, FlatTop };
const char* WindowName(Window window); // "Hann", "Uniform", "Flat top"
// How many lines to either side of a sine hold its energy.
double MainLobe(Window window);
// What octave bands are gathered from: a flat top would smear the narrow ones.
Window OctaveWindow(Window window);
// By how much the sum of a windowed spectrum's powers exceeds the power of a signal that isn't a sine.
double NoiseBandwidth(Window window);

// Averaged spectra of the channels of one recording, from windowed blocks that overlap by half. There are
// blockSize / 2 + 1 lines, from 0 to half of the sample rate.
struct Spectra {
    std::size_t blockSize = 0;
    std::int64_t blocks = 0; // averaged; 0 when the recording is shorter than a block, and all values are 0
    // Per channel and line the mean square of a sine that falls on the line.
    std::vector<std::vector<double>> power;
    // Per channel and line the cross power with the reference channel, in the scale of power; none without a reference,
    // and none of the reference itself.
    std::vector<std::vector<std::complex<double>>> cross;
    std::size_t reference = 0;
    Window window = Window::Hann;
    // Per channel how much of the energy the windowed blocks hold, in parts: 0.375 to 0.75 of Hann windowed noise.
    std::vector<double> kept = {};
};

// 0 to 1 per line: how much of the channel comes from the reference. 0 where either is silent. Neither this nor H1 is
// for the reference itself.
std::vector<double> Coherence(const Spectra& spectra, std::size_t channel);
// The transfer function from the reference to the channel that noise on the channel leaves unbiased. 0 where the
// reference is silent.
std::vector<std::complex<double>> H1(const Spectra& spectra, std::size_t channel);

// The transform of one windowed block.
class BlockTransform {
public:
    using Lines = std::vector<std::complex<double>>;

    BlockTransform(std::size_t blockSize, Window window);
    [[nodiscard]] std::size_t blockSize() const { return m_window.size(); }
    [[nodiscard]] std::size_t lineCount() const { return m_window.size() / 2 + 1; }
    void Transform(const std::vector<double>& block, Lines& lines);
    // The sum of the squares of the last block, windowed.
    [[nodiscard]] double Energy() const;
    // What makes the mean square of a sine on line k out of the square of its transform.
    [[nodiscard]] double PowerScale(std::size_t k) const;

private:
    kissfft<double> m_transform; // of half the size: pairs of samples go in as complex numbers
    std::vector<double> m_window;
    std::vector<double> m_windowed;
    double m_gain;
};

// Averages the spectra of samples as they come.
class SpectrumMeter {
public:
    static constexpr std::int64_t kAllBlocks = std::numeric_limits<std::int64_t>::max();

    // One mean per channel, which is taken from its samples. Blocks past mostBlocks don't count.
    SpectrumMeter(std::vector<double> means, std::size_t blockSize, Window window = Window::Hann,
                  std::int64_t mostBlocks = kAllBlocks, std::optional<std::size_t> reference = std::nullopt);
    // The channels of a frame one after the other, frame after frame.
    void Add(std::size_t channel, double x);
    // Of the whole blocks so far; ends the measurement.
    [[nodiscard]] Spectra Result() &&;

private:
    using Lines = BlockTransform::Lines;

    void FinishBlock();

    std::vector<double> m_means;
    std::int64_t m_mostBlocks;
    std::optional<std::size_t> m_reference;
    BlockTransform m_transform;
    std::vector<std::vector<double>> m_block; // per channel
    std::size_t m_filled = 0;
    Lines m_lines;
    Lines m_referenceLines;
    std::vector<double> m_energies; // per channel, of all samples
    Spectra m_sums;
};

} // namespace zmxf
