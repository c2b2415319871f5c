// Which theme is on, and who is told when it changes.
#pragma once

#include "Platform/Widgets/DesktopSettings.h"
#include "Platform/Widgets/ThemeColors.h"

#include <QObject>

/// The program's look: the theme follows the desktop until `setTheme` pins it. Main thread.
class Appearance : public QObject {
    Q_OBJECT

  public:
    static Appearance& instance();

    /// Puts style and palette on the application, in the theme of the palette that the desktop gave it,
    /// unless the user chose a style of their own (`-style` or QT_STYLE_OVERRIDE, which `userChoseStyle`
    /// reports): then only our own drawing follows the palette that is there.
    void install(bool userChoseStyle);
    /// Asks the desktop for its theme and its wish for movement, and follows both from now on.
    void followDesktop();
    /// Whether a style was asked for by environment or arguments. To be asked before QApplication is made,
    /// which takes its own arguments out of the list.
    static bool userChoseStyle(int argc, const char* const* argv);

    Theme theme() const { return m_theme; }
    void setTheme(Theme theme);
    const ThemeColors& colors() const { return themeColors(m_theme); }

    /// Whether things may move; a desktop without animations turns every duration into 0.
    bool animations() const { return m_animations; }
    void setAnimations(bool on) { m_animations = on; }
    /// Whether the desktop wants to hear of what happens.
    bool eventSounds() const { return m_eventSounds; }

  Q_SIGNALS:
    void themeChanged();

  private:
    Appearance() = default;
    void apply(const DesktopSettings& settings);
    void applyTheme(Theme theme);

    DesktopSettingsWatcher* m_watcher = nullptr;
    Theme m_theme = Theme::Light;
    bool m_pinned = false;
    bool m_animations = true;
    bool m_eventSounds = true;
    bool m_ownsPalette = false;
    Theme m_fallback = Theme::Light; ///< of the palette that the desktop gave
};

/// The colours of the theme that is on.
inline const ThemeColors& currentColors() {
    return Appearance::instance().colors();
}
