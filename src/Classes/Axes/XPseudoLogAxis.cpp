// Labels of both signs, and no bound but the finite.
#include "Classes/Axes/XPseudoLogAxis.h"

std::unique_ptr<XAxis> XPseudoLogAxis::copy() const {
    return std::unique_ptr<XAxis>(new XPseudoLogAxis(*this));
}

void XPseudoLogAxis::setRangeMinMax(double min, double max) {
    storeLogRange(min, max, pseudoLogTransform.toLog(min), pseudoLogTransform.toLog(max));
}

XValueRange XPseudoLogAxis::validValuesRange() const {
    return {};
}

AttributedLabel XPseudoLogAxis::tickAttributedString(int exponent) const {
    return pseudoLogDecadeLabel(exponent);
}

XAxisTicks XPseudoLogAxis::makeTicks() const {
    return makePseudoLogTicks(logSpan());
}
