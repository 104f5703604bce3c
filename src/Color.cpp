// zunColor: storage, access, packed forms and the color arithmetic. The
// conversions themselves are in ColorSpaces.cpp.
#include "zunColor.h"

#include <cmath>

#include "ColorClamp.h"
#include "ColorSpaces.h"
#include "FileArrayAccess.h"
#include "zunException.h"

using zunColorPrivate::Clamp;

namespace
{
    double ClampUnit(double value)
    {
        return Clamp(value, 0.0, 1.0);
    }

    /// The eight-bit form: times 255, clamped to 0..255, truncated towards zero.
    unsigned char EightBit(double channel)
    {
        return static_cast<unsigned char>(Clamp(channel * 255.0, 0.0, 255.0));
    }

    zunColor Named(double r, double g, double b)
    {
        return zunColor(r, g, b, 1.0, zunColor::RGB);
    }
}

// ---- Construction -----------------------------------------------------------

zunColor::zunColor() : m_space(RGB), m_c0(0.0), m_c1(0.0), m_c2(0.0), m_alpha(1.0) {}

zunColor::zunColor(int r, int g, int b, int a)
    : m_space(RGB), m_c0(ClampUnit(r / 255.0)), m_c1(ClampUnit(g / 255.0)), m_c2(ClampUnit(b / 255.0)),
      m_alpha(ClampUnit(a / 255.0))
{
}

// A bad space would leave the components uninitialised; they start at 0 so that
// such a color is still safe to copy and compare.
zunColor::zunColor(double c0, double c1, double c2, double alpha, ColorSpace space)
    : m_space(space), m_c0(0.0), m_c1(0.0), m_c2(0.0), m_alpha(1.0)
{
    Set(c0, c1, c2, alpha, space);
}

zunColor::zunColor(double c0, double c1, double c2, ColorSpace space) : zunColor(c0, c1, c2, 1.0, space) {}

// ---- Setting and getting ----------------------------------------------------

zunColor & zunColor::Set(double c0, double c1, double c2, double alpha, ColorSpace space)
{
    m_alpha = ClampUnit(alpha);
    return Set(c0, c1, c2, space);
}

zunColor & zunColor::Set(double c0, double c1, double c2, ColorSpace space)
{
    const double in[3] = {c0, c1, c2};
    double out[3];
    if (zunColorPrivate::Convert(in, space, m_space, out))
    {
        m_c0 = out[0];
        m_c1 = out[1];
        m_c2 = out[2];
    }
    return *this;
}

void zunColor::Get(double & c0, double & c1, double & c2, double & alpha, ColorSpace space) const
{
    alpha = m_alpha;
    Get(c0, c1, c2, space);
}

void zunColor::Get(double & c0, double & c1, double & c2, ColorSpace space) const
{
    const double in[3] = {m_c0, m_c1, m_c2};
    double out[3];
    if (zunColorPrivate::Convert(in, m_space, space, out))
    {
        c0 = out[0];
        c1 = out[1];
        c2 = out[2];
    }
}

double zunColor::GetComponent(Component component) const
{
    if (static_cast<unsigned int>(component) > xyY_Y)
    {
        zunFixMe("unsupported color space component");
        return 0.0;
    }
    double c[3] = {0.0, 0.0, 0.0};
    Get(c[0], c[1], c[2], static_cast<ColorSpace>(component / 3));
    return c[component % 3];
}

zunColor & zunColor::SetAlpha(double alpha)
{
    m_alpha = ClampUnit(alpha);
    return *this;
}

zunColor & zunColor::SetAlpha(int alpha)
{
    return SetAlpha(alpha / 255.0);
}

zunColor & zunColor::SetRGBInt(unsigned char r, unsigned char g, unsigned char b)
{
    return Set(r / 255.0, g / 255.0, b / 255.0, m_alpha, RGB);
}

zunColor & zunColor::SetRGBInt(unsigned char r, unsigned char g, unsigned char b, unsigned char a)
{
    return Set(r / 255.0, g / 255.0, b / 255.0, a / 255.0, RGB);
}

zunColor & zunColor::SetWin32ColorRef(unsigned long colorRef)
{
    return SetRGBInt(static_cast<unsigned char>(colorRef & 0xFF), static_cast<unsigned char>((colorRef >> 8) & 0xFF),
                     static_cast<unsigned char>((colorRef >> 16) & 0xFF));
}

