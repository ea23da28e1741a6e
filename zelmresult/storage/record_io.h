#pragma once

#include "zelmresult/storage/record_outline.h"
#include "zelmresult/storage/record_reader.h"
#include "zelmresult/storage/record_writer.h"
#include "zelmresult/storage/stored_record.h"

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
//     template class StoredRecord<CScalar, CResult>;              // makes Read, Write and Outline of the list
//
// RecordReader fills the object, RecordWriter stores it, RecordOutline notes the list for the pages in docs/format.
// The width of a field is named in the call and never deduced. The first field that fails stops all after it.

namespace ZelmResult {

template <class Derived, class Base, class... Parts>
bool StoredRecord<Derived, Base, Parts...>::Write(CMmioFile* file)
{
    RecordWriter out(*file);
    return Derived::fields(out, static_cast<Derived&>(*this));
}

template <class Derived, class Base, class... Parts>
bool StoredRecord<Derived, Base, Parts...>::Read(CMmioFile* file)
{
    RecordReader in(*file);
    return Derived::fields(in, static_cast<Derived&>(*this));
}

template <class Derived, class Base, class... Parts>
void StoredRecord<Derived, Base, Parts...>::Outline(RecordOutline& out) const
{
    (void)Derived::fields(out, static_cast<const Derived&>(*this));
}

template <class Derived, class Record>
void StoredFields<Derived, Record>::Outline(RecordOutline& out)
{
    const Record record;
    (void)Derived::fields(out, record);
}

template <class Derived, class Record>
bool StoredFields<Derived, Record>::ReadFields(CMmioFile& file, Record& record)
{
    RecordReader in(file);
    return Derived::fields(in, record);
}

template <class Derived, class Record>
bool StoredFields<Derived, Record>::WriteFields(CMmioFile& file, const Record& record)
{
    RecordWriter out(file);
    return Derived::fields(out, record);
}

} // namespace ZelmResult
