// The elementary conversion steps between color spaces and the route table
// that chains them. Constants are those of the stored documents: changing one
// changes every color that documents hold in a space other than RGB.
#include "ColorSpaces.h"

#include <algorithm>
#include <cmath>

#include "ColorClamp.h"
#include "zunException.h"

namespace zunColorPrivate
{
    namespace
    {
        enum Space
        {
            RGB = 0,
            HSV = 1,
            HSL = 2,
            Lab = 3,
            XYZ = 4,
            xyY = 5,
            End = -1
        };

        const double WhiteX = 0.95047;
        const double WhiteY = 1.0;
        const double WhiteZ = 1.08883;

        struct Domain
        {
            double lower[3];
            double upper[3];
        };

        const Domain Domains[SpaceCount] = {
            {{0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}},             // RGB
            {{0.0, 0.0, 0.0}, {360.0, 1.0, 1.0}},           // HSV
            {{0.0, 0.0, 0.0}, {360.0, 1.0, 1.0}},           // HSL
            {{0.0, -127.0, -127.0}, {100.0, 128.0, 128.0}}, // Lab
            {{0.0, 0.0, 0.0}, {WhiteX, WhiteY, WhiteZ}},    // XYZ
            {{0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}},             // xyY
        };

        // Each cell lists the spaces the triple passes through after the
        // source, ending at the cell's result; an empty cell stores the triple
        // as it is. The HSV row's HSL and XYZ cells are crossed deliberately:
        // they end in XYZ and HSL, and documents rely on it.
        const int Routes[SpaceCount][SpaceCount][4] = {
            // from RGB
            {{End}, {HSV, End}, {HSL, End}, {XYZ, Lab, End}, {XYZ, End}, {XYZ, xyY, End}},
            // from HSV
            {{RGB, End}, {End}, {RGB, XYZ, End}, {RGB, XYZ, Lab, End}, {RGB, HSL, End}, {RGB, XYZ, xyY, End}},
            // from HSL
            {{RGB, End}, {RGB, HSV, End}, {End}, {RGB, XYZ, Lab, End}, {RGB, XYZ, End}, {RGB, XYZ, xyY, End}},
            // from Lab
            {{XYZ, RGB, End}, {XYZ, RGB, HSV, End}, {XYZ, RGB, HSL, End}, {End}, {XYZ, End}, {XYZ, xyY, End}},
            // from XYZ
            {{RGB, End}, {RGB, HSV, End}, {RGB, HSL, End}, {Lab, End}, {End}, {xyY, End}},
            // from xyY
            {{XYZ, RGB, End}, {XYZ, RGB, HSV, End}, {XYZ, RGB, HSL, End}, {XYZ, Lab, End}, {XYZ, End}, {End}},
        };

        void ClampToDomain(double c[3], int space)
        {
            const Domain & domain = Domains[space];
            for (int i = 0; i < 3; ++i)
                c[i] = Clamp(c[i], domain.lower[i], domain.upper[i]);
        }

        void RgbToHsv(double c[3])
        {
            double rgb[3];
            for (int i = 0; i < 3; ++i)
                rgb[i] = c[i] < 0.00001 ? 0.0 : (c[i] > 0.9999 ? 1.0 : c[i]);
            const double r = rgb[0], g = rgb[1], b = rgb[2];
            const double v = std::max({r, g, b});
            const double d = v - std::min({r, g, b});
            if (!(v > 0.00001))
            {
                c[0] = 0.0;
                c[1] = 0.0;
                c[2] = v;
                return;
            }
            double h;
            if (d == 0.0)
                h = 0.0;
            else if (r != v && g == v)
                h = (b - r) / d + 2.0;
            else if (r != v)
                h = (r - g) / d + 4.0;
            else
                h = std::fmod((g - b) / d, 6.0);
            h *= 60.0;
            if (h < 0.0)
                h += 360.0;
            c[0] = h;
            c[1] = d / v;
            c[2] = v;
        }

