// Keeps the choices within their bounds, and among the user defaults.
#include "Classes/GraphViewController/ExportChoices.h"

#include "Classes/PlotView/RecordedPicture.h"
#include "Platform/Core/UserDefaults.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

void takeSide(const char* key, int& side) {
    const int stored = UserDefaults::standard().integer(QLatin1String(key));
    if (stored >= ExportChoices::leastSide && stored <= ExportChoices::greatestSide)
        side = stored;
}

bool stored(const char* key, bool otherwise) {
    const QVariant value = UserDefaults::standard().value(QLatin1String(key));
    return value.isValid() ? value.toBool() : otherwise;
}

} // namespace

PictureSize ExportChoices::size() const {
    return {width, height, isVectorFormat(format) ? 1 : scale};
}

PlotPictureOptions ExportChoices::applied(PlotPictureOptions options) const {
    options.showLegend = legend;
    if (!titles)
        options.plotAreaTitle = options.axisTitleX = options.axisTitleY = QString();
    return options;
}

ExportChoices ExportChoices::remembered(bool documentShowsLegend) {
    const UserDefaults& defaults = UserDefaults::standard();
    ExportChoices choices;
    const int format = defaults.integer(u"ExportFormat"_s);
    if (format >= 0 && format <= static_cast<int>(PictureFormat::Svg))
        choices.format = static_cast<PictureFormat>(format);
    takeSide("ExportWidth", choices.width);
    takeSide("ExportHeight", choices.height);
    const double scale = defaults.value(u"ExportScale"_s).toDouble();
    if (std::ranges::find(scales, scale) != std::end(scales))
        choices.scale = scale;
    choices.legend = stored("ExportLegend", documentShowsLegend);
    choices.titles = stored("ExportTitles", true);
    return choices;
}

void ExportChoices::remember() const {
    UserDefaults& defaults = UserDefaults::standard();
    defaults.set(u"ExportFormat"_s, static_cast<int>(format));
    defaults.set(u"ExportWidth"_s, width);
    defaults.set(u"ExportHeight"_s, height);
    defaults.set(u"ExportScale"_s, scale);
    defaults.set(u"ExportLegend"_s, legend);
    defaults.set(u"ExportTitles"_s, titles);
}

std::optional<int> exportSide(const QString& text) {
    bool isNumber = false;
    const int side = text.trimmed().toInt(&isNumber);
    const bool fits = isNumber && side >= ExportChoices::leastSide && side <= ExportChoices::greatestSide;
    return fits ? std::optional(side) : std::nullopt;
}

QString exportSideFault(const QString& text, double scale) {
    const QLocale locale(QLocale::English);
    const std::optional<int> side = exportSide(text);
    if (!side)
        return ExportPicture::tr("A whole number from %1 to %2")
            .arg(locale.toString(ExportChoices::leastSide), locale.toString(ExportChoices::greatestSide));
    if (*side * scale > ExportChoices::greatestPixels)
        return ExportPicture::tr("At this scale the picture would have more than %1 pixels a side")
            .arg(locale.toString(ExportChoices::greatestPixels));
    return {};
}

QString endingOf(PictureFormat format) {
    switch (format) {
    case PictureFormat::Png:
        break;
    case PictureFormat::Jpeg:
        return u"jpg"_s;
    case PictureFormat::Pdf:
        return u"pdf"_s;
    case PictureFormat::Svg:
        return u"svg"_s;
    }
    return u"png"_s;
}
