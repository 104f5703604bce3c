// zunRectangleT<int> and zunRectangleT<double>: the rules both share run as
// typed tests with the same numbers; the per-type differences have their own.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <type_traits>

#include <zunFoundation.h>

namespace
{
    template <typename T> void ExpectRect(zunRectangleT<T> const & r, T left, T top, T width, T height)
    {
        EXPECT_EQ(r.left, left);
        EXPECT_EQ(r.top, top);
        EXPECT_EQ(r.width, width);
        EXPECT_EQ(r.height, height);
    }

#define EXPECT_RECT(r, l, t, w, h) ExpectRect<TypeParam>((r), TypeParam(l), TypeParam(t), TypeParam(w), TypeParam(h))

    template <typename T> class RectangleBoth : public ::testing::Test
    {
    };
    using RectangleTypes = ::testing::Types<int, double>;
    TYPED_TEST_SUITE(RectangleBoth, RectangleTypes);
}

TYPED_TEST(RectangleBoth, IsAPlainStructureOfFourFields)
{
    using R = zunRectangleT<TypeParam>;
    EXPECT_TRUE(std::is_standard_layout<R>::value);
    EXPECT_TRUE(std::is_trivially_copyable<R>::value);
    EXPECT_FALSE(std::is_polymorphic<R>::value);
    EXPECT_EQ(sizeof(R), 4 * sizeof(TypeParam));
    EXPECT_EQ(offsetof(R, left), 0u);
    EXPECT_EQ(offsetof(R, top), sizeof(TypeParam));
    EXPECT_EQ(offsetof(R, width), 2 * sizeof(TypeParam));
    EXPECT_EQ(offsetof(R, height), 3 * sizeof(TypeParam));
}

TYPED_TEST(RectangleBoth, DefaultIsNullEmptyAndNotValid)
{
    zunRectangleT<TypeParam> r;
    EXPECT_RECT(r, 0, 0, 0, 0);
    EXPECT_TRUE(r.IsNull());
    EXPECT_TRUE(r.IsEmpty());
    EXPECT_FALSE(r.IsValid());
}

TYPED_TEST(RectangleBoth, ConstructorsAndSetters)
{
    using T = TypeParam;
    using R = zunRectangleT<T>;
    EXPECT_RECT(R(1, 2, 3, 4), 1, 2, 3, 4);
    EXPECT_RECT(R(zunVector2T<T>(5, 6), zunVector2T<T>(2, 10)), 5, 6, -3, 4);
    EXPECT_RECT(R(zunVector2T<T>(5, 6), zunSizeT<T>(7, 8)), 5, 6, 7, 8);

    R r;
    EXPECT_EQ(&r.Set(1, 2, 3, 4), &r);
    EXPECT_RECT(r, 1, 2, 3, 4);
    EXPECT_EQ(&r.Set(zunVector2T<T>(10, 10), zunVector2T<T>(0, 20)), &r);
    EXPECT_RECT(r, 10, 10, -10, 10);
    EXPECT_EQ(&r.Set(zunVector2T<T>(1, 1), zunSizeT<T>(2, 3)), &r);
    EXPECT_RECT(r, 1, 1, 2, 3);

    R copy(r), moved(std::move(copy)), assigned;
    assigned = moved;
    EXPECT_RECT(assigned, 1, 1, 2, 3);
    assigned = R(9, 9, 9, 9);
    EXPECT_RECT(assigned, 9, 9, 9, 9);
}