        void RgbToHsl(double c[3])
        {
            // Channels closer than 1/256 count as equal, for the hue as for the grays.
            const double near = 0.00390625;
            const double r = Clamp(c[0], 0.0, 1.0), g = Clamp(c[1], 0.0, 1.0), b = Clamp(c[2], 0.0, 1.0);
            const double high = std::max({r, g, b});
            const double low = std::min({r, g, b});
            const double d = high - low;
            const double l = (high + low) * 0.5;
            c[0] = 0.0;
            c[1] = 0.0;
            c[2] = l;
            if (std::fabs(d) < near)
                return;
            double h;
            if (std::fabs(r - high) <= near)
                h = std::fmod((g - b) / d, 6.0);
            else if (std::fabs(g - high) <= near)
                h = (b - r) / d + 2.0;
            else
                h = (r - g) / d + 4.0;
            h *= 60.0;
            if (h < 0.0)
                h += 360.0;
            if (h > 360.0)
                h -= 360.0;
            c[0] = h;
            c[1] = d / (1.0 - std::fabs(2.0 * l - 1.0)); // not clamped
        }

        // The hexagon shared by HSL and HSV: chroma `chroma` and offset `base`
        // give the channels for hue `h`.
        void HueToRgb(double c[3], double h, double chroma, double base)
        {
            const double x = (1.0 - std::fabs(std::fmod(h / 60.0, 2.0) - 1.0)) * chroma;
            double r, g, b;
            if (h >= 0.0 && h < 60.0)
                r = chroma, g = x, b = 0.0;
            else if (h >= 60.0 && h < 120.0)
                r = x, g = chroma, b = 0.0;
            else if (h >= 120.0 && h < 180.0)
                r = 0.0, g = chroma, b = x;
            else if (h >= 180.0 && h < 240.0)
                r = 0.0, g = x, b = chroma;
            else if (h >= 240.0 && h < 300.0)
                r = x, g = 0.0, b = chroma;
            else
                r = chroma, g = 0.0, b = x;
            c[0] = Clamp(r + base, 0.0, 1.0);
            c[1] = Clamp(g + base, 0.0, 1.0);
            c[2] = Clamp(b + base, 0.0, 1.0);
        }

        void HslToRgb(double c[3])
        {
            const double h = c[0], s = c[1], l = c[2];
            if (s == 0.0)
            {
                c[0] = c[1] = c[2] = l;
                return;
            }
            const double chroma = (1.0 - std::fabs(2.0 * l - 1.0)) * s;
            HueToRgb(c, h, chroma, l - chroma * 0.5);
        }

        void HsvToRgb(double c[3])
        {
            const double h = c[0], s = c[1], v = c[2];
            const double chroma = s * v;
            HueToRgb(c, h, chroma, v - chroma);
        }

        void RgbToXyz(double c[3])
        {
            double linear[3];
            for (int i = 0; i < 3; ++i)
                linear[i] = c[i] > 0.04045 ? std::pow((c[i] + 0.055) / 1.055, 2.4) : c[i] / 12.92;
            const double r = linear[0], g = linear[1], b = linear[2];
            c[0] = 0.4124 * r + 0.3576 * g + 0.1805 * b;
            c[1] = 0.2126 * r + 0.7152 * g + 0.0722 * b;
            c[2] = 0.0193 * r + 0.1192 * g + 0.9505 * b;
            ClampToDomain(c, XYZ); // brings white's sums of 0.9505 and 1.089 onto the reference white
        }

        void XyzToRgb(double c[3])
        {
            const double x = c[0], y = c[1], z = c[2];
            double rgb[3] = {3.2406 * x - 1.5372 * y - 0.4986 * z, -0.9689 * x + 1.8758 * y + 0.0415 * z,
                             0.0557 * x - 0.204 * y + 1.057 * z};
            for (int i = 0; i < 3; ++i)
            {
                const double v =
                    rgb[i] > 0.0031308 ? 1.055 * std::pow(rgb[i], 0.416666666666667) - 0.055 : rgb[i] * 12.92;
                c[i] = Clamp(v, 0.0, 1.0);
            }
        }

