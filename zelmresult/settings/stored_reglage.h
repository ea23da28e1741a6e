#pragma once

#include "zelmresult/settings/reglage_data.h"
#include "zelmresult/storage/record_io.h"

// Only for the sources of the settings' classes: makes the storage of a class from its list of fields. Each source
// instantiates it for its class after the list.

namespace ZelmResult {

template <class Derived, class Base>
bool StoredReglage<Derived, Base>::Write(CMmioFile* file)
{
    RecordWriter out(*file);
    return Derived::fields(out, static_cast<Derived&>(*this));
}

template <class Derived, class Base>
bool StoredReglage<Derived, Base>::Read(CMmioFile* file)
{
    RecordReader in(*file);
    return Derived::fields(in, static_cast<Derived&>(*this));
}

template <class Derived, class Base>
void StoredReglage<Derived, Base>::Outline(RecordOutline& out) const
{
    (void)Derived::fields(out, static_cast<const Derived&>(*this));
}

} // namespace ZelmResult