TYPED_TEST(RectangleBoth, AccessorsReadTheFieldsAsTheyStand)
{
    using T = TypeParam;
    zunRectangleT<T> r(10, 20, -4, 6);
    EXPECT_EQ(r.Left(), T(10));
    EXPECT_EQ(r.Top(), T(20));
    EXPECT_EQ(r.Width(), T(-4));
    EXPECT_EQ(r.Height(), T(6));
    EXPECT_EQ(r.Right(), T(6));
    EXPECT_EQ(r.Bottom(), T(26));
    EXPECT_EQ(r.TopLeft().x, T(10));
    EXPECT_EQ(r.TopLeft().y, T(20));
    EXPECT_EQ(r.TopRight().x, T(6));
    EXPECT_EQ(r.TopRight().y, T(20));
    EXPECT_EQ(r.BottomLeft().x, T(10));
    EXPECT_EQ(r.BottomLeft().y, T(26));
    EXPECT_EQ(r.BottomRight().x, T(6));
    EXPECT_EQ(r.BottomRight().y, T(26));
    EXPECT_EQ(r.Size().width, T(-4));
    EXPECT_EQ(r.Size().height, T(6));
}

TYPED_TEST(RectangleBoth, EdgeSettersMoveOnlyWhatTheySay)
{
    using T = TypeParam;
    zunRectangleT<T> r(10, 10, 20, 20);
    r.SetLeft(0);
    EXPECT_RECT(r, 0, 10, 20, 20); // the right edge moves along
    EXPECT_EQ(r.Right(), T(20));
    r.SetTop(5).SetRight(50).SetBottom(0);
    EXPECT_RECT(r, 0, 5, 50, -5);
    r.SetWidth(7).SetHeight(8);
    EXPECT_RECT(r, 0, 5, 7, 8);
    r.SetSize(zunSizeT<T>(1, 2));
    EXPECT_RECT(r, 0, 5, 1, 2);
}

TYPED_TEST(RectangleBoth, MoveAndOffsetKeepTheSize)
{
    using T = TypeParam;
    zunRectangleT<T> r(1, 2, 3, 4);
    EXPECT_RECT(r.MovedTo(10, 20), 10, 20, 3, 4);
    EXPECT_RECT(r.MovedTo(zunVector2T<T>(-1, -2)), -1, -2, 3, 4);
    EXPECT_RECT(r.Offsetted(10, 20), 11, 22, 3, 4);
    EXPECT_RECT(r.Offsetted(zunVector2T<T>(-1, -2)), 0, 0, 3, 4);
    EXPECT_RECT(r, 1, 2, 3, 4); // the copies left it alone
    EXPECT_EQ(&r.MoveTo(5, 5), &r);
    EXPECT_RECT(r.Offset(1, 1), 6, 6, 3, 4);
    EXPECT_RECT(r.MoveTo(zunVector2T<T>(0, 0)).Offset(zunVector2T<T>(2, 2)), 2, 2, 3, 4);
}

TYPED_TEST(RectangleBoth, InflateIsOneSided)
{
    using T = TypeParam;
    zunRectangleT<T> r(10, 10, 20, 20);
    EXPECT_RECT(r.Inflated(1, 2), 9, 8, 21, 22);
    EXPECT_EQ(r.Inflated(1, 2).Right(), T(30));
    EXPECT_EQ(r.Inflated(1, 2).Bottom(), T(30));
    EXPECT_RECT(r.Inflated(zunSizeT<T>(1, 2)), 9, 8, 21, 22);
    EXPECT_RECT(r, 10, 10, 20, 20);
    r.Inflate(1, 2);
    EXPECT_RECT(r, 9, 8, 21, 22);
    r.Inflate(zunSizeT<T>(-1, -2));
    EXPECT_RECT(r, 10, 10, 20, 20);
}

TYPED_TEST(RectangleBoth, NormalizeFlipsNegativeSizes)
{
    zunRectangleT<TypeParam> r(10, 10, -10, -4);
    EXPECT_RECT(r.Normalized(), 0, 6, 10, 4);
    EXPECT_RECT(r, 10, 10, -10, -4);
    r.Normalize();
    EXPECT_RECT(r, 0, 6, 10, 4);
    EXPECT_RECT(r.Normalize(), 0, 6, 10, 4);
    EXPECT_RECT(zunRectangleT<TypeParam>(1, 1, -2, 3).Normalized(), -1, 1, 2, 3);
}

