// One mark on an axis, and one coloured band across it.
#pragma once

#include <QString>

#include <memory>
#include <optional>
#include <vector>

/// Text of a label, of which the tail from `superscriptStart` on is raised.
struct AttributedLabel {
    QString text;
    qsizetype superscriptStart = 0;

    bool operator==(const AttributedLabel&) const = default;
};

/// A labelled (major) or unlabelled (minor) mark.
struct XAxisTick {
    double value = 0;                               ///< in the axis's units
    std::optional<QString> title;                   ///< absent for an unlabelled mark
    std::optional<AttributedLabel> attributedTitle; ///< instead of the title where a label has two styles
    int level = 0;                                  ///< 0 major, 1 minor
    double tickTitleOffset = 0;                     ///< value units by which the label stands beside the mark

    /// Ascending by value: negative, 0 or positive.
    int compare(const XAxisTick& other) const;
    QString description() const; ///< "%@ - %f"
};

/// A band of values drawn in a style colour.
struct XAxisColorRange {
    double start = 0;
    double end = 0;
    QString colorName; ///< a key of the plot's style table, e.g. "TickColor_weekend"
};

/// Null is "no ticks", which is not the same as an empty list.
using XAxisTicks = std::shared_ptr<const std::vector<XAxisTick>>;
using XAxisColorRanges = std::shared_ptr<const std::vector<XAxisColorRange>>;
