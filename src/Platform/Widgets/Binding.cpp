// One object a binding, a child of its control.
#include "Platform/Widgets/Binding.h"

#include "Platform/Core/Observable.h"
#include "Platform/Core/TypedNumber.h"
#include "Platform/Widgets/VelquinStyle.h"

#include <QAbstractButton>
#include <QAbstractItemModel>
#include <QAction>
#include <QActionGroup>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QPointer>
#include <QSignalBlocker>
#include <QSpinBox>

#include <array>
#include <cmath>
#include <utility>

namespace {

using Show = std::function<void(const QVariant&)>;

class Binding : public QObject {
  public:
    Binding(QObject* control, Observable& object, const char* key, ValueTransform transform, Show show)
        : QObject(control), m_object(&object), m_keys{key}, m_transform(std::move(transform)),
          m_show(std::move(show)) {
        m_observation = Observation(object, m_keys, [this](const KeyChange&) { showValue(); });
        showValue();
    }

    void showValue() {
        if (m_object == nullptr)
            return;
        const bool outer = std::exchange(m_showing, true);
        setFault({});
        m_show(shownValue());
        m_showing = outer;
    }

    /// Takes what the user entered.
    void write(const QVariant& controlValue) {
        if (m_showing || m_object == nullptr)
            return;
        if (controlValue == shownValue()) {
            setFault({});
            return;
        }
        std::optional<QVariant> value =
            m_transform.toModel ? m_transform.toModel(controlValue) : std::optional(controlValue);
        if (!value) {
            setFault(m_transform.refusal);
            return;
        }
        const QVariant old = m_object->valueForKey(m_keys[0]);
        if (value->metaType() != old.metaType())
            value->convert(old.metaType());
        // The setter may end this very binding, by way of whoever observes the key.
        const QPointer<Binding> self(this);
        if (*value != old)
            m_object->setValueForKey(m_keys[0], *value);
        if (self != nullptr)
            showValue();
    }

  private:
    QVariant shownValue() const {
        const QVariant value = m_object->valueForKey(m_keys[0]);
        return m_transform.toControl ? m_transform.toControl(value) : value;
    }

    void setFault(const QString& reason) {
        auto* widget = qobject_cast<QWidget*>(parent());
        if (widget != nullptr && !m_transform.refusal.isEmpty())
            VelquinStyle::setFault(*widget, reason);
    }

    QPointer<Observable> m_object;
    std::array<const char*, 1> m_keys;
    ValueTransform m_transform;
    Show m_show;
    Observation m_observation;
    bool m_showing = false;
};

Binding* makeBinding(QObject* control, Observable& object, const char* key, ValueTransform transform,
                     Show show) {
    unbind(control);
    return new Binding(control, object, key, std::move(transform), std::move(show));
}

template <class SpinBox, class Number>
void bindSpinBox(SpinBox* field, Observable& object, const char* key, ValueTransform transform) {
    field->setKeyboardTracking(false);
    Binding* binding = makeBinding(field, object, key, std::move(transform), [field](const QVariant& value) {
        field->setValue(value.template value<Number>());
    });
    QObject::connect(field, qOverload<Number>(&SpinBox::valueChanged), binding,
                     [binding](Number value) { binding->write(QVariant::fromValue(value)); });
}

/// Both kinds of box bindings: what is shown for a value, and what is written for a row.
void bindBox(QComboBox* box, Observable& object, const char* key, ValueTransform transform, const Show& show,
             const std::function<QVariant(int)>& valueOfRow) {
    Binding* binding = makeBinding(box, object, key, std::move(transform), show);
    QObject::connect(box, &QComboBox::activated, binding,
                     [binding, valueOfRow](int row) { binding->write(valueOfRow(row)); });
    const auto rowsChanged = [binding] { binding->showValue(); };
    const QAbstractItemModel* rows = box->model();
    QObject::connect(rows, &QAbstractItemModel::modelReset, binding, rowsChanged);
    QObject::connect(rows, &QAbstractItemModel::rowsInserted, binding, rowsChanged);
    QObject::connect(rows, &QAbstractItemModel::rowsRemoved, binding, rowsChanged);
    QObject::connect(rows, &QAbstractItemModel::rowsMoved, binding, rowsChanged);
}

} // namespace