TYPED_TEST(RectangleBoth, ContainsReadsANegativeSizeThroughItsBounds)
{
    zunRectangleT<TypeParam> r(10, 10, -10, -10);
    EXPECT_TRUE(r.Contains(0, 0));
    EXPECT_TRUE(r.Contains(zunVector2T<TypeParam>(10, 10)));
    EXPECT_FALSE(r.Contains(11, 5));
    EXPECT_TRUE(r.IsEmpty());
    EXPECT_FALSE(r.IsValid());
}

TYPED_TEST(RectangleBoth, ContainsIsInclusiveAtBothEnds)
{
    zunRectangleT<TypeParam> r(0, 0, 10, 10);
    EXPECT_TRUE(r.Contains(10, 10));
    EXPECT_TRUE(r.Contains(0, 0));
    EXPECT_FALSE(r.Contains(11, 10));
    EXPECT_FALSE(r.Contains(10, 11));
    EXPECT_FALSE(r.Contains(-1, 5));
}

TYPED_TEST(RectangleBoth, ADegenerateAxisContainsNothing)
{
    zunRectangleT<TypeParam> line(0, 0, 0, 10);
    EXPECT_FALSE(line.Contains(0, 0));
    EXPECT_FALSE(line.Contains(0, 5));
    EXPECT_FALSE(zunRectangleT<TypeParam>(0, 0, 10, 0).Contains(5, 0));
}

TYPED_TEST(RectangleBoth, ContainsOfARectangleLooksAtItsOwnCornersOnly)
{
    using R = zunRectangleT<TypeParam>;
    R r(0, 0, 10, 10);
    EXPECT_TRUE(r.Contains(R(1000, 1000, 5, 5)));
    EXPECT_TRUE(r.Contains(R(-50, -50, 500, 500)));
    EXPECT_TRUE(r.Contains(R()));
    R line(0, 0, 0, 10);
    EXPECT_FALSE(line.Contains(R(0, 0, 0, 10)));
    EXPECT_FALSE(line.Contains(R(1, 1, 1, 1)));
    EXPECT_TRUE(R(10, 10, -10, -10).Contains(R(500, 500, 1, 1)));
}

TYPED_TEST(RectangleBoth, Intersection)
{
    using R = zunRectangleT<TypeParam>;
    EXPECT_RECT(R(0, 0, 10, 10) & R(5, 5, 10, 10), 5, 5, 5, 5);
    EXPECT_RECT(R(10, 10, -10, -10) & R(5, 5, 10, 10), 5, 5, 5, 5);
    EXPECT_RECT(R(5, 5, 10, 10) & R(10, 10, -10, -10), 5, 5, 5, 5);
    EXPECT_RECT(R(0, 0, 10, 10).Intersection(R(5, 5, 10, 10)), 5, 5, 5, 5);
    EXPECT_TRUE(R(0, 0, 10, 10).Intersects(R(5, 5, 10, 10)));
    EXPECT_TRUE(R(10, 10, -10, -10).Intersects(R(5, 5, 10, 10)));
}

TYPED_TEST(RectangleBoth, TouchingRectanglesDoNotIntersect)
{
    using R = zunRectangleT<TypeParam>;
    EXPECT_RECT(R(0, 0, 10, 10) & R(10, 0, 5, 5), 0, 0, 0, 0);
    EXPECT_FALSE(R(0, 0, 10, 10).Intersects(R(10, 0, 5, 5)));
    EXPECT_FALSE(R(0, 0, 10, 10).Intersects(R(0, 10, 5, 5)));
    EXPECT_FALSE(R(0, 0, 10, 10).Intersects(R(20, 20, 5, 5)));
}

