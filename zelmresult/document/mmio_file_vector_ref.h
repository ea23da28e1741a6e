#pragma once

#include "zelmresult/document/result_map.h"
#include "zelmresult/support/wstring.h"

#include <cstdint>
#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

namespace ZelmResult {

class CListVectorRef;
class CMmioFile;
class CRefWaterfall;
class CResult;
class CResultHeader;
class CWaterfallRef;

// The vectors along waterfalls of a system that a stored reference may belong to, by their names. It keeps pointers.
class ShownSeries {
public:
    // Add them in order: the first that fits counts.
    void Add(const CResultHeader& header, CResult* result);
    // The result whose text contains the name, among those with that index of a list; null without one.
    [[nodiscard]] CRefWaterfall* Find(const wstring& name, std::int32_t listIndex);

private:
    struct Series {
        wstring text;
        CRefWaterfall* result;
    };
    struct List {
        std::vector<Series> series;
        // The series whose text contains three characters, in order.
        std::unordered_map<std::uint64_t, std::vector<std::size_t>> byThree;
        std::unordered_map<wstring, CRefWaterfall*> found;
    };

    static CRefWaterfall* Search(const List& list, const wstring& name);

    std::map<std::int32_t, List> m_lists; // by index
};

// Reads the references of waterfalls that a system stores, list by list.
class MmioFile_VectorRef {
public:
    // keeps a reference to the file, which must be open.
    explicit MmioFile_VectorRef(CMmioFile& file) : m_file(file) {}

    // gives a new list with the references of that index; null when there is none, and when one can't be read. system
    // is the number of the system; from 17 on the search is outside of systems. A reference that one of the results
    // shows is read into the result's own, which is then in the list, with the arrays they share; all others are new.
    [[nodiscard]] CListVectorRef* ReadVecteurRef(const std::map<CResultHeader*, CResult*>& results,
                                                 std::int32_t listIndex, std::int32_t system);
    [[nodiscard]] CListVectorRef* ReadVecteurRef(const ResultMap& results, std::int32_t listIndex, std::int32_t system);
    // The same for the system whose first chunk is at that position. The file notes a list that can't be read; see
    // CMmioFile::TakeUnreadable.
    [[nodiscard]] CListVectorRef* ReadVecteurRefFrom(std::int32_t position, ShownSeries& series,
                                                     std::int32_t listIndex);
    // Appends the references of that index to list, all of them new, and then turns waterfall, which may be null, into
    // a ring; see CRefWaterfall::UpdateTabValue. False at the first that can't be read; those before it are kept. name
    // has no effect.
    [[nodiscard]] bool FillVecteurRef(CRefWaterfall* waterfall, const wstring& name, CListVectorRef& list,
                                      std::int32_t listIndex, std::int32_t system);
    // The same without a waterfall, for the system whose first chunk is at that position.
    [[nodiscard]] bool FillVecteurRefFrom(std::int32_t position, CListVectorRef& list, std::int32_t listIndex);

private:
    bool GoTo(std::int32_t system);
    template <class Results>
    CListVectorRef* ReadFor(const Results& results, std::int32_t listIndex, std::int32_t system);
    CListVectorRef* ReadList(ShownSeries& series, std::int32_t listIndex);
    bool Append(CListVectorRef& list, std::int32_t listIndex);
    enum class Found { Reference, None, Failure };
    Found Next(std::int32_t listIndex, std::unique_ptr<CWaterfallRef>& reference);

    CMmioFile& m_file;
};

} // namespace ZelmResult
