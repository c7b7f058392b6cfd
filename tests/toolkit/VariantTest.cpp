// Matrices in automation variants: the element layout, the widths of each
// element type, reference variants and the rule that integers and floating
// point numbers never turn into each other.

#include "utl/TempDir.h"

#include <KORVAutlwin/toolkit/TsVariant.h>

#include <KORVAutl/Exception.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

// TsVariant hands its VARIANT over; the test is the one who keeps it.
struct Owned
{
    explicit Owned(const TsVariant& wrapper) : variant(wrapper.GetVariant()) {}
    ~Owned()
    {
        VariantClear(variant);
        delete variant;
    }
    VARIANT* variant;
};

std::vector<double> Doubles(const VARIANT* variant)
{
    const SAFEARRAY* array = variant->parray;
    const auto* data = static_cast<const double*>(array->pvData);
    return {data, data + SafeArrayElementCount(array)};
}

TEST(TsVariantTest, MatrixElementsLieColumnMajor)
{
    TsVariant matrix(VT_R8, 2, 3, false);
    Owned keep(matrix);
    EXPECT_EQ(matrix.GetVariant()->vt, VT_ARRAY | VT_R8);

    matrix.SetDoubleValue(1.5, 1, 2);
    EXPECT_EQ(Doubles(matrix.GetVariant()), (std::vector<double>{0, 0, 0, 0, 0, 1.5}));
    EXPECT_EQ(matrix.GetDoubleValue(1, 2), 1.5);
    EXPECT_EQ(matrix.GetDoubleValue(5), 1.5);

    const float values[] = {7.0f, 8.0f, 9.0f};
    matrix.SetRow(1, values, 2);
    EXPECT_EQ(Doubles(matrix.GetVariant()), (std::vector<double>{0, 7, 0, 0, 8, 1.5}));

    // Only a wrapper of the VARIANT knows the descriptor: bounds are kept rightmost first.
    const TsVariant wrapped(matrix.GetVariant());
    EXPECT_EQ(wrapped.GetDimensions(), 2);
    EXPECT_EQ((std::vector<int>{wrapped.Size(0), wrapped.Size(1), wrapped.Size(2), wrapped.Size(3)}),
              (std::vector<int>{6, 2, 3, 0}));
    EXPECT_EQ(matrix.GetDimensions(), 0);
    EXPECT_EQ(wrapped.GetDataType(), TsVariant::eFloatingPoint);

    VARIANT scalar{};
    scalar.vt = VT_I4;
    const TsVariant number(&scalar);
    EXPECT_EQ((std::vector<int>{number.GetDimensions(), number.Size(0), number.Size(1), number.Size(2)}),
              (std::vector<int>{0, 1, 1, 0}));
}

TEST(TsVariantTest, VariantElementsCarryTheirTypeAndNarrow)
{
    TsVariant matrix(VT_R4, 2, 2, true);
    Owned keep(matrix);
    EXPECT_EQ(matrix.GetVariant()->vt, 0x200C);
    const auto* elements = static_cast<const VARIANT*>(matrix.GetVariant()->parray->pvData);
    for (int k = 0; k < 4; ++k)
        EXPECT_EQ(elements[k].vt, VT_R4) << k;
    EXPECT_EQ(matrix.GetDataType(), TsVariant::eFloatingPoint);

    matrix.SetDoubleValue(0.1, 1, 0);
    EXPECT_EQ(elements[2].fltVal, 0.1f);
    EXPECT_EQ(matrix.GetDoubleValue(1, 0), static_cast<double>(0.1f));
    EXPECT_NE(matrix.GetDoubleValue(2), 0.1);

    const float row[] = {2.5f, 3.5f};
    matrix.SetRow(1, row, 2);
    EXPECT_EQ((std::vector<float>{elements[1].fltVal, elements[3].fltVal}), (std::vector<float>{2.5f, 3.5f}));
}

// Each integral type keeps its width, whether the value is held directly,
// through a reference, in an array, or in a variant element of an array.
TEST(TsVariantTest, IntegersTruncateToTheirWidthEverywhere)
{
    struct Row
    {
        VARTYPE type;
        int written;
        int read;
    };
    const Row rows[] = {{VT_I1, 200, -56}, {VT_UI1, 300, 44},  {VT_I2, 40000, -25536},   {VT_UI2, 70000, 4464},
                        {VT_I4, -5, -5},   {VT_UI4, -7, -7}, {VT_INT, 1 << 30, 1 << 30}, {VT_UINT, -1, -1}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.type);
        std::int64_t storage = 0x5A5A5A5A5A5A5A5A;
        VARIANT direct{};
        direct.vt = row.type;
        VARIANT byReference{};
        byReference.vt = VT_BYREF | row.type;
        byReference.byref = &storage;
        TsVariant array(row.type, 4, false);
        TsVariant variants(row.type, 4, true);
        Owned keepArray(array), keepVariants(variants);

        TsVariant holders[] = {TsVariant(&direct), TsVariant(&byReference), array, variants};
        for (TsVariant& holder : holders) {
            holder.SetIntegralValue(row.written, 3);
            EXPECT_EQ(holder.GetIntegralValue(3), row.read);
            EXPECT_EQ(holder.GetDoubleValue(3), 0.0);
            EXPECT_EQ(holder.GetDataType(), TsVariant::eInteger);
        }
        // The bytes beyond the width stay as they were.
        const unsigned int bits = 8 * SafeArrayElementSize(row.type);
        EXPECT_EQ(storage >> bits, 0x5A5A5A5A5A5A5A5A >> bits);
    }
}

