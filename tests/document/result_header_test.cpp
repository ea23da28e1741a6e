#include "zelmresult/document/result_header.h"

#include "tests/builders/record_check.h"
#include "tests/builders/samples.h"

#include <functional>
#include <gtest/gtest.h>
#include <type_traits>

namespace ZelmResult {
namespace {

using namespace test;

// What a header holds after reading the fields from a version, when it held others before.
HeaderFields AfterReading(const HeaderFields& stored, unsigned version, const HeaderFields& before)
{
    HeaderFields f = stored;
    if (version < 1) f = before;
    if (version < 2) f.processCaption.clear();
    if (version < 3) f.analyzerCaption.clear();
    if (version < 4) {
        f.waterfallDimension = 0;
        f.indexListe = 0;
    }
    if (version < 5) {
        f.chosenReference = before.chosenReference;
        f.numWindow = before.numWindow;
    }
    if (version < 6) f.identificationName.clear();
    if (version < 7) f.flagV7 = false;
    if (version < 8) f.coupeCaption.clear();
    if (version < 9) f.ponderationTemporelle = 0;
    if (version < 18) f.flagV18 = 1;
    if (version < 19) f.tripleV19 = {-1, -1, -1};
    if (version < 21) f.frontEnd = kNoIdn;
    if (version < 22) f.track = {3, 21, 0};
    if (version < 23) f.input = {1, 20, 0};
    if (version < 16) f.track = f.input = kNoIdn;
    return f;
}

TEST(ResultHeader, IsReadFromEveryVersionAndStoredAsTheNewest)
{
    for (unsigned version = 0; version <= 24; ++version)
        for (const HeaderFields& before : {HeaderFields(), FullHeader()}) {
            SCOPED_TRACE("version " + std::to_string(version) + " over " + std::to_string(before.processType));
            CResultHeader header = before.processType == 0 ? CResultHeader() : HeaderOf(before);
            readInto(header, headerBytes(FullHeader(), version));
            expectBytes(written(header),
                        Bytes{}.chunk("INFO", headerBytes(AfterReading(FullHeader(), version, before))));
        }
}

TEST(ResultHeader, LimitsDimensionAndDisplayAndKnowsImports)
{
    for (const auto& [stored, kept] : {std::pair{1U, 1U}, {5U, 5U}, {6U, 0U}, {0xFFFFFFFFU, 0U}}) {
        EXPECT_EQ(HeaderOf({.waterfallDimension = stored}).GetWaterfallDimension(), kept);
        CResultHeader header;
        header.SetWaterfallDimension(stored);
        expectBytes(written(header), Bytes{}.chunk("INFO", headerBytes({.waterfallDimension = kept})));
        EXPECT_EQ(header.GetWaterfallDimension(), kept) << "in the object that was stored";
    }
    for (const auto& [caption, imported] : {std::pair{u"AE2", true}, {u"AE", false}, {u"AE2 ", false}})
        EXPECT_EQ(HeaderOf({.analyzerCaption = caption}).IsImported(), imported);
    // Kind 2 has peaks, kind 9 has none.
    const std::int32_t rows[][3] = {{2, 2, 2}, {2, 3, 3}, {9, 1, 1}, {9, 2, 1}, {9, 3, 1}, {9, 4, 4}};
    for (const auto& [kind, stored, read] : rows) {
        const auto process = static_cast<std::uint32_t>(kind);
        EXPECT_EQ(HeaderOf({.processType = process, .opUniteAffichage = stored}).GetOpUniteAffichage(), read);
    }
}

using Change = std::function<void(HeaderFields&)>;

// Gives a field another value.
template <class T>
Change Of(T HeaderFields::*field)
{
    return [field](HeaderFields& fields) {
        T& value = fields.*field;
        if constexpr (std::is_same_v<T, wstring>)
            value += u"!";
        else if constexpr (std::is_same_v<T, bool>)
            value = !value;
        else if constexpr (std::is_arithmetic_v<T>)
            ++value;
        else
            ++value[1];
    };
}

// Each row holds changes of one field each. Where the kind of the result matters, it is named.
TEST(ResultHeader, ComparisonsLookAtTheirOwnFields)
{
    using F = HeaderFields;
    const struct {
        bool same;
        bool corresponds;
        bool operated;
        std::vector<Change> changes;
        std::vector<std::uint32_t> processes = {9};
    } rows[] = {
        {true, true, true, {Of(&F::filename), Of(&F::tripleV19), Of(&F::caption), Of(&F::flagV7)}},
        {true, true, true, {Of(&F::caption)}, {40}},   // a double mask
        {false, false, true, {Of(&F::caption)}, {37}}, // a single one
        {true, true, true, {Of(&F::flagV7)}, {37}},
        {false, false, true, {Of(&F::flagV7)}, {40}},
        {false,
         false,
         false,
         {Of(&F::processType), Of(&F::generator), Of(&F::frontEnd), Of(&F::response), Of(&F::reference),
          Of(&F::ponderation), Of(&F::temporel), Of(&F::waterfallDimension), Of(&F::indexListe), Of(&F::numWindow),
          Of(&F::identificationName), Of(&F::coupeCaption), Of(&F::ponderationTemporelle), Of(&F::track), Of(&F::input),
          [](F& f) { f.flagV18 = 0; }, [](F& f) { f.opere = 0; }}},
        {false,
         true,
         false,
         {Of(&F::comment), Of(&F::responseName), Of(&F::referenceName), Of(&F::numReponse), Of(&F::numReference)}},
        {false,
         false,
         true,
         {Of(&F::opere), Of(&F::typeResultatOpere), Of(&F::opUniteAffichage), Of(&F::external), Of(&F::toBeDisplayed),
          Of(&F::chosenReference)}},
        {false, true, true, {Of(&F::chunkId), Of(&F::date), Of(&F::processCaption), Of(&F::analyzerCaption)}},
    };
    for (const auto& row : rows)
        for (const Change& change : row.changes)
            for (const std::uint32_t process : row.processes) {
                SCOPED_TRACE(::testing::Message() << &row - rows << ", " << &change - row.changes.data());
                HeaderFields fields = FullHeader();
                fields.processType = process;
                const CResultHeader base = HeaderOf(fields);
                change(fields);
                const CResultHeader changed = HeaderOf(fields);
                EXPECT_EQ(changed == base, row.same);
                EXPECT_EQ(changed.CorrespondA(base), row.corresponds);
                EXPECT_EQ(base.CorrespondA(changed), row.corresponds);
                EXPECT_EQ(changed.IsOperatedResultOf(base), row.operated);
            }
}

} // namespace
} // namespace ZelmResult
