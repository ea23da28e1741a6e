#pragma once

#include "zelmresult/support/idn.h"
#include "zelmresult/support/pointer_list.h"
#include "zelmresult/support/wstring.h"

#include <bitset>
#include <cstdint>
#include <map>
#include <vector>

namespace ZelmResult {

class CGrandeur;
class CGrandeurFichier;
class CMmioFile;

// The values of a track: what it is, the form of its samples, where they are, and how they become physical values. A
// plain structure: copies share CorrData and the quantities. The recording instrument defines the meaning of the
// numbers that have no comment.
struct strTrackDescData {
    // INFO
    idn::Idn TrackIdn;
    std::int32_t Format = 0;
    std::int32_t Domain = 0;
    std::int32_t Type = 0;
    std::int32_t CompressedTrack = -1;
    std::int32_t CompressionFactor = 0;
    std::int32_t Time = 0;
    float SampleFrequency = 0.0F; // Hz
    wstring Name;
    wstring Comment;
    idn::Idn Idn2;
    idn::Idn Idn3;
    wstring Text3;
    // LOCA
    std::int32_t FirstBlock = 0;
    std::int32_t LastBlock = 0;
    std::int32_t DiskIndex = 0; // position of the CRecordInfo
    std::int32_t BlockSize = 0;
    std::int32_t Offset = 0;
    // OVLD
    bool Overload = false;
    float Min = 0.0F; // lowest and highest value seen
    float Max = 0.0F;
    // XUNI. The quantities are kept as pointers and may be null.
    CGrandeur* XMagnitude = nullptr;
    float XPrecAbs = 0.0F;
    float XPrecRel = 0.0F;
    float XStep = 0.0F;
    float XVal0 = 0.0F;
    // YUNI
    CGrandeur* YMagnitude = nullptr;
    float ConvLogToVolt = 0.0F; // volts per raw count
    float YOffset = 0.0F;
    float Sensitivity = 1.0F;
    float YPrecAbs = 0.0F;
    float YPrecRel = 0.0F;
    float YCoeffDefault = 1.0F; // the coefficient when YMagnitude is null; not stored
    // VUNI
    CGrandeur* VMagnitude = nullptr;
    std::int32_t AxisType = 0;
    float VPrecAbs = 0.0F;
    float VPrecRel = 0.0F;
    float VStep = 0.0F;
    float VVal0 = 0.0F;
    // CORR: a correction over frequency, of SizeCorr points
    std::int16_t CorrFormat = 0;
    float FreqMin = 0.0F;
    float FreqMax = 0.0F;
    std::int32_t SizeCorr = 0;
    float* CorrData = nullptr; // made with new[]; SizeCorr times FloatsPerPoint values; null means zeros

    // 1 for the formats 5 to 7, else 2.
    [[nodiscard]] std::int32_t FloatsPerPoint() const { return CorrFormat >= 5 && CorrFormat <= 7 ? 1 : 2; }
};

// The chunks of a track.
enum class TrackChunk : std::uint8_t { Info, Loca, Ovld, Xuni, Yuni, Vuni, Link, Hard, Corr };

// One recorded track.
// Stored as  a list "T%03d" with a chunk per concern. Only those are written whose flag is set, and a track without
//            Info and Loca can't be read back: a host that fills a track with setData sets the flags itself.
// Owns       its link lists and CorrData.
// Copies     are flat: only one of them may be destroyed. Quantities are never owned.
class CZMTrackDesc : public strTrackDescData {
public:
    CZMTrackDesc() = default;
    CZMTrackDesc(const CZMTrackDesc&) = default;
    CZMTrackDesc& operator=(const CZMTrackDesc&) = default;
    ~CZMTrackDesc();

    // Copy all values, with a deep copy of the correction table, and free the table that the target held, which must be
    // its own. Always 0. The flags don't change. getData gives the new table.
    std::int32_t getData(strTrackDescData* out) const;
    std::int32_t setData(const strTrackDescData* in);
    strTrackDescData* getTrackData() { return this; }
    // Which chunks the track has.
    [[nodiscard]] bool HasChunk(TrackChunk chunk) const { return m_chunks[static_cast<std::size_t>(chunk)]; }
    void SetHasChunk(TrackChunk chunk, bool has) { m_chunks[static_cast<std::size_t>(chunk)] = has; }

    [[nodiscard]] float getFreq() const { return SampleFrequency; }
    [[nodiscard]] std::int32_t getBlockSize() const { return BlockSize; }
    [[nodiscard]] std::int32_t getBlockFirst() const { return FirstBlock; }
    [[nodiscard]] std::int32_t getFirstOffset() const { return Offset; }
    // Write the values at *index of each array that isn't null; factor is CompressionFactor. Always 0. The index
    // doesn't change.
    std::int32_t getTrackFormat(std::int32_t* format, std::int32_t* type, std::int32_t* domain, std::int32_t* factor,
                                const std::int16_t* index) const;
    // The same; offset is YOffset / Sensitivity, and the coefficients are those of the current unit of YMagnitude, or
    // YCoeffDefault and 0.
    std::int32_t getYUniData(float* sensitivity, float* convLogToVolt, float* offset, float* coeffA, float* coeffB,
                             const std::int16_t* index) const;

    // Set values and the flag of their chunk. Always true.
    bool updateLOCA(std::int32_t first, std::int32_t last, std::int32_t blockSize, std::int32_t offset);
    bool updateTrackOverload(float min, float max, bool overload);
    // takes; null, and one that is there, add nothing. The flag of the chunk is the host's to set. Always true.
    bool addLIDN(std::vector<idn::Idn>* list);
    [[nodiscard]] const std::vector<std::vector<idn::Idn>*>& linkLists() const { return m_links.All(); } // lends

    void AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const;
    void ReplaceGrandeur(const CGrandeurFichier* old, CGrandeur* replacement);

    // Called with the file inside the list. When both first and normalisation are true, ConvLogToVolt is reduced so
    // that full scale of 32-bit samples is the peak that was seen; a later save writes that. False at the first chunk
    // that fails, and without Info and Loca.
    [[nodiscard]] bool Load(CMmioFile* file, bool first, bool normalisation);
    // Makes and leaves the list; false for a number outside 0 to 999.
    [[nodiscard]] bool Save(CMmioFile* file, std::int16_t number) const;

private:
    void FreeCorrection();
    void Normalise();
    [[nodiscard]] bool LoadLinks(CMmioFile& file);
    [[nodiscard]] bool NoteHardware(CMmioFile& file);
    [[nodiscard]] bool SaveLinks(CMmioFile& file) const;

    PointerList<std::vector<idn::Idn>> m_links;
    std::bitset<9> m_chunks;
};

} // namespace ZelmResult
