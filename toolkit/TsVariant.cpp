#include <KORVAutlwin/toolkit/TsVariant.h>

#include <KORVAutl/Exception.h>

#include <cstdint>
#include <cstring>

namespace {

// Elements are copied in and out byte-wise: the data block is untyped memory.
template <typename T>
T Load(const SAFEARRAY* array, long position)
{
    T value;
    std::memcpy(&value, static_cast<const char*>(array->pvData) + position * static_cast<long>(sizeof(T)),
                sizeof(T));
    return value;
}

template <typename T>
void Store(SAFEARRAY* array, long position, T value)
{
    std::memcpy(static_cast<char*>(array->pvData) + position * static_cast<long>(sizeof(T)), &value, sizeof(T));
}

VARIANT* Element(const SAFEARRAY* array, long position)
{
    return static_cast<VARIANT*>(array->pvData) + position;
}

bool HasData(const SAFEARRAY* array)
{
    return array && array->pvData;
}

constexpr VARTYPE kFlags = VT_ARRAY | VT_BYREF;

} // namespace

TsVariant::TsVariant(VARIANT* variant) : mVariant(variant)
{
    if (variant && (variant->vt & VT_ARRAY))
        mArray = GetArray(variant);
}

TsVariant::TsVariant(unsigned int type, int size, bool variantElements) : mVariant(new VARIANT{})
{
    VariantInit(mVariant);
    const SAFEARRAYBOUND bounds[1] = {{static_cast<std::uint32_t>(size), 0}};
    MakeArray(type, 1, bounds, variantElements);
}

TsVariant::TsVariant(unsigned int type, int a, int b, bool variantElements) : mVariant(new VARIANT{})
{
    VariantInit(mVariant);
    // b first: the data block is then a rows of b, and (i, j) lies at b * i + j.
    const SAFEARRAYBOUND bounds[2] = {{static_cast<std::uint32_t>(b), 0}, {static_cast<std::uint32_t>(a), 0}};
    MakeArray(type, 2, bounds, variantElements);
}

bool TsVariant::SetDataType(unsigned int type, int size)
{
    if (!mVariant)
        return false;
    VariantInit(mVariant);
    const SAFEARRAYBOUND bounds[1] = {{static_cast<std::uint32_t>(size), 0}};
    return MakeArray(type, 1, bounds, false);
}

bool TsVariant::SetDataType(unsigned int type, int a, int b)
{
    if (!mVariant)
        return false;
    VariantInit(mVariant);
    const SAFEARRAYBOUND bounds[2] = {{static_cast<std::uint32_t>(b), 0}, {static_cast<std::uint32_t>(a), 0}};
    return MakeArray(type, 2, bounds, false);
}

bool TsVariant::MakeArray(unsigned int type, unsigned int dims, const SAFEARRAYBOUND* bounds, bool variantElements)
{
    const auto elementType = static_cast<VARTYPE>(type);
    if (variantElements) {
        mVariant->vt = VT_ARRAY | VT_VARIANT;
        mVariant->parray = SafeArrayCreate(VT_VARIANT, dims, bounds);
        if (HasData(mVariant->parray))
            for (std::uint64_t k = 0, n = SafeArrayElementCount(mVariant->parray); k < n; ++k)
                Element(mVariant->parray, static_cast<long>(k))->vt = elementType;
    } else {
        mVariant->vt = static_cast<VARTYPE>(elementType | VT_ARRAY);
        mVariant->parray = SafeArrayCreate(elementType, dims, bounds);
    }
    return true;
}

TsVariant::DataType TsVariant::GetDataType() const
{
    if (!mVariant)
        return eOther;
    const VARTYPE t = mVariant->vt & ~kFlags;
    if (t != VT_VARIANT)
        return GetDataType(t);
    if (mVariant->vt & VT_ARRAY) {
        const SAFEARRAY* array = GetArray(mVariant);
        if (!HasData(array) || SafeArrayElementCount(array) == 0)
            return eOther;
        return GetDataType(Element(array, 0)->vt);
    }
    if (mVariant->vt & VT_BYREF)
        return mVariant->pvarVal ? GetDataType(mVariant->pvarVal->vt) : eOther;
    return eOther;
}

TsVariant::DataType TsVariant::GetDataType(unsigned short type)
{
    switch (type) {
    case VT_I2:
    case VT_I4:
    case VT_I1:
    case VT_UI1:
    case VT_UI2:
    case VT_UI4:
    case VT_INT:
    case VT_UINT: return eInteger;
    case VT_R4:
    case VT_R8: return eFloatingPoint;
    default: return eOther;
    }
}

