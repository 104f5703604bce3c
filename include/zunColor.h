// zunColor.h - a color with an alpha, in one of six color spaces.
//
// A zunColor keeps its three components in the space it was built with
// (`m_space`) and converts on the spot whenever it is read or written in
// another one; nothing is cached. Every conversion goes through one route
// table between the spaces, and every input is first clamped to the domain of
// the space it is given in:
//
//   space  components                 domain
//   RGB    red, green, blue           each 0..1, gamma-encoded sRGB values
//   HSV    hue, saturation, value     hue 0..360, others 0..1
//   HSL    hue, saturation, lightness hue 0..360, others 0..1
//   Lab    L, a, b (CIE L*a*b*)       L 0..100, a and b -127..128
//   XYZ    X, Y, Z (CIE XYZ)          0..0.95047, 0..1, 0..1.08883
//   xyY    x, y, Y (CIE xyY)          each 0..1
//
// The reference white is X 0.95047, Y 1.0, Z 1.08883. A clamp gives the lower
// bound for any value that is not greater than it, so a NaN becomes the lower
// bound. The alpha (opacity, 0..1) takes part in no conversion.
//
// Conversions between HSV and the two spaces HSL and XYZ are crossed, and
// stored documents depend on it: converting from HSV to HSL yields the XYZ
// triple (route HSV -> RGB -> XYZ), converting from HSV to XYZ yields the HSL
// triple (route HSV -> RGB -> HSL). Every operation that converts between those
// spaces inherits this, e.g. Get(..., HSL) on an HSV color, or HSV_Modulate and
// operator*= on a color held in HSL. All other pairs convert directly.
//
//   zunColor paint(0.8, 0.2, 0.1, zunColor::RGB);
//   paint.Mix(zunColor::Blue(), 0.5);           // subtractive, like paint
//   double L = paint.GetComponent(zunColor::Lab_L);
//   paint.HSV_Modulate(30.0, 1.0, 0.9);         // hue +30 degrees, 10% darker
//   unsigned int packed = paint.GetRGBA32();    // 0xAABBGGRR
//
// A space outside the six reports zunFixMe("unsupported color space") and
// leaves the outputs as they were; a component outside the eighteen reports
// zunFixMe("unsupported color space component") and gives 0. Nothing throws.
//
// Colors cannot be added with + or -: those operators are private and do
// nothing. Add (weighted) and Mix (paint-like) are the ways to combine colors.
#ifndef ZUN_COLOR_H
#define ZUN_COLOR_H

#include "zunConfig.h"
#include "zunTypes.h"

struct zunFile;

/// A color held in one of six spaces, with an alpha; components are clamped
/// to the space's domain when stored.
struct ZUN_API zunColor
{
    /// The six spaces, with the numbers of the stored form. The type is fixed
    /// at 32 bits so that any number can be passed and is reported, not undefined.
    enum ColorSpace : int
    {
        RGB = 0,
        HSV = 1,
        HSL = 2,
        Lab = 3,
        XYZ = 4,
        xyY = 5
    };

    /// The eighteen components: three times the space's number plus the
    /// component's index in that space.
    enum Component : int
    {
        RGB_R = 0,
        RGB_G = 1,
        RGB_B = 2,
        HSV_H = 3,
        HSV_S = 4,
        HSV_V = 5,
        HSL_H = 6,
        HSL_S = 7,
        HSL_L = 8,
        Lab_L = 9,
        Lab_a = 10,
        Lab_b = 11,
        XYZ_X = 12,
        XYZ_Y = 13,
        XYZ_Z = 14,
        xyY_x = 15,
        xyY_y = 16,
        xyY_Y = 17
    };

    // ---- Construction -------------------------------------------------------

    /// Black in RGB, alpha 1.
    zunColor();
    /// RGB from eight-bit values: each is divided by 255.0 and clamped to 0..1.
    zunColor(int r, int g, int b, int a);
    /// A color held in `space`, set from a triple given in that space (clamped
    /// to its domain) and an alpha clamped to 0..1. With a space outside the six
    /// the alpha is stored, the components are 0 and every later conversion
    /// reports an unsupported space.
    zunColor(double c0, double c1, double c2, double alpha, ColorSpace space);
    /// The same with alpha 1.
    zunColor(double c0, double c1, double c2, ColorSpace space);

