#pragma once
/// \class TsVariant
/// A number or a matrix of numbers in an automation VARIANT: reads and writes
/// elements by index whatever the element type, following reference variants.
/// Matrices pass through automation interfaces this way.
///
/// The class owns nothing: neither the VARIANT nor its array is freed here,
/// since both are made to be handed over through GetVariant(). Whoever keeps
/// them releases them with VariantClear and delete.
///
/// Matrix layout: for the sizes a and b of the constructor, element (i, j) lies
/// at position b * i + j of the data block; Size(1) is a and Size(2) is b.
///
/// Integers and floating-point numbers are never converted into each other:
/// reading a VT_R8 as an integer gives 0, and a VT_I4 as a double 0.0. Indices
/// are not checked.

#include <KORVAutlwin/toolkit/Variant.h>

class TsVariant
{
public:
    /// How GetDataType classes a variant type; the numbers are fixed.
    enum DataType
    {
        eInteger = 1,       // VT_I2, VT_I4, VT_I1, VT_UI1, VT_UI2, VT_UI4, VT_INT, VT_UINT
        eFloatingPoint = 2, // VT_R4, VT_R8
        eOther = 3
    };

    /// Wraps an existing variant. If it is an array, takes its descriptor,
    /// through one reference when VT_BYREF is set.
    explicit TsVariant(VARIANT* variant);
    /// Allocates a VARIANT holding a one-dimensional array of `size` elements.
    /// With `variantElements` the elements are VARIANTs (the variant's type is
    /// VT_ARRAY | VT_VARIANT) each stamped with `type`; otherwise they are of
    /// `type`, and the variant's type is `type | VT_ARRAY`.
    TsVariant(unsigned int type, int size, bool variantElements);
    /// The same with an a x b matrix.
    TsVariant(unsigned int type, int a, int b, bool variantElements);

    /// False without a VARIANT. Otherwise empties it without releasing what it
    /// held and gives it a new array of `type` elements.
    bool SetDataType(unsigned int type, int size);
    bool SetDataType(unsigned int type, int a, int b);

    VARIANT* GetVariant() const { return mVariant; }

    /// The class of the value, or of the elements of an array; variant
    /// elements are classed by the type of element 0.
    DataType GetDataType() const;

    // The descriptor is known only to objects made from a VARIANT*: on the
    // others these two answer as for an array without dimensions.

    /// 0 unless an array, else its number of dimensions.
    int GetDimensions() const;
    /// For an array, 0 gives the number of all elements and d >= 1 the number
    /// of elements in dimension d. For a scalar, 0 and 1 give 1, others 0.
    int Size(int dimension) const;

    /// The scalar (i is ignored) or element i, read as an integer; 0 for a type
    /// that is not integral.
    int GetIntegralValue(int i) const;
    /// The scalar (i is ignored) or element i; 0.0 for a type that is not
    /// floating point.
    double GetDoubleValue(int i) const;
    /// Element (i, j).
    double GetDoubleValue(int i, int j) const;
    /// Writes element i (or the scalar), truncated to the element's width; a
    /// type that is not integral stays unchanged.
    void SetIntegralValue(int value, int i);
    void SetIntegralValue(int value, int i, int j);
    /// Writes element i (or the scalar), narrowed for VT_R4; a type that is
    /// not floating point stays unchanged.
    void SetDoubleValue(double value, int i);
    void SetDoubleValue(double value, int i, int j);

    /// Element (k, j) becomes values[k] for k from 0 to count - 1. Elements of
    /// VT_R4, VT_R8 or VT_VARIANT only; any other type (or a scalar) throws an
    /// Exception "Unknown type in TsVariant::SetRow". No bounds check.
    void SetRow(int j, float const* values, int count);

private:
    static int GetIntegralValue(const VARIANT* variant);
    static double GetDoubleValue(const VARIANT* variant);
    static void SetIntegralValue(VARIANT* variant, int value);
    static void SetDoubleValue(VARIANT* variant, double value);
    static int GetIntegralValue(const SAFEARRAY* array, VARTYPE type, long position);
    static double GetDoubleValue(const SAFEARRAY* array, VARTYPE type, long position);
    static void SetIntegralValue(SAFEARRAY* array, VARTYPE type, long position, int value);
    static void SetDoubleValue(SAFEARRAY* array, VARTYPE type, long position, double value);
    /// The array of `variant`, through one reference when VT_BYREF is set.
    static SAFEARRAY* GetArray(const VARIANT* variant);
    static DataType GetDataType(unsigned short type);

    bool IsArray() const;
    VARTYPE ElementType() const;
    /// The data position of element (i, j).
    long Position(int i, int j) const;
    bool MakeArray(unsigned int type, unsigned int dims, const SAFEARRAYBOUND* bounds, bool variantElements);

    VARIANT* mVariant = nullptr;
    SAFEARRAY* mArray = nullptr;
};
