// Rows of the list and the news of them.
#include "Classes/DataSourcesManager/ArrangedObjects.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {
constexpr std::array<const char*, 1> titleKey{"title"};
}

void ArrangedObjects::insertObjectAtIndex(XDataSource object, std::size_t index) {
    if (object == nullptr)
        return;
    const auto at = static_cast<std::ptrdiff_t>(std::min(index, m_objects.size()));
    beginInsertRows({}, static_cast<int>(at), static_cast<int>(at));
    m_titles.insert(m_titles.begin() + at, Observation(*object, titleKey, [this](const KeyChange& change) {
                        titleChanged(change.object);
                    }));
    m_objects.insert(m_objects.begin() + at, std::move(object));
    endInsertRows();
}

void ArrangedObjects::removeObjectAtIndex(std::size_t index) {
    if (index >= m_objects.size())
        return;
    const auto at = static_cast<std::ptrdiff_t>(index);
    beginRemoveRows({}, static_cast<int>(at), static_cast<int>(at));
    m_titles.erase(m_titles.begin() + at);
    m_objects.erase(m_objects.begin() + at);
    endRemoveRows();
}

int ArrangedObjects::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_objects.size());
}

QVariant ArrangedObjects::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || role != Qt::DisplayRole)
        return {};
    return m_objects[static_cast<std::size_t>(index.row())]->title();
}

void ArrangedObjects::titleChanged(const Observable* object) {
    const auto found = std::find_if(m_objects.begin(), m_objects.end(),
                                    [&](const auto& each) { return each.get() == object; });
    if (found == m_objects.end())
        return;
    const QModelIndex changed = index(static_cast<int>(found - m_objects.begin()));
    Q_EMIT dataChanged(changed, changed, {Qt::DisplayRole});
}
