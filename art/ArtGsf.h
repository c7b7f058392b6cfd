#pragma once
// Small libgsf helpers of the art file code: references that release
// themselves, and the library's start-up. Only the art sources include this.

// Qt's "signals" keyword would clash with a field name in the GLib headers.
#pragma push_macro("signals")
#undef signals
#include <gsf/gsf-infile-msole.h>
#include <gsf/gsf-infile.h>
#include <gsf/gsf-input-stdio.h>
#include <gsf/gsf-input.h>
#include <gsf/gsf-outfile-msole.h>
#include <gsf/gsf-outfile.h>
#include <gsf/gsf-output-stdio.h>
#include <gsf/gsf-output.h>
#include <gsf/gsf-utils.h>
#pragma pop_macro("signals")

#include <memory>

namespace korva {

/// Lets go of a GObject, for owning pointers to libgsf's objects.
struct GObjectRelease
{
    void operator()(void* object) const
    {
        if (object)
            g_object_unref(object);
    }
};

/// Owns one reference of a GObject of libgsf.
template <class T>
using GsfPtr = std::unique_ptr<T, GObjectRelease>;

/// Runs gsf_init once per process; every art function that touches libgsf calls it first.
void InitArtGsf();

} // namespace korva
