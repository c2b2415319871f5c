// What a drop or the clipboard brings: a file's path or a text.
#pragma once

#include <QString>

#include <optional>

class QDropEvent;
class QMimeData;

struct DroppedData {
    enum class Kind { File, Text };

    Kind kind;
    QString text; ///< the path of a local file, or the text itself

    bool operator==(const DroppedData&) const = default;

    /// The first URL counts, before any text; one that is no local file is taken as text. Nothing for data
    /// that hold neither.
    static std::optional<DroppedData> from(const QMimeData& data);
};

/// Accepts a drag that carries a URL or a text and may be copied, as a copy; ignores any other. Returns
/// which.
bool acceptDrag(QDropEvent& event);
