#pragma once
// The automation value and array types that matrices travel in: VARIANT and
// SAFEARRAY with the standard type codes, field layout and element layout, so
// that a matrix built here reads the same on the other side of an automation
// interface. Only the functions the suite needs are here.
//
// Array data is column-major: SafeArrayCreate takes the bounds leftmost
// dimension first, keeps them in the descriptor in reverse order, and the
// leftmost index varies fastest in the data block.

#include <cstdint>

using VARTYPE = unsigned short;

/// Variant type codes.
enum VARENUM : VARTYPE
{
    VT_EMPTY = 0,
    VT_NULL = 1,
    VT_I2 = 2,
    VT_I4 = 3,
    VT_R4 = 4,
    VT_R8 = 5,
    VT_CY = 6,
    VT_DATE = 7,
    VT_BSTR = 8,
    VT_DISPATCH = 9,
    VT_ERROR = 10,
    VT_BOOL = 11,
    VT_VARIANT = 12,
    VT_UNKNOWN = 13,
    VT_DECIMAL = 14,
    VT_I1 = 16,
    VT_UI1 = 17,
    VT_UI2 = 18,
    VT_UI4 = 19,
    VT_I8 = 20,
    VT_UI8 = 21,
    VT_INT = 22,
    VT_UINT = 23,
    VT_VECTOR = 0x1000,
    VT_ARRAY = 0x2000,
    VT_BYREF = 0x4000,
    VT_TYPEMASK = 0x0FFF
};

/// SAFEARRAY feature bits.
enum : unsigned short
{
    FADF_AUTO = 0x0001,
    FADF_STATIC = 0x0002,
    FADF_EMBEDDED = 0x0004,
    FADF_FIXEDSIZE = 0x0010,
    FADF_BSTR = 0x0100,
    FADF_UNKNOWN = 0x0200,
    FADF_DISPATCH = 0x0400,
    FADF_VARIANT = 0x0800
};

/// The extent of one dimension of an array: its element count and lowest index.
struct SAFEARRAYBOUND
{
    std::uint32_t cElements;
    std::int32_t lLbound;
};

/// An array descriptor. `rgsabound` holds `cDims` bounds, the rightmost
/// dimension first; the descriptor is allocated with room for all of them.
struct SAFEARRAY
{
    unsigned short cDims;
    unsigned short fFeatures;
    std::uint32_t cbElements;
    std::uint32_t cLocks;
    void* pvData;
    SAFEARRAYBOUND rgsabound[1];
};

/// A value of one of the automation types: the type code `vt` and the value
/// (or a pointer to it, for `VT_BYREF` types and arrays).
struct VARIANT
{
    VARTYPE vt;
    unsigned short wReserved1;
    unsigned short wReserved2;
    unsigned short wReserved3;
    union {
        std::int64_t llVal;
        std::int32_t lVal;
        std::uint8_t bVal;
        std::int16_t iVal;
        float fltVal;
        double dblVal;
        std::int16_t boolVal;
        std::int32_t scode;
        double date;
        SAFEARRAY* parray;
        std::uint8_t* pbVal;
        std::int16_t* piVal;
        std::int32_t* plVal;
        float* pfltVal;
        double* pdblVal;
        SAFEARRAY** pparray;
        VARIANT* pvarVal;
        void* byref;
        signed char cVal;
        std::uint16_t uiVal;
        std::uint32_t ulVal;
        std::uint64_t ullVal;
        std::int32_t intVal;
        std::uint32_t uintVal;
        signed char* pcVal;
        std::uint16_t* puiVal;
        std::uint32_t* pulVal;
        std::int32_t* pintVal;
        std::uint32_t* puintVal;
        struct {
            void* pvRecord;
            void* pRecInfo;
        } brecVal;
    };
};

/// Makes `variant` empty (VT_EMPTY) without releasing what it held.
void VariantInit(VARIANT* variant);
/// Releases what `variant` owns (an array it holds directly, with the variants
/// in it) and makes it empty. Referenced values, strings and interfaces are not
/// released: this library makes none. 0 (S_OK).
long VariantClear(VARIANT* variant);

/// The size in bytes of one element of type `vt`; 0 for a type that cannot be
/// an array element.
std::uint32_t SafeArrayElementSize(VARTYPE vt);
/// A new array of `vt` elements, all zero (empty variants for VT_VARIANT), with
/// `dims` dimensions whose bounds `bounds` gives leftmost dimension first. Null
/// for a type that cannot be an element, for no dimensions, or when the data
/// would not fit in 2 GB.
SAFEARRAY* SafeArrayCreate(VARTYPE vt, unsigned int dims, const SAFEARRAYBOUND* bounds);
/// Releases `array`, clearing variant elements first. 0 (S_OK); null is allowed.
long SafeArrayDestroy(SAFEARRAY* array);
/// The number of elements of `array` over all dimensions.
std::uint64_t SafeArrayElementCount(const SAFEARRAY* array);
