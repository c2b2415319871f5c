// Chooses the theme from the desktop's wish or its palette, and switches it live.
#include "Platform/Widgets/Appearance.h"

#include "Platform/Widgets/VelquinStyle.h"

#include <QApplication>

#include <cstring>

namespace {

Theme themeOfPalette(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness()
               ? Theme::Dark
               : Theme::Light;
}

} // namespace

Appearance& Appearance::instance() {
    static Appearance theAppearance;
    return theAppearance;
}

bool Appearance::userChoseStyle(int argc, const char* const* argv) {
    for (int i = 1; i < argc; ++i) {
        const char* argument = argv[i];
        if (std::strncmp(argument, "--", 2) == 0)
            ++argument;
        if (std::strcmp(argument, "-style") == 0 || std::strncmp(argument, "-style=", 7) == 0)
            return true;
    }
    return !qEnvironmentVariableIsEmpty("QT_STYLE_OVERRIDE");
}

void Appearance::install(bool userChoseStyle) {
    m_fallback = themeOfPalette(QApplication::palette());
    m_ownsPalette = !userChoseStyle;
    if (m_ownsPalette)
        QApplication::setStyle(VelquinStyle::create());
    applyTheme(m_fallback);
}

void Appearance::followDesktop() {
    if (m_watcher != nullptr)
        return;
    m_watcher = new DesktopSettingsWatcher(qApp); // the bus goes before this object does
    connect(m_watcher, &DesktopSettingsWatcher::changed, this, &Appearance::apply);
    m_watcher->start();
}

void Appearance::setTheme(Theme theme) {
    m_pinned = true;
    applyTheme(theme);
}

void Appearance::apply(const DesktopSettings& settings) {
    m_animations = settings.animations;
    m_eventSounds = settings.eventSounds;
    if (!m_pinned && m_ownsPalette)
        applyTheme(settings.prefersDark ? (*settings.prefersDark ? Theme::Dark : Theme::Light) : m_fallback);
}

void Appearance::applyTheme(Theme theme) {
    m_theme = theme;
    if (m_ownsPalette)
        QApplication::setPalette(themePalette(theme));
    Q_EMIT themeChanged();
}
