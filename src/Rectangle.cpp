// zunRectangleT for int and double. The two instantiations share every
// operation; RectangleRules<T> holds the few points where they differ.
#include "zunRectangle.h"

#include <cstdint>

namespace
{
    template <typename T> struct RectangleRules;

    // int arithmetic wraps around in two's complement, as the interface
    // promises; it goes through unsigned so that an overflow stays defined.
    template <> struct RectangleRules<int>
    {
        static int Add(int a, int b) { return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b)); }
        static int Sub(int a, int b) { return static_cast<int>(static_cast<unsigned>(a) - static_cast<unsigned>(b)); }
        static int Negate(int a) { return Sub(0, a); }
        static int Half(int a) { return a / 2; }

        static bool IsDegenerate(int low, int high)
        {
            std::int64_t extent = Sub(high, low);
            return (extent < 0 ? -extent : extent) < 1;
        }
        static bool IsEmpty(int width, int height) { return width < 1 || height < 1; }
        static bool IsValid(int width, int height) { return width >= 1 && height >= 1; }
    };

    template <> struct RectangleRules<double>
    {
        static double Add(double a, double b) { return a + b; }
        static double Sub(double a, double b) { return a - b; }
        static double Negate(double a) { return -a; }
        static double Half(double a) { return a * 0.5; }

        static bool IsDegenerate(double low, double high)
        {
            double extent = high - low;
            return 2.220446049250313e-16 >= (extent < 0.0 ? -extent : extent);
        }
        // Written so that a NaN size makes both IsEmpty and IsValid false.
        static bool IsEmpty(double width, double height) { return 0.0 >= width || 0.0 >= height; }
        static bool IsValid(double width, double height) { return width > 0.0 && height > 0.0; }
    };

    /// The bounds of one axis with position p and size s: a negative size
    /// lies before its position.
    template <typename T> struct Bounds
    {
        T low, high;

        Bounds(T position, T size)
        {
            if (size < T(0))
            {
                low = RectangleRules<T>::Add(position, size);
                high = position;
            }
            else
            {
                low = position;
                high = RectangleRules<T>::Add(position, size);
            }
        }

        bool IsDegenerate() const { return RectangleRules<T>::IsDegenerate(low, high); }
        // Inclusive at both ends; a NaN coordinate lies nowhere.
        bool Holds(T value) const { return low <= value && value <= high; }
        bool Overlaps(Bounds const & other) const { return !(low >= other.high || other.low >= high); }
    };

    template <typename T> T Lesser(T a, T b)
    {
        return b < a ? b : a;
    }
    template <typename T> T Greater(T a, T b)
    {
        return a < b ? b : a;
    }
}

template <typename T> zunRectangleT<T>::zunRectangleT() : left(0), top(0), width(0), height(0) {}

template <typename T>
zunRectangleT<T>::zunRectangleT(T left_, T top_, T width_, T height_)
    : left(left_), top(top_), width(width_), height(height_)
{
}

template <typename T> zunRectangleT<T>::zunRectangleT(zunVector2T<T> const & corner, zunVector2T<T> const & opposite)
{
    Set(corner, opposite);
}

template <typename T> zunRectangleT<T>::zunRectangleT(zunVector2T<T> const & corner, zunSizeT<T> const & size)
{
    Set(corner, size);
}

template <typename T> zunRectangleT<T> & zunRectangleT<T>::Set(T left_, T top_, T width_, T height_)
{
    left = left_;
    top = top_;
    width = width_;
    height = height_;
    return *this;
}

template <typename T>
zunRectangleT<T> & zunRectangleT<T>::Set(zunVector2T<T> const & corner, zunVector2T<T> const & opposite)
{
    return Set(corner.x, corner.y, RectangleRules<T>::Sub(opposite.x, corner.x),
               RectangleRules<T>::Sub(opposite.y, corner.y));
}

template <typename T> zunRectangleT<T> & zunRectangleT<T>::Set(zunVector2T<T> const & corner, zunSizeT<T> const & size)
{
    return Set(corner.x, corner.y, size.width, size.height);
}

template <typename T> T zunRectangleT<T>::Left() const
{
    return left;
}
template <typename T> T zunRectangleT<T>::Top() const
{
    return top;
}
template <typename T> T zunRectangleT<T>::Width() const
{
    return width;
}
template <typename T> T zunRectangleT<T>::Height() const
{
    return height;
}
template <typename T> T zunRectangleT<T>::Right() const
{
    return RectangleRules<T>::Add(left, width);
}
template <typename T> T zunRectangleT<T>::Bottom() const
{
    return RectangleRules<T>::Add(top, height);
}

