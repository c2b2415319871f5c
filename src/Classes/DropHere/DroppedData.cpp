// Reads mime data.
#include "Classes/DropHere/DroppedData.h"

#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

std::optional<DroppedData> DroppedData::from(const QMimeData& data) {
    const QList<QUrl> urls = data.urls();
    if (!urls.isEmpty()) {
        const QUrl& first = urls.constFirst();
        if (first.isLocalFile())
            return DroppedData{Kind::File, first.toLocalFile()};
        return DroppedData{Kind::Text, data.hasText() ? data.text() : first.toString()};
    }
    if (data.hasText())
        return DroppedData{Kind::Text, data.text()};
    return std::nullopt;
}

bool acceptDrag(QDropEvent& event) {
    const QMimeData* data = event.mimeData();
    const bool fits = data != nullptr && (data->hasUrls() || data->hasText()) &&
                      event.possibleActions().testFlag(Qt::CopyAction);
    if (fits) {
        event.setDropAction(Qt::CopyAction);
        event.accept();
    } else {
        event.ignore();
    }
    return fits;
}