int TsVariant::GetDimensions() const
{
    return IsArray() && mArray ? mArray->cDims : 0;
}

int TsVariant::Size(int dimension) const
{
    if (!IsArray())
        return dimension == 0 || dimension == 1 ? 1 : 0;
    if (!mArray || dimension < 0 || dimension > mArray->cDims)
        return 0;
    if (dimension == 0)
        return static_cast<int>(SafeArrayElementCount(mArray));
    const SAFEARRAYBOUND* bounds = mArray->rgsabound;
    return static_cast<int>(bounds[dimension - 1].cElements);
}

bool TsVariant::IsArray() const
{
    return mVariant && (mVariant->vt & VT_ARRAY);
}

VARTYPE TsVariant::ElementType() const
{
    return mVariant->vt & ~kFlags;
}

long TsVariant::Position(int i, int j) const
{
    const SAFEARRAY* array = GetArray(mVariant);
    if (!array || array->cDims == 0)
        return j;
    const SAFEARRAYBOUND* bounds = array->rgsabound;
    // The leftmost dimension, b, is kept last.
    return static_cast<long>(bounds[array->cDims - 1].cElements) * i + j;
}

SAFEARRAY* TsVariant::GetArray(const VARIANT* variant)
{
    if (variant->vt & VT_BYREF)
        return variant->pparray ? *variant->pparray : nullptr;
    return variant->parray;
}

int TsVariant::GetIntegralValue(int i) const
{
    if (!mVariant)
        return 0;
    if (!IsArray())
        return GetIntegralValue(mVariant);
    return GetIntegralValue(GetArray(mVariant), ElementType(), i);
}

double TsVariant::GetDoubleValue(int i) const
{
    if (!mVariant)
        return 0.0;
    if (!IsArray())
        return GetDoubleValue(mVariant);
    return GetDoubleValue(GetArray(mVariant), ElementType(), i);
}

double TsVariant::GetDoubleValue(int i, int j) const
{
    if (!mVariant)
        return 0.0;
    if (!IsArray())
        return GetDoubleValue(mVariant);
    return GetDoubleValue(GetArray(mVariant), ElementType(), Position(i, j));
}

void TsVariant::SetIntegralValue(int value, int i)
{
    if (!mVariant)
        return;
    if (!IsArray())
        SetIntegralValue(mVariant, value);
    else
        SetIntegralValue(GetArray(mVariant), ElementType(), i, value);
}

void TsVariant::SetIntegralValue(int value, int i, int j)
{
    if (!mVariant)
        return;
    if (!IsArray())
        SetIntegralValue(mVariant, value);
    else
        SetIntegralValue(GetArray(mVariant), ElementType(), Position(i, j), value);
}

void TsVariant::SetDoubleValue(double value, int i)
{
    if (!mVariant)
        return;
    if (!IsArray())
        SetDoubleValue(mVariant, value);
    else
        SetDoubleValue(GetArray(mVariant), ElementType(), i, value);
}

void TsVariant::SetDoubleValue(double value, int i, int j)
{
    if (!mVariant)
        return;
    if (!IsArray())
        SetDoubleValue(mVariant, value);
    else
        SetDoubleValue(GetArray(mVariant), ElementType(), Position(i, j), value);
}

void TsVariant::SetRow(int j, float const* values, int count)
{
    const VARTYPE type = IsArray() ? ElementType() : VARTYPE{VT_EMPTY};
    if (type != VT_R4 && type != VT_R8 && type != VT_VARIANT)
        throw Exception("Unknown type in TsVariant::SetRow");
    SAFEARRAY* array = GetArray(mVariant);
    for (int k = 0; k < count; ++k)
        SetDoubleValue(array, type, Position(k, j), values[k]);
}

// --- Scalars ------------------------------------------------------------------

int TsVariant::GetIntegralValue(const VARIANT* variant)
{
    switch (variant->vt) {
    case VT_I2: return variant->iVal;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT: return variant->lVal;
    case VT_I1: return variant->cVal;
    case VT_UI1: return variant->bVal;
    case VT_UI2: return variant->uiVal;
    case VT_BYREF | VT_I2: return *variant->piVal;
    case VT_BYREF | VT_I4:
    case VT_BYREF | VT_UI4:
    case VT_BYREF | VT_INT:
    case VT_BYREF | VT_UINT: return *variant->plVal;
    case VT_BYREF | VT_I1: return *variant->pcVal;
    case VT_BYREF | VT_UI1: return *variant->pbVal;
    case VT_BYREF | VT_UI2: return *variant->puiVal;
    default: return 0;
    }
}

