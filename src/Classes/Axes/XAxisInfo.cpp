// Makes an axis of a kind.
#include "Classes/Axes/XAxisInfo.h"

#include "Classes/Axes/XAxis.h"

#include <utility>

XAxisInfo::XAxisInfo(QString typeId, QString title, Maker maker)
    : m_typeId(std::move(typeId)), m_title(std::move(title)), m_maker(maker) {}

std::unique_ptr<XAxis> XAxisInfo::makeAxis() const {
    return m_maker();
}
