// The stored form of quantities.

#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/quantities/translation.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"

namespace ZelmResult {

namespace {

constexpr const char* kDimension = "EqDim";
constexpr const char* kUnit = "UniteCourante";

void AddMessage(CMmioFile& file, const char* text, const CGrandeur& quantity)
{
    file.AddErrorMessage(
        FillPlaceholders(TranslateUserString("ErrorMessage", text), quantity.GetNomGrandeur(), file.FileName()));
}

} // namespace

template <class Io, class Quantity>
bool CGrandeurMmioReaderWriter::fields(Io& io, Quantity& g)
{
    io.dump([] { return wstring(u"CGrandeur"); });
    if (!io.record(kRecordName, newest{256})) return io.ok();
    io.dump(
        [&] { return Concat(u"Key: ", g.m_quantityKey, u", Nom ", g.m_nomGrandeur, u" , Type UFF ", g.m_typeUFF); });
    io.text("quantityKey", g.m_quantityKey);
    io.text("NomGrandeur", g.m_nomGrandeur);
    io.u16("TypeUFF", g.m_typeUFF);
    if (!io.ok()) return false;
    if (!io.template block<CEquationDimMmioReaderWriter>(kDimension, g.m_eqDim)) return false;
    if (g.m_uniteCourante == nullptr) {
        io.fail(kUnit);
        return false;
    }
    if (!io.template block<CUniteMmioReaderWriter>(kUnit, *g.m_uniteCourante)) return false;
    io.dump([&] { return Concat(u"Operation: ", g.m_operationType, u" , Nombre de grandeur ", g.m_grandeurInvolved); });
    io.i32("OperationType", g.m_operationType);
    io.i32("GrandeurInvolved", g.m_grandeurInvolved);
    io.quantity("GrandeurLeft", g.m_grandeurLeft, only{"GrandeurInvolved above 0", g.m_grandeurInvolved > 0});
    io.quantity("GrandeurRight", g.m_grandeurRight, only{"GrandeurInvolved above 1", g.m_grandeurInvolved > 1});
    return io.ok();
}

bool CGrandeurMmioReaderWriter::Read(CMmioFile& file, CGrandeur& quantity) const
{
    RecordReader in(file);
    if (fields(in, quantity)) return true;
    if (in.failedField() == kDimension)
        AddMessage(file, "The dimension equation of magnitude %1 in file %2 could not be loaded.", quantity);
    if (in.failedField() == kUnit)
        AddMessage(file, "The unit of magnitude %1 in file %2 could not be loaded.", quantity);
    return false;
}

bool CGrandeurMmioReaderWriter::Write(CMmioFile& file, const CGrandeur& quantity) const
{
    OMMCKINFO chunk;
    if (!file.CreateChunk(chunk, quantity.GetChunkId())) {
        AddMessage(file, "The chunk of magnitude %1 in file %2 could not be created", quantity);
        return false;
    }
    RecordWriter out(file);
    if (fields(out, quantity)) return file.ExitChunk(chunk);
    if (out.failedField() == kDimension)
        AddMessage(file, "The dimension equation of magnitude %1 in file %2 could not be saved.", quantity);
    if (out.failedField() == kUnit)
        AddMessage(file, "The unit of magnitude %1 in file %2 could not be saved.", quantity);
    return false;
}

void CGrandeurMmioReaderWriter::Outline(RecordOutline& out)
{
    CGrandeur quantity;
    CUnite unit;
    quantity.AjouteUniteDynamique(&unit);
    quantity.SetUniteCourante(&unit);
    (void)fields(out, quantity);
}

} // namespace ZelmResult
