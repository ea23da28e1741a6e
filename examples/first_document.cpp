// The example of the README: a document with one level goes to a file and comes back.
#include "zelmresult/zelmresult.h"

#include <cstdio>

int main()
{
    using namespace ZelmResult;
    CZMXFFile written(true, false);
    auto* level = new CScalar(9, 1, SignalType::Real, false); // 9: a level
    level->lastValue(0.0123F);
    auto* header = new CResultHeader;
    header->SetProcessType(9);
    header->setResponseName(u"Microphone 1");
    written.AjouteResultat(header, level, 0, false);
    written.NeedToRemoveEverything(true); // the document deletes its results
    if (!written.Save(u"first.zmxf")) return 1;

    CZMXFFile read(true, false);
    const bool loaded = read.Load(u"first.zmxf", ZMXFFileLoadScope::all());
    read.NeedToRemoveEverything(true);
    if (!loaded) return 1;
    for (const auto& [description, result] : read.getSystem(0)->getMapResult())
        std::printf("%s: %g\n", ToUtf8(description->responseName()).c_str(), static_cast<double>(result->GetValue()));
    return 0;
}
