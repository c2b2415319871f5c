// The two tables of colours, light and dark.
#include "Platform/Widgets/ThemeColors.h"

namespace {

ThemeColors lightColors() {
    return {
        .bezel = QColor(0xF7F7F7),
        .window = QColor(0xF4F4F4),
        .raised = QColor(0xFCFCFC),
        .field = QColor(0xFFFFFF),
        .line = QColor(0xDADADA),
        .rowLine = QColor(0xEAEAEA),
        .tableHead = QColor(0xF7F7F7),
        .edge = QColor(0xC8C8C8),
        .edge2 = QColor(0x868686),
        .text = QColor(0x1A1A1A),
        .text2 = QColor(0x555555),
        .text3 = QColor(0x696969),
        .disabled = QColor(0x9C9C9C),
        .accent = QColor(0x17697F),
        .accentSoft = QColor(0xDDEBEF),
        .onAccent = QColor(0xFFFFFF),
        .warnText = QColor(0x7A4F00),
        .warnFill = QColor(0xFFF5DC),
        .warnEdge = QColor(0xE3C67C),
        .errorText = QColor(0xB3261E),
        .errorFill = QColor(0xFCEBE9),
        .errorEdge = QColor(0xE5ABA5),
        .hover = QColor::fromRgbF(0, 0, 0, 0.05F),
        .pressed = QColor::fromRgbF(0, 0, 0, 0.11F),
        .tabLine = QColor::fromRgbF(0, 0, 0, 0.20F),
        .tabShadeMid = QColor::fromRgbF(0, 0, 0, 0.055F),
        .tabShade = QColor::fromRgbF(0, 0, 0, 0.20F),
        .tabGlow = QColor::fromRgbF(1, 1, 1, 0.8F),
    };
}

ThemeColors darkColors() {
    return {
        .bezel = QColor(0x232323),
        .window = QColor(0x2A2A2A),
        .raised = QColor(0x353535),
        .field = QColor(0x1D1D1D),
        .line = QColor(0x3B3B3B),
        .rowLine = QColor(0x2C2C2C),
        .tableHead = QColor(0x262626),
        .edge = QColor(0x4C4C4C),
        .edge2 = QColor(0x8A8A8A),
        .text = QColor(0xECECEC),
        .text2 = QColor(0xBEBEBE),
        .text3 = QColor(0xA0A0A0),
        .disabled = QColor(0x707070),
        .accent = QColor(0x66BDD2),
        .accentSoft = QColor(0x22404A),
        .onAccent = QColor(0x0E2229),
        .warnText = QColor(0xF0CB78),
        .warnFill = QColor(0x3A3118),
        .warnEdge = QColor(0x6B5A22),
        .errorText = QColor(0xFFA198),
        .errorFill = QColor(0x432523),
        .errorEdge = QColor(0x7A3B36),
        .hover = QColor::fromRgbF(1, 1, 1, 0.06F),
        .pressed = QColor::fromRgbF(1, 1, 1, 0.13F),
        .tabLine = QColor::fromRgbF(0, 0, 0, 0.55F),
        .tabShadeMid = QColor::fromRgbF(0, 0, 0, 0.08F),
        .tabShade = QColor::fromRgbF(0, 0, 0, 0.34F),
        .tabGlow = QColor::fromRgbF(0, 0, 0, 0.6F),
    };
}

} // namespace

const ThemeColors& themeColors(Theme theme) {
    static const ThemeColors light = lightColors();
    static const ThemeColors dark = darkColors();
    return theme == Theme::Dark ? dark : light;
}

QPalette themePalette(Theme theme) {
    const ThemeColors& colors = themeColors(theme);
    QPalette palette;
    palette.setColor(QPalette::Window, colors.window);
    palette.setColor(QPalette::WindowText, colors.text);
    palette.setColor(QPalette::Base, colors.field);
    palette.setColor(QPalette::AlternateBase, colors.field);
    palette.setColor(QPalette::Text, colors.text);
    palette.setColor(labelRole, colors.text2);
    palette.setColor(hintRole, colors.text3);
    palette.setColor(QPalette::Button, colors.raised);
    palette.setColor(QPalette::ButtonText, colors.text);
    palette.setColor(QPalette::Light, colors.raised);
    palette.setColor(QPalette::Midlight, colors.line);
    palette.setColor(QPalette::Mid, colors.edge);
    palette.setColor(QPalette::Dark, colors.edge2);
    palette.setColor(QPalette::Shadow, Qt::black);
    palette.setColor(QPalette::Highlight, colors.accentSoft);
    palette.setColor(QPalette::HighlightedText, colors.text);
    palette.setColor(QPalette::Link, colors.accent);
    palette.setColor(QPalette::LinkVisited, colors.accent);
    palette.setColor(QPalette::ToolTipBase, colors.raised);
    palette.setColor(QPalette::ToolTipText, colors.text);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::Link,
                            QPalette::HighlightedText, labelRole, hintRole})
        palette.setColor(QPalette::Disabled, role, colors.disabled);
    palette.setColor(QPalette::Disabled, QPalette::Base, colors.window);
    return palette;
}
