// Saves a level, a spectrum and octave bands to a file, loads it and prints the level.

#include "zelmresult/zelmresult.h"

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace ZelmResult;

void AddBands(CZMXFFile& document, CGrandeur* pressure, CGrandeur* frequency)
{
    auto* bands = new CRegVector(24, 3, 1, SignalType::Octave, 0, true); // 3 bands of 1/3 octave
    bands->SetMagnitude(pressure);
    bands->SetXMagnitude(frequency);
    bands->SetXMin(1000.0F);                               // the middle of the lowest band
    bands->SetGlobLevel(AvgOctaveTarget::Averaged, 0.02F); // of all bands
    for (std::int16_t band = 0; band < 3; ++band) {
        bands->GetRealValue()[band] = 0.01F;
        const float middle = OctaveTools::GetOctaveFrequence(bands->GetXMin(), band, bands->GetXnOctave(), true, false);
        std::printf("band %d: %g Hz\n", band, double{middle}); // 1000, 1250, 1600: the preferred values
    }
    auto* bandsHeader = new CResultHeader;
    bandsHeader->SetProcessType(24);
    document.AjouteResultat(bandsHeader, bands, 0, false);
}

// The result is that of main: 1 when the document can't be written.
int Write()
{
    CUnite pascal; // must outlive the document
    pascal.SetNomUnite(u"Pascal");
    pascal.SetLabelLinUnite(u"Pa");
    pascal.SetRef0dB(2e-5F);

    CZMXFFile document(true, false); // owns its quantities; not of the LXF kind
    auto* pressure = new CGrandeur;
    pressure->SetQuantityKey(u"Pressure");
    pressure->SetNomGrandeur(u"Sound pressure");
    pressure->AjouteUniteDynamique(&pascal);
    (void)pressure->SetUniteCourante(&pascal);
    document.AjouteGrandeur(pressure, OwnershipOwned); // before a result uses it

    auto* level = new CScalar(10, 1, SignalType::Real, false);
    level->SetMagnitude(pressure); // kept as a pointer
    level->lastValue(0.02F);       // in SI units
    auto* header = new CResultHeader;
    header->SetProcessType(10); // the same kind as the result
    header->setResponseName(u"Microphone 1");
    document.AjouteResultat(header, level, 0, false); // makes system 0, takes the header

    CUnite hertz;
    hertz.SetNomUnite(u"Hertz");
    hertz.SetLabelLinUnite(u"Hz");
    auto* frequency = new CGrandeur;
    frequency->SetQuantityKey(u"Frequency");
    frequency->SetNomGrandeur(u"Frequency");
    frequency->AjouteUniteDynamique(&hertz);
    (void)frequency->SetUniteCourante(&hertz);
    document.AjouteGrandeur(frequency, OwnershipOwned);
    const std::vector<float> rms(401, 0.001F);

    auto* spectrum = new CRegVector(2, 401, 0, SignalType::Real, 0, true); // 401 lines, all 0
    spectrum->SetMagnitude(pressure);
    spectrum->SetXMagnitude(frequency); // in the document as well
    spectrum->SetXMin(0.0F);
    spectrum->SetXMax(1000.0F); // 2.5 Hz from line to line
    std::copy_n(rms.data(), 401, spectrum->GetRealValue());
    spectrum->SetAbsPrecisionY(0.0F); // show what is small too: 0.001 is the default
    auto* spectrumHeader = new CResultHeader;
    spectrumHeader->SetProcessType(2);
    document.AjouteResultat(spectrumHeader, spectrum, 0, false);

    AddBands(document, pressure, frequency);

    document.NeedToRemoveEverything(true); // the document deletes its results too
    if (!document.Save(u"sound.zmxf")) {
        std::vector<wstring> messages;
        document.fetchErrors(messages, true); // true: the document forgets them
        for (const wstring& message : messages) std::fprintf(stderr, "%s\n", ToUtf8(message).c_str());
        return 1;
    }
    return 0;
}

int Read()
{
    CZMXFFile read(true, false);
    const bool loaded = read.Load(u"sound.zmxf", ZMXFFileLoadScope::all());
    read.NeedToRemoveEverything(true); // after Load: it reaches the systems that are there now
    for (CGrandeur* quantity : read.GetListeGrandeur())
        if (CUnite* unit = quantity->GetUniteCourante(); unit != nullptr)
            unit->SetRef0dB(unit->GetRef0dB()); // a file doesn't hold the inverse that decibels need
    for (std::int32_t i = 0; i < read.getNbrSys(); ++i)
        for (const auto& [found, result] : read.getSystem(i)->getMapResult())
            if (const auto* scalar = dynamic_cast<const CScalar*>(result); scalar != nullptr)
                std::printf("%s: %g\n", ToUtf8(found->responseName()).c_str(), double{scalar->lastValue()});

    const CGrandeur* shown = read.GetGrandeur(u"Sound pressure");
    if (!loaded || shown == nullptr) return 1;
    wstring text, prefix, unit;
    shown->SI_to_string(text, 0.0312F, 0.0F, 1e-3F, prefix, unit, false, nullptr); // "31.2", "m", "Pa"
    CGrandeur::concat_SI_string(text, prefix, unit, true);                         // "31.2 mPa"
    std::printf("%s\n", ToUtf8(text).c_str());
    shown->SI_to_string(text, 0.02F, 0.0F, 1e-3F, prefix, unit, true, nullptr); // true: in decibels
    CGrandeur::concat_SI_string(text, prefix, unit, true);                      // "60.0 dB"
    std::printf("%s\n", ToUtf8(text).c_str());
    return 0;
}

int main() { return Write() == 0 ? Read() : 1; }
