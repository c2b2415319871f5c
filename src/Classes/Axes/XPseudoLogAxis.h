// The axis that is logarithmic for large magnitudes of either sign, and linear between -10 and 10.
#pragma once

#include "Classes/Axes/XLogAxis.h"

/// Every value has a place, zero and negative ones too.
class XPseudoLogAxis : public XLogAxis {
  public:
    XPseudoLogAxis() : XLogAxis(pseudoLogTransform) {}

    std::unique_ptr<XAxis> copy() const override;
    void setRangeMinMax(double min, double max) override; ///< stores any range as it is
    XValueRange validValuesRange() const override;        ///< no restriction
    AttributedLabel tickAttributedString(int exponent) const override;

  protected:
    XPseudoLogAxis(const XPseudoLogAxis&) = default;
    XAxisTicks makeTicks() const override;
};
