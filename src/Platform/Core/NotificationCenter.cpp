// The list of observers and the delivery of a post while that list changes.
#include "Platform/Core/NotificationCenter.h"

#include "Core/Assertions.h"
#include "Platform/Core/MainThread.h"

#include <QPointer>

#include <algorithm>
#include <string>
#include <utility>

struct NotificationCenter::Observer {
    quint64 id; ///< 0 once it ended
    std::string name;
    QPointer<QObject> object;
    bool anyObject; ///< kept apart from `object`, which becomes null when its object dies
    Handler handler;

    bool takes(const char* postedName, const QObject* postedObject) const {
        return id != 0 && name == postedName && (anyObject || (object && object == postedObject));
    }
};

NotificationCenter& NotificationCenter::defaultCenter() {
    // Never destroyed: registrations may outlive everything else.
    static NotificationCenter& center = *new NotificationCenter;
    return center;
}

NotificationCenter::Registration NotificationCenter::observe(const char* name, QObject* object,
                                                             Handler handler) {
    m_observers.push_back(std::make_shared<Observer>(
        Observer{++m_lastId, name, object, object == nullptr, std::move(handler)}));
    return Registration(m_lastId);
}

void NotificationCenter::post(const char* name, QObject* object) {
    if (!xAssert(MainThread::isCurrent(), "%@ was posted off the main thread", name))
        return;
    // A handler may add and end registrations: this copy keeps the called ones alive and leaves new ones out.
    const auto observers = m_observers;
    for (const auto& observer : observers) {
        if (observer->takes(name, object))
            observer->handler(object);
    }
}

void NotificationCenter::end(quint64 id) {
    const auto found = std::find_if(m_observers.begin(), m_observers.end(),
                                    [id](const auto& observer) { return observer->id == id; });
    if (found == m_observers.end())
        return;
    const std::shared_ptr<Observer> ended =
        *found; // its handler may hold registrations: destroyed after the erasure
    ended->id = 0;
    m_observers.erase(found);
}

NotificationCenter::Registration::~Registration() {
    end();
}

NotificationCenter::Registration::Registration(Registration&& other) noexcept
    : m_id(std::exchange(other.m_id, 0)) {}

NotificationCenter::Registration& NotificationCenter::Registration::operator=(Registration&& other) noexcept {
    if (this != &other) {
        end();
        m_id = std::exchange(other.m_id, 0);
    }
    return *this;
}

void NotificationCenter::Registration::end() {
    if (const quint64 id = std::exchange(m_id, 0))
        defaultCenter().end(id);
}