void TsVariant::SetIntegralValue(VARIANT* variant, int value)
{
    switch (variant->vt) {
    case VT_I2: variant->iVal = static_cast<std::int16_t>(value); break;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT: variant->lVal = value; break;
    case VT_I1: variant->cVal = static_cast<signed char>(value); break;
    case VT_UI1: variant->bVal = static_cast<std::uint8_t>(value); break;
    case VT_UI2: variant->uiVal = static_cast<std::uint16_t>(value); break;
    case VT_BYREF | VT_I2: *variant->piVal = static_cast<std::int16_t>(value); break;
    case VT_BYREF | VT_I4:
    case VT_BYREF | VT_UI4:
    case VT_BYREF | VT_INT:
    case VT_BYREF | VT_UINT: *variant->plVal = value; break;
    case VT_BYREF | VT_I1: *variant->pcVal = static_cast<signed char>(value); break;
    case VT_BYREF | VT_UI1: *variant->pbVal = static_cast<std::uint8_t>(value); break;
    case VT_BYREF | VT_UI2: *variant->puiVal = static_cast<std::uint16_t>(value); break;
    default: break;
    }
}

double TsVariant::GetDoubleValue(const VARIANT* variant)
{
    // A reference to a variant may lead to another, however deep.
    while (variant->vt == (VT_BYREF | VT_VARIANT) && variant->pvarVal)
        variant = variant->pvarVal;
    switch (variant->vt) {
    case VT_R4: return variant->fltVal;
    case VT_R8: return variant->dblVal;
    case VT_BYREF | VT_R4: return *variant->pfltVal;
    case VT_BYREF | VT_R8: return *variant->pdblVal;
    default: return 0.0;
    }
}

void TsVariant::SetDoubleValue(VARIANT* variant, double value)
{
    while (variant->vt == (VT_BYREF | VT_VARIANT) && variant->pvarVal)
        variant = variant->pvarVal;
    switch (variant->vt) {
    case VT_R4: variant->fltVal = static_cast<float>(value); break;
    case VT_R8: variant->dblVal = value; break;
    case VT_BYREF | VT_R4: *variant->pfltVal = static_cast<float>(value); break;
    case VT_BYREF | VT_R8: *variant->pdblVal = value; break;
    default: break;
    }
}

// --- Array elements -------------------------------------------------------------

int TsVariant::GetIntegralValue(const SAFEARRAY* array, VARTYPE type, long position)
{
    if (!HasData(array))
        return 0;
    switch (type) {
    case VT_I2: return Load<std::int16_t>(array, position);
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT: return Load<std::int32_t>(array, position);
    case VT_I1: return Load<signed char>(array, position);
    case VT_UI1: return Load<std::uint8_t>(array, position);
    case VT_UI2: return Load<std::uint16_t>(array, position);
    case VT_VARIANT: return GetIntegralValue(Element(array, position));
    default: return 0;
    }
}

void TsVariant::SetIntegralValue(SAFEARRAY* array, VARTYPE type, long position, int value)
{
    if (!HasData(array))
        return;
    switch (type) {
    case VT_I2: Store(array, position, static_cast<std::int16_t>(value)); break;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT: Store(array, position, static_cast<std::int32_t>(value)); break;
    case VT_I1: Store(array, position, static_cast<signed char>(value)); break;
    case VT_UI1: Store(array, position, static_cast<std::uint8_t>(value)); break;
    case VT_UI2: Store(array, position, static_cast<std::uint16_t>(value)); break;
    case VT_VARIANT: SetIntegralValue(Element(array, position), value); break;
    default: break;
    }
}

double TsVariant::GetDoubleValue(const SAFEARRAY* array, VARTYPE type, long position)
{
    if (!HasData(array))
        return 0.0;
    switch (type) {
    case VT_R4: return Load<float>(array, position);
    case VT_R8: return Load<double>(array, position);
    case VT_VARIANT: return GetDoubleValue(Element(array, position));
    default: return 0.0;
    }
}

void TsVariant::SetDoubleValue(SAFEARRAY* array, VARTYPE type, long position, double value)
{
    if (!HasData(array))
        return;
    switch (type) {
    case VT_R4: Store(array, position, static_cast<float>(value)); break;
    case VT_R8: Store(array, position, value); break;
    case VT_VARIANT: SetDoubleValue(Element(array, position), value); break;
    default: break;
    }
}
