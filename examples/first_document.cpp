// The example of the README: saves a document with one level to a file, and loads it.
#include "zelmresult/zelmresult.h"

#include <cstdio>

int main()
{
    using namespace ZelmResult;
    CZMXFFile written(true, false), read(true, false);
    auto* level = new CScalar(9, 1, SignalType::Real, false); // 9: a level
    level->lastValue(0.0123F);
    auto* header = new CResultHeader;
    header->SetProcessType(9);
    written.AjouteResultat(header, level, 0, false);
    if (!written.Save(u"first.zmxf") || !read.Load(u"first.zmxf", ZMXFFileLoadScope::all())) return 1;
    for (auto* document : {&written, &read}) document->NeedToRemoveEverything(true); // they delete their results
    std::printf("%g\n", static_cast<double>(read.getSystem(0)->getMapResult().begin()->second->GetValue()));
}
