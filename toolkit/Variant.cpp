#include <KORVAutlwin/toolkit/Variant.h>

#include <cstdlib>
#include <cstring>
#include <new>

namespace {

// Larger data blocks are refused rather than half-allocated.
constexpr std::uint64_t kMaxDataBytes = 0x7FFFFFFF;

unsigned short FeaturesOf(VARTYPE vt)
{
    switch (vt) {
    case VT_VARIANT: return FADF_VARIANT;
    case VT_BSTR: return FADF_BSTR;
    case VT_UNKNOWN: return FADF_UNKNOWN;
    case VT_DISPATCH: return FADF_DISPATCH;
    default: return 0;
    }
}

} // namespace

void VariantInit(VARIANT* variant)
{
    variant->vt = VT_EMPTY;
}

long VariantClear(VARIANT* variant)
{
    if ((variant->vt & VT_ARRAY) && !(variant->vt & VT_BYREF))
        SafeArrayDestroy(variant->parray);
    std::memset(variant, 0, sizeof *variant);
    return 0;
}

std::uint32_t SafeArrayElementSize(VARTYPE vt)
{
    switch (vt) {
    case VT_I1:
    case VT_UI1: return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL: return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR: return 4;
    case VT_R8:
    case VT_CY:
    case VT_DATE:
    case VT_I8:
    case VT_UI8: return 8;
    case VT_BSTR:
    case VT_DISPATCH:
    case VT_UNKNOWN: return sizeof(void*);
    case VT_DECIMAL: return 16;
    case VT_VARIANT: return sizeof(VARIANT);
    default: return 0;
    }
}

SAFEARRAY* SafeArrayCreate(VARTYPE vt, unsigned int dims, const SAFEARRAYBOUND* bounds)
{
    const std::uint32_t elementSize = SafeArrayElementSize(vt);
    if (elementSize == 0 || dims == 0 || dims > 0xFFFF || !bounds)
        return nullptr;
    std::uint64_t bytes = elementSize;
    for (unsigned int d = 0; d < dims; ++d) {
        bytes *= bounds[d].cElements;
        if (bytes > kMaxDataBytes)
            return nullptr;
    }
    void* data = nullptr;
    if (bytes > 0 && !(data = std::calloc(1, bytes)))
        return nullptr;

    const std::size_t descriptorSize = sizeof(SAFEARRAY) + (dims - 1) * sizeof(SAFEARRAYBOUND);
    void* memory = std::calloc(1, descriptorSize);
    if (!memory) {
        std::free(data);
        return nullptr;
    }
    auto* array = new (memory) SAFEARRAY{};
    array->cDims = static_cast<unsigned short>(dims);
    array->fFeatures = FeaturesOf(vt);
    array->cbElements = elementSize;
    array->pvData = data;
    // The descriptor keeps the rightmost dimension first.
    SAFEARRAYBOUND* stored = array->rgsabound;
    for (unsigned int d = 0; d < dims; ++d)
        stored[d] = bounds[dims - 1 - d];
    return array;
}

std::uint64_t SafeArrayElementCount(const SAFEARRAY* array)
{
    if (!array)
        return 0;
    std::uint64_t count = 1;
    const SAFEARRAYBOUND* bounds = array->rgsabound;
    for (unsigned int d = 0; d < array->cDims; ++d)
        count *= bounds[d].cElements;
    return count;
}

long SafeArrayDestroy(SAFEARRAY* array)
{
    if (!array)
        return 0;
    if ((array->fFeatures & FADF_VARIANT) && array->pvData) {
        auto* elements = static_cast<VARIANT*>(array->pvData);
        for (std::uint64_t k = 0, n = SafeArrayElementCount(array); k < n; ++k)
            VariantClear(&elements[k]);
    }
    std::free(array->pvData);
    std::free(array);
    return 0;
}