template <typename T> zunVector2T<T> zunRectangleT<T>::TopLeft() const
{
    return zunVector2T<T>(left, top);
}
template <typename T> zunVector2T<T> zunRectangleT<T>::TopRight() const
{
    return zunVector2T<T>(Right(), top);
}
template <typename T> zunVector2T<T> zunRectangleT<T>::BottomLeft() const
{
    return zunVector2T<T>(left, Bottom());
}
template <typename T> zunVector2T<T> zunRectangleT<T>::BottomRight() const
{
    return zunVector2T<T>(Right(), Bottom());
}
template <typename T> zunSizeT<T> zunRectangleT<T>::Size() const
{
    return zunSizeT<T>(width, height);
}

template <typename T> zunVector2T<T> zunRectangleT<T>::Center() const
{
    return zunVector2T<T>(RectangleRules<T>::Add(left, RectangleRules<T>::Half(width)),
                          RectangleRules<T>::Add(top, RectangleRules<T>::Half(height)));
}

template <typename T> zunRectangleT<T> & zunRectangleT<T>::SetLeft(T left_)
{
    left = left_;
    return *this;
}

template <typename T> zunRectangleT<T> & zunRectangleT<T>::SetTop(T top_)
{
    top = top_;
    return *this;
}

template <typename T> zunRectangleT<T> & zunRectangleT<T>::SetRight(T right)
{
    width = RectangleRules<T>::Sub(right, left);
    return *this;
}

template <typename T> zunRectangleT<T> & zunRectangleT<T>::SetBottom(T bottom)
{
    height = RectangleRules<T>::Sub(bottom, top);
    return *this;
}

template <typename T> zunRectangleT<T> & zunRectangleT<T>::SetWidth(T width_)
{
    width = width_;
    return *this;
}

template <typename T> zunRectangleT<T> & zunRectangleT<T>::SetHeight(T height_)
{
    height = height_;
    return *this;
}

template <typename T> zunRectangleT<T> & zunRectangleT<T>::SetSize(zunSizeT<T> const & size)
{
    width = size.width;
    height = size.height;
    return *this;
}

template <typename T> zunRectangleT<T> & zunRectangleT<T>::MoveTo(T x, T y)
{
    left = x;
    top = y;
    return *this;
}

template <typename T> zunRectangleT<T> & zunRectangleT<T>::MoveTo(zunVector2T<T> position)
{
    return MoveTo(position.x, position.y);
}

template <typename T> zunRectangleT<T> zunRectangleT<T>::MovedTo(T x, T y) const
{
    return zunRectangleT(*this).MoveTo(x, y);
}

template <typename T> zunRectangleT<T> zunRectangleT<T>::MovedTo(zunVector2T<T> position) const
{
    return zunRectangleT(*this).MoveTo(position);
}

template <typename T> zunRectangleT<T> & zunRectangleT<T>::Offset(T dx, T dy)
{
    left = RectangleRules<T>::Add(left, dx);
    top = RectangleRules<T>::Add(top, dy);
    return *this;
}

template <typename T> zunRectangleT<T> & zunRectangleT<T>::Offset(zunVector2T<T> delta)
{
    return Offset(delta.x, delta.y);
}

template <typename T> zunRectangleT<T> zunRectangleT<T>::Offsetted(T dx, T dy) const
{
    return zunRectangleT(*this).Offset(dx, dy);
}

template <typename T> zunRectangleT<T> zunRectangleT<T>::Offsetted(zunVector2T<T> delta) const
{
    return zunRectangleT(*this).Offset(delta);
}

template <typename T> zunRectangleT<T> & zunRectangleT<T>::Inflate(T dx, T dy)
{
    // One-sided: the size grows by dx, not 2 * dx, so Right() and Bottom() stay.
    left = RectangleRules<T>::Sub(left, dx);
    top = RectangleRules<T>::Sub(top, dy);
    width = RectangleRules<T>::Add(width, dx);
    height = RectangleRules<T>::Add(height, dy);
    return *this;
}

template <typename T> zunRectangleT<T> & zunRectangleT<T>::Inflate(zunSizeT<T> const & delta)
{
    return Inflate(delta.width, delta.height);
}

template <typename T> zunRectangleT<T> zunRectangleT<T>::Inflated(T dx, T dy) const
{
    return zunRectangleT(*this).Inflate(dx, dy);
}

template <typename T> zunRectangleT<T> zunRectangleT<T>::Inflated(zunSizeT<T> const & delta) const
{
    return zunRectangleT(*this).Inflate(delta);
}