TEST(TsVariantTest, NoConversionBetweenClasses)
{
    VARIANT values[3]{};
    values[0].vt = VT_R8;
    values[0].dblVal = 3.75;
    values[1].vt = VT_I4;
    values[1].lVal = 42;
    values[2].vt = VT_BOOL;
    values[2].boolVal = -1;
    const std::vector<VARIANT> before(values, values + 3);
    for (VARIANT& value : values) {
        SCOPED_TRACE(value.vt);
        TsVariant wrapped(&value);
        // Each reads as 0 in the other class, and a write of the other class leaves it alone.
        EXPECT_EQ(value.vt == VT_I4 ? wrapped.GetDoubleValue(0) : wrapped.GetIntegralValue(0), 0);
        if (value.vt != VT_I4)
            wrapped.SetIntegralValue(9, 0);
        if (value.vt != VT_R8)
            wrapped.SetDoubleValue(9.5, 0);
        EXPECT_EQ(value.llVal, before[&value - values].llVal);
    }
    EXPECT_EQ(TsVariant(&values[2]).GetDataType(), TsVariant::eOther);

    TsVariant flags(VT_BOOL, 2, false);
    Owned keep(flags);
    const float one = 1.0f;
    EXPECT_EQ(Thrown([&] { flags.SetRow(0, &one, 1); }), "Unknown type in TsVariant::SetRow");
}

TEST(TsVariantTest, ReferencesAreFollowed)
{
    // A chain of variant references ends at a float: doubles follow it, integers do not.
    VARIANT end{};
    end.vt = VT_R4;
    end.fltVal = 2.0f;
    VARIANT middle{};
    middle.vt = VT_BYREF | VT_VARIANT;
    middle.pvarVal = &end;
    VARIANT start{};
    start.vt = VT_BYREF | VT_VARIANT;
    start.pvarVal = &middle;
    TsVariant chain(&start);
    EXPECT_EQ(chain.GetDoubleValue(0), 2.0);
    chain.SetDoubleValue(0.3, 0);
    EXPECT_EQ(end.fltVal, 0.3f);
    EXPECT_EQ(chain.GetIntegralValue(0), 0);
    // The class is of the variant referred to, itself a reference here.
    EXPECT_EQ(chain.GetDataType(), TsVariant::eOther);
    EXPECT_EQ(TsVariant(&middle).GetDataType(), TsVariant::eFloatingPoint);

    // An array by reference: the descriptor and the elements are reached through it.
    TsVariant matrix(VT_VARIANT, 2, 3, true);
    Owned keep(matrix);
    static_cast<VARIANT*>(matrix.GetVariant()->parray->pvData)[0].vt = VT_UI2;
    VARIANT byReference{};
    byReference.vt = VT_BYREF | VT_ARRAY | VT_VARIANT;
    byReference.pparray = &matrix.GetVariant()->parray;
    TsVariant wrapped(&byReference);
    EXPECT_EQ((std::vector<int>{wrapped.GetDimensions(), wrapped.Size(1), wrapped.Size(2)}),
              (std::vector<int>{2, 2, 3}));
    EXPECT_EQ(wrapped.GetDataType(), TsVariant::eInteger);
    wrapped.SetIntegralValue(-1, 0);
    EXPECT_EQ(matrix.GetIntegralValue(0), 65535);
}

TEST(TsVariantTest, SetDataTypeMakesANewArray)
{
    TsVariant none(nullptr);
    EXPECT_FALSE(none.SetDataType(VT_R8, 3));

    TsVariant vector(VT_R8, 4, false);
    Owned keep(vector);
    SAFEARRAY* former = vector.GetVariant()->parray;
    ASSERT_TRUE(vector.SetDataType(VT_I2, 2, 5));
    // The former array is not released here: it may have been handed over.
    EXPECT_NE(vector.GetVariant()->parray, former);
    SafeArrayDestroy(former);
    EXPECT_EQ(vector.GetVariant()->vt, VT_ARRAY | VT_I2);
    vector.SetIntegralValue(-3, 1, 4);
    EXPECT_EQ(static_cast<const std::int16_t*>(vector.GetVariant()->parray->pvData)[9], -3);

    // Arrays that cannot exist are refused, not half-made.
    const SAFEARRAYBOUND huge[2] = {{0x10000, 0}, {0x10000, 0}};
    EXPECT_EQ(SafeArrayCreate(VT_R8, 2, huge), nullptr);
}

} // namespace
