// The example of the README: saves a document with one level to a file, and loads it.
#include "zelmresult/zelmresult.h"

#include <cstdio>

int main()
{
    using namespace ZelmResult;
    CZMXFFile document(true, false);
    auto* level = new CScalar(9, 1, SignalType::Real, false); // 9: a level
    level->lastValue(0.0123F);
    auto* header = new CResultHeader;
    header->SetProcessType(9);
    document.AjouteResultat(header, level, 0, false);
    document.NeedToRemoveEverything(true); // it deletes its results
    if (!document.Save(u"first.zmxf")) return 1;

    auto reader = DocumentReader::Open(u"first.zmxf");
    if (!reader) return 1;
    const auto read = reader->ReadLabelled(0);
    if (!read) return 1;
    std::printf("%g\n", static_cast<double>(read->Data(u"value")->Floats()->front()));
}
