// zunRectangle.h - the two-dimensional rectangle, for int and double.
//
// A rectangle stores an anchor corner (`left`, `top`) and a size (`width`,
// `height`); the y axis runs downward, so Bottom() is top + height. Sizes may
// be negative and nothing normalizes them except Normalize(). The tests
// Contains, Intersects, operator& and operator| read a negative size through
// the bounds of each axis:
//
//   size s >= 0:  low = p,      high = p + s
//   size s <  0:  low = p + s,  high = p
//
// every other operation takes the fields as they stand.
//
// The two instantiations differ only where a size is judged:
//
//                     int                              double
//   degenerate axis   |high - low| < 1                 2.220446049250313e-16 >= |high - low|
//   IsEmpty           width < 1 or height < 1          0.0 >= width or 0.0 >= height
//   IsValid           width >= 1 and height >= 1       width > 0.0 and height > 0.0
//   IsNull            width == 0 and height == 0       the same, exact
//   Center            left + width / 2 (truncating)    left + width * 0.5
//
// A verb changes the rectangle and returns a reference to it; its past
// participle (MovedTo, Offsetted, Inflated, Normalized, CenteredIn) returns a
// changed copy. Nothing is reported; the int forms wrap around as two's
// complement arithmetic does.
//
//   zunRectangleT<int> view(0, 0, 640, 480);
//   zunRectangleT<int> hit = view & zunRectangleT<int>(600, 400, 100, 100); // (600, 400, 40, 80)
//   if (view.Contains(320, 240)) ...
#ifndef ZUN_RECTANGLE_H
#define ZUN_RECTANGLE_H

#include "zunConfig.h"
#include "zunTypes.h"

