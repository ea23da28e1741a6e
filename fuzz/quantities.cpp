// A byte that says what, 'U' for a unit, 'Q' for the chunk of a quantity under the code 0 and else the chunks in a list
// of quantities; then the record.

#include "fuzz/laws.h"
#include "tests/builders/samples.h"
#include "zelmresult/quantities/grandeur.h"

using namespace ZelmResult;
using fuzz::Subject;

namespace {

Subject SubjectOfUnit()
{
    const auto unit = std::make_shared<CUnite>();
    Subject subject;
    subject.read = [unit](CMmioFile& file) { return CUniteMmioReaderWriter().Read(file, *unit); };
    subject.write = [unit](CMmioFile& file) { return CUniteMmioReaderWriter().Write(file, *unit); };
    return subject;
}

Subject SubjectOfQuantity()
{
    const auto quantity = std::make_shared<CGrandeurFichier>(wstring(), 0U);
    Subject subject;
    subject.read = [quantity](CMmioFile& file) {
        OMMCKINFO chunk;
        return file.EnterChunkSansParent(chunk, 0) && CGrandeurMmioReaderWriter().Read(file, *quantity) &&
               file.ExitChunk(chunk);
    };
    subject.write = [quantity](CMmioFile& file) { return CGrandeurMmioReaderWriter().Write(file, *quantity); };
    subject.look = [quantity] {
        const CGrandeurFichier copy(quantity.get());
        (void)quantity->Compare(&copy);
        (void)quantity->GetNombreGrandeurSimple();
    };
    return subject;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const auto which = input.take<char>();
    if (which == 'U')
        fuzz::CheckRecord(input.rest(), SubjectOfUnit);
    else if (which == 'Q')
        fuzz::CheckRecord(input.rest(), SubjectOfQuantity);
    else
        fuzz::CheckDocument(
            test::fileOf(test::head(0, 1).list("UNIT", test::AsBytes(input.rest())).append(test::hardware())).data());
    return 0;
}
