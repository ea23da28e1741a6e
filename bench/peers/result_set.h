#pragma once

#include "bench/peers/case.h"

#include <array>
#include <complex>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// The results that every contender keeps: complex spectra with full headers.

namespace peers {

inline constexpr std::size_t kPoints = 401;

// The fields of a header by form. A contender names columns and attributes so.
inline constexpr std::array kNumbers{
    "process",   "response_channel", "reference_channel", "code",      "operated", "operated_type",
    "weighting", "time_domain",      "unit_shown",        "dimension", "list",     "window",
    "averaging", "former_1",         "former_2",          "former_3"};
inline constexpr std::array kFlags{"external", "displayed", "former_4", "former_5"};
inline constexpr std::array kPlaces{"generator", "front_end", "response", "reference", "track", "input"};
inline constexpr std::array kTexts{"comment",      "response_name", "reference_name", "file",     "caption",
                                   "process_name", "analyzer_name", "identification", "cut_name", "chosen_reference"};
inline constexpr std::size_t kResponseChannel = 1; // in kNumbers: differs from result to result

using Place = std::array<std::uint32_t, 6>; // a channel or module: an identifier is six numbers

struct Header {
    std::int64_t date = 0;
    std::array<std::int32_t, kNumbers.size()> numbers{};
    std::array<Place, kPlaces.size()> places{};
    std::array<std::uint8_t, kFlags.size()> flags{};
    std::array<std::string, kTexts.size()> texts;
};

using Spectrum = std::vector<std::complex<float>>;

struct Result {
    Header header;
    Spectrum values;
};

Header MakeHeader(int number);
std::complex<float> ValueAt(int number, std::size_t point);
Spectrum MakeSpectrum(int number);

// What a contender found, enough to tell whether it read what was stored.
struct Seen {
    std::size_t count = 0;
    double channels = 0; // the sum of the response channels
    double values = 0;   // the sum of the last real value of each spectrum

    bool operator==(const Seen&) const = default;
};

// Where results are kept.
class ResultStore {
public:
    ResultStore() = default;
    ResultStore(const ResultStore&) = delete;
    ResultStore& operator=(const ResultStore&) = delete;
    virtual ~ResultStore() = default;

    virtual void Make(int n) = 0; // in memory, to be saved
    virtual void Save(const Path& path) = 0;
    virtual void Load(const Path& path) = 0;
    virtual void List(const Path& path) = 0; // headers alone
    virtual void Fetch(const Path& path, int number) = 0;
    [[nodiscard]] virtual Seen Found() const = 0; // by the last of these
};

// In the plain structs above.
class PlainResultStore : public ResultStore {
public:
    void Make(int n) override;
    [[nodiscard]] Seen Found() const override;

protected:
    std::vector<Result> m_results; // fetched ones too
    std::vector<Header> m_listed;
};

std::unique_ptr<ResultStore> OurResults();
std::unique_ptr<ResultStore> Hdf5ResultGroups();
std::unique_ptr<ResultStore> Hdf5ResultTables();
std::unique_ptr<ResultStore> SqliteResultColumns();
std::unique_ptr<ResultStore> SqliteResultBlobs();

} // namespace peers