ValueTransform optionalText() {
    return {[](const QVariant& value) { return value.value<std::optional<QString>>().value_or(QString()); },
            [](const QVariant& value) -> std::optional<QVariant> {
                const QString text = value.toString();
                return QVariant::fromValue(text.isEmpty() ? std::nullopt : std::optional(text));
            },
            {}};
}

ValueTransform optionalNumber() {
    return {[](const QVariant& value) {
                const auto number = value.value<std::optional<double>>();
                return number ? TypedNumber::text(*number) : QString();
            },
            [](const QVariant& value) -> std::optional<QVariant> {
                const QString text = value.toString().trimmed();
                const std::optional<double> number = TypedNumber::value(text);
                if (!text.isEmpty() && !number)
                    return std::nullopt;
                return QVariant::fromValue(number);
            },
            QObject::tr("This is not a number")};
}

ValueTransform percentOfOne() {
    return {[](const QVariant& value) {
                // Outside any sensible range the control's own bounds hold.
                return static_cast<int>(std::lround(std::clamp(value.toDouble(), -1000.0, 1000.0) * 100));
            },
            [](const QVariant& value) -> std::optional<QVariant> { return value.toInt() / 100.0; },
            {}};
}

void bind(QLineEdit* field, Observable& object, const char* key, ValueTransform transform) {
    const QMetaType type = object.valueForKey(key).metaType();
    if (!transform.toControl && type == QMetaType::fromType<std::optional<QString>>())
        transform = optionalText();
    else if (!transform.toControl && type == QMetaType::fromType<std::optional<double>>())
        transform = optionalNumber();
    Binding* binding = makeBinding(field, object, key, std::move(transform), [field](const QVariant& value) {
        const QString text = value.toString();
        if (text != field->text())
            field->setText(text);
    });
    QObject::connect(field, &QLineEdit::editingFinished, binding,
                     [binding, field] { binding->write(field->text()); });
}

void bind(QSpinBox* field, Observable& object, const char* key, ValueTransform transform) {
    bindSpinBox<QSpinBox, int>(field, object, key, std::move(transform));
}

void bind(QDoubleSpinBox* field, Observable& object, const char* key, ValueTransform transform) {
    bindSpinBox<QDoubleSpinBox, double>(field, object, key, std::move(transform));
}

void bind(QComboBox* box, Observable& object, const char* key, ValueTransform transform) {
    bindBox(
        box, object, key, std::move(transform),
        [box](const QVariant& value) { box->setCurrentIndex(value.toInt()); },
        [](int row) { return QVariant(row); });
}

void bindCurrentData(QComboBox* box, Observable& object, const char* key, ValueTransform transform) {
    bindBox(
        box, object, key, std::move(transform),
        [box](const QVariant& value) {
            int row = box->count() - 1;
            while (row >= 0 && box->itemData(row) != value)
                --row;
            box->setCurrentIndex(row);
        },
        [box](int row) { return box->itemData(row); });
}

void bind(QAbstractButton* checkable, Observable& object, const char* key, ValueTransform transform) {
    Binding* binding =
        makeBinding(checkable, object, key, std::move(transform),
                    [checkable](const QVariant& value) { checkable->setChecked(value.toBool()); });
    QObject::connect(checkable, &QAbstractButton::clicked, binding,
                     [binding](bool checked) { binding->write(checked); });
}

void bind(QAction* checkable, Observable& object, const char* key, ValueTransform transform) {
    Binding* binding =
        makeBinding(checkable, object, key, std::move(transform),
                    [checkable](const QVariant& value) { checkable->setChecked(value.toBool()); });
    QObject::connect(checkable, &QAction::triggered, binding,
                     [binding](bool checked) { binding->write(checked); });
}

void bind(QActionGroup* choices, Observable& object, const char* key, ValueTransform transform) {
    Binding* binding =
        makeBinding(choices, object, key, std::move(transform), [choices](const QVariant& value) {
            for (QAction* action : choices->actions())
                action->setChecked(action->data() == value);
        });
    QObject::connect(choices, &QActionGroup::triggered, binding,
                     [binding](const QAction* action) { binding->write(action->data()); });
}

void unbind(QObject* control) {
    const auto children = control->findChildren<QObject*>(Qt::FindDirectChildrenOnly);
    for (QObject* child : children) {
        if (dynamic_cast<Binding*>(child) != nullptr)
            delete child;
    }
}

void follow(QObject* owner, Observable& object, const char* key,
            std::function<void(const QVariant& value)> handler) {
    new Binding(owner, object, key, {}, std::move(handler));
}
