// Ties controls to observed keys: one line a control, no loops, no writes that the user did not cause.
#pragma once

#include <QString>
#include <QVariant>

#include <functional>
#include <optional>

class Observable;
class QAbstractButton;
class QAction;
class QActionGroup;
class QComboBox;
class QDoubleSpinBox;
class QLineEdit;
class QSpinBox;

/// How a key's value looks in a control. An empty function passes the value through.
struct ValueTransform {
    std::function<QVariant(const QVariant& modelValue)> toControl;
    /// Nothing when the control holds no valid value: then nothing is written.
    std::function<std::optional<QVariant>(const QVariant& controlValue)> toModel;
    QString refusal; ///< shown as the field's fault while `toModel` gives nothing
};

/// `std::optional<QString>`: absent shows as "", an emptied field writes absence.
ValueTransform optionalText();
/// `std::optional<double>`: absent shows as "", text that is no finite number is refused.
ValueTransform optionalNumber();
/// A fraction as whole per cent.
ValueTransform percentOfOne();

/// Shows the key's value in the control now and after every assignment, and writes what the user enters: on
/// Return or when the focus leaves a field, at once for choices. A value is written only if the control's
/// differs from the one shown, so equal values never loop and never make an undo step. A value that the
/// setter refused is shown again.
///
/// A binding lives as long as its control; it outlives its object harmlessly. Binding a control again ends
/// the binding it had. The key must be a literal. Without a transform, fields use the optional ones above for
/// keys of those types.
void bind(QLineEdit* field, Observable& object, const char* key, ValueTransform transform = {});
void bind(QSpinBox* field, Observable& object, const char* key, ValueTransform transform = {});
void bind(QDoubleSpinBox* field, Observable& object, const char* key, ValueTransform transform = {});
/// The current index. Shown again whenever the box's rows change.
void bind(QComboBox* box, Observable& object, const char* key, ValueTransform transform = {});
/// The user data of the current row, compared as variants.
void bindCurrentData(QComboBox* box, Observable& object, const char* key, ValueTransform transform = {});
void bind(QAbstractButton* checkable, Observable& object, const char* key, ValueTransform transform = {});
void bind(QAction* checkable, Observable& object, const char* key, ValueTransform transform = {});
/// One of several: the checked action's data.
void bind(QActionGroup* choices, Observable& object, const char* key, ValueTransform transform = {});

void unbind(QObject* control);

/// Calls `handler` with the key's value now and after every assignment, as long as `owner` lives. Any number
/// of them an owner; `unbind` ends them too.
void follow(QObject* owner, Observable& object, const char* key,
            std::function<void(const QVariant& value)> handler);
