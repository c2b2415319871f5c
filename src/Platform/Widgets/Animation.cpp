// Runs movements on the toolkit's animation clock.
#include "Platform/Widgets/Animation.h"

#include "Platform/Widgets/Appearance.h"

#include <QGraphicsOpacityEffect>
#include <QVariantAnimation>
#include <QWidget>

#include <algorithm>
#include <utility>

namespace Animation {

namespace {

constexpr auto fadeName = "velquinFade";

} // namespace

QVariantAnimation* run(QObject& owner, int milliseconds, QEasingCurve::Type easing,
                       std::function<void(double)> step, std::function<void()> done) {
    if (!Appearance::instance().animations() || milliseconds <= 0) {
        step(1);
        if (done)
            done();
        return nullptr;
    }
    auto* animation = new QVariantAnimation(&owner);
    animation->setDuration(milliseconds);
    animation->setEasingCurve(easing);
    animation->setStartValue(0.0);
    animation->setEndValue(1.0);
    QObject::connect(animation, &QVariantAnimation::valueChanged, animation,
                     [step = std::move(step)](const QVariant& value) { step(value.toDouble()); });
    if (done)
        QObject::connect(animation, &QVariantAnimation::finished, animation, std::move(done));
    animation->start(QAbstractAnimation::DeleteWhenStopped);
    return animation;
}

double opacity(const QWidget& widget) {
    const auto* effect = qobject_cast<const QGraphicsOpacityEffect*>(widget.graphicsEffect());
    return effect == nullptr ? 1.0 : effect->opacity();
}

void setOpacity(QWidget& widget, double opacity) {
    if (opacity >= 1) {
        // An opaque widget is drawn straight to its window, without a detour through a pixmap.
        widget.setGraphicsEffect(nullptr);
        return;
    }
    auto* effect = qobject_cast<QGraphicsOpacityEffect*>(widget.graphicsEffect());
    if (effect == nullptr) {
        effect = new QGraphicsOpacityEffect;
        widget.setGraphicsEffect(effect);
    }
    effect->setOpacity(std::max(0.0, opacity));
}

void fade(QWidget& widget, double to, int milliseconds, std::function<void()> done) {
    const QString name = QString::fromLatin1(fadeName);
    if (auto* earlier = widget.findChild<QVariantAnimation*>(name, Qt::FindDirectChildrenOnly)) {
        earlier->setObjectName({});
        earlier->stop();
    }
    const double from = opacity(widget);
    QVariantAnimation* animation = run(
        widget, milliseconds, QEasingCurve::Linear,
        [&widget, from, to](double part) { setOpacity(widget, from + part * (to - from)); }, std::move(done));
    if (animation != nullptr)
        animation->setObjectName(name);
}

} // namespace Animation