TYPED_TEST(RectangleBoth, ADegenerateRectangleIntersectsNothing)
{
    using R = zunRectangleT<TypeParam>;
    EXPECT_RECT(R(0, 0, 0, 10) & R(0, 0, 5, 5), 0, 0, 0, 0);
    EXPECT_RECT(R(0, 0, 5, 5) & R(0, 0, 0, 10), 0, 0, 0, 0);
    EXPECT_FALSE(R(1, 1, 5, 5).Intersects(R(2, 2, 3, 0)));
}

TYPED_TEST(RectangleBoth, UnionIsNormalized)
{
    using R = zunRectangleT<TypeParam>;
    EXPECT_RECT(R(10, 10, -10, -10) | R(20, 20, -5, -5), 0, 0, 20, 20);
    EXPECT_RECT(R(10, 10, -10, -10).Union(R(20, 20, -5, -5)), 0, 0, 20, 20);
    EXPECT_RECT(R(0, 0, 1, 1) | R(5, 5, 1, 1), 0, 0, 6, 6);
}

TYPED_TEST(RectangleBoth, UnionSkipsOnlyANullRectangle)
{
    using R = zunRectangleT<TypeParam>;
    EXPECT_RECT(R(0, 0, 0, 0) | R(20, 20, -5, -5), 20, 20, -5, -5); // unnormalized
    EXPECT_RECT(R(20, 20, -5, -5) | R(0, 0, 0, 0), 20, 20, -5, -5);
    EXPECT_RECT(R(1, 1, 0, 0) | R(2, 2, 3, 3), 2, 2, 3, 3); // the null one's position is dropped
    EXPECT_RECT(R(1, 1, 0, 5) | R(2, 2, 3, 3), 1, 1, 4, 5); // a zero width with a height counts
}

TYPED_TEST(RectangleBoth, CenterInMovesAwayFromTheOuterCenter)
{
    using R = zunRectangleT<TypeParam>;
    R r(0, 0, 10, 10), outer(100, 100, 20, 20);
    EXPECT_RECT(r.CenteredIn(outer, R::Horizontal), -105, 0, 10, 10);
    EXPECT_RECT(r.CenteredIn(outer, R::Vertical), 0, -105, 10, 10);
    EXPECT_RECT(r.CenteredIn(outer, R::Both), -105, -105, 10, 10);
    EXPECT_RECT(r.CenteredIn(outer, static_cast<enum R::Center>(3)), 0, 0, 10, 10);
    EXPECT_RECT(r, 0, 0, 10, 10);
    EXPECT_EQ(&r.CenterIn(outer, R::Both), &r);
    EXPECT_RECT(r, -105, -105, 10, 10);
}

TYPED_TEST(RectangleBoth, CenterEnumerationSitsBesideTheCenterMember)
{
    using R = zunRectangleT<TypeParam>;
    EXPECT_EQ(static_cast<int>(R::Horizontal), 0);
    EXPECT_EQ(static_cast<int>(R::Vertical), 1);
    EXPECT_EQ(static_cast<int>(R::Both), 2);
    enum R::Center mode = R::Vertical;
    EXPECT_EQ(mode, R::Vertical);
    zunVector2T<TypeParam> center = R(0, 0, 10, 20).Center();
    EXPECT_EQ(center.x, TypeParam(5));
    EXPECT_EQ(center.y, TypeParam(10));
}

TYPED_TEST(RectangleBoth, IsNullIsExact)
{
    using R = zunRectangleT<TypeParam>;
    EXPECT_TRUE(R(5, 5, 0, 0).IsNull());
    EXPECT_FALSE(R(0, 0, 0, 1).IsNull());
    EXPECT_FALSE(R(0, 0, -1, 0).IsNull());
}

// --- int only -----------------------------------------------------------------

TEST(RectangleInt, CenterTruncatesTowardZero)
{
    zunVector2T<int> c = zunRectangleT<int>(0, 0, -3, -3).Center();
    EXPECT_EQ(c.x, -1);
    EXPECT_EQ(c.y, -1);
    c = zunRectangleT<int>(0, 0, 3, 5).Center();
    EXPECT_EQ(c.x, 1);
    EXPECT_EQ(c.y, 2);
}