void zunColor::GetRGBInt(unsigned char & r, unsigned char & g, unsigned char & b, unsigned char & a) const
{
    GetRGBInt(r, g, b);
    a = EightBit(m_alpha);
}

void zunColor::GetRGBInt(unsigned char & r, unsigned char & g, unsigned char & b) const
{
    double red = 0.0, green = 0.0, blue = 0.0;
    Get(red, green, blue, RGB);
    r = EightBit(red);
    g = EightBit(green);
    b = EightBit(blue);
}

unsigned int zunColor::GetRGBA32() const
{
    unsigned char r, g, b, a;
    GetRGBInt(r, g, b, a);
    return static_cast<unsigned int>(r) | static_cast<unsigned int>(g) << 8 | static_cast<unsigned int>(b) << 16 |
           static_cast<unsigned int>(a) << 24;
}

zunColor::operator unsigned long() const
{
    unsigned char r, g, b;
    GetRGBInt(r, g, b);
    return static_cast<unsigned long>(r) | static_cast<unsigned long>(g) << 8 | static_cast<unsigned long>(b) << 16;
}

zunColor::operator zunVector3T<float>() const
{
    const zunVector3T<double> v = *this;
    return zunVector3T<float>(static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z));
}

zunColor::operator zunVector3T<double>() const
{
    zunVector3T<double> v;
    Get(v.x, v.y, v.z, RGB);
    return v;
}

zunColor::operator zunVector4T<float>() const
{
    const zunVector3T<double> v = *this;
    return zunVector4T<float>(static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z),
                              static_cast<float>(m_alpha));
}

zunColor::operator zunVector4T<double>() const
{
    const zunVector3T<double> v = *this;
    return zunVector4T<double>(v.x, v.y, v.z, m_alpha);
}

double zunColor::GetGray() const
{
    double h = 0.0, s = 0.0, l = 0.0;
    Get(h, s, l, HSL);
    return zunColor(h, s, l, m_alpha, HSL).Saturate(0.0).GetComponent(RGB_R);
}

bool zunColor::operator==(const zunColor & other) const
{
    return !(*this != other);
}

bool zunColor::operator!=(const zunColor & other) const
{
    const double tolerance = 0.00390625; // 1/256: below what the eight-bit form shows
    return std::fabs(m_c0 - other.m_c0) > tolerance || std::fabs(m_c1 - other.m_c1) > tolerance ||
           std::fabs(m_c2 - other.m_c2) > tolerance;
}

// ---- Arithmetic -------------------------------------------------------------

zunColor & zunColor::Add(const zunColor & other, double w1, double w2)
{
    double a[3] = {0.0, 0.0, 0.0}, b[3] = {0.0, 0.0, 0.0};
    Get(a[0], a[1], a[2], RGB);
    other.Get(b[0], b[1], b[2], RGB);
    w1 = ClampUnit(w1);
    w2 = ClampUnit(w2);
    for (int i = 0; i < 3; ++i)
        a[i] = w1 * a[i] + w2 * b[i];
    return Set(a[0], a[1], a[2], m_alpha, RGB);
}

zunColor zunColor::Add(const zunColor & color, const zunColor & other, double w1, double w2)
{
    return zunColor(color).Add(other, w1, w2);
}

zunColor & zunColor::Mix(const zunColor & other, double t)
{
    double a[3] = {0.0, 0.0, 0.0}, b[3] = {0.0, 0.0, 0.0};
    Get(a[0], a[1], a[2], RGB);
    other.Get(b[0], b[1], b[2], RGB);
    // Kubelka-Munk: mix the absorption/scattering ratios K/S = (1 - R)^2 / 2R
    // of the two reflectances, then turn the mixed ratio back into a
    // reflectance. A reflectance of exactly 0 has no finite ratio.
    const auto ratio = [](double reflectance)
    {
        if (reflectance == 0.0)
            reflectance = 0.00001;
        return (1.0 - reflectance) * (1.0 - reflectance) / (2.0 * reflectance);
    };
    for (int i = 0; i < 3; ++i)
    {
        const double k = t * ratio(b[i]) + (1.0 - t) * ratio(a[i]);
        a[i] = k + 1.0 - std::sqrt(k * k + 2.0 * k);
    }
    return Set(a[0], a[1], a[2], m_alpha, RGB);
}

zunColor zunColor::Mix(const zunColor & color, const zunColor & other, double t)
{
    return zunColor(color).Mix(other, t);
}

zunColor & zunColor::Saturate(double factor)
{
    double h = 0.0, s = 0.0, l = 0.0;
    Get(h, s, l, HSL);
    return Set(h, s * factor, l, m_alpha, HSL);
}

