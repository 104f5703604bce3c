// zunToneMap.h - the parameters of a display transform.
//
// Brightness, contrast and saturation (each -1..1, 0 neutral), inversion, an
// output clamp (each end 0..1) and a gamma. The library holds and compares the
// parameters; it applies no tone mapping itself. Every setter answers whether
// the stored value really changed, so a caller redraws only on a change:
//
//   if (toneMap.SetStandardGamma(slider.Value()))
//       view.Redraw();
//
// Changes are judged relative to the values: a setter that moves a value by
// no more than two units of machine epsilon of the sum of the old and new
// values stores nothing and answers false. Out-of-range values are clamped
// before that test, and a NaN is clamped to the lower end.
//
// The gamma is stored in one form, the internal gamma, where 0 is neutral and
// a magnitude either side means a gamma and its reciprocal. The standard form
// is the classical display exponent, 1 neutral:
//
//   standard = 2g + 1 for g > 0, else 1 / (1 - 2g)   (g 1 -> 3, g -1 -> 1/3)
//
// The two are exact inverses for positive standard gammas. The "Nacre" forms
// speak the internal gamma.
#ifndef ZUN_TONE_MAP_H
#define ZUN_TONE_MAP_H

#include "zunConfig.h"
#include "zunTypes.h"

/// The parameters of a display transform, held and compared; setters report
/// whether the stored value changed.
struct ZUN_API zunToneMap
{
    /// All neutral: brightness, contrast, saturation and gamma 0, not inverted,
    /// clamp 0..1.
    zunToneMap();
    /// Copies and moves take every field as it stands.
    ///@{
    zunToneMap(const zunToneMap &) = default;
    zunToneMap(zunToneMap &&) = default;
    zunToneMap & operator=(const zunToneMap &) = default;
    zunToneMap & operator=(zunToneMap &&) = default;
    ///@}

    /// The stored values: brightness, contrast and saturation in -1..1 with 0
    /// neutral, and whether the output is inverted.
    ///@{
    double GetBrightness() const { return m_brightness; }
    double GetContrast() const { return m_contrast; }
    double GetSaturation() const { return m_saturation; }
    bool IsInverted() const { return m_inverted; }
    ///@}
    /// The output clamp; each end lies in 0..1, and min may exceed max.
    const zunRange<double> & GetClamp() const { return m_clamp; }
    /// The stored (internal) gamma, 0 neutral.
    double GetNacreGamma() const { return m_gamma; }
    /// The display exponent, 1 neutral (see the header comment).
    double GetStandardGamma() const;

    /// Each clamps to -1..1; true only if the stored value changed.
    ///@{
    bool SetBrightness(double brightness);
    bool SetContrast(double contrast);
    bool SetSaturation(double saturation);
    ///@}
    /// Each clamps to 0..1; true only if the stored value changed. The other end
    /// is not looked at, so a minimum above the maximum is accepted.
    ///@{
    bool SetClampMin(double min);
    bool SetClampMax(double max);
    ///@}
    /// SetClampMin then SetClampMax, both always done; true if either changed.
    ///@{
    bool SetClamp(const zunRange<double> & clamp);
    bool SetClamp(double min, double max);
    ///@}
    /// True only if the flag changed.
    bool SetInverted(bool inverted);
    /// Stores the internal gamma as given (no clamp); true only on a change.
    bool SetNacreGamma(double gamma);
    /// Converts the display exponent s to the internal gamma, (s - 1) / 2s below
    /// 1 and (s - 1) / 2 from 1 on, and stores it as SetNacreGamma. A zero or
    /// negative s is not refused: 0 gives an infinite gamma, which the relative
    /// change test then never takes as a change.
    bool SetStandardGamma(double gamma);

    /// Equal unless brightness, contrast, saturation or internal gamma differ by
    /// more than 0.0001 (slider precision), the inversion differs, or a clamp
    /// end differs beyond the relative change test (machine precision).
    ///@{
    bool operator==(const zunToneMap & other) const;
    bool operator!=(const zunToneMap & other) const;
    ///@}

    // The stored form, public for plain-data use; set it through the setters
    // to keep the limits.
    double m_brightness;      ///< -1..1, 0 neutral
    double m_contrast;        ///< -1..1, 0 neutral
    double m_saturation;      ///< -1..1, 0 neutral
    bool m_inverted;          ///< whether the output is inverted
    zunRange<double> m_clamp; ///< the output clamp, each end 0..1
    double m_gamma;           ///< the internal gamma, 0 neutral (see the file's description)
};

#endif // ZUN_TONE_MAP_H
