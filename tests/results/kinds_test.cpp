// What the kinds of results are: classes, rules, masks, export.

#include "zelmresult/document/result_export_policy.h"
#include "zelmresult/document/result_header.h"
#include "zelmresult/results/double_result.h"
#include "zelmresult/results/kinds.h"
#include "zelmresult/results/result_factory.h"
#include "zelmresult/results/result_mask.h"
#include "zelmresult/results/rr_index.h"
#include "zelmresult/results/scalar.h"
#include "zelmresult/waterfalls/ref_waterfall.h"

#include <cxxabi.h>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <typeinfo>

namespace ZelmResult {
namespace {

using Process = otype::ElementaryResultProcess;

Process ProcessOf(std::uint32_t kind) { return Process::fromInteger(static_cast<std::int32_t>(kind)); }

// A new result with the reference that it shows.
struct Made {
    Made(std::uint32_t kind, int dimension) : result(ResultFactory::create(ProcessOf(kind), dimension, u"Time"))
    {
        if (auto* series = dynamic_cast<CRefWaterfall*>(result.get()); series != nullptr)
            reference.reset(series->GetMyVecteurReference());
    }

    std::unique_ptr<CWaterfallRef> reference;
    std::unique_ptr<CResult> result;
};

std::string ClassOf(const CResult& result)
{
    const auto* pair = dynamic_cast<const CDoubleResult*>(&result);
    const std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(typeid(result).name(), nullptr, nullptr, nullptr), std::free);
    return name.get() + sizeof "ZelmResult:" + (pair == nullptr ? "" : " of two " + ClassOf(*pair->GetMaxVector()));
}

// What is made for a kind without a waterfall, as cells of a table.
std::string EmptyOf(std::uint32_t kind)
{
    const Made made(kind, WaterfallDimension::kNone);
    if (made.result == nullptr) return "| | | ";
    const auto* pair = dynamic_cast<const CDoubleResult*>(made.result.get());
    const CResult& values = pair != nullptr ? *pair->GetMinVector() : *made.result;
    return ClassOf(*made.result) + " | " + std::to_string(values.GetSize()) + " | " +
           std::to_string(static_cast<int>(values.GetComplexType())) + " | ";
}

// Whether complex values are exported that nothing but the kind speaks for.
bool IsExported(std::uint32_t kind)
{
    CResultHeader header;
    header.SetOpere(2);
    return ResultExportPolicy().policy(&header, SignalType::Complex, kind) == ResultExportPolicy::Policy::First;
}

bool GeneratesMasks(Process process, int second)
{
    return ResultMask::isMaskGenerator(
        otype::ResultProcess::fromElementaryCouple(process, Process::fromInteger(second)));
}

// What holds for a kind, in the words of the page.
std::string RulesOf(std::uint32_t kind)
{
    std::string rules;
    const auto add = [&rules](bool holds, const std::string& words) {
        if (holds) rules += (rules.empty() ? "" : ", ") + words;
    };
    const Process process = ProcessOf(kind);
    const Made plain(kind, WaterfallDimension::kNone);
    const auto* scalar = dynamic_cast<const CScalar*>(plain.result.get());
    const auto level = CResult::GetOctaveTarget(kind);
    add(CResult::IsSpectral(kind), "spectral");
    add(CResult::IsXSpectrum(kind), "cross spectral");
    add(CResult::IsProcessOrbit(kind), "orbit");
    add(CResult::IsRmsPeakPossible(kind), "peaks");
    add(scalar != nullptr && scalar->IsPhasePossible(), "phase");
    add(ResultFactory::IsTachoProcessType(kind), "tacho");
    add(level != AvgOctaveTarget::None, "level " + std::to_string(static_cast<int>(level)));
    add(ClassOf(*Made(kind, WaterfallDimension::kWaterfall).result) == "CWtfOctave", "octave waterfall");
    add(Made(kind, WaterfallDimension::kReference).reference == nullptr, "no reference");
    add(GeneratesMasks(process, 0), "maskable");
    add(GeneratesMasks(process, -1), "maskable along");
    add(IsExported(kind), "exported");
    add(ResultMask::isMask(process), "mask");
    add(ResultMask::isMaskNarrowBands(process), "narrow bands");
    add(ResultMask::isMaskNOctave(process), "octaves");
    add(ResultMask::isMaskProfile(process), "profile");
    add(ResultMask::isMaskSingle(process), "single");
    add(ResultMask::isMaskDouble(process), "double");
    add(ResultMask::isMaskInterpolated(process), "interpolated");
    const std::pair<const char*, Process (*)(Process)> forms[] = {
        {"single", ResultMask::maskSingle},
        {"double", ResultMask::maskDouble},
        {"interpolated", ResultMask::maskInterpolated},
        {"not interpolated", ResultMask::maskNotInterpolated}};
    for (const auto& [words, form] : forms) {
        const Process other = form(process);
        add(other != process && other != form({}), words + (" is " + std::to_string(other.toInteger())));
    }
    return rules;
}

std::string RowOf(const ResultKind& kind)
{
    const auto [first, last] = kind.numbers;
    const std::string cells = EmptyOf(first) + RulesOf(first);
    for (std::uint32_t number = first; number <= last; ++number) EXPECT_EQ(EmptyOf(number) + RulesOf(number), cells);
    const std::string numbers = std::to_string(first) + (first == last ? "" : " to " + std::to_string(last));
    const std::string group = ResultKind::NameOf(kind.GroupAt(WaterfallDimension::kNone));
    return "| " + numbers + " | " + kind.name + " | " + group + " | " + cells +
           (cells.ends_with("| ") ? "|\n" : " |\n");
}

// The page says what the operations answer, so a slip in the table of kinds or after it shows here.
TEST(ResultKinds, ArePutDownInThePage)
{
    std::string table =
        "| kinds | name | group | class | size | ComplexType | rules |\n|---|---|---|---|---|---|---|\n";
    for (const ResultKind& kind : ResultKind::All()) table += RowOf(kind);
    std::ostringstream page;
    page << std::ifstream(ZELMRESULT_SOURCE_DIR "/docs/format/results.md").rdbuf();
    EXPECT_NE(page.str().find('\n' + table + '\n'), std::string::npos)
        << "docs/format/results.md should have this table:\n"
        << table;
}

TEST(ResultKinds, OthersHaveAClassAlongWaterfallsOnly)
{
    const std::uint32_t afterAll = ResultKind::All().back().numbers.last + 1;
    for (const std::uint32_t kind : {0U, 258U, afterAll, 0x80000002U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(kind);
        EXPECT_EQ(EmptyOf(kind) + RulesOf(kind), "| | | ");
        EXPECT_EQ(ResultMask::maskSingle(ProcessOf(kind)), ProcessOf(37));
        EXPECT_EQ(ResultMask::maskDouble(ProcessOf(kind)), ProcessOf(37));
    }
    for (const int dimension : {-1, 3, 4, 6}) EXPECT_EQ(Made(2, dimension).result, nullptr);
}

TEST(ResultFactory, GivesResultsTheirKind)
{
    for (const std::uint32_t kind : {1U, 9U, 16U, 22U, 25U, 29U, 44U, 46U, 270U})
        EXPECT_EQ(Made(kind, 0).result->GetProcessType(), kind);
    for (const auto& [pair, single] : {std::pair{40U, 37U}, {125U, 124U}}) {
        const Made made(pair, 0);
        EXPECT_EQ(dynamic_cast<const CDoubleResult&>(*made.result).GetMaxVector()->GetProcessType(), single);
    }
    for (const auto& [kind, isTacho] : {std::pair{42U, true}, {43U, false}}) {
        const Made made(kind, WaterfallDimension::kReference);
        EXPECT_EQ(made.reference->GetMyRefVect(), made.result.get());
        EXPECT_EQ(made.reference->GetSize(), 100);
        EXPECT_EQ(made.reference->IsTacho(), isTacho);
        EXPECT_EQ(Made(kind, WaterfallDimension::kAlong).reference, nullptr);
    }
}

TEST(RRIndex, ComparesWithItsSign) { EXPECT_TRUE(RRIndex::generateMinusOne() < RRIndex::generateIndex(0)); }

TEST(ResultExportPolicy, EveryBranch)
{
    const auto at = [](unsigned short module, unsigned short submodule) {
        return idn::Legacy(module, submodule, 3).toIdn();
    };
    const idn::Idn nowhere = at(0, 0), input = at(5, 0), generator = at(400, 2), submodule = at(0, 400);
    const struct {
        unsigned opere, typeOpere;
        bool displayed;
        idn::Idn response;
        unsigned type, process;
        int context, preference, policy;
    } rows[] = {{0, 0, false, nowhere, 0, 1, 0, 0, 2}, // no candidate
                {0, 0, true, input, 0, 1, 0, 0, 1},      {1, 0, true, input, 0, 1, 0, 0, 2},
                {1, 0, true, submodule, 0, 1, 0, 0, 2},  {1, 0, false, nowhere, 0, 1, 0, 0, 1},
                {1, 0, false, generator, 0, 1, 0, 0, 1}, {3, 0, true, nowhere, 0, 1, 0, 0, 2},
                {2, 2, false, input, 2, 1, 1, 1, 1}, // not complex
                {2, 1, false, input, 1, 1, 2, 1, 1},     {2, 2, false, input, 1, 1, 0, 0, 2},
                {2, 2, false, input, 1, 186, 0, 1, 1}, // the toolkit, whatever is preferred
                {2, 2, false, input, 1, 1, 1, 2, 1},     {2, 2, false, input, 1, 1, 1, 1, 2},
                {2, 1, false, input, 1, 1, 1, 1, 1},     {2, 1, false, input, 1, 1, 1, 0, 2},
                {2, 1, false, input, 1, 186, 1, 0, 1}}; // the host application
    ResultExportPolicy policy;
    for (const auto& row : rows) {
        CResultHeader header;
        header.SetOpere(row.opere);
        header.SetTypeResultatOpere(row.typeOpere);
        header.SetToBeDisplayed(row.displayed);
        header.SetIdnResponse(row.response);
        policy.setContext(ResultExportPolicy::Context(row.context));
        policy.setComplexPreference(ResultExportPolicy::ComplexPreference(row.preference));
        const CScalar result(row.process, 1, SignalType(row.type), false);
        EXPECT_EQ(static_cast<int>(policy.policy(&header, &result)), row.policy) << "row " << &row - rows;
        EXPECT_EQ(policy.policy(nullptr, &result), ResultExportPolicy::Policy::Missing);
        EXPECT_EQ(policy.policy(&header, nullptr), ResultExportPolicy::Policy::Missing);
    }
}

} // namespace
} // namespace ZelmResult
