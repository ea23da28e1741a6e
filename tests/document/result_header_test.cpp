#include "zelmresult/document/result_header.h"

#include "tests/builders/record_check.h"
#include "tests/document/samples.h"
#include "zelmresult/support/text.h"

#include <functional>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;

std::vector<char> Stored(CResultHeader& header)
{
    return written([&](CMmioFile& file) { return header.Save(&file); });
}

// What a header holds after reading the fields from a version, when it held others before.
HeaderFields AfterReading(const HeaderFields& stored, unsigned version, const HeaderFields& before)
{
    HeaderFields f = stored;
    if (version < 1) f = before;
    if (version < 2) f.processCaption.clear();
    if (version < 3) f.analyzerCaption.clear();
    if (version < 4) f.waterfallDimension = 0, f.indexListe = 0;
    if (version < 5) f.chosenReference = before.chosenReference, f.numWindow = before.numWindow;
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

HeaderFields OtherHeader()
{
    HeaderFields other;
    other.processType = 42;
    other.numWindow = 99;
    other.date = -5;
    other.track = other.input = other.frontEnd = {77, 78, 79};
    other.flagV7 = true;
    other.tripleV19 = {7, 8, 9};
    other.waterfallDimension = 3;
    for (wstring* text : {&other.comment, &other.caption, &other.processCaption, &other.analyzerCaption,
                          &other.chosenReference, &other.identificationName, &other.coupeCaption})
        *text = u"other";
    return other;
}

TEST(ResultHeader, IsReadFromEveryVersionAndStoredAsTheNewest)
{
    for (const unsigned version : {0U,  1U,  2U,  3U,  4U,  5U,  6U,  7U,  8U,  9U,  10U, 11U,  12U,   13U,
                                   14U, 15U, 16U, 17U, 18U, 19U, 20U, 21U, 22U, 23U, 24U, 999U, 65535U})
        for (const HeaderFields& before : {HeaderFields(), OtherHeader()}) {
            SCOPED_TRACE("version " + std::to_string(version) + " over " + std::to_string(before.processType));
            CResultHeader header = before.processType == 0 ? CResultHeader() : HeaderOf(before);
            readInto([&](CMmioFile& file) { return header.Load(&file); }, headerBytes(FullHeader(), version));
            expectBytes(Stored(header),
                        Bytes{}.chunk("INFO", headerBytes(AfterReading(FullHeader(), version, before))));
        }
}

TEST(ResultHeader, PassesTheChecksOfEveryRecord)
{
    CResultHeader sample = HeaderOf(FullHeader());
    checkRecord<CResultHeader>(
        sample, {.name = CResultHeader::kRecordName,
                 .lowest = 0,
                 .newest = 23,
                 .write = [](CMmioFile& file, CResultHeader& header) { return header.Save(&file); },
                 .read = [](CMmioFile& file,
                            CResultHeader& header) { return file.mmioSeek(8, OMMIO_SEEK_SET) && header.Load(&file); },
                 .expect =
                     [](CResultHeader& header, std::uint16_t version) {
                         EXPECT_EQ(header.GetNumWindow(), version < 5 ? -1 : 18);
                         EXPECT_EQ(header.coupeCaption(), version < 8 ? u"" : u"cut");
                     },
                 .silentReads = -1});
}

TEST(ResultHeader, LimitsDimensionAndDisplayAndKnowsImports)
{
    for (const auto& [stored, kept] : {std::pair{1U, 1U}, {5U, 5U}, {6U, 0U}, {0xFFFFFFFFU, 0U}}) {
        HeaderFields fields;
        fields.waterfallDimension = stored;
        EXPECT_EQ(HeaderOf(fields).GetWaterfallDimension(), kept);
        CResultHeader header;
        header.SetWaterfallDimension(stored);
        fields.waterfallDimension = kept;
        expectBytes(Stored(header), Bytes{}.chunk("INFO", headerBytes(fields)));
        EXPECT_EQ(header.GetWaterfallDimension(), kept) << "in the object that was stored";
    }
    for (const auto& [caption, imported] : {std::pair{u"AE2", true}, {u"AE", false}, {u"AE2 ", false}, {u"", false}}) {
        CResultHeader header;
        header.setAnalyzerCaption(caption);
        EXPECT_EQ(header.IsImported(), imported);
    }
    // Kind 2 has peaks, kind 9 has none.
    struct Row {
        std::uint32_t process;
        std::int32_t stored;
        std::int32_t read;
    };
    for (const Row& row : {Row{2, 2, 2}, {2, 3, 3}, {9, 0, 0}, {9, 1, 1}, {9, 2, 1}, {9, 3, 1}, {9, 4, 4}, {9, -1, -1}})
        EXPECT_EQ(HeaderOf({.processType = row.process, .opUniteAffichage = row.stored}).GetOpUniteAffichage(),
                  row.read);
}

// Each row changes one field of a header. Where the kind of the result matters, it is named.
TEST(ResultHeader, ComparisonsLookAtTheirOwnFields)
{
    struct Row {
        const char* name;
        std::function<void(HeaderFields&)> change;
        bool same;
        bool corresponds;
        bool operated;
        std::uint32_t process = 9;
    };
    using F = HeaderFields;
    const Row rows[] = {
        {"nothing", [](F&) {}, true, true, true},
        {"process", [](F& f) { ++f.processType; }, false, false, false},
        {"generator", [](F& f) { ++f.generator[0]; }, false, false, false},
        {"front end", [](F& f) { ++f.frontEnd[2]; }, false, false, false},
        {"response", [](F& f) { ++f.response[1]; }, false, false, false},
        {"reference", [](F& f) { ++f.reference[2]; }, false, false, false},
        {"comment", [](F& f) { f.comment += u"!"; }, false, true, false},
        {"responseName", [](F& f) { f.responseName += u"!"; }, false, true, false},
        {"referenceName", [](F& f) { f.referenceName += u"!"; }, false, true, false},
        {"NumReponse", [](F& f) { ++f.numReponse; }, false, true, false},
        {"NumReference", [](F& f) { ++f.numReference; }, false, true, false},
        {"filename", [](F& f) { f.filename += u"!"; }, true, true, true},
        {"ChunkId", [](F& f) { ++f.chunkId; }, false, true, true},
        {"Opere", [](F& f) { ++f.opere; }, false, false, true},
        {"no Opere", [](F& f) { f.opere = 0; }, false, false, false},
        {"TypeResultatOpere", [](F& f) { ++f.typeResultatOpere; }, false, false, true},
        {"Ponderation", [](F& f) { ++f.ponderation; }, false, false, false},
        {"Temporel", [](F& f) { ++f.temporel; }, false, false, false},
        {"OpUniteAffichage", [](F& f) { ++f.opUniteAffichage; }, false, false, true},
        {"date", [](F& f) { ++f.date; }, false, true, true},
        {"External", [](F& f) { f.external = false; }, false, false, true},
        {"ToBeDisplayed", [](F& f) { f.toBeDisplayed = false; }, false, false, true},
        {"processCaption", [](F& f) { f.processCaption += u"!"; }, false, true, true},
        {"analyzerCaption", [](F& f) { f.analyzerCaption += u"!"; }, false, true, true},
        {"WaterfallDimension", [](F& f) { --f.waterfallDimension; }, false, false, false},
        {"IndexListe", [](F& f) { ++f.indexListe; }, false, false, false},
        {"chosenReference", [](F& f) { f.chosenReference += u"!"; }, false, false, true},
        {"NumWindow", [](F& f) { ++f.numWindow; }, false, false, false},
        {"identificationName", [](F& f) { f.identificationName += u"!"; }, false, false, false},
        {"coupeCaption", [](F& f) { f.coupeCaption += u"!"; }, false, false, false},
        {"PonderationTemporelle", [](F& f) { ++f.ponderationTemporelle; }, false, false, false},
        {"track", [](F& f) { ++f.track[0]; }, false, false, false},
        {"input", [](F& f) { ++f.input[0]; }, false, false, false},
        {"FlagV18", [](F& f) { f.flagV18 = 0; }, false, false, false},
        {"TripleV19", [](F& f) { ++f.tripleV19[1]; }, true, true, true},
        {"caption", [](F& f) { f.caption += u"!"; }, true, true, true},
        {"caption of a single mask", [](F& f) { f.caption += u"!"; }, false, false, true, 37},
        {"caption of a double mask", [](F& f) { f.caption += u"!"; }, true, true, true, 40},
        {"FlagV7", [](F& f) { f.flagV7 = false; }, true, true, true},
        {"FlagV7 of a single mask", [](F& f) { f.flagV7 = false; }, true, true, true, 37},
        {"FlagV7 of kind 40", [](F& f) { f.flagV7 = false; }, false, false, true, 40},
        {"FlagV7 of kind 119", [](F& f) { f.flagV7 = false; }, false, false, true, 119},
        {"FlagV7 of kind 123", [](F& f) { f.flagV7 = false; }, false, false, true, 123},
        {"FlagV7 of kind 125", [](F& f) { f.flagV7 = false; }, false, false, true, 125},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        HeaderFields fields = FullHeader();
        fields.processType = row.process;
        const CResultHeader base = HeaderOf(fields);
        row.change(fields);
        const CResultHeader changed = HeaderOf(fields);
        EXPECT_EQ(changed == base, row.same);
        EXPECT_EQ(changed.CorrespondA(base), row.corresponds);
        EXPECT_EQ(base.CorrespondA(changed), row.corresponds);
        EXPECT_EQ(changed.IsOperatedResultOf(base), row.operated);
    }
}

TEST(ResultHeader, DumpsItsLines)
{
    const auto dump = [](HeaderFields fields) {
        CResultHeader header = HeaderOf(fields);
        return dumpOf([&](CMmioFile& file) { return header.Save(&file); });
    };
    const std::string opening = "info(4f464e49)\n------CResultHeader\n";
    const std::string plain =
        "------Process type: 9, Process name: process caption, Generator 0/1.1/2.1/3,Response,Reference, "
        "FrontEndSource0/4.1/5.1/6,0/7.1/8.1/9,0/25.1/26.1/27\n"
        "------Caption: caption,NumReponse 10 ,Response: response \xC3\xA9, NumReference -11, Reference :reference\n"
        "------FileName: C:\\old.zmxf, Chunk: 538980913, IdName: identification\n"
        "------Opere: 12, Type resultat opere: 13,Ponderation: 14,Ponderation temporelle: 19, Temporel: 15,"
        "Affichage: 16,Window: 18\n"
        "------Date: 2023-11-14 22:13:20Z, External: 1, To be displayed: 1\n"
        "------WaterfallDimension: 5, Index de la liste: 17, Nom de la reference: speed\n";
    const std::string track = "------Input enregistre: 0/31.1/32.1/33,Track du recorder: 0/28.1/29.1/30 "
                              "Track du player: 10\n";
    HeaderFields fields = FullHeader();
    const std::string size = " Size : " + ToUtf8(ToHex8(static_cast<std::uint32_t>(headerBytes(fields).size()))) + "\n";
    EXPECT_EQ(dump(fields), opening +
                                "------1/2/3\n------4/5/6\n------7/8/9\n------25/26/27\n------28/29/30\n"
                                "------31/32/33\n" +
                                plain + track + size);
    fields.track = kNoIdn; // null identifiers have no line of their own
    EXPECT_EQ(dump(fields),
              opening + "------1/2/3\n------4/5/6\n------7/8/9\n------25/26/27\n------31/32/33\n" + plain + size);
    fields = {.processType = 122,
              .caption = u"limit",
              .processCaption = u"mask",
              .analyzerCaption = u"an",
              .identificationName = u"id"};
    EXPECT_EQ(dump(fields), opening +
                                "------GABARIT Process type: 122, Name: limit, Process name: mask, "
                                "Generator an, IdName: id\n Size : " +
                                ToUtf8(ToHex8(static_cast<std::uint32_t>(headerBytes(fields).size()))) + "\n");
}

} // namespace
} // namespace ZelmResult