        double LabCompress(double t)
        {
            return t > 0.008856 ? std::pow(t, 0.3333333333333333) : (903.3 * t + 16.0) / 116.0;
        }

        double LabExpand(double f)
        {
            const double cube = f * f * f;
            return cube > 0.008856 ? cube : (f - 0.137931034482759) / 7.787;
        }

        void XyzToLab(double c[3])
        {
            const double fx = LabCompress(c[0] / WhiteX);
            const double fy = LabCompress(c[1] / WhiteY);
            const double fz = LabCompress(c[2] / WhiteZ);
            const double l = std::max(116.0 * fy - 16.0, 0.0);
            c[0] = Clamp(l, 0.0, 100.0);
            c[1] = Clamp(500.0 * (fx - fy), -127.0, 128.0);
            c[2] = Clamp(200.0 * (fy - fz), -127.0, 128.0);
        }

        void LabToXyz(double c[3])
        {
            const double l = c[0];
            const double fy = (l + 16.0) / 116.0;
            const double fx = fy + c[1] / 500.0;
            const double fz = fy - c[2] / 200.0;
            c[0] = LabExpand(fx) * WhiteX;
            c[1] = (l > 7.9996248 ? std::pow(fy, 3.0) : l / 903.3) * WhiteY;
            c[2] = LabExpand(fz) * WhiteZ;
            ClampToDomain(c, XYZ);
        }

        void XyzToXyy(double c[3])
        {
            // Black has no chromaticity: the sum is 0, x and y become NaN, and
            // the clamp turns them into 0.
            const double s = 1.0 / (c[0] + c[1] + c[2]);
            const double y = c[1];
            c[0] = Clamp(s * c[0], 0.0, 1.0);
            c[1] = Clamp(s * c[1], 0.0, 1.0);
            c[2] = Clamp(y, 0.0, 1.0);
        }

        void XyyToXyz(double c[3])
        {
            // A chromaticity y of 0 makes q infinite or NaN; the clamp then
            // gives the white value or 0.
            const double x = c[0], y = c[1], luminance = c[2];
            const double q = luminance / y;
            c[0] = Clamp(q * x, 0.0, WhiteX);
            c[1] = Clamp(luminance, 0.0, WhiteY);
            c[2] = Clamp((1.0 - x - y) * q, 0.0, WhiteZ);
        }

        void Step(double c[3], int from, int to)
        {
            switch (from * SpaceCount + to)
            {
            case RGB * SpaceCount + HSV:
                RgbToHsv(c);
                break;
            case RGB * SpaceCount + HSL:
                RgbToHsl(c);
                break;
            case RGB * SpaceCount + XYZ:
                RgbToXyz(c);
                break;
            case HSV * SpaceCount + RGB:
                HsvToRgb(c);
                break;
            case HSL * SpaceCount + RGB:
                HslToRgb(c);
                break;
            case XYZ * SpaceCount + RGB:
                XyzToRgb(c);
                break;
            case XYZ * SpaceCount + Lab:
                XyzToLab(c);
                break;
            case XYZ * SpaceCount + xyY:
                XyzToXyy(c);
                break;
            case Lab * SpaceCount + XYZ:
                LabToXyz(c);
                break;
            case xyY * SpaceCount + XYZ:
                XyyToXyz(c);
                break;
            default:
                break; // the route table holds no other pair
            }
        }
    }

    bool Convert(const double in[3], int from, int to, double out[3])
    {
        if (static_cast<unsigned int>(from) >= SpaceCount || static_cast<unsigned int>(to) >= SpaceCount)
        {
            zunFixMe("unsupported color space");
            return false;
        }
        double c[3] = {in[0], in[1], in[2]};
        ClampToDomain(c, from);
        int current = from;
        for (const int * next = Routes[from][to]; *next != End; ++next)
        {
            Step(c, current, *next);
            current = *next;
        }
        out[0] = c[0];
        out[1] = c[1];
        out[2] = c[2];
        return true;
    }
}
