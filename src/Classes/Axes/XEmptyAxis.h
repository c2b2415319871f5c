// An axis without marks.
#pragma once

#include "Classes/Axes/XAxis.h"

/// A linear axis that shows nothing of itself.
class XEmptyAxis : public XAxis {
  public:
    XEmptyAxis() = default;

    std::unique_ptr<XAxis> copy() const override;
    XAxisTicks ticks() const override; ///< always null
    int labelLines() const override;

  protected:
    XEmptyAxis(const XEmptyAxis&) = default;
};