    /// Copies all five fields, the space included.
    ///@{
    zunColor(const zunColor &) = default;
    zunColor(zunColor &&) = default;
    ///@}
    /// Copies `defaultValue` (its space included), then Read: where the read
    /// stops at a limit, the default stands.
    zunColor(zunFile * file, const zunColor & defaultValue);
    /// Copies all five fields, the space included.
    ///@{
    zunColor & operator=(const zunColor &) = default;
    zunColor & operator=(zunColor &&) = default;
    ///@}

    // ---- Setting and getting ------------------------------------------------
    // The space named in these calls is that of the values passed; the color
    // keeps its own space.

    /// Stores `alpha` clamped to 0..1, then converts the triple from `space`
    /// into the color's own space. A bad space leaves the triple as it was (the
    /// alpha is stored already).
    zunColor & Set(double c0, double c1, double c2, double alpha, ColorSpace space);
    /// The same, keeping the present alpha.
    zunColor & Set(double c0, double c1, double c2, ColorSpace space);
    /// The triple converted into `space`, and the alpha. A bad space leaves the
    /// three components' outputs unwritten; `alpha` is always given.
    void Get(double & c0, double & c1, double & c2, double & alpha, ColorSpace space) const;
    /// The same without the alpha.
    void Get(double & c0, double & c1, double & c2, ColorSpace space) const;
    /// One component in its own space, converting as needed; 0 for a bad value.
    double GetComponent(Component component) const;
    /// The space the components are held in.
    ColorSpace GetColorSpace() const { return m_space; }
    /// The alpha, 0..1 (1 is opaque).
    double GetAlpha() const { return m_alpha; }
    /// Stores the alpha clamped to 0..1.
    zunColor & SetAlpha(double alpha);
    /// Stores alpha / 255.0 clamped to 0..1.
    zunColor & SetAlpha(int alpha);

    /// Sets from eight-bit RGB (each over 255.0); the alpha is kept.
    zunColor & SetRGBInt(unsigned char r, unsigned char g, unsigned char b);
    /// Sets from eight-bit RGB and alpha (each over 255.0).
    zunColor & SetRGBInt(unsigned char r, unsigned char g, unsigned char b, unsigned char a);
    /// Sets from a packed 0x00BBGGRR value (red in the lowest byte; the top byte
    /// is ignored); the alpha is kept.
    zunColor & SetWin32ColorRef(unsigned long colorRef);
    /// RGB and alpha in the eight-bit form: times 255.0, clamped to 0..255 and
    /// truncated, so 1.0 gives 255 and 0.999 gives 254. The three-argument
    /// form leaves out the alpha.
    ///@{
    void GetRGBInt(unsigned char & r, unsigned char & g, unsigned char & b, unsigned char & a) const;
    void GetRGBInt(unsigned char & r, unsigned char & g, unsigned char & b) const;
    ///@}
    /// 0xAABBGGRR: red in the lowest byte, alpha in the highest.
    unsigned int GetRGBA32() const;
    /// 0x00BBGGRR: red in the lowest byte, the top byte 0.
    operator unsigned long() const;

    /// Red, green, blue in RGB.
    ///@{
    operator zunVector3T<float>() const;
    operator zunVector3T<double>() const;
    ///@}
    /// Red, green, blue in RGB, and the alpha.
    ///@{
    operator zunVector4T<float>() const;
    operator zunVector4T<double>() const;
    ///@}

    /// The lightness of the color without its saturation: the HSL triple with
    /// S set to 0, read back as red in RGB. For an RGB color this is the HSL
    /// lightness (max + min) / 2.
    double GetGray() const;

    /// True when each of the three stored components differs by 0.00390625
    /// (1/256) or less. Neither the spaces nor the alphas are compared: an RGB
    /// color and a Lab color with close numbers are equal.
    ///@{
    bool operator==(const zunColor & other) const;
    bool operator!=(const zunColor & other) const;
    ///@}

    // ---- Arithmetic ---------------------------------------------------------
    // Each member form changes the color and returns it; the static form works
    // on a copy of its first argument and returns that. Results are stored back
    // into the color's own space (through its input clamp); the alpha is the
    // color's own, and the other color's alpha is never used.

