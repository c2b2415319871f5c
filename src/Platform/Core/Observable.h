// Observation by key: objects whose properties announce every assignment with the old and the new value.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QVariant>

#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <utility>

class Observable;

/// One assignment to a key, equal values included.
struct KeyChange {
    Observable* object;
    const char* key; ///< a literal, valid for the life of the program
    QVariant oldValue;
    QVariant newValue;
};

/// Base class of everything that is observed by key. Main thread, unless a class says otherwise.
///
/// An observed property is declared with OBSERVED and set through its setter or by `setValueForKey`. A setter
/// with behaviour of its own is written out and calls `assign`. Absent values are `std::optional`s, so that
/// an observer that puts an old value back restores absence.
class Observable : public QObject {
    Q_OBJECT

  public:
    explicit Observable(QObject* parent = nullptr) : QObject(parent) {}

    /// The value of an observed key. An unknown key fails an assertion and gives an invalid variant.
    QVariant valueForKey(const char* key) const;
    /// Sets an observed key through its setter. An unknown key or an unfit type fails an assertion.
    void setValueForKey(const char* key, const QVariant& value);

  Q_SIGNALS:
    void keyChanged(const KeyChange& change);

  protected:
    /// Stores the value and announces it, even if it equals the old one.
    template <class T>
    void assign(T& field, T value, const char* key) {
        QVariant oldValue = QVariant::fromValue(field);
        field = std::move(value);
        announce(key, std::move(oldValue), QVariant::fromValue(field));
    }
    /// Announces a change that was stored by other means (under a lock, say).
    void announce(const char* key, QVariant oldValue, QVariant newValue);
};

/// Declares an observed property: accessor `name()`, setter `setName(value)`, its field, and the
/// meta-object's entry by which it is set by key. The type must not contain a comma outside parentheses.
#define OBSERVED(Type, name, setName, initial)                                                               \
  public:                                                                                                    \
    Q_PROPERTY(Type name READ name WRITE setName)                                                            \
    const Type& name() const {                                                                               \
        return m_##name;                                                                                     \
    }                                                                                                        \
    void setName(Type value) {                                                                               \
        assign(m_##name, std::move(value), #name);                                                           \
    }                                                                                                        \
                                                                                                             \
  private:                                                                                                   \
    Type m_##name = initial;                                                                                 \
                                                                                                             \
  public:

/// An observer's registration for some keys of an object; it ends with this handle or with the object,
/// whichever goes first. Observers are called in the order of their registration, and never after they ended.
class Observation {
  public:
    using Handler = std::function<void(const KeyChange&)>;

    Observation() = default;
    /// Calls `handler` for assignments to one of `keys`, which must outlive the observation.
    Observation(Observable& object, std::span<const char* const> keys, Handler handler);
    ~Observation();
    Observation(Observation&& other) noexcept;
    Observation& operator=(Observation&& other) noexcept;
    Observation(const Observation&) = delete;
    Observation& operator=(const Observation&) = delete;

    void end();

  private:
    QMetaObject::Connection m_connection;
};