TEST(RectangleInt, EmptyAndValidAtOne)
{
    EXPECT_TRUE(zunRectangleT<int>(0, 0, 1, 1).IsValid());
    EXPECT_FALSE(zunRectangleT<int>(0, 0, 1, 1).IsEmpty());
    EXPECT_TRUE(zunRectangleT<int>(0, 0, 0, 1).IsEmpty());
    EXPECT_FALSE(zunRectangleT<int>(0, 0, 1, -1).IsValid());
}

TEST(RectangleInt, AnAxisOfOneIsNotDegenerate)
{
    EXPECT_TRUE(zunRectangleT<int>(0, 0, 1, 1).Contains(1, 1));
    EXPECT_TRUE(zunRectangleT<int>(0, 0, -1, 1).Contains(-1, 0));
}

TEST(RectangleInt, ArithmeticWrapsAround)
{
    zunRectangleT<int> r(INT_MAX, 0, 1, 1);
    EXPECT_EQ(r.Right(), INT_MIN);
    r.Offset(1, 0);
    EXPECT_EQ(r.left, INT_MIN);
    EXPECT_EQ(zunRectangleT<int>(0, 0, INT_MIN, 1).Normalized().width, INT_MIN);
}

// --- double only --------------------------------------------------------------

TEST(RectangleDouble, CenterHalvesExactly)
{
    zunVector2T<double> c = zunRectangleT<double>(0, 0, -3, -3).Center();
    EXPECT_EQ(c.x, -1.5);
    EXPECT_EQ(c.y, -1.5);
}

TEST(RectangleDouble, EmptyAndValidAboveZero)
{
    EXPECT_TRUE(zunRectangleT<double>(0, 0, 0.25, 0.25).IsValid());
    EXPECT_FALSE(zunRectangleT<double>(0, 0, 0.25, 0.25).IsEmpty());
    EXPECT_TRUE(zunRectangleT<double>(0, 0, 0.0, 1.0).IsEmpty());
    EXPECT_TRUE(zunRectangleT<double>(0, 0, -0.5, 1.0).IsEmpty());
}

TEST(RectangleDouble, ANaNSizeIsNeitherEmptyNorValid)
{
    double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(zunRectangleT<double>(0, 0, nan, 1.0).IsEmpty());
    EXPECT_FALSE(zunRectangleT<double>(0, 0, nan, 1.0).IsValid());
    EXPECT_FALSE(zunRectangleT<double>(0, 0, 1.0, nan).IsEmpty());
    EXPECT_FALSE(zunRectangleT<double>(0, 0, 1.0, nan).IsValid());
}

TEST(RectangleDouble, DegenerateUpToMachineEpsilon)
{
    using R = zunRectangleT<double>;
    R tiny(0, 0, 1e-17, 10);
    R r = tiny & R(0, 0, 5, 5);
    EXPECT_EQ(r.left, 0.0);
    EXPECT_EQ(r.top, 0.0);
    EXPECT_EQ(r.width, 0.0);
    EXPECT_EQ(r.height, 0.0);
    EXPECT_FALSE(tiny.Contains(0.0, 1.0));
    EXPECT_FALSE(R(0, 0, 2.220446049250313e-16, 1).Contains(0.0, 0.5));
    EXPECT_TRUE(R(0, 0, 4.440892098500626e-16, 1).Contains(0.0, 0.5));
    EXPECT_TRUE(R(0, 0, 0.5, 0.5).Contains(0.25, 0.5)); // a size below 1 counts for double
}

TEST(RectangleDouble, ANaNCoordinateIsNotContained)
{
    double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(zunRectangleT<double>(0, 0, 10, 10).Contains(nan, 5.0));
    EXPECT_FALSE(zunRectangleT<double>(0, 0, 10, 10).Contains(5.0, nan));
}
