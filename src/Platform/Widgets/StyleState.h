// What the style asks of an option while it draws: its states, its ink, and the measures that its parts
// share.
#pragma once

#include "Platform/Widgets/Appearance.h"

#include <QStyleOption>

namespace StyleState {

constexpr double buttonRadius = 4;
constexpr int chevronSide = 16;
constexpr int narrowPopup = 40; ///< a pop-up under this width shows its icon alone, with a smaller chevron

inline bool has(const QStyleOption* option, QStyle::StateFlag flag) {
    return option->state.testFlag(flag);
}

/// The colour of text and glyphs.
inline QColor inkOf(const QStyleOption* option, const QColor& enabled) {
    return has(option, QStyle::State_Enabled) ? enabled : currentColors().disabled;
}

} // namespace StyleState
