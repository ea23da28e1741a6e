#include "tools/signal_processing/spectra.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <numeric>

namespace zmxf {

namespace {

bool IsSmooth(std::size_t n)
{
    for (const std::size_t factor : {2U, 3U, 5U})
        while (n % factor == 0) n /= factor;
    return n == 1;
}

constexpr std::array kFlatTop = {0.21557895, 0.41663158, 0.277263158, 0.083578947, 0.006947368};

double FlatTopAt(double turn)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < kFlatTop.size(); ++i)
        sum += (i % 2 == 0 ? 1.0 : -1.0) * kFlatTop[i] * std::cos(static_cast<double>(i) * turn);
    return sum;
}

std::vector<double> WeightsOf(Window kind, std::size_t size)
{
    std::vector<double> window(size, 1.0);
    if (kind == Window::Uniform) return window;
    for (std::size_t n = 0; n < size; ++n) {
        const double turn = 2.0 * std::numbers::pi * static_cast<double>(n) / static_cast<double>(size);
        window[n] = kind == Window::Hann ? 0.5 * (1.0 - std::cos(turn)) : FlatTopAt(turn);
    }
    return window;
}

} // namespace

const char* WindowName(Window window)
{
    switch (window) {
    case Window::Uniform: return "Uniform";
    case Window::FlatTop: return "Flat top";
    default: return "Hann";
    }
}

double NoiseBandwidth(Window window)
{
    switch (window) {
    case Window::Uniform: return 1.0;
    case Window::FlatTop: {
        double squares = 2.0 * kFlatTop[0] * kFlatTop[0];
        for (std::size_t i = 1; i < kFlatTop.size(); ++i) squares += kFlatTop[i] * kFlatTop[i];
        return squares / (2.0 * kFlatTop[0] * kFlatTop[0]);
    }
    default: return 1.5;
    }
}

double MainLobe(Window window) { return window == Window::FlatTop ? 5.0 : 2.0; }

Window OctaveWindow(Window window) { return window == Window::FlatTop ? Window::Hann : window; }

bool IsBlockSize(std::size_t samples)
{
    return samples >= kSmallestBlock && samples <= kLargestBlock && samples % 2 == 0 && IsSmooth(samples);
}

std::size_t BlockSizeAtMost(std::size_t samples)
{
    for (std::size_t size = std::min(samples, kLargestBlock); size >= kSmallestBlock; --size)
        if (IsBlockSize(size)) return size;
    return 0;
}

std::size_t BlockSizeAtLeast(std::size_t samples)
{
    for (std::size_t size = std::max(samples, kSmallestBlock); size <= kLargestBlock; ++size)
        if (IsBlockSize(size)) return size;
    return 0;
}

std::vector<double> Coherence(const Spectra& spectra, std::size_t channel)
{
    const std::vector<double>& input = spectra.power[spectra.reference];
    const std::vector<double>& output = spectra.power[channel];
    std::vector<double> coherence(input.size(), 0.0);
    for (std::size_t k = 0; k < coherence.size(); ++k)
        if (input[k] > 0.0 && output[k] > 0.0)
            coherence[k] =
                std::min(std::norm(spectra.cross[channel][k] / std::sqrt(input[k]) / std::sqrt(output[k])), 1.0);
    return coherence;
}

std::vector<std::complex<double>> H1(const Spectra& spectra, std::size_t channel)
{
    const std::vector<double>& input = spectra.power[spectra.reference];
    std::vector<std::complex<double>> transfer(input.size());
    for (std::size_t k = 0; k < transfer.size(); ++k)
        if (input[k] > 0.0) transfer[k] = spectra.cross[channel][k] / input[k];
    return transfer;
}

BlockTransform::BlockTransform(std::size_t blockSize, Window window)
    : m_transform(blockSize / 2, false), m_window(WeightsOf(window, blockSize)), m_windowed(blockSize),
      m_gain(std::accumulate(m_window.begin(), m_window.end(), 0.0))
{
}

void BlockTransform::Transform(const std::vector<double>& block, Lines& lines)
{
    std::transform(block.begin(), block.end(), m_window.begin(), m_windowed.begin(), std::multiplies<>());
    lines.resize(lineCount());
    m_transform.transform_real(m_windowed.data(), lines.data());
    // The two lines that are real come as one complex number.
    lines.back() = lines.front().imag();
    lines.front() = lines.front().real();
}

double BlockTransform::Energy() const
{
    return std::inner_product(m_windowed.begin(), m_windowed.end(), m_windowed.begin(), 0.0);
}

double BlockTransform::PowerScale(std::size_t k) const
{
    const double once = 1.0 / (m_gain * m_gain);
    return k == 0 || k + 1 == lineCount() ? once : 2.0 * once; // lines of negative frequency
}

SpectrumMeter::SpectrumMeter(std::vector<double> means, std::size_t blockSize, Window window, std::int64_t mostBlocks,
                             std::optional<std::size_t> reference)
    : m_means(std::move(means)), m_mostBlocks(mostBlocks), m_reference(reference), m_transform(blockSize, window),
      m_block(m_means.size(), std::vector<double>(blockSize)), m_lines(m_transform.lineCount()),
      m_energies(m_means.size())
{
    m_sums.window = window;
    m_sums.kept.resize(m_means.size());
    m_sums.blockSize = blockSize;
    m_sums.power.assign(m_means.size(), std::vector<double>(m_lines.size()));
    if (!reference) return;
    m_sums.reference = *reference;
    m_sums.cross.assign(m_means.size(), Lines(m_lines.size()));
    m_sums.cross[*reference].clear();
    m_referenceLines.resize(m_lines.size());
}

void SpectrumMeter::Add(std::size_t channel, double x)
{
    if (m_sums.blocks >= m_mostBlocks) return;
    const double y = x - m_means[channel];
    m_block[channel][m_filled] = y;
    m_energies[channel] += y * y;
    if (channel + 1 == m_means.size() && ++m_filled == m_transform.blockSize()) FinishBlock();
}

void SpectrumMeter::FinishBlock()
{
    if (m_reference) m_transform.Transform(m_block[*m_reference], m_referenceLines);
    for (std::size_t channel = 0; channel < m_block.size(); ++channel) {
        m_transform.Transform(m_block[channel], m_lines);
        m_sums.kept[channel] += m_transform.Energy();
        for (std::size_t k = 0; k < m_lines.size(); ++k) m_sums.power[channel][k] += std::norm(m_lines[k]);
        if (m_reference && channel != *m_reference)
            for (std::size_t k = 0; k < m_lines.size(); ++k)
                m_sums.cross[channel][k] += std::conj(m_referenceLines[k]) * m_lines[k];
        std::vector<double>& block = m_block[channel];
        std::copy(block.begin() + static_cast<std::ptrdiff_t>(block.size() / 2), block.end(), block.begin());
    }
    ++m_sums.blocks;
    m_filled = m_transform.blockSize() / 2;
}

Spectra SpectrumMeter::Result() &&
{
    Spectra averaged = std::move(m_sums);
    for (std::size_t channel = 0; channel < m_energies.size(); ++channel)
        averaged.kept[channel] = m_energies[channel] > 0.0 ? averaged.kept[channel] / m_energies[channel] : 1.0;
    if (averaged.blocks == 0) return averaged;
    for (std::size_t k = 0; k < m_lines.size(); ++k) {
        const double scale = m_transform.PowerScale(k) / static_cast<double>(averaged.blocks);
        for (auto& power : averaged.power) power[k] *= scale;
        for (auto& cross : averaged.cross)
            if (!cross.empty()) cross[k] *= scale;
    }
    return averaged;
}

} // namespace zmxf
