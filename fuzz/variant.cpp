// Matrices arrive from automation clients with any type code and any bounds.
// Nothing may crash or touch memory outside the array, a value written must
// read back as its type's width or precision makes it, and integers and
// floating-point numbers never turn into each other.

#include <KORVAutlwin/toolkit/TsVariant.h>

#include "FuzzCheck.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

struct Input
{
    const std::uint8_t* data;
    std::size_t size;
    template <typename T>
    T Take()
    {
        T value{};
        const std::size_t n = size < sizeof(T) ? size : sizeof(T);
        std::memcpy(&value, data, n);
        data += n;
        size -= n;
        return value;
    }
};

int Truncated(VARTYPE type, int value)
{
    switch (type) {
    case VT_I1: return static_cast<signed char>(value);
    case VT_UI1: return static_cast<std::uint8_t>(value);
    case VT_I2: return static_cast<std::int16_t>(value);
    case VT_UI2: return static_cast<std::uint16_t>(value);
    default: return value;
    }
}

bool Same(double a, double b)
{
    return std::isnan(a) ? std::isnan(b) : a == b;
}

// Writes and reads element `position` (or the scalar) of a value whose elements are of `type`.
void RoundTrip(TsVariant& value, VARTYPE type, int position, int integer, double real)
{
    const TsVariant::DataType kind = value.GetDataType();
    value.SetIntegralValue(integer, position);
    value.SetDoubleValue(real, position);
    const int readInteger = value.GetIntegralValue(position);
    const double readReal = value.GetDoubleValue(position);
    if (kind == TsVariant::eInteger) {
        Check(readInteger == Truncated(type, integer));
        Check(readReal == 0.0);
    } else if (kind == TsVariant::eFloatingPoint) {
        Check(readInteger == 0);
        Check(Same(readReal, type == VT_R4 ? static_cast<double>(static_cast<float>(real)) : real));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input in{data, size};
    const auto type = in.Take<VARTYPE>();
    const auto shape = in.Take<std::uint8_t>();
    const int a = in.Take<std::int8_t>();
    const int b = in.Take<std::int8_t>();
    const bool variantElements = shape & 1;
    const bool matrix = shape & 2;
    // Variant elements are stamped with the type alone: a reference there would point nowhere.
    const auto stamped = static_cast<VARTYPE>(variantElements ? type & ~VT_BYREF : type);

    TsVariant made = matrix ? TsVariant(stamped, a, b, variantElements) : TsVariant(stamped, a, variantElements);
    VARIANT* variant = made.GetVariant();
    const TsVariant wrapped(variant);
    const VARTYPE elementType = static_cast<VARTYPE>(variantElements ? stamped : type & ~(VT_ARRAY | VT_BYREF));
    if (variant->parray) {
        const int count = wrapped.Size(0);
        // A negative bound makes an array only beside an empty dimension.
        Check((a >= 0 && (!matrix || b >= 0)) || count == 0);
        Check(count == (matrix ? a * b : a));
        Check(wrapped.Size(1) == a && wrapped.GetDimensions() == (matrix ? 2 : 1));
        Check(!matrix || wrapped.Size(2) == b);
        while (count > 0 && in.size > 0) {
            const int position = in.Take<std::uint16_t>() % count;
            RoundTrip(made, elementType, position, in.Take<int>(), in.Take<double>());
            if (matrix)
                Check(Same(made.GetDoubleValue(position / b, position % b), made.GetDoubleValue(position)));
        }
    } else {
        // Refused: no type for elements, or bounds that cannot be.
        Check(SafeArrayElementSize(static_cast<VARTYPE>(variantElements ? VT_VARIANT : type)) == 0 || a < 0 ||
              (matrix && b < 0));
        Check(made.GetIntegralValue(0) == 0 && made.GetDoubleValue(0) == 0.0 && wrapped.Size(0) == 0);
    }

    // A scalar of the same type code, a reference pointing at a value of any width.
    std::uint64_t storage = 0;
    VARIANT scalar{};
    scalar.vt = (type & VT_ARRAY) || (type & ~VT_BYREF) == VT_VARIANT ? VT_EMPTY : type;
    if (scalar.vt & VT_BYREF)
        scalar.byref = &storage;
    TsVariant direct(&scalar);
    RoundTrip(direct, static_cast<VARTYPE>(scalar.vt & ~VT_BYREF), 0, static_cast<int>(size), 1.0 / (1 + size));

    VariantClear(variant);
    delete variant;
    return 0;
}
