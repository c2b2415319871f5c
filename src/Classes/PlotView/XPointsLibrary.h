// The fixed catalogue of point markers.
#pragma once

#include "Classes/PlotView/XGraphPointDescription.h"

#include <vector>

/// One instance, never destroyed before the program ends; any thread.
class XPointsLibrary {
  public:
    static const XPointsLibrary& sharedLibrary();

    XPointsLibrary(const XPointsLibrary&) = delete;
    XPointsLibrary& operator=(const XPointsLibrary&) = delete;

    /// In the order of menus.
    const std::vector<XGraphPointDescription>& pointDescriptions() const { return m_pointDescriptions; }
    /// The first entry, "None", when no marker has this identifier. Never null.
    const XGraphPointDescription* pointDescriptionWithId(int identifier) const;
    /// The marker with the next identifier; after the greatest comes 0, and so it does after null.
    const XGraphPointDescription* nextPointDescription(const XGraphPointDescription* description) const;

  private:
    XPointsLibrary();

    std::vector<XGraphPointDescription> m_pointDescriptions;
};