    /// Per RGB channel w1 * this + w2 * other, with w1 and w2 clamped to 0..1.
    /// The sum is not normalised; storing it clamps it to 0..1.
    ///@{
    zunColor & Add(const zunColor & other, double w1, double w2);
    static zunColor Add(const zunColor & color, const zunColor & other, double w1, double w2);
    ///@}
    /// A paint-like (Kubelka-Munk) mix of the RGB reflectances: `t` 0 keeps this
    /// color, 1 gives `other`, and in between the darker color dominates (white
    /// and black at 0.5 give nearly black, about 0.00002). A channel of exactly 0
    /// counts as 0.00001. `t` is not clamped.
    ///@{
    zunColor & Mix(const zunColor & other, double t);
    static zunColor Mix(const zunColor & color, const zunColor & other, double t);
    ///@}
    /// Multiplies the HSL saturation by `factor` (the result is clamped to 0..1).
    ///@{
    zunColor & Saturate(double factor);
    static zunColor Saturate(const zunColor & color, double factor);
    ///@}
    /// In HSV: adds `dh` degrees to the hue, multiplies S by `s` and V by `v`.
    /// The hue wraps upwards only: a sum of 370 becomes 10, but a negative sum
    /// becomes 0 (hue 5 turned by -10 gives 0, not 355).
    ///@{
    zunColor & HSV_Modulate(double dh, double s, double v);
    static zunColor HSV_Modulate(const zunColor & color, double dh, double s, double v);
    ///@}
    /// Scales the brightness: multiplies the HSV value by `factor`. The RGB
    /// channels are not multiplied one by one, and the alpha stays.
    ///@{
    zunColor & operator*=(double factor);
    zunColor operator*(double factor) const;
    ///@}
    /// A factor for Saturate from a slider running from -1 to 1: 1 + p for
    /// p <= 0, else 1 + 4p (so -1, 0 and 1 give 0, 1 and 5).
    static double GetSaturateMultFromPS(double p);

    /// The squared perceptual distance: the sum of the squared differences of
    /// L, a and b in Lab.
    double Distance2(const zunColor & other) const;
    /// The square root of Distance2.
    double Distance(const zunColor & other) const;

    // ---- Named colors -------------------------------------------------------

    /// \name Named colors
    /// Colors held in RGB with alpha 1; the red, green and blue of each are
    /// given beside it.
    ///@{
    static zunColor Aqua();    ///< 0, 1, 1
    static zunColor Black();   ///< 0, 0, 0
    static zunColor Blue();    ///< 0, 0, 1
    static zunColor Fuchsia(); ///< 1, 0, 1
    static zunColor Gray();    ///< 0.5, 0.5, 0.5
    static zunColor Green();   ///< 0, 0.5, 0
    static zunColor Lime();    ///< 0, 1, 0
    static zunColor Maroon();  ///< 0.5, 0, 0
    static zunColor Navy();    ///< 0, 0, 0.5
    static zunColor Olive();   ///< 0.5, 0.5, 0
    static zunColor Purple();  ///< 0.5, 0, 0.5
    static zunColor Red();     ///< 1, 0, 0
    static zunColor Silver();  ///< 0.75, 0.75, 0.75
    static zunColor Teal();    ///< 0, 0.5, 0.5
    static zunColor White();   ///< 1, 1, 1
    static zunColor Yellow();  ///< 1, 1, 0
    ///@}

    // ---- File form ----------------------------------------------------------
    // 32 bytes: red, green, blue and alpha as four doubles, each in the
    // stream's byte order. Always RGB, whatever the color's own space.

    /// Reads the four values and stores them through RGB, clamped, keeping the
    /// color's space. A read stopped at the stream's limit leaves the color as
    /// it was (up to the round trip through RGB).
    void Read(zunFile * file);
    /// Writes the color converted to RGB, and its alpha; throws zunException
    /// when the bytes don't go out.
    void Write(zunFile * file) const;

    // ---- Stored form --------------------------------------------------------
    // Public for plain-data use; the space is meant to change only by
    // assignment of a whole color.

    /// The space the components are held in.
    ColorSpace m_space;
    /// The triple in m_space, in its order (e.g. H, S, V), within its domain.
    ///@{
    double m_c0, m_c1, m_c2;
    ///@}
    /// 0..1; 1 is opaque.
    double m_alpha;

private:
    // Adding colors with operators is almost always a mistake (the sum leaves
    // the domain, and the spaces may differ); these keep it from compiling.
    zunColor operator+(const zunColor &) const { return *this; }
    zunColor operator-(const zunColor &) const { return *this; }
    zunColor & operator+=(const zunColor &) { return *this; }
    zunColor & operator-=(const zunColor &) { return *this; }
};

#endif // ZUN_COLOR_H
