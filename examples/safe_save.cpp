// Checks a document before it is saved, and keeps its former file until the new one is whole.

#include "zelmresult/zelmresult.h"

#include <cstdio>
#include <vector>

using namespace ZelmResult;

namespace {

int Fail(CZMXFFile& document)
{
    std::vector<wstring> messages;
    document.fetchErrors(messages, true);
    for (const wstring& message : messages) std::fprintf(stderr, "%s\n", ToUtf8(message).c_str());
    return 1;
}

} // namespace

int main()
{
    CUnite volt;
    volt.SetLabelLinUnite(u"V");
    CZMXFFile document(true, false);
    auto* voltage = new CGrandeur;
    voltage->SetQuantityKey(u"Voltage");
    voltage->SetNomGrandeur(u"Voltage");
    voltage->AjouteUniteDynamique(&volt);
    (void)voltage->SetUniteCourante(&volt);
    auto* level = new CScalar(10, 1, SignalType::Real, false);
    level->SetMagnitude(voltage); // which isn't in the document yet
    auto* header = new CResultHeader;
    header->SetProcessType(10);
    document.AjouteResultat(header, level, 0, false);
    document.NeedToRemoveEverything(true);

    std::vector<wstring> reasons;
    if (!document.CheckSave(reasons)) // a sentence for everything that wouldn't come back
        for (const wstring& reason : reasons) std::fprintf(stderr, "%s\n", ToUtf8(reason).c_str());
    std::printf("before the quantity is added: %s\n", reasons.empty() ? "sound" : "not sound");
    document.AjouteGrandeur(voltage, OwnershipOwned);
    if (!document.SaveSafely(u"level.zmxf")) return Fail(document); // the former level.zmxf is still there

    CZMXFFile read(true, false);
    const bool isLoaded = read.Load(u"level.zmxf", ZMXFFileLoadScope::all());
    read.NeedToRemoveEverything(true);
    std::printf("saved: %s\n", isLoaded ? "yes" : "no");
}
