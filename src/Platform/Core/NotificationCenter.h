// Named notifications from anyone to anyone, posted synchronously on the main thread.
#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

namespace Notifications {
inline constexpr const char* documentDidBecomeActive = "kMoxDocument_DidBecomeActive_Notification";
inline constexpr const char* documentDidBecomeInactive = "kMoxDocument_DidBecomeInactive_Notification";
inline constexpr const char* dataSourceWasAdded = "kDataSourceWasAdded_Notification";
inline constexpr const char* dataSourceWasRemoved = "kDataSourceWasRemoved_Notification";
inline constexpr const char* dataSourceUpdated = "kDataSource_Updated";
inline constexpr const char* dataSourceWillBeRemoved = "kDataSourceWillBeRemoved_Notification";
inline constexpr const char* tabBarWillSelectItem = "kTabBarWillSelectItem_Nofication";
} // namespace Notifications

/// The process-wide centre. Observers are called in the order of registration; one that ended is never
/// called, not even by a post that is under way.
class NotificationCenter {
  public:
    using Handler = std::function<void(QObject* object)>;

    static NotificationCenter& defaultCenter();

    /// Ends a registration when it is destroyed.
    class Registration {
      public:
        Registration() = default;
        ~Registration();
        Registration(Registration&& other) noexcept;
        Registration& operator=(Registration&& other) noexcept;
        Registration(const Registration&) = delete;
        Registration& operator=(const Registration&) = delete;
        void end();

      private:
        friend class NotificationCenter;
        explicit Registration(quint64 id) : m_id(id) {}
        quint64 m_id = 0;
    };

    /// `object` narrows the registration to posts by that object; null takes any.
    [[nodiscard]] Registration observe(const char* name, QObject* object, Handler handler);
    /// Main thread only: off it, an assertion fails and nobody is told.
    void post(const char* name, QObject* object);

  private:
    struct Observer;
    void end(quint64 id);

    std::vector<std::shared_ptr<Observer>> m_observers; ///< in the order of registration
    quint64 m_lastId = 0;
};
