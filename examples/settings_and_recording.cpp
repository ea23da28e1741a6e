// Saves settings, a recording and a transducer to a file, and reads one setting by itself.

#include "zelmresult/zelmresult.h"

#include <cstdio>

using namespace ZelmResult;

int main()
{
    CUnite pascal;
    pascal.SetLabelLinUnite(u"Pa");
    CZMXFFile document(true, false);
    auto* pressure = new CGrandeur;
    pressure->SetQuantityKey(u"Pressure");
    pressure->AjouteUniteDynamique(&pascal);
    (void)pressure->SetUniteCourante(&pascal);
    document.AjouteGrandeur(pressure, OwnershipOwned);

    const idn::Idn place = // in the tree
        idn::Idn::generateSubmoduleIdn(idn::Analyzer(0), idn::Module(2, 1), idn::Submodule(1, 1))
            .settingIdn(static_cast<idn::ESetting>(1));
    auto* config = new CConfigData;
    auto* window = new CChaineData; // a text; each kind of value has its class
    window->info().SetIDN(place);
    window->setTitleString(u"Window");
    window->setValue(u"Hann");
    config->AddReglage(window); // takes it; makes module and submodule
    (void)document.SetConfig(config, 0);

    auto* record = new CRecord(false);
    strEnregHeader recorded;
    recorded.Name = u"pump.wav";
    recorded.NbrRecord = 1; // below 1 the recording isn't stored
    recorded.SampleFrequency = 16000;
    record->setRecordHeaderstr(&recorded);
    auto* track = new CZMTrackDesc;
    track->SetHasChunk(TrackChunk::Info, true); // without INFO and LOCA a track doesn't load
    track->updateLOCA(0, 159999, 1, 0);         // first and last block, samples per block
    track->YMagnitude = pressure;               // in the document as well
    track->SetHasChunk(TrackChunk::Yuni, true);
    record->AddTrackDesc(track, -1);
    (void)document.SetRecord(record, 0);

    auto* transducer = new CITrack;
    transducer->setId(u"Channel 1");
    (void)document.SetITrack(transducer, 0);

    if (!document.Save(u"settings.zmxf")) return 1;
    CZMXFFile reader(true, false);
    const auto setting = reader.GetReglage(u"settings.zmxf", place); // a unique_ptr, of system 0
    if (const auto* text = dynamic_cast<const CChaineData*>(setting.get()); text != nullptr)
        std::printf("%s: %s\n", ToUtf8(text->titleString()).c_str(), ToUtf8(text->value()).c_str());
}