/// An anchor corner and a signed size; instantiated for int and double (see
/// the file's description for how each judges a size).
template <typename T> class zunRectangleT
{
public:
    /// How CenterIn moves the rectangle; any other value moves nothing.
    enum Center
    {
        Horizontal = 0, ///< only x is moved
        Vertical = 1,   ///< only y is moved
        Both = 2        ///< x and y are moved
    };

    T left;   ///< x of the anchor corner
    T top;    ///< y of the anchor corner
    T width;  ///< may be negative
    T height; ///< may be negative

    /// All fields 0.
    zunRectangleT();
    /// The fields as given, a negative size included.
    zunRectangleT(T left, T top, T width, T height);
    /// Anchored at `corner`; the size is opposite - corner and may come out negative.
    zunRectangleT(zunVector2T<T> const & corner, zunVector2T<T> const & opposite);
    /// Anchored at `corner` with `size` as given.
    zunRectangleT(zunVector2T<T> const & corner, zunSizeT<T> const & size);
    /// Copies and moves take the four fields as they stand.
    ///@{
    zunRectangleT(zunRectangleT const & other) = default;
    zunRectangleT(zunRectangleT && other) noexcept = default;
    zunRectangleT & operator=(zunRectangleT const & other) = default;
    zunRectangleT & operator=(zunRectangleT && other) noexcept = default;
    ///@}

    /// Sets all four fields, as the constructor of the same arguments does.
    ///@{
    zunRectangleT & Set(T left, T top, T width, T height);
    zunRectangleT & Set(zunVector2T<T> const & corner, zunVector2T<T> const & opposite);
    zunRectangleT & Set(zunVector2T<T> const & corner, zunSizeT<T> const & size);
    ///@}

    /// The stored fields; width and height may be negative.
    ///@{
    T Left() const;
    T Top() const;
    T Width() const;
    T Height() const;
    ///@}
    /// left + width.
    T Right() const;
    /// top + height.
    T Bottom() const;
    /// The corners, built from left or Right() and top or Bottom(); with a
    /// negative size "right" lies left of "left".
    ///@{
    zunVector2T<T> TopLeft() const;
    zunVector2T<T> TopRight() const;
    zunVector2T<T> BottomLeft() const;
    zunVector2T<T> BottomRight() const;
    ///@}
    /// (width, height) as stored.
    zunSizeT<T> Size() const;
    /// (left + width / 2, top + height / 2); int truncates toward zero.
    zunVector2T<T> Center() const;

    /// Write the position only: the opposite edge moves along.
    ///@{
    zunRectangleT & SetLeft(T left);
    zunRectangleT & SetTop(T top);
    ///@}
    /// width = right - left.
    zunRectangleT & SetRight(T right);
    /// height = bottom - top.
    zunRectangleT & SetBottom(T bottom);
    /// Write the size only, negative values included: left and top stay.
    ///@{
    zunRectangleT & SetWidth(T width);
    zunRectangleT & SetHeight(T height);
    zunRectangleT & SetSize(zunSizeT<T> const & size);
    ///@}

    /// New left and top; the size is kept. MovedTo returns a moved copy.
    ///@{
    zunRectangleT & MoveTo(T x, T y);
    zunRectangleT & MoveTo(zunVector2T<T> position);
    zunRectangleT MovedTo(T x, T y) const;
    zunRectangleT MovedTo(zunVector2T<T> position) const;
    ///@}

    /// Adds to left and top; the size is kept. Offsetted returns a moved copy.
    ///@{
    zunRectangleT & Offset(T dx, T dy);
    zunRectangleT & Offset(zunVector2T<T> delta);
    zunRectangleT Offsetted(T dx, T dy) const;
    zunRectangleT Offsetted(zunVector2T<T> delta) const;
    ///@}

    /// One-sided on purpose: left -= dx, top -= dy, width += dx, height += dy,
    /// so the left and top edges move out while Right() and Bottom() stay. The
    /// size form takes dx, dy from its width and height. Inflated returns a
    /// changed copy.
    ///@{
    zunRectangleT & Inflate(T dx, T dy);
    zunRectangleT & Inflate(zunSizeT<T> const & delta);
    zunRectangleT Inflated(T dx, T dy) const;
    zunRectangleT Inflated(zunSizeT<T> const & delta) const;
    ///@}

    /// A negative width moves left by it and becomes positive; likewise height.
    /// Normalized returns a changed copy.
    ///@{
    zunRectangleT & Normalize();
    zunRectangleT Normalized() const;
    ///@}

    /// With d = Center() - outer.Center(), adds d.x to left (Horizontal, Both)
    /// and d.y to top (Vertical, Both). The offset runs from outer to this
    /// rectangle: the move goes away from outer by the distance between the
    /// centers, it does not bring the centers together. CenteredIn returns a
    /// changed copy.
    ///@{
    zunRectangleT & CenterIn(zunRectangleT const & outer, enum Center mode);
    zunRectangleT CenteredIn(zunRectangleT const & outer, enum Center mode) const;
    ///@}

    /// Per axis, x then y: false on a degenerate axis, false outside low..high;
    /// both ends are inclusive, so a point on the right or bottom edge is in.
    ///@{
    bool Contains(T x, T y) const;
    bool Contains(zunVector2T<T> const & point) const;
    ///@}
    /// Does not look at `other`: applies the point test to this rectangle's own
    /// corners (left, top) and (Right(), Bottom()), so it answers whether this
    /// rectangle has a non-degenerate extent on both axes.
    bool Contains(zunRectangleT const & other) const;

    /// False if an axis of either rectangle is degenerate, or if on an axis
    /// one low >= the other high: rectangles that merely touch do not intersect.
    bool Intersects(zunRectangleT const & other) const;

    /// The common part, normalized; the all-zero rectangle when Intersects is false.
    ///@{
    zunRectangleT operator&(zunRectangleT const & other) const;
    zunRectangleT Intersection(zunRectangleT const & other) const;
    ///@}

    /// The enclosing rectangle, normalized. A rectangle with both sizes exactly
    /// zero is skipped, position and all: null | other gives other as it
    /// stands (negative size included), this | null gives this. A zero width
    /// with a height is not null and its position counts.
    ///@{
    zunRectangleT operator|(zunRectangleT const & other) const;
    zunRectangleT Union(zunRectangleT const & other) const;
    ///@}

    /// int: width < 1 or height < 1; double: 0.0 >= width or 0.0 >= height.
    bool IsEmpty() const;
    /// Both sizes exactly zero, whatever the position.
    bool IsNull() const;
    /// int: width >= 1 and height >= 1; double: width > 0.0 and height > 0.0.
    /// A NaN size is neither empty nor valid.
    bool IsValid() const;
};

extern template class ZUN_API zunRectangleT<int>;
extern template class ZUN_API zunRectangleT<double>;

#endif // ZUN_RECTANGLE_H
