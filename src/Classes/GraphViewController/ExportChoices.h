// What a user chooses for a picture of the plot, and what of it cannot be.
#pragma once

#include "Classes/PlotView/PlotPicture.h"

#include <QCoreApplication>

#include <optional>

/// The context of the texts about exporting.
struct ExportPicture {
    Q_DECLARE_TR_FUNCTIONS(ExportPicture)
};

struct ExportChoices {
    static constexpr int leastSide = 16; ///< of a picture, in points
    static constexpr int greatestSide = 16384;
    static constexpr int greatestPixels = 32767; ///< a side, after scaling
    static constexpr double scales[] = {1, 1.5, 2, 3};

    PictureFormat format = PictureFormat::Png;
    int width = 920;
    int height = 550;
    double scale = 2; ///< one of `scales`
    bool legend = true;
    bool titles = true;

    bool operator==(const ExportChoices&) const = default;

    /// Vectors have no scale.
    PictureSize size() const;
    /// The same without a legend or titles, if they are not wanted.
    PlotPictureOptions applied(PlotPictureOptions options) const;

    /// The last ones, out of the user defaults; what makes no sense there is as it is at first.
    static ExportChoices remembered(bool documentShowsLegend);
    void remember() const;
};

/// A side as it was typed; absent when it is no whole number or out of bounds.
std::optional<int> exportSide(const QString& text);
/// Why a picture of this side cannot be made; empty if it can.
QString exportSideFault(const QString& text, double scale);

/// The ending of files in that format, without its point.
QString endingOf(PictureFormat format);
