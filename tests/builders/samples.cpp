#include "tests/builders/samples.h"

#include "tests/builders/record_check.h"
#include "zelmresult/results/scalar.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <cmath>
#include <gtest/gtest.h>
#include <map>

namespace ZelmResult::test {

namespace {

Bytes& PutIdn(Bytes& bytes, const ShortIdn& idn, std::string_view name)
{
    return bytes.idn(idn[0], idn[1], idn[2], name);
}

} // namespace

// clang-format off
HeaderFields FullHeader()
{
    return {9, {1, 2, 3}, {4, 5, 6}, {7, 8, 9}, u"a comment", u"response \u00E9", u"reference", 10, -11,
            u"C:\\old.zmxf", 0x20203231, 12, 13, 14, 15, 16, 1700000000, true, true, u"caption", u"process caption",
            u"analyzer", 5, 17, u"speed", 18, u"identification", true, u"cut", 19, 0x00070000 + 20, 0x00080000 + 21, 1,
            {22, 23, -24}, {25, 26, 27}, {28, 29, 30}, {31, 32, 33}};
}
// clang-format on

Bytes headerBytes(const HeaderFields& f, unsigned version)
{
    Bytes b;
    b.u16(static_cast<std::uint16_t>(version), "version");
    if (version >= 1) {
        b.u32(f.processType, "ProcessType");
        PutIdn(b, f.generator, "IdnResultGenerator");
        PutIdn(b, f.response, "IdnResponse");
        PutIdn(b, f.reference, "IdnReference");
        b.text(f.comment, "comment").text(f.responseName, "responseName").text(f.referenceName, "referenceName");
        b.i32(f.numReponse, "NumReponse").i32(f.numReference, "NumReference");
        b.text(f.filename, "filename").u32(f.chunkId, "ChunkId");
        b.u32(f.opere, "Opere").u32(f.typeResultatOpere, "TypeResultatOpere");
        b.u32(f.ponderation, "Ponderation").u32(f.temporel, "Temporel");
        b.i32(f.opUniteAffichage, "OpUniteAffichage");
        if (version < 17) b.u32(static_cast<std::uint32_t>(f.date), "short date");
        if (version >= 17) b.time(f.date, "date");
        b.flag(f.external, "External").flag(f.toBeDisplayed, "ToBeDisplayed").text(f.caption, "caption");
    }
    if (version >= 2) b.text(f.processCaption, "processCaption");
    if (version >= 3) b.text(f.analyzerCaption, "analyzerCaption");
    if (version >= 4) b.u32(f.waterfallDimension, "WaterfallDimension").i32(f.indexListe, "IndexListe");
    if (version >= 5) b.text(f.chosenReference, "chosenReference").i32(f.numWindow, "NumWindow");
    if (version >= 6) b.text(f.identificationName, "identificationName");
    if (version >= 7) b.flag(f.flagV7, "FlagV7");
    if (version >= 8) b.text(f.coupeCaption, "coupeCaption");
    if (version >= 9) b.u32(f.ponderationTemporelle, "PonderationTemporelle");
    if (version >= 16 && version <= 22) b.u32(f.formerInput, "former input");
    if (version >= 16 && version <= 21) b.u32(f.formerTrack, "former track");
    if (version >= 18) b.u32(f.flagV18, "FlagV18");
    if (version >= 19)
        for (const std::int32_t value : f.tripleV19) b.i32(value, "TripleV19");
    if (version == 19) b.u32(0xDDDDDDDD, "dropped");
    if (version >= 21) PutIdn(b, f.frontEnd, "IdnFrontEndSource");
    if (version >= 22) PutIdn(b, f.track, "TrackDuRecorder");
    if (version >= 23) PutIdn(b, f.input, "InputEnregistre");
    return b;
}

CResultHeader HeaderOf(const HeaderFields& fields)
{
    CResultHeader header;
    readInto([&](CMmioFile& file) { return header.Load(&file); }, headerBytes(fields));
    return header;
}

Bytes scalarBytes(std::uint32_t process, float level, std::string_view quantity)
{
    Bytes base = Bytes{}.u16(5, "version").code(quantity, "Magnitude").u32(1, "ResultType").u32(0, "ComplexType");
    base.u32(1, "Dimension").i32(1, "Size").f32s(std::vector<float>(6, 0.001F), "precisions").u32(0, "UnitFormat");
    base.u32(process, "ProcessType").u32(0, "WtfProcessType").u32(1, "RotationDir").f32(-1, "CurrentSpeed");
    base.zeros(8, "ResultDate").f32s(std::vector<float>(32, -1.0F), "StartRevPosTab");
    Bytes scalar = Bytes{}.u16(2, "version").append(base, "base").f32(-100, "YMin").f32(100, "YMax");
    return scalar.f32s({level, level + 1, level - 1, 0, 0}, "level").flag(true, "PhasePossible");
}

CScalar* NewScalar(std::uint32_t process, float level, CGrandeur* quantity)
{
    auto* scalar = new CScalar(process, 1, SignalType::Real, true);
    scalar->SetMagnitude(quantity);
    scalar->SetYMin(-100);
    scalar->SetYMax(100);
    scalar->writeLevelValue() = {level, level + 1, level - 1, 0, 0};
    return scalar;
}

CResultHeader* NewHeader(std::uint32_t process, const wstring& caption)
{
    auto* header = new CResultHeader;
    header->SetProcessType(process);
    header->setCaption(caption);
    return header;
}

Bytes quantityBytes(const wstring& name, const std::vector<std::string>& operands)
{
    const Bytes dim = Bytes{}.u16(256, "version").raw({"\0\x80\x80\x82\x80\x80\x80\x80\x80\x80", 10}, "bytes");
    Bytes unit = Bytes{}.u16(256, "version").f32s({1, 0, 2, 20}, "coefficients");
    unit.text(u"unit of " + name, "NomUnite").text(u"u" + name, "LabelLinUnite");
    Bytes bytes = Bytes{}.u16(256, "version").text(u"key of " + name, "quantityKey").text(name, "NomGrandeur");
    bytes.u16(4, "TypeUFF").append(dim, "EqDim").append(unit, "UniteCourante");
    bytes.i32(operands.empty() ? 0 : 1, "OperationType");
    bytes.i32(static_cast<std::int32_t>(operands.size()), "GrandeurInvolved");
    for (const std::string& operand : operands) bytes.code(operand, "operand");
    return bytes;
}

CGrandeurFichier* NewQuantity(const wstring& name, const std::vector<CGrandeur*>& operands)
{
    auto* quantity = new CGrandeurFichier(wstring(), 0);
    quantity->SetQuantityKey(u"key of " + name);
    quantity->SetNomGrandeur(name);
    quantity->SetTypeUFF(4);
    quantity->GetEqDim().GetEqDim()->Meters = 130;
    quantity->GetUniteCourante()->SetNomUnite(u"unit of " + name);
    quantity->GetUniteCourante()->SetLabelLinUnite(u"u" + name);
    quantity->GetUniteCourante()->SetRef0dB(2);
    quantity->SetOperationType(operands.empty() ? 0 : 1);
    quantity->SetGrandeurInvolved(static_cast<std::int32_t>(operands.size()));
    if (!operands.empty()) quantity->SetGrandeurLeft(operands[0]);
    if (operands.size() > 1) quantity->SetGrandeurRight(operands[1]);
    return quantity;
}

std::string CodeText(int number)
{
    std::string text = std::to_string(number);
    text.resize(4, ' ');
    return text;
}

std::uint32_t CodeOf(std::string_view fourCharacters)
{
    std::uint32_t code = 0;
    for (unsigned i = 0; i < 4; ++i) code |= std::uint32_t{static_cast<unsigned char>(fourCharacters[i])} << 8U * i;
    return code;
}

Bytes fileOf(const Bytes& children, std::uint16_t version)
{
    return Bytes{}.riff("ZMXF", Bytes{}.versionChunk(version).append(children));
}

Bytes head(std::uint16_t systems, std::uint32_t type)
{
    return Bytes{}.chunk("HEAD", Bytes{}.u16(0x100, "version").u16(systems, "SystemeNumber").u32(type, "Type"));
}

Bytes units(const std::vector<Bytes>& quantities)
{
    Bytes children = Bytes{}.versionChunk(0x100);
    for (std::size_t i = 0; i < quantities.size(); ++i)
        children.chunk(ToUtf8(ToDecimalPadded(static_cast<std::int64_t>(i), 4)), quantities[i]);
    return Bytes{}.list("UNIT", children);
}

Bytes system(std::string_view number, const Bytes& children)
{
    return Bytes{}.list("SYS" + std::string(number), Bytes{}.versionChunk(0x200).append(children));
}

Bytes results(const Bytes& children) { return Bytes{}.list("RESU", Bytes{}.versionChunk(0x100).append(children)); }

Bytes resultHeader(int number, std::uint32_t process, const HeaderFields& others)
{
    HeaderFields fields = others;
    fields.processType = process;
    fields.chunkId = CodeOf(CodeText(number));
    return Bytes{}.chunk("INFO", headerBytes(fields));
}

Bytes resultData(int number, const Bytes& data) { return Bytes{}.chunk(CodeText(number), data); }

Bytes result(int number, std::uint32_t process, std::string_view quantity)
{
    return resultHeader(number, process)
        .append(resultData(number, scalarBytes(process, static_cast<float>(number), quantity)));
}

Bytes hardware(const std::vector<wstring>& names)
{
    Bytes data = Bytes{}.u16(0x200, "version").i32(static_cast<std::int32_t>(names.size() / 4), "count");
    for (const wstring& name : names) data.text(name, "entries");
    return Bytes{}.chunk("HRDI", data);
}

void FillWhole(CZMXFFile& document)
{
    auto* pressure = NewQuantity(u"pressure");
    auto* speed = NewQuantity(u"speed");
    auto* intensity = NewQuantity(u"intensity", {pressure, speed});
    for (CGrandeur* quantity : {pressure, speed, intensity}) document.AjouteGrandeur(quantity, OwnershipOwned);

    HeaderFields full = FullHeader();
    full.waterfallDimension = 0;
    document.AjouteResultat(new CResultHeader(HeaderOf(full)), NewScalar(9, 1, pressure), 0, true);
    document.AjouteResultat(NewHeader(100, u"intensity of the left side"), NewScalar(100, 2, intensity), 0, true);
    document.AjouteResultat(NewHeader(42), NewScalar(42, 3), 1, true);
    (void)document.AddSysteme(new CSysteme);
    document.NeedToRemoveEverything(true);

    for (const char16_t* text : {u"first remark", u"zweite Bemerkung \u00FC"}) {
        auto* comment = new CComment;
        comment->setComment(text);
        (void)document.AddComment(comment);
    }
    document.setProjectInfo(u"project", u"measurement", u"user");
    document.writeHardInfo().addHardInfoData({"analyzer", "SN 1", "disk SN", "disk \xC3\xA9"});
    document.writeHardInfo().addHardInfoData({"second", "", "", ""});
}

std::string Summary(const CZMXFFile& document)
{
    std::string text;
    for (std::int32_t i = 0; i < document.getNbrSys(); ++i) {
        text += "[";
        for (const auto& [header, result] : document.getSystem(i)->getMapResult()) {
            if (text.back() != '[') text += " ";
            text += std::to_string(header->GetProcessType()) + "=" + std::to_string(std::lround(result->GetValue()));
            if (result->GetMagnitude() != nullptr) text += "@" + ToUtf8(result->GetMagnitude()->GetNomGrandeur());
        }
        text += "] ";
    }
    text += "q";
    for (const CGrandeur* quantity : document.GetListeGrandeur()) text += " " + ToUtf8(quantity->GetNomGrandeur());
    text += ", c";
    for (const CComment* comment : document.comments()) text += " " + ToUtf8(comment->comment());
    return text + ", h " + std::to_string(document.readHardInfo().getNbHardInfo()) + ", v " +
           ToUtf8(ToHex(document.GetVersion()));
}

std::vector<std::string> Messages(CZMXFFile& document)
{
    std::vector<wstring> wide;
    document.fetchErrors(wide, true);
    std::vector<std::string> messages;
    for (const wstring& message : wide) messages.push_back(ToUtf8(message));
    return messages;
}

std::string Fetched(CZMXFFile& reader, CResultHeader& header, const wstring& path)
{
    header.setFilename(path);
    CScalar scalar;
    std::int32_t number = 99;
    const bool isFetched = reader.GetResultat(&scalar, &header, number);
    const auto* own = dynamic_cast<const CGrandeurFichier*>(scalar.GetMagnitude());
    const int users = own != nullptr ? own->GetUserNumber() : 0;
    std::map<CGrandeur*, int> given;
    scalar.AddInvolvedGrandeur(given);
    for (const auto& entry : given) delete entry.first;
    if (!isFetched) return "";
    return std::to_string(number) + ":" + std::to_string(std::lround(scalar.GetValue())) + "/" +
           std::to_string(given.size()) + "/" + std::to_string(users);
}

std::vector<char> SavedAnyway(CZMXFFile& document)
{
    MemoryDisk disk;
    const UseBackend use(disk);
    EXPECT_TRUE(document.Save(u"saved"));
    return disk[u"saved"];
}

std::vector<char> SavedBytes(CZMXFFile& document, const std::vector<std::string>& messages)
{
    std::vector<char> bytes = SavedAnyway(document);
    EXPECT_EQ(Messages(document), messages);
    return bytes;
}

std::vector<char> DataFile(const std::string& name)
{
    const std::string content = readDiskFile(std::string(ZELMRESULT_TEST_DATA_DIR) + "/" + name);
    EXPECT_FALSE(content.empty()) << "no file " << name;
    return {content.begin(), content.end()};
}

Bytes AsBytes(const std::vector<char>& data) { return Bytes{}.raw({data.data(), data.size()}, "stored"); }

} // namespace ZelmResult::test
