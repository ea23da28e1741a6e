#pragma once

#include "zelmresult/recordings/track_desc.h"

namespace ZelmResult {

class RecordOutline;

// The fields of one of a track's chunks; all but Link and Hard have some. Internal to the storage of tracks and to the
// pages in docs/format.
template <TrackChunk chunk>
struct TrackRecord {
    template <class Io, class Track>
    static bool fields(Io& io, Track& track);
    static void Outline(RecordOutline& out);
};

} // namespace ZelmResult
