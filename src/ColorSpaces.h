// ColorSpaces.h - the conversion table between the six color spaces.
//
// Spaces are numbered as zunColor::ColorSpace (RGB 0, HSV 1, HSL 2, Lab 3,
// XYZ 4, xyY 5). Convert clamps the input to the source space's domain, then
// runs the elementary steps of the route table; the HSV row's HSL and XYZ
// cells are crossed on purpose (see zunColor.h).
#ifndef ZUN_COLOR_SPACES_H
#define ZUN_COLOR_SPACES_H

namespace zunColorPrivate
{
    const int SpaceCount = 6;

    /// Converts `in` (in space `from`) into `out` (in space `to`). With a space
    /// outside 0..5 it reports zunFixMe("unsupported color space"), leaves
    /// `out` unwritten and gives false. `in` and `out` may be the same array.
    bool Convert(const double in[3], int from, int to, double out[3]);
}

#endif // ZUN_COLOR_SPACES_H