template <typename T> zunRectangleT<T> & zunRectangleT<T>::Normalize()
{
    if (width < T(0))
    {
        left = RectangleRules<T>::Add(left, width);
        width = RectangleRules<T>::Negate(width);
    }
    if (height < T(0))
    {
        top = RectangleRules<T>::Add(top, height);
        height = RectangleRules<T>::Negate(height);
    }
    return *this;
}

template <typename T> zunRectangleT<T> zunRectangleT<T>::Normalized() const
{
    return zunRectangleT(*this).Normalize();
}

template <typename T> zunRectangleT<T> & zunRectangleT<T>::CenterIn(zunRectangleT const & outer, enum Center mode)
{
    // The offset runs from outer's center to this one's: the rectangle moves
    // away from outer by the distance between the centers. Callers rely on it.
    zunVector2T<T> mine = Center();
    zunVector2T<T> theirs = outer.Center();
    if (mode == Horizontal || mode == Both)
        left = RectangleRules<T>::Add(left, RectangleRules<T>::Sub(mine.x, theirs.x));
    if (mode == Vertical || mode == Both)
        top = RectangleRules<T>::Add(top, RectangleRules<T>::Sub(mine.y, theirs.y));
    return *this;
}

template <typename T> zunRectangleT<T> zunRectangleT<T>::CenteredIn(zunRectangleT const & outer, enum Center mode) const
{
    return zunRectangleT(*this).CenterIn(outer, mode);
}

template <typename T> bool zunRectangleT<T>::Contains(T x, T y) const
{
    Bounds<T> horizontal(left, width);
    if (horizontal.IsDegenerate() || !horizontal.Holds(x))
        return false;
    Bounds<T> vertical(top, height);
    return !vertical.IsDegenerate() && vertical.Holds(y);
}

template <typename T> bool zunRectangleT<T>::Contains(zunVector2T<T> const & point) const
{
    return Contains(point.x, point.y);
}

template <typename T> bool zunRectangleT<T>::Contains(zunRectangleT const &) const
{
    // The argument is not read: the test runs on this rectangle's own corners.
    return Contains(left, top) && Contains(Right(), Bottom());
}

template <typename T> bool zunRectangleT<T>::Intersects(zunRectangleT const & other) const
{
    Bounds<T> x(left, width), y(top, height);
    Bounds<T> otherX(other.left, other.width), otherY(other.top, other.height);
    if (x.IsDegenerate() || y.IsDegenerate() || otherX.IsDegenerate() || otherY.IsDegenerate())
        return false;
    return x.Overlaps(otherX) && y.Overlaps(otherY);
}

template <typename T> zunRectangleT<T> zunRectangleT<T>::operator&(zunRectangleT const & other) const
{
    if (!Intersects(other))
        return zunRectangleT();
    Bounds<T> x(left, width), y(top, height);
    Bounds<T> otherX(other.left, other.width), otherY(other.top, other.height);
    T newLeft = Greater(x.low, otherX.low);
    T newTop = Greater(y.low, otherY.low);
    return zunRectangleT(newLeft, newTop, RectangleRules<T>::Sub(Lesser(x.high, otherX.high), newLeft),
                         RectangleRules<T>::Sub(Lesser(y.high, otherY.high), newTop));
}

template <typename T> zunRectangleT<T> zunRectangleT<T>::Intersection(zunRectangleT const & other) const
{
    return *this & other;
}

template <typename T> zunRectangleT<T> zunRectangleT<T>::operator|(zunRectangleT const & other) const
{
    if (IsNull())
        return other;
    if (other.IsNull())
        return *this;
    Bounds<T> x(left, width), y(top, height);
    Bounds<T> otherX(other.left, other.width), otherY(other.top, other.height);
    T newLeft = Lesser(x.low, otherX.low);
    T newTop = Lesser(y.low, otherY.low);
    return zunRectangleT(newLeft, newTop, RectangleRules<T>::Sub(Greater(x.high, otherX.high), newLeft),
                         RectangleRules<T>::Sub(Greater(y.high, otherY.high), newTop));
}

template <typename T> zunRectangleT<T> zunRectangleT<T>::Union(zunRectangleT const & other) const
{
    return *this | other;
}

template <typename T> bool zunRectangleT<T>::IsEmpty() const
{
    return RectangleRules<T>::IsEmpty(width, height);
}
template <typename T> bool zunRectangleT<T>::IsValid() const
{
    return RectangleRules<T>::IsValid(width, height);
}
template <typename T> bool zunRectangleT<T>::IsNull() const
{
    return width == T(0) && height == T(0);
}

// The exported instantiations; the header declares them ZUN_API.
template class zunRectangleT<int>;
template class zunRectangleT<double>;
