// One row for each kind of axis.
#include "Classes/Axes/XAxisManager.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/Axes/XEmptyAxis.h"
#include "Classes/Axes/XPseudoLogAxis.h"
#include "Classes/Axes/XTimeAxis.h"

#include <algorithm>

namespace {

template <class Axis>
std::unique_ptr<XAxis> make() {
    return std::make_unique<Axis>();
}

} // namespace

XAxisManager::XAxisManager()
    : m_axisTypes{{QStringLiteral("numeric"), QStringLiteral("Numeric"), make<XAxis>},
                  {QStringLiteral("log"), QStringLiteral("Logarithmic"), make<XLogAxis>},
                  {QStringLiteral("pseudolog"), QStringLiteral("Pseudo log"), make<XPseudoLogAxis>},
                  {QStringLiteral("timeline"), QStringLiteral("Timeline"), make<XTimeAxis>},
                  {QStringLiteral("zen"), QStringLiteral("No ticks"), make<XEmptyAxis>}} {}

const XAxisManager& XAxisManager::sharedManager() {
    static const auto* const manager = new XAxisManager; // outlives every user of its entries
    return *manager;
}

const XAxisInfo* XAxisManager::axisInfoWithId(const QString& typeId) const {
    const auto found = std::ranges::find(m_axisTypes, typeId, &XAxisInfo::typeId);
    return found == m_axisTypes.end() ? &m_axisTypes.front() : &*found;
}

std::unique_ptr<XAxis> XAxisManager::createAxisWithTypeId(const QString& typeId) const {
    return axisInfoWithId(typeId)->makeAxis();
}
