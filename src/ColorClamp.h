// ColorClamp.h - the clamp shared by the color and tone-map families.
#ifndef ZUN_COLOR_CLAMP_H
#define ZUN_COLOR_CLAMP_H

namespace zunColorPrivate
{
    /// `lower` for any value that is not greater than it (a NaN included),
    /// `upper` for a value above it, else the value. The order of the tests is
    /// the contract: a NaN must land on the lower bound.
    inline double Clamp(double value, double lower, double upper)
    {
        if (!(value > lower))
            return lower;
        if (value > upper)
            return upper;
        return value;
    }
}

#endif // ZUN_COLOR_CLAMP_H