zunColor zunColor::Saturate(const zunColor & color, double factor)
{
    return zunColor(color).Saturate(factor);
}

zunColor & zunColor::HSV_Modulate(double dh, double s, double v)
{
    double hue = 0.0, saturation = 0.0, value = 0.0;
    Get(hue, saturation, value, HSV);
    // modf keeps the sign: a negative sum stays negative, and the input clamp
    // of Set makes it 0. Hues wrap upwards only.
    double whole;
    hue = std::modf((hue + dh) / 360.0, &whole) * 360.0;
    return Set(hue, saturation * s, value * v, m_alpha, HSV);
}

zunColor zunColor::HSV_Modulate(const zunColor & color, double dh, double s, double v)
{
    return zunColor(color).HSV_Modulate(dh, s, v);
}

zunColor & zunColor::operator*=(double factor)
{
    double h = 0.0, s = 0.0, v = 0.0;
    Get(h, s, v, HSV);
    return Set(h, s, v * factor, m_alpha, HSV);
}

zunColor zunColor::operator*(double factor) const
{
    return zunColor(*this) *= factor;
}

double zunColor::GetSaturateMultFromPS(double p)
{
    return p <= 0.0 ? 1.0 + p : 1.0 + 4.0 * p;
}

double zunColor::Distance2(const zunColor & other) const
{
    double a[3] = {0.0, 0.0, 0.0}, b[3] = {0.0, 0.0, 0.0};
    Get(a[0], a[1], a[2], Lab);
    other.Get(b[0], b[1], b[2], Lab);
    const double dl = a[0] - b[0], da = a[1] - b[1], db = a[2] - b[2];
    return dl * dl + da * da + db * db;
}

double zunColor::Distance(const zunColor & other) const
{
    return std::sqrt(Distance2(other));
}

// ---- Named colors -----------------------------------------------------------

zunColor zunColor::Aqua()
{
    return Named(0.0, 1.0, 1.0);
}
zunColor zunColor::Black()
{
    return Named(0.0, 0.0, 0.0);
}
zunColor zunColor::Blue()
{
    return Named(0.0, 0.0, 1.0);
}
zunColor zunColor::Fuchsia()
{
    return Named(1.0, 0.0, 1.0);
}
zunColor zunColor::Gray()
{
    return Named(0.5, 0.5, 0.5);
}
zunColor zunColor::Green()
{
    return Named(0.0, 0.5, 0.0);
}
zunColor zunColor::Lime()
{
    return Named(0.0, 1.0, 0.0);
}
zunColor zunColor::Maroon()
{
    return Named(0.5, 0.0, 0.0);
}
zunColor zunColor::Navy()
{
    return Named(0.0, 0.0, 0.5);
}
zunColor zunColor::Olive()
{
    return Named(0.5, 0.5, 0.0);
}
zunColor zunColor::Purple()
{
    return Named(0.5, 0.0, 0.5);
}
zunColor zunColor::Red()
{
    return Named(1.0, 0.0, 0.0);
}
zunColor zunColor::Silver()
{
    return Named(0.75, 0.75, 0.75);
}
zunColor zunColor::Teal()
{
    return Named(0.0, 0.5, 0.5);
}
zunColor zunColor::White()
{
    return Named(1.0, 1.0, 1.0);
}
zunColor zunColor::Yellow()
{
    return Named(1.0, 1.0, 0.0);
}

// ---- File form.

zunColor::zunColor(zunFile * file, const zunColor & defaultValue) : zunColor(defaultValue)
{
    Read(file);
}

void zunColor::Read(zunFile * file)
{
    // The present color stands in the buffer that is read into, so that a
    // read stopped at a limit stores it back unchanged.
    double rgba[4] = {0.0, 0.0, 0.0, m_alpha};
    Get(rgba[0], rgba[1], rgba[2], rgba[3], RGB);
    zunFileArrayAccess::Read_Array(file, rgba, sizeof(double), 4, zunFile::DiffersByByteOrder);
    Set(rgba[0], rgba[1], rgba[2], rgba[3], RGB);
}

void zunColor::Write(zunFile * file) const
{
    double rgba[4] = {0.0, 0.0, 0.0, m_alpha};
    Get(rgba[0], rgba[1], rgba[2], rgba[3], RGB);
    zunFileArrayAccess::Write_Array(file, rgba, sizeof(double), 4, zunFile::DiffersByByteOrder);
}
