// The look: contrasts, heights, the focus ring, faults, pictures and the desktop's wishes.
#include "Core/Assertions.h"
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/Pictures.h"
#include "Platform/Widgets/VelquinStyle.h"
#include "WidgetFixtures.h"
#include "support/TestSupport.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFocusFrame>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <cmath>

namespace {

/// WCAG 2 relative luminance and contrast ratio.
double luminance(const QColor& color) {
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& a, const QColor& b) {
    const auto [dark, light] = std::minmax({luminance(a), luminance(b)});
    return (light + 0.05) / (dark + 0.05);
}

TEST(ThemeColors, allTextCanBeRead) {
    struct Pair {
        const char* name;
        QColor ThemeColors::*ink;
        QColor ThemeColors::*ground;
        double least;
    };
    const Pair pairs[] = {
        {"text on window", &ThemeColors::text, &ThemeColors::window, 4.5},
        {"text on field", &ThemeColors::text, &ThemeColors::field, 4.5},
        {"text on raised", &ThemeColors::text, &ThemeColors::raised, 4.5},
        {"text on selection", &ThemeColors::text, &ThemeColors::accentSoft, 4.5},
        {"label", &ThemeColors::text2, &ThemeColors::window, 4.5},
        {"label in the bar", &ThemeColors::text2, &ThemeColors::bezel, 4.5},
        {"hint", &ThemeColors::text3, &ThemeColors::window, 4.5},
        {"hint in a field", &ThemeColors::text3, &ThemeColors::field, 4.5},
        {"link", &ThemeColors::accent, &ThemeColors::window, 4.5},
        {"on", &ThemeColors::accent, &ThemeColors::accentSoft, 4.5},
        {"default button", &ThemeColors::onAccent, &ThemeColors::accent, 4.5},
        {"notice", &ThemeColors::warnText, &ThemeColors::warnFill, 4.5},
        {"fault", &ThemeColors::errorText, &ThemeColors::errorFill, 4.5},
        {"fault on window", &ThemeColors::errorText, &ThemeColors::window, 4.5},
        {"foot of a field", &ThemeColors::edge2, &ThemeColors::window, 3.0},
    };
    for (const Theme theme : {Theme::Light, Theme::Dark}) {
        const ThemeColors& colors = themeColors(theme);
        for (const Pair& pair : pairs)
            EXPECT_GE(contrast(colors.*pair.ink, colors.*pair.ground), pair.least)
                << pair.name << (theme == Theme::Dark ? ", dark" : ", light");
    }
}

TEST(Appearance, switchesLive) {
    QPushButton button(QStringLiteral("Adjust"));
    button.resize(72, 26);
    button.setIcon(Pictures::icon(QStringLiteral("zoom")));
    const QImage light = drawn(button);
    Appearance::instance().setTheme(Theme::Dark);
    const QImage dark = drawn(button);
    EXPECT_EQ(light.pixelColor(36, 3), themeColors(Theme::Light).raised);
    EXPECT_EQ(dark.pixelColor(36, 3), themeColors(Theme::Dark).raised);
    EXPECT_EQ(QWidget().palette().color(QPalette::Window), themeColors(Theme::Dark).window);
}

TEST(Appearance, aStyleOfTheUsersOwnIsRespected) {
    const auto chosen = [](std::vector<const char*> arguments) {
        arguments.insert(arguments.begin(), "velquin");
        return Appearance::userChoseStyle(static_cast<int>(arguments.size()), arguments.data());
    };
    EXPECT_TRUE(chosen({"a.csv", "-style", "windows"}));
    EXPECT_TRUE(chosen({"--style=windows"}));
    EXPECT_FALSE(chosen({"--stylish", "style"}));
}

TEST(DesktopSettings, followTheDesktopsWishes) {
    struct Row {
        const char* name;
        const char* nameSpace;
        const char* key;
        QVariant value;
        DesktopSettings settings;
    };
    const Row rows[] = {
        {"dark", "org.freedesktop.appearance", "color-scheme", 1U, {true, true}},
        {"light", "org.freedesktop.appearance", "color-scheme", 2U, {false, true}},
        {"no preference", "org.freedesktop.appearance", "color-scheme", 0U, {std::nullopt, true}},
        {"unknown scheme", "org.freedesktop.appearance", "color-scheme", 7U, {std::nullopt, true}},
        {"no movement", "org.gnome.desktop.interface", "enable-animations", false, {std::nullopt, false}},
        {"no movement, as text",
         "org.kde.kdeglobals.KDE",
         "AnimationDurationFactor",
         QStringLiteral("0"),
         {std::nullopt, false}},
        {"something else", "org.gnome.desktop.interface", "cursor-size", 24, {std::nullopt, true}},
    };
    for (const Row& row : rows) {
        DesktopSettings settings;
        settings.take(QLatin1String(row.nameSpace), QLatin1String(row.key), row.value);
        EXPECT_EQ(settings, row.settings) << row.name;
    }
}

TEST(VelquinStyle, controlsStandOnOneGridAndGrowWithTheFont) {
    QLineEdit field;
    QSpinBox number;
    QComboBox popup;
    QPushButton button(QStringLiteral("Adjust"));
    QToolButton tool;
    tool.setIcon(Pictures::icon(QStringLiteral("zoom")));
    const std::pair<QWidget*, int> rows[] = {
        {&field, 24}, {&number, 24}, {&popup, 24}, {&button, 26}, {&tool, 26}};
    for (const auto& [widget, height] : rows) {
        EXPECT_EQ(widget->sizeHint().height(), height) << widget->metaObject()->className();
        QFont large = widget->font();
        large.setPixelSize(20);
        widget->setFont(large);
        const int taller = QFontMetrics(large).height() - 16;
        EXPECT_EQ(widget->sizeHint().height(), height + taller) << widget->metaObject()->className();
    }
}

TEST(VelquinStyle, aFaultStaysUntilItIsMended) {
    QLineEdit field;
    field.setToolTip(QStringLiteral("Expression for x"));
    field.resize(100, 24);
    VelquinStyle::setFault(field, QStringLiteral("Unexpected end"));
    VelquinStyle::setFault(field, QStringLiteral("Unknown name"));
    EXPECT_EQ(field.toolTip(), QStringLiteral("Unknown name"));
    EXPECT_EQ(drawn(field).pixelColor(50, 0), currentColors().errorText);
    VelquinStyle::setFault(field, {});
    EXPECT_EQ(field.toolTip(), QStringLiteral("Expression for x"));
    EXPECT_EQ(drawn(field).pixelColor(50, 0), currentColors().edge);
    EXPECT_EQ(drawn(field).pixelColor(50, 23), currentColors().edge2);
}

class StyledWindow : public testing::Test {
  protected:
    StyledWindow() { window.resize(300, 200); }
    void show() {
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    const QFocusFrame* ring() const { return window.findChild<QFocusFrame*>(); }

    QWidget window;
};

TEST_F(StyledWindow, theFocusRingLiesOutsideFreeControlsAndInsideTightOnes) {
    QPushButton free(&window);
    free.setGeometry(10, 10, 72, 26);
    QLineEdit field(&window);
    field.setGeometry(10, 50, 72, 24);
    QWidget row(&window);
    row.setGeometry(0, 100, 200, 30);
    VelquinStyle::setFocusRingInside(row);
    QToolButton tight(&row);
    tight.setGeometry(10, 0, 26, 26);
    tight.setFocusPolicy(Qt::StrongFocus);
    show();

    free.setFocus();
    ASSERT_NE(ring(), nullptr);
    EXPECT_TRUE(ring()->isVisible());
    EXPECT_EQ(ring()->geometry(), free.geometry().adjusted(-3, -3, 3, 3));
    const QImage around = drawn(window);
    EXPECT_EQ(around.pixelColor(46, 7), currentColors().accent);
    EXPECT_EQ(around.pixelColor(46, 9), currentColors().window) << "one pixel off";

    field.setFocus();
    EXPECT_FALSE(ring() != nullptr && ring()->isVisible());
    EXPECT_EQ(drawn(field).pixelColor(36, 1), currentColors().accent);

    tight.setFocus();
    EXPECT_FALSE(ring() != nullptr && ring()->isVisible());
    EXPECT_EQ(drawn(tight).pixelColor(13, 1), currentColors().accent);
}

TEST_F(StyledWindow, theWheelTurnsOnlyWhatHasTheFocus) {
    QSpinBox number(&window);
    number.setValue(5);
    QLineEdit other(&window);
    show();
    const auto turn = [&number] {
        QWheelEvent wheel(QPointF(3, 3), QPointF(3, 3), {}, QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&number, &wheel);
    };
    other.setFocus();
    turn();
    EXPECT_EQ(number.value(), 5);
    number.setFocus();
    turn();
    EXPECT_EQ(number.value(), 6);
}

int inkedPixels(const QPixmap& pixmap) {
    const QImage image = pixmap.toImage();
    int inked = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            inked += image.pixelColor(x, y).alpha() > 100 ? 1 : 0;
    }
    return inked;
}

TEST(Pictures, allAreDrawnAtEveryRatioInEitherTheme) {
    ASSERT_TRUE(Pictures::exists(QStringLiteral("pan")));
    const QStringList files = QDir(QStringLiteral(":/pictures")).entryList();
    EXPECT_GE(files.size(), 49);
    for (const QString& file : files) {
        const QString name = file.chopped(4);
        const QSize size = Pictures::size(name);
        EXPECT_FALSE(size.isEmpty()) << name.toStdString();
        for (const Theme theme : {Theme::Light, Theme::Dark}) {
            const QPixmap single = Pictures::pixmap(name, 1, theme);
            const QPixmap twice = Pictures::pixmap(name, 2, theme);
            EXPECT_EQ(twice.size(), size * 2) << name.toStdString();
            EXPECT_EQ(twice.deviceIndependentSize(), QSizeF(size));
            // Vectors: the larger one has more detail than a scaled one, and about four times the ink.
            EXPECT_GT(inkedPixels(twice), 2 * inkedPixels(single)) << name.toStdString();
        }
    }
    for (const char* name : {"tab_close", "expression_enabled", "expression_disabled", "drop_here"})
        EXPECT_TRUE(Pictures::exists(QLatin1String(name) + QLatin1String("_hover"))) << name;

    const support::AssertionRecorder recorder;
    EXPECT_TRUE(Pictures::pixmap(QStringLiteral("absent"), 1, Theme::Light, QSize(8, 8)).isNull());
    EXPECT_EQ(recorder.texts(), std::vector<std::string>{"No picture \"absent\""});
}

TEST(Pictures, takeTheirColoursFromThemeAndState) {
    for (const Theme theme : {Theme::Light, Theme::Dark}) {
        Appearance::instance().setTheme(theme);
        const ThemeColors& colors = themeColors(theme);
        const auto centre = [](const QPixmap& pixmap) {
            return pixmap.toImage().pixelColor(pixmap.width() / 2, pixmap.height() / 2);
        };
        const QIcon square = Pictures::icon(QStringLiteral("shape_square"));
        EXPECT_EQ(centre(square.pixmap(16)), colors.text2);
        EXPECT_EQ(centre(square.pixmap(16, QIcon::Active)), colors.text);
        EXPECT_EQ(centre(square.pixmap(16, QIcon::Disabled)), colors.disabled);
        EXPECT_EQ(centre(square.pixmap(16, QIcon::Normal, QIcon::On)), colors.accent);
        EXPECT_EQ(centre(Pictures::tinted(QStringLiteral("shape_square"), Qt::red, 2)), QColor(Qt::red));
        const QImage zone = Pictures::pixmap(QStringLiteral("drop_here"), 1, theme).toImage();
        EXPECT_EQ(zone.pixelColor(20, 20), colors.field);
        const QImage hovered = Pictures::pixmap(QStringLiteral("drop_here_hover"), 1, theme).toImage();
        EXPECT_EQ(hovered.pixelColor(20, 20), colors.accentSoft);
    }
}

TEST(Pictures, cursorsPointWithTheirHotSpots) {
    EXPECT_EQ(Pictures::zoomCursor(1).hotSpot(), QPoint(10, 10));
    for (const double ratio : {1.0, 2.0}) {
        const QCursor ruler = Pictures::rulerCursor(ratio);
        EXPECT_EQ(ruler.hotSpot(), QPoint(11, 11));
        const QPixmap pixmap = ruler.pixmap();
        EXPECT_EQ(pixmap.width(), 24 * ratio);
        const auto at = [&](int x, int y) {
            return pixmap.toImage().pixelColor(static_cast<int>((x + 0.5) * ratio),
                                               static_cast<int>((y + 0.5) * ratio));
        };
        EXPECT_EQ(at(11, 11).alpha(), 0) << "what is measured is seen";
        EXPECT_EQ(at(11, 5), QColor(Qt::black));
    }
}

} // namespace
