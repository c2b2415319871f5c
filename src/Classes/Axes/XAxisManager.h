// The catalogue of axis kinds.
#pragma once

#include "Classes/Axes/XAxisInfo.h"

#include <span>
#include <vector>

/// The one instance is never freed. The order of the kinds is the order of menus; the first is the default.
class XAxisManager {
  public:
    static const XAxisManager& sharedManager();
    XAxisManager(const XAxisManager&) = delete;
    XAxisManager& operator=(const XAxisManager&) = delete;

    std::span<const XAxisInfo> axisTypes() const { return m_axisTypes; }
    /// The kind with exactly this identifier, else the first; never null.
    const XAxisInfo* axisInfoWithId(const QString& typeId) const;
    std::unique_ptr<XAxis> createAxisWithTypeId(const QString& typeId) const;

  private:
    XAxisManager();

    std::vector<XAxisInfo> m_axisTypes;
};
