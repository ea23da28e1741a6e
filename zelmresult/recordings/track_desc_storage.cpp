// The stored form of a track.

#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/recordings/lidn.h"
#include "zelmresult/recordings/track_records.h"
#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

namespace ZelmResult {

namespace {

constexpr std::int32_t kFormatWithoutNormalisation = 0x10002;

// In the order of TrackChunk.
constexpr std::array kKinds{ChunkKind::TrackInfo,  ChunkKind::TrackLocation, ChunkKind::TrackOverload,
                            ChunkKind::TrackXUnit, ChunkKind::TrackYUnit,    ChunkKind::TrackThirdUnit,
                            ChunkKind::Links,      ChunkKind::TrackHardware, ChunkKind::TrackCorrection};

constexpr ChunkKind KindOf(TrackChunk chunk) { return kKinds[static_cast<std::size_t>(chunk)]; }

wstring NameOf(const CGrandeur* quantity) { return quantity != nullptr ? quantity->GetNomGrandeur() : wstring(); }

wstring PrecisionText(float absolute, float relative)
{
    return Concat(u"Precision absolue : ", ToFixed(absolute), u" , Precision relative : ", ToFixed(relative));
}

} // namespace

template <>
template <class Io, class Track>
bool TrackRecord<TrackChunk::Info>::fields(Io& io, Track& t)
{
    if (!io.record("TrackInfo", newest{0x101}, first{0})) return io.ok();
    io.idn("TrackIdn", t.TrackIdn);
    io.i32("Format", t.Format);
    io.i32("Domain", t.Domain);
    io.i32("Type", t.Type);
    io.i32("CompressedTrack", t.CompressedTrack);
    io.i32("CompressionFactor", t.CompressionFactor);
    io.i32("Time", t.Time);
    io.f32("SampleFrequency", t.SampleFrequency);
    io.text("Name", t.Name);
    io.text("Comment", t.Comment);
    io.idn("Idn2", t.Idn2, since{0x101});
    io.idn("Idn3", t.Idn3, since{0x101});
    io.text("Text3", t.Text3, since{0x101});
    io.dump([&] {
        return Concat(u"Format : ", t.Format, u" , Domain : ", t.Domain, u" , Type : ", t.Type,
                      u" , CompressedTrack : ", t.CompressedTrack);
    });
    io.dump([&] {
        return Concat(u"Compression factor : ", t.CompressionFactor, u" , Time : ", t.Time, u" , Sample frequency : ",
                      ToFixed(t.SampleFrequency), u" , Track name : ", t.Name, u", Comment : ", t.Comment);
    });
    return io.ok();
}

template <>
template <class Io, class Track>
bool TrackRecord<TrackChunk::Loca>::fields(Io& io, Track& t)
{
    if (!io.record("TrackLocation", newest{0x200}, first{0})) return io.ok();
    io.i32("FirstBlock", t.FirstBlock);
    io.i32("LastBlock", t.LastBlock);
    io.i32("DiskIndex", t.DiskIndex);
    io.i32("BlockSize", t.BlockSize);
    io.i32("Offset", t.Offset, since{0x101});
    io.dump([&] {
        return Concat(u"First block : ", t.FirstBlock, u" , Last block : ", t.LastBlock, u" , Disk index : ",
                      t.DiskIndex, u" , Block size : ", t.BlockSize, u", Offset : ", t.Offset);
    });
    return io.ok();
}

template <>
template <class Io, class Track>
bool TrackRecord<TrackChunk::Ovld>::fields(Io& io, Track& t)
{
    if (!io.record("TrackOverload", newest{0x100}, first{0})) return io.ok();
    io.flag("Overload", t.Overload);
    io.f32("Min", t.Min);
    io.f32("Max", t.Max);
    io.dump([&] {
        return Concat(u"Overload : ", int{t.Overload}, u" , Min : ", ToFixed(t.Min), u" , Max : ", ToFixed(t.Max));
    });
    return io.ok();
}

template <>
template <class Io, class Track>
bool TrackRecord<TrackChunk::Xuni>::fields(Io& io, Track& t)
{
    if (!io.record("TrackXUnit", newest{0x100}, first{0})) return io.ok();
    io.quantity("XMagnitude", t.XMagnitude);
    io.f32("XPrecAbs", t.XPrecAbs);
    io.f32("XPrecRel", t.XPrecRel);
    io.f32("XStep", t.XStep);
    io.f32("XVal0", t.XVal0);
    // The name of the Y quantity here too: the dump always showed it.
    io.dump([&] {
        return Concat(u"Magnitude : ", NameOf(t.YMagnitude), u", ", PrecisionText(t.XPrecAbs, t.XPrecRel),
                      u" , Step : ", ToFixed(t.XStep), u", Val0 : ", ToFixed(t.XVal0));
    });
    return io.ok();
}

template <>
template <class Io, class Track>
bool TrackRecord<TrackChunk::Yuni>::fields(Io& io, Track& t)
{
    if (!io.record("TrackYUnit", newest{0x100}, first{0})) return io.ok();
    io.quantity("YMagnitude", t.YMagnitude);
    io.f32("ConvLogToVolt", t.ConvLogToVolt);
    io.f32("YOffset", t.YOffset);
    io.f32("Sensitivity", t.Sensitivity);
    io.f32("YPrecAbs", t.YPrecAbs);
    io.f32("YPrecRel", t.YPrecRel);
    io.dump([&] {
        return Concat(u"Magnitude : ", NameOf(t.YMagnitude), u", Conv log to volt : ", ToScientific(t.ConvLogToVolt),
                      u" , Offset : ", ToFixed(t.YOffset), u" , sensitivity : ", ToFixed(t.Sensitivity), u", ",
                      PrecisionText(t.YPrecAbs, t.YPrecRel));
    });
    return io.ok();
}

template <>
template <class Io, class Track>
bool TrackRecord<TrackChunk::Vuni>::fields(Io& io, Track& t)
{
    if (!io.record("TrackVUnit", newest{0x100}, first{0})) return io.ok();
    io.quantity("VMagnitude", t.VMagnitude);
    io.i32("AxisType", t.AxisType);
    io.f32("VPrecAbs", t.VPrecAbs);
    io.f32("VPrecRel", t.VPrecRel);
    io.f32("VStep", t.VStep);
    io.f32("VVal0", t.VVal0);
    io.dump([&] {
        return Concat(u"Axis type : ", t.AxisType, u" , ", PrecisionText(t.VPrecAbs, t.VPrecRel), u" , Step : ",
                      ToFixed(t.VStep), u", Val0 : ", ToFixed(t.VVal0));
    });
    return io.ok();
}

template <>
template <class Io, class Track>
bool TrackRecord<TrackChunk::Corr>::fields(Io& io, Track& t)
{
    if (!io.record("TrackCorrection", newest{0x100}, first{0})) return io.ok();
    io.onRead(t, [](auto& track) {
        delete[] track.CorrData;
        track.CorrData = nullptr;
    });
    io.u16("CorrFormat", t.CorrFormat);
    io.f32("FreqMin", t.FreqMin);
    io.f32("FreqMax", t.FreqMax);
    io.i32("SizeCorr", t.SizeCorr);
    const std::int64_t wanted = t.SizeCorr > 0 ? std::int64_t{t.SizeCorr} * t.FloatsPerPoint() : 0;
    const auto count = static_cast<std::int32_t>(std::min<std::int64_t>(wanted, INT32_MAX));
    io.accepts("CorrData", t, [wanted](auto& track, CMmioFile& file) {
        if (wanted == 0) return true;
        const bool hasRoom = file.RoomFor(static_cast<std::uint64_t>(wanted), sizeof(float));
        if (hasRoom) track.CorrData = new float[static_cast<std::size_t>(wanted)]{};
        if (!hasRoom) track.SizeCorr = 0; // there is no table
        return hasRoom;
    });
    io.f32s("CorrData", t.CorrData, t.CorrData != nullptr ? count : 0, count, only{"SizeCorr is above 0", count > 0});
    io.dump([&] {
        return Concat(u"Format : ", t.CorrFormat, u" , Freq min : ", ToFixed(t.FreqMin), u" , Freq max : ",
                      ToFixed(t.FreqMax), u" , Size corr : ", t.SizeCorr);
    });
    return io.ok();
}

template <TrackChunk chunk>
void TrackRecord<chunk>::Outline(RecordOutline& out)
{
    const strTrackDescData track;
    (void)fields(out, track);
}

template struct TrackRecord<TrackChunk::Info>;
template struct TrackRecord<TrackChunk::Loca>;
template struct TrackRecord<TrackChunk::Ovld>;
template struct TrackRecord<TrackChunk::Xuni>;
template struct TrackRecord<TrackChunk::Yuni>;
template struct TrackRecord<TrackChunk::Vuni>;
template struct TrackRecord<TrackChunk::Corr>;

namespace {

// Reads the next chunk of a kind, if there is one, and leaves it. False when it is there and fails.
template <TrackChunk chunk>
bool ReadIfThere(CMmioFile& file, CZMTrackDesc& track)
{
    OMMCKINFO entered;
    if (!file.Enter(KindOf(chunk), entered)) return true;
    RecordReader in(file);
    if (!TrackRecord<chunk>::fields(in, *track.getTrackData()) || !file.ExitChunk(entered)) return false;
    track.SetHasChunk(chunk, true);
    return true;
}

template <TrackChunk chunk>
bool ReadNext(CMmioFile& file, CZMTrackDesc& track)
{
    return ReadIfThere<chunk>(file, track) && track.HasChunk(chunk);
}

template <TrackChunk chunk>
bool ReadAnywhere(CMmioFile& file, CZMTrackDesc& track, std::int32_t start)
{
    return file.mmioSeek(start, OMMIO_SEEK_SET) && ReadIfThere<chunk>(file, track);
}

// A chunk that the track has is written; one that it doesn't have is left out.
template <TrackChunk chunk>
bool WriteChunkIfHeld(CMmioFile& file, const CZMTrackDesc& track)
{
    OMMCKINFO made;
    if (!track.HasChunk(chunk)) return true;
    if (!file.Create(KindOf(chunk), made)) return false;
    RecordWriter out(file);
    return TrackRecord<chunk>::fields(out, static_cast<const strTrackDescData&>(track)) && file.ExitChunk(made);
}

} // namespace

bool CZMTrackDesc::Load(CMmioFile* file, bool first, bool normalisation)
{
    const std::int32_t start = file->Position();
    std::uint16_t version = 0;
    m_chunks.reset();
    if (!file->ReadChunkVersionSansParent(version)) return false;
    // These two come in this order after the version; the others anywhere.
    if (!ReadNext<TrackChunk::Info>(*file, *this) || !ReadNext<TrackChunk::Loca>(*file, *this)) return false;
    if (!ReadAnywhere<TrackChunk::Ovld>(*file, *this, start) || !ReadAnywhere<TrackChunk::Xuni>(*file, *this, start) ||
        !ReadAnywhere<TrackChunk::Yuni>(*file, *this, start))
        return false;
    if (first && normalisation) Normalise();
    return ReadAnywhere<TrackChunk::Vuni>(*file, *this, start) && file->mmioSeek(start, OMMIO_SEEK_SET) &&
           LoadLinks(*file) && ReadAnywhere<TrackChunk::Corr>(*file, *this, start) &&
           file->mmioSeek(start, OMMIO_SEEK_SET) && NoteHardware(*file);
}

// A chunk whose contents are not read, and which no save writes.
bool CZMTrackDesc::NoteHardware(CMmioFile& file)
{
    OMMCKINFO chunk;
    if (!file.Enter(ChunkKind::TrackHardware, chunk)) return true;
    SetHasChunk(TrackChunk::Hard, true);
    return file.ExitChunk(chunk);
}

// Reduces the scale of 32-bit samples so that full scale is the peak that was seen.
void CZMTrackDesc::Normalise()
{
    constexpr float fullScaleCount = 2147483648.0F; // 2^31
    if (!HasChunk(TrackChunk::Yuni) || !HasChunk(TrackChunk::Ovld) || Format == kFormatWithoutNormalisation) return;
    if (!(Max > Min)) return;
    const float fullScale = fullScaleCount * ConvLogToVolt / Sensitivity;
    const float peak = std::max(std::fabs(Min), std::fabs(Max));
    if (fullScale > peak) ConvLogToVolt = Sensitivity * peak / fullScaleCount;
}

bool CZMTrackDesc::LoadLinks(CMmioFile& file)
{
    OMMCKINFO list;
    OMMCKINFO chunk;
    std::uint16_t version = 0;
    if (!file.Enter(ChunkKind::Links, list)) return true;
    if (!file.ReadChunkVersionSansParent(version)) return false;
    while (file.Enter(ChunkKind::LinkedIdentifiers, chunk, &list)) {
        if (!file.RoomFor(1, 2 * sizeof(std::vector<idn::Idn>))) return false;
        auto identifiers = std::make_unique<std::vector<idn::Idn>>();
        if (!CLIDN::mmioLoadCLIDN(&file, *identifiers)) return false;
        m_links.AddNew(identifiers.release());
        if (!file.ExitChunk(chunk)) return false;
    }
    if (!file.ExitChunk(list)) return false;
    SetHasChunk(TrackChunk::Link, true);
    return true;
}

bool CZMTrackDesc::Save(CMmioFile* file, std::int16_t number) const
{
    OMMCKINFO list;
    if (!file->CreateChunkTrack(list, number)) return false;
    if (file->GenerateInfoFile()) file->AddStringToDebugFile(u"CZMTrackDesc");
    return WriteChunkIfHeld<TrackChunk::Info>(*file, *this) && WriteChunkIfHeld<TrackChunk::Loca>(*file, *this) &&
           WriteChunkIfHeld<TrackChunk::Ovld>(*file, *this) && WriteChunkIfHeld<TrackChunk::Xuni>(*file, *this) &&
           WriteChunkIfHeld<TrackChunk::Yuni>(*file, *this) && WriteChunkIfHeld<TrackChunk::Vuni>(*file, *this) &&
           SaveLinks(*file) && WriteChunkIfHeld<TrackChunk::Corr>(*file, *this) && file->ExitChunk(list);
}

bool CZMTrackDesc::SaveLinks(CMmioFile& file) const
{
    OMMCKINFO list;
    if (!HasChunk(TrackChunk::Link)) return true;
    if (!file.CreateChunkLink(list)) return false;
    // A list that fails doesn't count here: the file remembers it.
    for (const std::vector<idn::Idn>* identifiers : m_links) (void)CLIDN::mmioSaveCLIDN(&file, *identifiers);
    return file.ExitChunk(list);
}

} // namespace ZelmResult
