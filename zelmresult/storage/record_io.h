#pragma once

#include "zelmresult/storage/record_outline.h"
#include "zelmresult/storage/record_reader.h"
#include "zelmresult/storage/record_writer.h"

// One field list per stored record, in three directions. A record names its fields once, in stored order:
//
//     template <class Io, class Self>
//     bool CScalar::fields(Io& io, Self& v)
//     {
//         if (!io.record("CScalar", newest{2})) return io.ok();   // a stored version of 0 ends it with success
//         io.template base<CResult>(v);                           // the base's whole block
//         io.f32("YMin", v.m_yMin);
//         io.flag("PhasePossible", v.m_phasePossible, since{2});
//         return io.ok();
//     }
//
// RecordReader fills the object, RecordWriter stores it, RecordOutline notes the list for the pages in docs/format.
// The width of a field is named in the call and never deduced. The first field that fails stops all after it.
